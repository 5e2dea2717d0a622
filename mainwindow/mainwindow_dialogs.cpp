// MainWindow: the dialogs and the picture adjustment values they set.
#include "mainwindow.h"

#include "app/orvixlogging.h"

void MainWindow::videoSettings()
{
    qCWarning(lcUi) << "videoSettings: the record device dialog is not available in this build yet";
}

void MainWindow::showColorDialog()
{
    qCWarning(lcUi) << "showColorDialog: the video quality dialog is not available in this build yet";
}

void MainWindow::help()
{
    qCWarning(lcUi) << "help: not available in this build yet";
}

void MainWindow::version()
{
    qCWarning(lcUi) << "version: not available in this build yet";
}

void MainWindow::setBrightness(int value) { adjustments.brightness = value; }
void MainWindow::setContrast(int value) { adjustments.contrast = value; }
void MainWindow::setHue(int value) { adjustments.hue = value; }
void MainWindow::setStaturation(int value) { adjustments.saturation = value; }
void MainWindow::setWhiteBal(int value) { adjustments.whiteBalance = value; }
void MainWindow::setGamma(int value) { adjustments.gamma = value; }
void MainWindow::setBacklight(int value) { adjustments.backlight = value; }
void MainWindow::setGain(int value) { adjustments.gain = value; }
void MainWindow::setColorEnabel(int value) { adjustments.colorEnable = value; }
void MainWindow::setSharpness(int value) { adjustments.sharpness = value; }
void MainWindow::setExposure(int value) { adjustments.exposure = value; }
