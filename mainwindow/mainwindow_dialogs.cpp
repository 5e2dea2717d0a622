// MainWindow: the video quality, record device and version dialogs, help,
// and the picture adjustment values the quality dialog sets.
#include "mainwindow.h"

#include <QAudioInput>
#include <QCamera>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QDialog>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QUrl>
#include <QVBoxLayout>

#include "app/logfile.h"
#include "app/orvixlogging.h"
#include "tasks/orvixdelaytask.h"
#include "widgets/footswitchdialog.h"

namespace {
// The designed width, or wider where a label's text needs it (a translated
// one, mostly): a label cut short names nothing. One width for a column.
void fitLabels(const QList<QLabel *> &labels, int designedWidth)
{
    int width = designedWidth;
    for (QLabel *label : labels)
        width = qMax(width, label->sizeHint().width());
    for (QLabel *label : labels)
        label->setFixedWidth(width);
}

struct ColorRow
{
    const char *label;
    int minimum;
    int maximum;
    void (MainWindow::*setter)(int);
    int PictureAdjustments::*value;
    const char *leftIcon;
    const char *rightIcon;
    void (MainWindow::*autoSlot)();
};

// The order of the rows, and which icon sits left, are as the dialog was
// first drawn; the lower-case "hue" included.
const ColorRow colorRows[11] = {
    { QT_TRANSLATE_NOOP("MainWindow", "Brightness"), -50, 80, &MainWindow::setBrightness, &PictureAdjustments::brightness, "icon_brightness02", "icon_brightness01", &MainWindow::brightnessClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Contrast"), -100, 100, &MainWindow::setContrast, &PictureAdjustments::contrast, "icon_contrast01", "icon_contrast02", &MainWindow::contrastClick },
    { QT_TRANSLATE_NOOP("MainWindow", "hue"), 0, 120, &MainWindow::setHue, &PictureAdjustments::hue, "icon_hue01", "icon_hue02", &MainWindow::hueClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Saturation"), -100, 50, &MainWindow::setStaturation, &PictureAdjustments::saturation, "icon_saturation01", "icon_saturation02", &MainWindow::staturationClick },
    { QT_TRANSLATE_NOOP("MainWindow", "White Balance"), -30, 30, &MainWindow::setWhiteBal, &PictureAdjustments::whiteBalance, "icon_white01", "icon_white02", &MainWindow::whitebalClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Gamma"), -100, 100, &MainWindow::setGamma, &PictureAdjustments::gamma, "icon_gamma02", "icon_gamma01", &MainWindow::gammaClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Backlight"), -1, 1, &MainWindow::setBacklight, &PictureAdjustments::backlight, "icon_backlight01", "icon_backlight02", &MainWindow::backlightClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Gain"), 0, 100, &MainWindow::setGain, &PictureAdjustments::gain, "icon_gain01", "icon_gain02", &MainWindow::gainClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Color Enable"), -100, 100, &MainWindow::setColorEnabel, &PictureAdjustments::colorEnable, "icon_color01", "icon_color02", &MainWindow::colorenableClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Sharpness"), -100, 100, &MainWindow::setSharpness, &PictureAdjustments::sharpness, "icon_sharpness01", "icon_sharpness02", &MainWindow::sharpnessClick },
    { QT_TRANSLATE_NOOP("MainWindow", "Exposure"), -100, 100, &MainWindow::setExposure, &PictureAdjustments::exposure, "icon_exposure01", "icon_exposure02", &MainWindow::exposureClick },
};

// The resource paths start ":res/", as they always have.
const QString autoOnStyle = QStringLiteral(
        "QPushButton{border-image: url(:res/VideoConfig/bg_noclick_auto_on.png)}"
        "QPushButton:hover{border-image: url(:res/VideoConfig/bg_click_auto.png)}"
        "QPushButton:pressed{border-image: url(:res/VideoConfig/bg_noclick_auto_on.png)}");
const QString autoOffStyle = QStringLiteral(
        "QPushButton{border-image: url(:res/VideoConfig/bg_click_auto.png)}"
        "QPushButton:hover{border-image: url(:res/VideoConfig/bg_click_auto.png)}"
        "QPushButton:pressed{border-image: url(:res/VideoConfig/bg_noclick_auto_on.png)}");

QLabel *iconLabel(const char *name)
{
    auto *label = new QLabel;
    label->setPixmap(QPixmap(QStringLiteral(":res/VideoConfig/%1.png").arg(QLatin1String(name))));
    return label;
}

QFrame *deviceRecordFrame(QWidget *parent)
{
    auto *frame = new QFrame(parent);
    frame->setObjectName(QStringLiteral("deviceRecordFrame"));
    frame->setStyleSheet(QStringLiteral("QFrame#deviceRecordFrame {background-color: rgb(70, 70, 70); }"));
    frame->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
    new QVBoxLayout(frame);
    return frame;
}

// Descriptions with the current one first and none twice.
QStringList currentFirst(const QString &current, const QStringList &all)
{
    QStringList items;
    if (!current.isEmpty())
        items.append(current);
    for (const QString &description : all) {
        if (!items.contains(description))
            items.append(description);
    }
    return items;
}
}

void MainWindow::showColorDialog()
{
    if (!colorDialog)
        buildColorDialog();
    colorDialog->show();
    colorDialog->raise();
}

void MainWindow::buildColorDialog()
{
    colorDialog = new QDialog(this);
    colorDialog->setWindowTitle(tr("Video Quality"));
    deviceRecordFrame(colorDialog);

    auto *layout = new QVBoxLayout;
    QList<QLabel *> names;
    for (int i = 0; i < 11; ++i) {
        const ColorRow &row = colorRows[i];
        auto *rowLayout = new QHBoxLayout;
        auto *name = new QLabel(tr(row.label));
        names.append(name);
        auto *slider = new QSlider(Qt::Horizontal);
        slider->setFixedWidth(200);
        slider->setRange(row.minimum, row.maximum);
        slider->setValue(adjustments.*row.value);
        connect(slider, &QSlider::valueChanged, this, row.setter);
        auto *button = new QPushButton(tr("Auto"));
        button->setFixedSize(50, 20);
        button->setStyleSheet(autoOffStyle);
        connect(button, &QPushButton::clicked, this, row.autoSlot);
        name->setBuddy(slider);
        button->setAccessibleName(tr("Auto: %1").arg(name->text()));
        rowLayout->addWidget(name);
        rowLayout->addWidget(iconLabel(row.leftIcon));
        rowLayout->addWidget(slider);
        rowLayout->addWidget(iconLabel(row.rightIcon));
        rowLayout->addWidget(button);
        layout->addLayout(rowLayout);
        colorSliders[i] = slider;
        autoButtons[i] = button;
    }

    auto *powerLine = new QHBoxLayout;
    auto *powerLabel = new QLabel(tr("Power line hz"));
    names.append(powerLabel);
    fitLabels(names, 80);
    hz50Box = new QCheckBox(QStringLiteral("50Hz"));
    hz60Box = new QCheckBox(QStringLiteral("60Hz"));
    hz50Box->setFixedWidth(100);
    hz60Box->setFixedWidth(100);
    hz60Box->setChecked(true);
    // Qt 6.4 has no checkStateChanged; stateChanged carries the same value.
    connect(hz50Box, &QCheckBox::stateChanged, this, [this](int state) { hz_50_checked(Qt::CheckState(state)); });
    connect(hz60Box, &QCheckBox::stateChanged, this, [this](int state) { hz_60_checked(Qt::CheckState(state)); });
    powerLine->addWidget(powerLabel);
    powerLine->addWidget(hz50Box);
    powerLine->addStretch(1);
    powerLine->addWidget(hz60Box);
    powerLine->addStretch(2);
    layout->addLayout(powerLine);

    auto *buttons = new QHBoxLayout;
    auto *defaults = new QPushButton(tr("Default"));
    auto *close = new QPushButton(tr("Close"));
    defaults->setFixedSize(80, 50);
    close->setFixedSize(80, 50);
    connect(close, &QPushButton::clicked, colorDialog, &QDialog::close);
    connect(defaults, &QPushButton::clicked, this, &MainWindow::setColorDefault);
    buttons->addWidget(defaults);
    buttons->addWidget(close);
    layout->addLayout(buttons);
    colorDialog->setLayout(layout);
}

void MainWindow::autoClicked(int row)
{
    QPushButton *button = autoButtons[row];
    if (!button)
        return;
    QSlider *slider = colorSliders[row];
    if (!slider->isEnabled()) {
        button->setStyleSheet(autoOffStyle);
        slider->setEnabled(true);
        return;
    }
    adjustments.*colorRows[row].value = 0;
    adjustmentsChanged();
    slider->setValue(0);
    button->setStyleSheet(autoOnStyle);
    slider->setEnabled(false);
}

void MainWindow::brightnessClick() { autoClicked(0); }
void MainWindow::contrastClick() { autoClicked(1); }
void MainWindow::hueClick() { autoClicked(2); }
void MainWindow::staturationClick() { autoClicked(3); }
void MainWindow::whitebalClick() { autoClicked(4); }
void MainWindow::gammaClick() { autoClicked(5); }
void MainWindow::backlightClick() { autoClicked(6); }
void MainWindow::gainClick() { autoClicked(7); }
void MainWindow::colorenableClick() { autoClicked(8); }
void MainWindow::sharpnessClick() { autoClicked(9); }
void MainWindow::exposureClick() { autoClicked(10); }

void MainWindow::setColorDefault()
{
    if (!colorDialog)
        return;
    for (int i = 0; i < 11; ++i) {
        if (!colorSliders[i])
            continue;
        adjustments.*colorRows[i].value = 0;
        colorSliders[i]->setValue(0);
    }
    adjustmentsChanged();
    hz50Box->setChecked(false);
    hz60Box->setChecked(true);
}

void MainWindow::hz_50_checked(Qt::CheckState state)
{
    if (hz50Box && hz50Box->isCheckable() && state == Qt::Checked)
        hz60Box->setChecked(false);
}

void MainWindow::hz_60_checked(Qt::CheckState state)
{
    if (hz60Box && hz60Box->isCheckable() && state == Qt::Checked)
        hz50Box->setChecked(false);
}

void MainWindow::videoSettings()
{
    if (!recorder)
        return;
    if (!deviceDialog)
        buildDeviceDialog();
    deviceDialog->show();
    deviceDialog->raise();
    deviceDialog->setFixedSize(deviceDialog->size());
    deviceFrame->setFixedSize(deviceFrame->size());
}

void MainWindow::buildDeviceDialog()
{
    deviceDialog = new QDialog(this);
    deviceFrame = deviceRecordFrame(deviceDialog);

    QStringList cameras;
    for (const QCameraDevice &device : std::as_const(availableCameras))
        cameras.append(device.description());
    QStringList microphones;
    for (const QAudioDevice &device : QMediaDevices::audioInputs())
        microphones.append(device.description());
    const QString currentCamera = camera ? camera->cameraDevice().description() : QString();
    const QString currentMicrophone = audioInput ? audioInput->device().description() : QString();

    // The texts are the ones users have always seen, "LANME" included.
    const std::array<std::pair<QString, QStringList>, 7> rows { {
            { tr("Video Devices"), currentFirst(currentCamera, cameras) },
            { tr("Video Compressor"), { QStringLiteral("H.264(AVC)") } },
            { tr("Audio Compressor"), { QStringLiteral("LANME Audio Encoder") } },
            { tr("Audio Format"), { QStringLiteral("stereo 128kbps MP3") } },
            { tr("Audio Device"), currentFirst(currentMicrophone, microphones) },
            { tr("Bit Rate"), { QStringLiteral("Highest(r=0.14)"), QStringLiteral("High(r=0.11)"), QStringLiteral("Normal(r=0.1085)") } },
            { tr("Frame Rate"), { QStringLiteral("High(30)") } },
    } };

    auto *layout = new QVBoxLayout;
    QList<QLabel *> labels;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        auto *rowLayout = new QHBoxLayout;
        auto *label = new QLabel(rows[i].first);
        label->setFixedHeight(25);
        labels.append(label);
        auto *combo = new QComboBox;
        combo->setFixedSize(250, 25);
        combo->addItems(rows[i].second);
        label->setBuddy(combo);
        rowLayout->addWidget(label);
        rowLayout->addWidget(combo);
        layout->addLayout(rowLayout);
        deviceRows[i] = { label, combo };
    }
    fitLabels(labels, 100);
    auto *buttons = new QHBoxLayout;
    auto *defaults = new QPushButton(tr("Default"));
    auto *apply = new QPushButton(tr("Apply"));
    connect(defaults, &QPushButton::clicked, this, &MainWindow::videoDefaultSet);
    connect(apply, &QPushButton::clicked, this, &MainWindow::updateCurrentMediaDevice);
    buttons->addStretch(1);
    buttons->addWidget(defaults);
    buttons->addStretch(1);
    buttons->addWidget(apply);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    deviceDialog->setLayout(layout);
}

