#include "widgets/teachingexportdialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QLoggingCategory>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "app/settingskeys.h"
#include "tasks/threadpriority.h"

Q_LOGGING_CATEGORY(lcExport, "orvix.export")

TeachingExportDialog::TeachingExportDialog(const QStringList &files, const QString &selected,
                                           PrivateTexts privateTexts, QWidget *parent)
    : QDialog(parent), privateTexts(std::move(privateTexts))
{
    setObjectName(QStringLiteral("TeachingExportDialog"));
    setWindowTitle(tr("Export for Teaching"));
    auto *layout = new QVBoxLayout(this);

    auto *about = new QLabel(tr("The copies carry no patient: they are named by the day and a number, leave the "
                                "information files behind, and the names are taken out of the movies and "
                                "pictures. Picture and sound stay as recorded; the originals are not changed."),
                             this);
    about->setWordWrap(true);
    layout->addWidget(about);

    fileList = new QListWidget(this);
    fileList->setObjectName(QStringLiteral("ExportFileList"));
    fileList->setAccessibleName(tr("Movies and snapshots to export"));
    for (const QString &path : files) {
        auto *item = new QListWidgetItem(QFileInfo(path).fileName(), fileList);
        item->setData(Qt::UserRole, path);
        item->setToolTip(QDir::toNativeSeparators(path));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(path == selected ? Qt::Checked : Qt::Unchecked);
        if (path == selected)
            fileList->setCurrentItem(item);
    }
    fileList->setMinimumSize(420, 220);
    layout->addWidget(fileList);

    auto *choices = new QHBoxLayout;
    allButton = new QPushButton(tr("All"), this);
    allButton->setObjectName(QStringLiteral("ExportAllButton"));
    noneButton = new QPushButton(tr("None"), this);
    noneButton->setObjectName(QStringLiteral("ExportNoneButton"));
    connect(allButton, &QPushButton::clicked, this, [this] { setChecked(true); });
    connect(noneButton, &QPushButton::clicked, this, [this] { setChecked(false); });
    choices->addWidget(allButton);
    choices->addWidget(noneButton);
    choices->addStretch();
    layout->addLayout(choices);

    auto *folderRow = new QHBoxLayout;
    auto *folderLabel = new QLabel(tr("Folder:"), this);
    folderEdit = new QLineEdit(QSettings().value(SettingsKeys::teachingExportFolder).toString(), this);
    folderEdit->setObjectName(QStringLiteral("ExportFolderEdit"));
    folderLabel->setBuddy(folderEdit);
    folderButton = new QPushButton(tr("Choose..."), this);
    folderButton->setObjectName(QStringLiteral("ExportFolderButton"));
    connect(folderButton, &QPushButton::clicked, this, &TeachingExportDialog::chooseFolder);
    folderRow->addWidget(folderLabel);
    folderRow->addWidget(folderEdit, 1);
    folderRow->addWidget(folderButton);
    layout->addLayout(folderRow);

    progress = new QProgressBar(this);
    progress->setObjectName(QStringLiteral("ExportProgressBar"));
    progress->setRange(0, 1000);
    progress->hide();
    layout->addWidget(progress);
    status = new QLabel(this);
    status->setObjectName(QStringLiteral("ExportStatusLabel"));
    status->setWordWrap(true);
    status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(status);

    auto *buttons = new QDialogButtonBox(this);
    startButton = buttons->addButton(tr("Export"), QDialogButtonBox::ActionRole);
    startButton->setObjectName(QStringLiteral("ExportStartButton"));
    startButton->setDefault(true);
    closeButton = buttons->addButton(QDialogButtonBox::Close);
    closeButton->setObjectName(QStringLiteral("ExportCloseButton"));
    connect(startButton, &QPushButton::clicked, this, &TeachingExportDialog::start);
    connect(closeButton, &QPushButton::clicked, this, &TeachingExportDialog::reject);
    layout->addWidget(buttons);

    exporter = new TeachingExport::Exporter;
    exporter->moveToThread(&thread);
    connect(&thread, &QThread::finished, exporter, &QObject::deleteLater);
    connect(exporter, &TeachingExport::Exporter::progressed, this, [this](qint64 done, qint64 total, const QString &source) {
        progress->setValue(total > 0 ? int(done * 1000 / total) : 0);
        progress->setFormat(tr("%1: %p%").arg(QFileInfo(source).fileName()));
    });
    connect(exporter, &TeachingExport::Exporter::exported, this, [](const QString &source, const QString &target) {
        qCInfo(lcExport) << "exported" << source << "as" << target;
    });
    connect(exporter, &TeachingExport::Exporter::finished, this, &TeachingExportDialog::finish);
    thread.setObjectName(QStringLiteral("export"));
    thread.start();
    // Gigabytes read, searched and written must not hold up a recording on
    // two cores: the export's thread goes behind it, for the CPU and the disk.
    QMetaObject::invokeMethod(exporter, [] {
        lowerCurrentThread();
        lowerCurrentThreadDiskPriority();
    }, Qt::QueuedConnection);
}

