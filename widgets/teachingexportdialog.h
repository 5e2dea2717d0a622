// The storage browser's Export: movies and snapshots copied to a folder (a
// stick) for teaching, without the patient. The copying runs on a thread of
// its own; the dialog shows how far it is and why it stopped.
#pragma once

#include <functional>

#include <QDialog>
#include <QThread>

#include "storage/teachingexport.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

class TeachingExportDialog final : public QDialog
{
    Q_OBJECT

public:
    using PrivateTexts = std::function<QStringList(const QString &path)>;
    // `files` in the order shown; `selected` is checked from the start.
    TeachingExportDialog(const QStringList &files, const QString &selected, PrivateTexts privateTexts,
                         QWidget *parent = nullptr);
    ~TeachingExportDialog() override;

    bool running() const { return busy; }

protected:
    void reject() override;

private:
    void chooseFolder();
    void start();
    void finish(int exportedCount, const QString &error);
    void setChecked(bool checked);

    PrivateTexts privateTexts;
    QListWidget *fileList = nullptr;
    QLineEdit *folderEdit = nullptr;
    QPushButton *folderButton = nullptr;
    QPushButton *allButton = nullptr;
    QPushButton *noneButton = nullptr;
    QPushButton *startButton = nullptr;
    QPushButton *closeButton = nullptr;
    QProgressBar *progress = nullptr;
    QLabel *status = nullptr;
    QThread thread;
    TeachingExport::Exporter *exporter = nullptr;
    bool busy = false;
};