void MainWindow::updateCurrentMediaDevice()
{
    const QString chosen = deviceRows[4].second->currentText();
    QAudioDevice microphone;
    for (const QAudioDevice &device : QMediaDevices::audioInputs()) {
        if (device.description() == chosen) {
            microphone = device;
            break;
        }
    }
    if (microphone.isNull())
        return;
    // Building the session again ends a recording: the surgeon is asked to
    // stop it first rather than lose the rest of it unseen.
    if (recorder && (recorder->recorderState() != QMediaRecorder::StoppedState || splitPending || splitDelayTask)) {
        QMessageBox box(QMessageBox::Warning, tr("Record Device"),
                        tr("The recording is still running.\nStop it before changing the record device."),
                        QMessageBox::Ok, deviceDialog);
        box.exec();
        return;
    }
    userMicrophone = microphone;
    const QCameraDevice current = startedCameraDevice;
    const QList<QCameraDevice> cameras = availableCameras;
    cameraDropped(cameras);
    availableCameras = cameras;
    if (!current.isNull())
        setCamera(current);
}

void MainWindow::videoDefaultSet()
{
    for (const auto &[label, combo] : deviceRows) {
        if (combo)
            combo->setCurrentIndex(0);
    }
    if (deviceDialog)
        deviceDialog->hide();
}

