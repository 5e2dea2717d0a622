// MainWindow: the information panel, live values and browsed files.
#include "mainwindow.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QUrl>
#include <QTextEdit>

#include "app/orvixlogging.h"
#include "storage/orvixstoragemodel.h"
#include "storage/storagepaths.h"
#include "widgets/orviximageviewwidget.h"
#include "widgets/orvixmediaplayerwidget.h"

QString MainWindow::informationText(int field) const
{
    if (auto *edit = qobject_cast<QLineEdit *>(informationFields[field]))
        return edit->text();
    return static_cast<QTextEdit *>(informationFields[field])->toPlainText();
}

void MainWindow::setInformationText(int field, const QString &text)
{
    if (auto *edit = qobject_cast<QLineEdit *>(informationFields[field]))
        edit->setText(text);
    else
        static_cast<QTextEdit *>(informationFields[field])->setText(text);
}

void MainWindow::refillLiveInformation()
{
    // Typed texts stay as they are when nothing was put aside.
    if (liveInformationShown)
        return;
    liveInformationShown = true;
    for (int i = 0; i < 5; ++i)
        setInformationText(i + 1, liveInformation[i]);
    patientIdField->setText(livePatientId);
    patientIdField->setToolTip(QString());
    updateWorklistButton();
    updatePatientIdField();
}

void MainWindow::stashLiveInformation()
{
    if (!liveInformationShown)
        return;
    liveInformationShown = false;
    for (int i = 0; i < 5; ++i)
        liveInformation[i] = informationText(i + 1);
    livePatientId = patientIdField->text();
    updateWorklistButton();
    updatePatientIdField();
}

void MainWindow::showBrowsedInformation()
{
    const RecordingInformation information =
            RecordingInformation::read(StoragePaths::browserInformationPath(currentMoviePath));
    const std::array<QString, 5> texts { information.fileName, information.doctor, information.patient,
                                         information.hospital, information.comment };
    for (int i = 0; i < 5; ++i)
        setInformationText(i + 1, texts[i]);
    showArchivedPatientId();
}

void MainWindow::enableInformationFields(bool on)
{
    for (int i = 1; i < 6; ++i)
        informationFields[i]->setEnabled(on);
}

void MainWindow::stopMediaPlayer()
{
    mediaPlayerWidget->stop();
}

void MainWindow::selectionChanged(QModelIndex index)
{
    QStandardItem *item = storageModel->itemFromIndex(index);
    if (!item)
        return;
    const QString name = item->data(Qt::DisplayRole).toString();
    const QString path = item->data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo.absoluteFilePath();
    if (QFileInfo(name).suffix() == QLatin1String("jpg")) {
        stopMediaPlayer();
        imageViewWidget->setImage(path);
        stackedPlayers->setCurrentIndex(2);
        stashLiveInformation();
        for (int i = 1; i < 6; ++i)
            setInformationText(i, QString());
        showArchivedPatientId();
        informationEditButton->hide();
        informationRefreshButton->hide();
    } else {
        imageViewWidget->setImage(QString());
        mediaPlayerWidget->setUrl(QUrl::fromLocalFile(path));
        stackedPlayers->setCurrentIndex(3);
        currentMoviePath = path;
        stashLiveInformation();
        showBrowsedInformation();
        informationEditButton->show();
        informationEditButton->setChecked(false);
        informationRefreshButton->hide();
    }
    setupMediaUIState();
}

void MainWindow::toggleInformationEdit()
{
    if (informationEditButton->isChecked()) {
        showBrowsedInformation();
        enableInformationFields(true);
        informationRefreshButton->show();
    } else {
        const ObjectContext before = movieContext(currentMoviePath);
        panelInformation().write(StoragePaths::browserInformationPath(currentMoviePath));
        saveBrowsedPatientId(before);
        enableInformationFields(false);
        informationRefreshButton->hide();
    }
}

void MainWindow::rollbackInformation()
{
    showBrowsedInformation();
    enableInformationFields(false);
    informationEditButton->setChecked(false);
    informationRefreshButton->hide();
}
