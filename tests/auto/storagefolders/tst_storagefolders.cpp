// First-run storage folders, the stored root, and the free-space figure.
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QSettings>
#include <QStandardPaths>

#include "app/settingskeys.h"
#include "app/storagefolders.h"
#include "mainwindow/mainwindow.h"
#include "storage/orvixstoragemodel.h"
#include "messageboxwatcher.h"
#include "orvixtest.h"
#include "storage/storagepaths.h"

class tst_StorageFolders : public QObject
{
    Q_OBJECT

public:
    explicit tst_StorageFolders(VirtualDevices &devices) : devices(devices) { }

private slots:
    void init()
    {
        QSettings().clear();
        QDir(devices.documents() + QStringLiteral("/Orvix")).removeRecursively();
    }

    // In start-up's order: the window is built before the folders exist; once
    // they do, the window shows the root as a later start would.
    void firstRunCreatesBothFoldersAndShowsTheirParent()
    {
        MainWindow window;
        auto *field = window.findChild<QLineEdit *>(QStringLiteral("StorageLocationEdit"));
        auto *model = qobject_cast<OrvixStorageModel *>(window.findChild<QListView *>(QStringLiteral("ThumbnailView"))->model());
        QCOMPARE(field->text(), QString());

        MessageBoxWatcher boxes;
        QVERIFY(StorageFolders::initialize());
        const QString base = StoragePaths::join(devices.documents(), QStringLiteral("Orvix"));
        QVERIFY(QFileInfo(StoragePaths::join(base, QStringLiteral("Movie"))).isDir());
        QVERIFY(QFileInfo(StoragePaths::join(base, QStringLiteral("Image"))).isDir());
        QCOMPARE(QSettings().value(SettingsKeys::storageLocation).toString(), base);
        QVERIFY(boxes.texts.isEmpty());

        window.showStoredStorageRoot();
        QCOMPARE(field->text(), base);
        QVERIFY(window.findChild<QLabel *>(QStringLiteral("StorageFreeSpaceLabel"))->text() != QStringLiteral("0%"));
        QCOMPARE(model->rootPath(), base);
        QFile movie(StoragePaths::join(base, QStringLiteral("Movie/first_260101_080000.mp4")));
        QVERIFY(movie.open(QIODevice::WriteOnly));
        movie.close();
        QTRY_VERIFY(model->itemForName(QStringLiteral("first_260101_080000.mp4")));
    }

    void storedKeyStopsEverything_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addRow("empty value") << QString();
        QTest::addRow("vanished folder is not recreated") << QStringLiteral("/nonexistent/orvix-storage");
    }

    void storedKeyStopsEverything()
    {
        QFETCH(QString, stored);
        QSettings().setValue(SettingsKeys::storageLocation, stored);
        QVERIFY(StorageFolders::initialize());
        QVERIFY(!QFileInfo::exists(devices.documents() + QStringLiteral("/Orvix")));
        if (!stored.isEmpty())
            QVERIFY(!QFileInfo::exists(stored));
        QCOMPARE(QSettings().value(SettingsKeys::storageLocation).toString(), stored);
    }

    void unwritableDocumentsTellTheUserOnce_data()
    {
        QTest::addColumn<QString>("blockedPart");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("movieFolderKept");
        QTest::addRow("movie folder") << QStringLiteral("Orvix") << QStringLiteral("Could not create default movie folder.") << false;
        QTest::addRow("image folder") << QStringLiteral("Orvix/Image") << QStringLiteral("Could not create default image folder.") << true;
    }

    void unwritableDocumentsTellTheUserOnce()
    {
        QFETCH(QString, blockedPart);
        QFETCH(QString, message);
        QFETCH(bool, movieFolderKept);
        // A plain file where a folder must go: mkpath fails even for root.
        const QString blocker = devices.documents() + QLatin1Char('/') + blockedPart;
        QDir().mkpath(QFileInfo(blocker).absolutePath());
        QFile file(blocker);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();

        MessageBoxWatcher boxes;
        QVERIFY(!StorageFolders::initialize());
        QCOMPARE(boxes.texts, QStringList { message });
        QCOMPARE(boxes.defaultButtons, QList<int> { QMessageBox::Ok });
        QVERIFY(!QSettings().contains(SettingsKeys::storageLocation));
        QCOMPARE(QFileInfo(devices.documents() + QStringLiteral("/Orvix/Movie")).isDir(), movieFolderKept);
        QFile::remove(blocker);
    }

    void freeSpacePercent_data()
    {
        QTest::addColumn<qint64>("available");
        QTest::addColumn<qint64>("total");
        QTest::addColumn<qint64>("percent");
        QTest::addRow("half") << qint64(50) << qint64(100) << qint64(50);
        QTest::addRow("truncated, not rounded") << qint64(2) << qint64(3) << qint64(66);
        QTest::addRow("full") << qint64(7) << qint64(7) << qint64(100);
        QTest::addRow("no total reported") << qint64(0) << qint64(0) << qint64(0);
        QTest::addRow("2 TB volume, no overflow") << (qint64(1) << 40) << (qint64(1) << 41) << qint64(50);
    }

    void freeSpacePercent()
    {
        QFETCH(qint64, available);
        QFETCH(qint64, total);
        QFETCH(qint64, percent);
        QCOMPARE(StorageFolders::freeSpacePercent(available, total), percent);
    }

    void freeSpaceTextOfFolders()
    {
        QCOMPARE(StorageFolders::freeSpaceText(QStringLiteral("/nonexistent/folder")), QStringLiteral("0%"));
        QCOMPARE(StorageFolders::freeSpaceText(QString()), QStringLiteral("0%"));
        // A real volume's figure is the rule above; that it is read at all:
        QVERIFY(StorageFolders::freeSpaceText(devices.home()) != QStringLiteral("0%"));
    }

private:
    VirtualDevices &devices;
};

ORVIX_TEST_MAIN(tst_StorageFolders)
#include "tst_storagefolders.moc"