void MainWindow::version()
{
    if (!versionBox) {
        versionBox = new QDialog(this);
        auto *layout = new QVBoxLayout(versionBox);
#ifdef Q_OS_WIN
        const QString system = QStringLiteral("windows");
#else
        const QString system = QStringLiteral("linux");
#endif
        const std::array<std::pair<QString, QString>, 3> facts { {
                { tr("version:"), tr("v2.0.1") },
                { tr("soft date:"), tr("2025/01/16") },
                { tr("system:"), system },
        } };
        QList<QLabel *> names;
        for (const auto &[label, value] : facts) {
            auto *row = new QHBoxLayout;
            auto *name = new QLabel(label);
            name->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            names.append(name);
            auto *edit = new QLineEdit(value);
            edit->setReadOnly(true);
            name->setBuddy(edit);
            row->addWidget(name);
            row->addWidget(edit);
            layout->addLayout(row);
        }
        fitLabels(names, 60);
    }
    versionBox->show();
    versionBox->raise();
}

void MainWindow::help()
{
    const QString manual = QCoreApplication::applicationDirPath() + QStringLiteral("/Help/Orvix_Full_HD_Help.html");
    if (QFileInfo::exists(manual))
        QDesktopServices::openUrl(QUrl::fromLocalFile(manual));
}

