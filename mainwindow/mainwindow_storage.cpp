// MainWindow: the storage root, its folders and the removal of files.
#include "mainwindow.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QSettings>
#include <QStackedWidget>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QUrl>

#include "app/orvixlogging.h"
#include "app/settingskeys.h"
#include "app/storagefolders.h"
#include "hospital/archivequeue.h"
#include "hospital/spacekeeper.h"
#include "storage/orvixstoragemodel.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"
#include "storage/teachingexport.h"
#include "widgets/teachingexportdialog.h"

namespace {
void openFolder(const char *caller, const QString &name)
{
    const QString folder = QSettings().value(SettingsKeys::storageLocation, QString()).toString()
            + QLatin1Char('/') + name;
    const QStringList arguments { QStringLiteral("/e,"), QDir::toNativeSeparators(folder) };
    qDebug() << caller << arguments;
    QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
}

void tell(const QString &text)
{
    QMessageBox box(QMessageBox::NoIcon, QString(), text, QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.exec();
}
}

void MainWindow::setStorageBrowserRoot(const QString &root)
{
    storageModel->setRootPath(root);
}

void MainWindow::showStoredStorageRoot()
{
    const QString location = storageRoot();
    storageLocationEdit->setText(location);
    storageFreeSpaceLabel->setText(StorageFolders::freeSpaceText(location));
    setStorageBrowserRoot(location);
}

QString MainWindow::selectedFilePath() const
{
    const QModelIndex index = thumbnailView->currentIndex();
    return index.isValid()
            ? index.data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo.absoluteFilePath()
            : QString();
}

void MainWindow::removeSelectedFile()
{
    stackedPlayers->setCurrentIndex(1);
    const QString path = selectedFilePath();
    if (path.isEmpty())
        return;

    QMessageBox question(QMessageBox::NoIcon, QString(), tr("Do you want to delete\n") + path,
                         QMessageBox::Yes | QMessageBox::No);
    question.setDefaultButton(QMessageBox::Yes);
    if (question.exec() == QMessageBox::No)
        return;

    // A movie playing or shown holds its file open.
    stopMediaPlayer();
    // A deleted file is never sent, also when its copy for the archive was
    // made before.
    archiveQueue->withdraw(path);
    archiveQueue->forgetPicture(path);
    QFile::remove(StoragePaths::recordingInformationPath(path));
    QFile::remove(path);
    // The list may have been made again while the question was open (a file
    // deleted or added meanwhile): the item is looked up anew.
    storageModel->removeFileItem(path);
}

void MainWindow::showTeachingExport()
{
    if (teachingExportDialog) {
        teachingExportDialog->raise();
        teachingExportDialog->activateWindow();
        return;
    }
    // The files of the storage folder, oldest first; a movie still being
    // written is not whole yet.
    const QString root = storageRoot();
    QList<std::pair<QDateTime, QString>> found;
    for (const QString &folder : { QStringLiteral("Movie"), QStringLiteral("Image") }) {
        const QDir dir(StoragePaths::join(root, folder));
        for (const QFileInfo &file : dir.entryInfoList(QDir::Files)) {
            const QString path = file.absoluteFilePath();
            if ((TeachingExport::isMovie(path) || TeachingExport::isPicture(path)) && path != recordingMoviePath
                && path != finishingMoviePath)
                found.append({ file.lastModified(), path });
        }
    }
    std::sort(found.begin(), found.end());
    QStringList files;
    for (const auto &[time, path] : std::as_const(found))
        files.append(path);
    const QString selected = selectedFilePath();

    // What names the case, from both information files and from what the
    // archive's queue knows of the file, also for a snapshot.
    const auto privateTexts = [queue = QPointer<ArchiveQueue>(archiveQueue)](const QString &path) {
        QStringList texts;
        if (TeachingExport::isMovie(path)) {
            const QString typed = StoragePaths::recordingInformationPath(path);
            texts += RecordingInformation::read(typed).identifyingTexts();
            texts += RecordingInformation::read(path + QStringLiteral(".ini")).identifyingTexts();
            texts += CaseInformation::read(typed).identifyingTexts();
        }
        ObjectContext context;
        if (queue && (queue->context(path, &context) || queue->knownPicture(path, &context))) {
            texts += context.study.identifyingTexts();
            texts += RecordingInformation { {}, context.doctor, context.patientName, context.hospital, {} }
                             .identifyingTexts();
        }
        texts.removeDuplicates();
        return texts;
    };
    teachingExportDialog = new TeachingExportDialog(files, selected, privateTexts, this);
    teachingExportDialog->setAttribute(Qt::WA_DeleteOnClose);
    // Not modal: a long export must not keep anyone from recording.
    teachingExportDialog->show();
}

void MainWindow::updateStorageRoot()
{
    const QString chosen = QFileDialog::getExistingDirectory(
            this, tr("Select Directory"), QStandardPaths::writableLocation(QStandardPaths::HomeLocation),
            QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (chosen.isEmpty())
        return;
    if (!QDir().mkpath(StoragePaths::join(chosen, QStringLiteral("Movie")))) {
        tell(tr("Could not create default movie folder."));
        return;
    }
    if (!QDir().mkpath(StoragePaths::join(chosen, QStringLiteral("Image")))) {
        tell(tr("Could not create default image folder."));
        return;
    }
    QString root = chosen + QLatin1Char('/');
    root.replace(QStringLiteral("//"), QStringLiteral("/"));
    QSettings().setValue(SettingsKeys::storageLocation, root);
    storageLocationEdit->setText(root);
    storageModel->setRootPath(root);
}

void MainWindow::openMoviesFolder()
{
    openFolder("MainWindow::openMoviesFolder", QStringLiteral("Movie"));
}

void MainWindow::openImagesFolder()
{
    openFolder("MainWindow::openImagesFolder", QStringLiteral("Image"));
}

void MainWindow::relieveDisk()
{
    const HospitalSettings::SpaceRule rule = HospitalSettings::spaceRule();
    const QString root = storageRoot();
    if (!rule.enabled || root.isEmpty())
        return;
    const QStorageInfo volume(root);
    QList<SpaceKeeper::Copy> kept;
    // Movies share a few folders: each one's disk is looked up once.
    QHash<QString, bool> onThisDisk;
    for (const QString &file : archiveQueue->keptFiles()) {
        // Movies only: a snapshot is small, and has no information file
        // to say where it went.
        if (DicomObjects::kindOf(file) != DicomObjects::Kind::Movie)
            continue;
        const QFileInfo info(file);
        const QString folder = info.absolutePath();
        auto same = onThisDisk.find(folder);
        if (same == onThisDisk.end())
            same = onThisDisk.insert(folder, QStorageInfo(folder).rootPath() == volume.rootPath());
        if (*same && info.exists())
            kept.append({ info.absoluteFilePath(), info.size(), info.lastModified() });
    }
    QStringList untouchable;
    for (const QString &file : { recordingMoviePath, finishingMoviePath, lastMovieFile, currentMoviePath }) {
        if (!file.isEmpty())
            untouchable.append(QFileInfo(file).absoluteFilePath());
    }
    const QStringList chosen =
            SpaceKeeper::choose(kept, volume.bytesAvailable(), rule, QDateTime::currentDateTime(), untouchable);
    if (chosen.isEmpty())
        return;
    const QString archive = HospitalSettings::node(HospitalSettings::Role::Archive).display();
    QStringList removed;
    for (const QString &file : chosen) {
        if (isBeingRecorded(file) || !QFile::remove(file)) {
            qCWarning(lcHospital) << "a kept movie could not be removed to make room:" << file;
            continue;
        }
        SpaceKeeper::recordRemoval(StoragePaths::recordingInformationPath(file), archive, QDateTime::currentDateTime());
        archiveQueue->forgetKept(file);
        removed.append(QFileInfo(file).fileName());
        qCInfo(lcHospital) << "removed to make room, kept by the archive:" << file;
    }
    if (removed.isEmpty())
        return;
    showArchiveProblem(tr("The disk of %1 was running short of room. These movies, which the archive %2 has "
                          "confirmed it keeps, were removed from this computer:\n\n%3\n\nTheir information files "
                          "stay beside where they were and say so.")
                               .arg(QDir::toNativeSeparators(root), archive, removed.join(QLatin1Char('\n'))));
}
