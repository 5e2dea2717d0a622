// First-run storage folders and the free-space figure of the storage root.
#include "storagefolders.h"

#include <QDir>
#include <QMessageBox>
#include <QCoreApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QStorageInfo>

#include "app/settingskeys.h"
#include "storage/storagepaths.h"

namespace StorageFolders {
namespace {
void tellUser(const QString &text)
{
    QMessageBox box(QMessageBox::NoIcon, QString(), text, QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.exec();
}
}

bool initialize()
{
    QSettings settings;
    // A stored location, even an empty one, means the user has been here:
    // nothing is checked or recreated.
    if (settings.contains(SettingsKeys::storageLocation))
        return true;

    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString base = StoragePaths::join(documents, QStringLiteral("Orvix"));
    const QString movie = StoragePaths::join(base, QStringLiteral("Movie"));
    const QString image = StoragePaths::join(base, QStringLiteral("Image"));

    if (!QDir().mkpath(movie)) {
        tellUser(QCoreApplication::translate("MainWindow", "Could not create default movie folder."));
        return false;
    }
    if (!QDir().mkpath(image)) {
        tellUser(QCoreApplication::translate("MainWindow", "Could not create default image folder."));
        return false;
    }
    settings.setValue(SettingsKeys::storageLocation, base);
    return true;
}

qint64 freeSpacePercent(qint64 bytesAvailable, qint64 bytesTotal)
{
    if (bytesTotal <= 0)
        return 0;
    return bytesAvailable * 100 / bytesTotal;
}

QString freeSpaceText(const QString &folder)
{
    const QStorageInfo volume(folder);
    const qint64 percent = volume.isValid() ? freeSpacePercent(volume.bytesAvailable(), volume.bytesTotal()) : 0;
    return QStringLiteral("%1%").arg(percent);
}

} // namespace StorageFolders