void MainWindow::showFootSwitchDialog()
{
    QList<std::pair<QKeySequence, QString>> taken;
    for (QAction *action : findChildren<QAction *>()) {
        for (const QKeySequence &shortcut : action->shortcuts())
            taken.append({ shortcut, QString(action->text()).remove(QLatin1Char('&')) });
    }
    auto *dialog = new FootSwitchDialog(footSwitch->allKeys(), taken, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { footSwitch->setKeys(dialog->keys()); });
    dialog->open();
}

void MainWindow::openLogFolder()
{
    QDir().mkpath(LogFile::folder());
    QDesktopServices::openUrl(QUrl::fromLocalFile(LogFile::folder()));
}

void MainWindow::setBrightness(int value) { adjustments.brightness = value; adjustmentsChanged(); }
void MainWindow::setContrast(int value) { adjustments.contrast = value; adjustmentsChanged(); }
void MainWindow::setHue(int value) { adjustments.hue = value; adjustmentsChanged(); }
void MainWindow::setStaturation(int value) { adjustments.saturation = value; adjustmentsChanged(); }
void MainWindow::setWhiteBal(int value) { adjustments.whiteBalance = value; adjustmentsChanged(); }
void MainWindow::setGamma(int value) { adjustments.gamma = value; adjustmentsChanged(); }
void MainWindow::setBacklight(int value) { adjustments.backlight = value; adjustmentsChanged(); }
void MainWindow::setGain(int value) { adjustments.gain = value; adjustmentsChanged(); }
void MainWindow::setColorEnabel(int value) { adjustments.colorEnable = value; adjustmentsChanged(); }
void MainWindow::setSharpness(int value) { adjustments.sharpness = value; adjustmentsChanged(); }
void MainWindow::setExposure(int value) { adjustments.exposure = value; adjustmentsChanged(); }