TeachingExportDialog::~TeachingExportDialog()
{
    exporter->cancel();
    thread.quit();
    thread.wait();
}

void TeachingExportDialog::reject()
{
    // Close while copying is Cancel: the half-written copy goes.
    if (busy) {
        exporter->cancel();
        return;
    }
    QDialog::reject();
}

void TeachingExportDialog::setChecked(bool checked)
{
    for (int row = 0; row < fileList->count(); ++row)
        fileList->item(row)->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

void TeachingExportDialog::chooseFolder()
{
    const QString start = folderEdit->text().isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::HomeLocation)
                                                       : folderEdit->text();
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Export to"), start);
    if (!chosen.isEmpty())
        folderEdit->setText(QDir::toNativeSeparators(chosen));
}

void TeachingExportDialog::start()
{
    QList<TeachingExport::Item> items;
    QStringList texts;
    for (int row = 0; row < fileList->count(); ++row) {
        const QListWidgetItem *item = fileList->item(row);
        if (item->checkState() == Qt::Checked) {
            const QString path = item->data(Qt::UserRole).toString();
            items.append({ path, {} });
            if (privateTexts)
                texts += privateTexts(path);
        }
    }
    // Every file is searched for what names any of them: a file copied in
    // has no information of its own, but is often of the same case.
    texts.removeDuplicates();
    for (TeachingExport::Item &item : items)
        item.privateTexts = texts;
    const QString folder = QDir::fromNativeSeparators(folderEdit->text().trimmed());
    status->setStyleSheet(QString());
    if (items.isEmpty()) {
        status->setText(tr("Check the movies and snapshots to export first."));
        return;
    }
    if (folder.isEmpty()) {
        status->setText(tr("Choose the folder to export to first."));
        folderEdit->setFocus();
        return;
    }
    QSettings().setValue(SettingsKeys::teachingExportFolder, folderEdit->text().trimmed());
    busy = true;
    for (QWidget *widget : std::initializer_list<QWidget *> { fileList, folderEdit, folderButton, allButton,
                                                              noneButton, startButton })
        widget->setEnabled(false);
    closeButton->setText(tr("Cancel"));
    progress->setValue(0);
    progress->setFormat(tr("%p%"));
    progress->show();
    status->setText(tr("Exporting %n file(s)...", nullptr, int(items.size())));
    QMetaObject::invokeMethod(exporter, [exporter = exporter, items, folder] { exporter->run(items, folder); },
                              Qt::QueuedConnection);
}

void TeachingExportDialog::finish(int exportedCount, const QString &error)
{
    busy = false;
    for (QWidget *widget : std::initializer_list<QWidget *> { fileList, folderEdit, folderButton, allButton,
                                                              noneButton, startButton })
        widget->setEnabled(true);
    closeButton->setText(tr("Close"));
    progress->hide();
    const QString folder = folderEdit->text().trimmed();
    if (error.isEmpty()) {
        status->setStyleSheet(QString());
        status->setText(tr("%n file(s) exported to %1.", nullptr, exportedCount).arg(folder));
        qCInfo(lcExport) << exportedCount << "files exported to" << folder;
        return;
    }
    status->setStyleSheet(QStringLiteral("color: rgb(200, 30, 30);"));
    QString text = error;
    if (exportedCount > 0)
        text += QLatin1Char(' ') + tr("%n file(s) had been exported before.", nullptr, exportedCount);
    status->setText(text);
    qCInfo(lcExport) << "export stopped:" << text;
}
