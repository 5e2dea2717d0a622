// Today's scheduled procedures for this station, from the hospital's
// worklist; the one chosen becomes the next recording's patient.
#pragma once

#include <QDialog>
#include <QList>

#include "hospital/dicomnetwork.h"

class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

class WorklistDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit WorklistDialog(const DicomNode &node, QWidget *parent = nullptr);

    // The entry chosen when the dialog was accepted.
    WorklistEntry chosen() const { return chosenEntry; }
    QTableWidget *table() const { return entryTable; }
    QLabel *status() const { return statusLabel; }
    bool isAsking() const { return asking; }

public slots:
    void search();
    void accept() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void updateChooseButton();
    void showAnswer(const QList<WorklistEntry> &found, const QString &error);

    DicomNode node;
    QLineEdit *nameFilter = nullptr;
    QPushButton *searchButton = nullptr;
    QPushButton *chooseButton = nullptr;
    QTableWidget *entryTable = nullptr;
    QLabel *statusLabel = nullptr;
    QList<WorklistEntry> entries;
    WorklistEntry chosenEntry;
    bool asking = false;
};

