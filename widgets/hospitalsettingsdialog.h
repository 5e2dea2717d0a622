// The archive, the worklist and the system that hears of performed steps:
// where they are, how this station calls itself, whether finished movies
// and snapshots go to the archive by themselves, where the archive's
// commitment reports come to, and whether local copies it keeps may be
// removed to make room; "Test connection" asks each whether it answers.
#pragma once

#include <QDialog>

#include "hospital/dicomnode.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

class HospitalSettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit HospitalSettingsDialog(QWidget *parent = nullptr);

    DicomNode node(HospitalSettings::Role role) const;
    // The line that says how the last test of the node went.
    QLabel *testResult(HospitalSettings::Role role) const;
    QPushButton *testButton() const { return testConnectionButton; }

public slots:
    void accept() override;
    void testConnection();

private:
    struct NodeFields
    {
        QLineEdit *ownAeTitle = nullptr;
        QLineEdit *calledAeTitle = nullptr;
        QLineEdit *host = nullptr;
        QSpinBox *port = nullptr;
        QLabel *result = nullptr;
    };
    QWidget *spaceBox();
    QWidget *nodeBox(const QString &name, const QString &title, const QString &calledLabel, NodeFields &fields,
                     const DicomNode &node);
    const NodeFields &fieldsOf(HospitalSettings::Role role) const;
    // A field that cannot be used is named; the first one gets the focus.
    QString incompleteField(const NodeFields &fields, const QString &what) const;

    NodeFields archiveFields;
    NodeFields worklistFields;
    NodeFields stepFields;
    QCheckBox *automaticBox = nullptr;
    QSpinBox *commitmentPort = nullptr;
    QCheckBox *removeKeptBox = nullptr;
    QSpinBox *olderThanDays = nullptr;
    QSpinBox *freeBelowGigabytes = nullptr;
    QPushButton *testConnectionButton = nullptr;
    int pendingTests = 0;
};
