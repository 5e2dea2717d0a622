// Style sheets of the main window's image buttons.
#pragma once

#include <QString>

namespace PanelStyles {

struct ImageButton
{
    QString objectName;
    QString normal;   // resource path of the normal picture; hover and disabled follow its name
    QString hover;
    QString disabled;
    QString checkedNormal; // empty: the button shows no checked picture
    QString checkedHover;
    QString checkedDisabled;
    QString textColor;
    QString disabledTextColor;
    QString extra;      // further declarations of the normal state
    bool centred = false; // the small buttons: not repeated, centred
    bool hideMenuIndicator = false;
};

// The three pictures of an image button by its resource stem:
// stem_normal.png, stem_hover.png, stem_disabled.png.
ImageButton imageButton(const QString &objectName, const QString &stem);

QString styleSheet(const ImageButton &button);

QString volumeSlider();
QString informationLabel(const QString &objectName);
QString informationField(const QString &className, const QString &objectName, const QString &padding = QString());
QString menus();
QString folderButton(const QString &objectName, const QString &icon);

} // namespace PanelStyles
