// Style sheets of the main window's image buttons.
#include "panelstyles.h"

namespace PanelStyles {

ImageButton imageButton(const QString &objectName, const QString &stem)
{
    ImageButton button;
    button.objectName = objectName;
    button.normal = stem + QStringLiteral("_normal.png");
    button.hover = stem + QStringLiteral("_hover.png");
    button.disabled = stem + QStringLiteral("_disabled.png");
    return button;
}

QString styleSheet(const ImageButton &b)
{
    const QString selector = QStringLiteral("QPushButton#") + b.objectName;
    const QString placement = b.centred
            ? QStringLiteral("background-repeat: no-repeat;background-position: center; ")
            : QStringLiteral("background-repeat: repeat-x;background-position: top left; ");
    auto image = [](const QString &path) { return QStringLiteral("background-image: url(:/res/%1);").arg(path); };
    auto color = [](const QString &c) { return c.isEmpty() ? QString() : QStringLiteral("color: %1;").arg(c); };

    QString sheet = selector + QStringLiteral(" {margin: 0px; border: none; border-width: 0;background-color: transparent;")
            + image(b.normal) + placement + color(b.textColor) + b.extra + QStringLiteral(" }");
    sheet += selector + QStringLiteral(":hover {") + image(b.hover) + QStringLiteral(" }");
    sheet += selector + QStringLiteral(":pressed {margin-left: 1px; margin-top: 1px; ") + image(b.normal) + QStringLiteral(" }");
    sheet += selector + QStringLiteral(":disabled {") + image(b.disabled) + color(b.disabledTextColor) + QStringLiteral(" }");
    if (!b.checkedNormal.isEmpty()) {
        sheet += selector + QStringLiteral(":checked {") + image(b.checkedNormal) + QStringLiteral(" }");
        sheet += selector + QStringLiteral(":checked:hover {") + image(b.checkedHover) + QStringLiteral(" }");
        sheet += selector + QStringLiteral(":checked:pressed {") + image(b.checkedHover) + QStringLiteral(" }");
        sheet += selector + QStringLiteral(":checked:disabled {") + image(b.checkedDisabled) + QStringLiteral(" }");
    }
    if (b.hideMenuIndicator)
        sheet += selector + QStringLiteral("::menu-indicator {image: none; }");
    return sheet;
}

QString volumeSlider()
{
    return QStringLiteral(
            "QSlider#VolumeControlSlider::groove:horizontal {height: 10px; border: 1px solid transparent; "
            "border-radius: 3px; margin-top: -3px; margin-bottom: -3px; }"
            "QSlider#VolumeControlSlider::sub-page:horizontal {background: rgb(192, 0, 0); border-radius: 3px; }"
            "QSlider#VolumeControlSlider::sub-page:horizontal:disabled {background: rgb(64, 64, 64); }"
            "QSlider#VolumeControlSlider::add-page:horizontal {background: rgb(32, 32, 32); border-radius: 3px; }"
            "QSlider#VolumeControlSlider::handle:horizontal {width: 7px; background: white; "
            "border: 1px solid white; border-radius: 4px; margin: 1px 0; }");
}

QString menus()
{
    return QStringLiteral(
            "QMenuBar {background-color: rgb(34, 34, 34); color: rgb(214, 214, 214); }"
            "QMenuBar::item {padding: 4px 10px; background: transparent; }"
            "QMenuBar::item:selected {background-color: rgb(70, 70, 70); }"
            "QMenu {background-color: rgb(46, 46, 48); color: rgb(214, 214, 214); border: 1px solid rgb(24, 24, 24); }"
            "QMenu::item {padding: 5px 24px 5px 26px; }"
            "QMenu::item:selected {background-color: rgb(86, 183, 203); color: rgb(16, 16, 16); }"
            "QMenu::item:disabled {color: rgb(110, 110, 110); }"
            "QMenu::separator {height: 1px; background: rgb(70, 70, 70); margin: 4px 8px; }");
}

QString informationLabel(const QString &objectName)
{
    return QStringLiteral("QLabel#%1 {padding-top: 0; color: white; }").arg(objectName);
}

QString informationField(const QString &className, const QString &objectName, const QString &padding)
{
    const QString paddingRight = padding.isEmpty() ? QStringLiteral("2px") : padding;
    return QStringLiteral("%1#%2 {padding-left: 2px; padding-right: %3;color: white;background-color: rgb(58, 58, 58);"
                          "border: 1px solid rgb(48, 48, 48);border-radius: 5px; }")
            .arg(className, objectName, paddingRight);
}

QString folderButton(const QString &objectName, const QString &icon)
{
    const QString selector = QStringLiteral("QPushButton#") + objectName;
    return selector + QStringLiteral(" {qproperty-icon: url(:/res/%1); color: rgb(192,192,192); padding-left: 10px; "
                                     "padding-right: 10px; background-color: transparent; "
                                     "border: 1px solid; border-top-color: rgb(106,106,106); border-left-color: rgb(106,106,106); "
                                     "border-right-color: rgb(83,83,83); border-bottom-color: rgb(83,83,83); }").arg(icon)
            + selector + QStringLiteral(":pressed {margin-left: 1px; margin-top: 1px; border-top-color: rgb(83,83,83); "
                                        "border-left-color: rgb(83,83,83); border-right-color: rgb(106,106,106); "
                                        "border-bottom-color: rgb(106,106,106); }")
            + selector + QStringLiteral(":disabled {color: rgb(96,96,96); }");
}

} // namespace PanelStyles
