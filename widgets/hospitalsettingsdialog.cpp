#include "hospitalsettingsdialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QVariant>

#include "hospital/dicomnetwork.h"
#include "widgets/hospitaljobs.h"

HospitalSettingsDialog::HospitalSettingsDialog(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("HospitalSettingsDialog"));
    setWindowTitle(tr("Hospital Systems"));
    auto *layout = new QVBoxLayout(this);
    // Two columns: a dialog of five boxes in one would not fit a laptop.
    auto *columns = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    auto *right = new QVBoxLayout;
    columns->addLayout(left);
    columns->addLayout(right);
    layout->addLayout(columns);
    left->addWidget(nodeBox(QStringLiteral("Archive"), tr("Archive (PACS)"), tr("Archive AE title"), archiveFields,
                            HospitalSettings::node(HospitalSettings::Role::Archive)));
    left->addWidget(nodeBox(QStringLiteral("Worklist"), tr("Worklist"), tr("Worklist AE title"), worklistFields,
                            HospitalSettings::node(HospitalSettings::Role::Worklist)));
    right->addWidget(nodeBox(QStringLiteral("Steps"), tr("Performed procedure steps (MPPS)"), tr("MPPS AE title"),
                             stepFields, HospitalSettings::node(HospitalSettings::Role::PerformedSteps)));
    right->addWidget(spaceBox());
    left->addStretch();
    right->addStretch();
    automaticBox = new QCheckBox(tr("Send every movie and snapshot to the archive when it is finished"), this);
    automaticBox->setObjectName(QStringLiteral("HospitalSendAutomatically"));
    automaticBox->setChecked(HospitalSettings::sendAutomatically());
    layout->addWidget(automaticBox);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    testConnectionButton = buttons->addButton(tr("Test connection"), QDialogButtonBox::ActionRole);
    testConnectionButton->setObjectName(QStringLiteral("HospitalTestConnection"));
    connect(testConnectionButton, &QPushButton::clicked, this, &HospitalSettingsDialog::testConnection);
    connect(buttons, &QDialogButtonBox::accepted, this, &HospitalSettingsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &HospitalSettingsDialog::reject);
    layout->addWidget(buttons);
}

QWidget *HospitalSettingsDialog::nodeBox(const QString &name, const QString &title, const QString &calledLabel,
                                         NodeFields &fields, const DicomNode &node)
{
    auto *box = new QGroupBox(title, this);
    auto *form = new QFormLayout(box);
    fields.ownAeTitle = new QLineEdit(node.ownAeTitle, box);
    fields.calledAeTitle = new QLineEdit(node.calledAeTitle, box);
    fields.host = new QLineEdit(node.host, box);
    fields.port = new QSpinBox(box);
    fields.port->setRange(1, 65535);
    fields.port->setValue(node.port);
    for (QLineEdit *title : { fields.ownAeTitle, fields.calledAeTitle })
        title->setMaxLength(16);
    fields.host->setPlaceholderText(tr("name or address, e.g. pacs.hospital.local"));
    fields.result = new QLabel(box);
    const QString prefix = QStringLiteral("Hospital") + name;
    fields.ownAeTitle->setObjectName(prefix + QStringLiteral("OwnAeTitle"));
    fields.calledAeTitle->setObjectName(prefix + QStringLiteral("CalledAeTitle"));
    fields.host->setObjectName(prefix + QStringLiteral("Host"));
    fields.port->setObjectName(prefix + QStringLiteral("Port"));
    fields.result->setObjectName(prefix + QStringLiteral("TestResult"));
    fields.result->setWordWrap(true);
    form->addRow(tr("This station's AE title"), fields.ownAeTitle);
    form->addRow(calledLabel, fields.calledAeTitle);
    form->addRow(tr("Host"), fields.host);
    form->addRow(tr("Port"), fields.port);
    form->addRow(fields.result);
    return box;
}

QWidget *HospitalSettingsDialog::spaceBox()
{
    auto *box = new QGroupBox(tr("The archive's confirmation"), this);
    auto *form = new QFormLayout(box);
    commitmentPort = new QSpinBox(box);
    commitmentPort->setObjectName(QStringLiteral("HospitalCommitmentPort"));
    commitmentPort->setRange(0, 65535);
    commitmentPort->setSpecialValueText(tr("off"));
    commitmentPort->setValue(HospitalSettings::commitmentPort());
    commitmentPort->setToolTip(tr("The archive confirms that it keeps each file by calling this station back on "
                                  "this port (storage commitment). The archive must know this station's AE title, "
                                  "address and port."));
    form->addRow(tr("Port for the archive's answers"), commitmentPort);

    const HospitalSettings::SpaceRule rule = HospitalSettings::spaceRule();
    removeKeptBox = new QCheckBox(tr("Remove local copies the archive keeps, when room runs short"), box);
    removeKeptBox->setObjectName(QStringLiteral("HospitalRemoveKept"));
    removeKeptBox->setChecked(rule.enabled);
    removeKeptBox->setToolTip(tr("Only files the archive has confirmed it keeps are removed, oldest first, never the "
                                 "file being recorded. Their information files stay, and say where they went."));
    olderThanDays = new QSpinBox(box);
    olderThanDays->setObjectName(QStringLiteral("HospitalRemoveOlderThanDays"));
    olderThanDays->setRange(0, 3650);
    olderThanDays->setSuffix(tr(" days"));
    olderThanDays->setValue(rule.olderThanDays);
    freeBelowGigabytes = new QSpinBox(box);
    freeBelowGigabytes->setObjectName(QStringLiteral("HospitalRemoveBelowFree"));
    freeBelowGigabytes->setRange(1, 100000);
    freeBelowGigabytes->setSuffix(tr(" GB"));
    freeBelowGigabytes->setValue(int(qMax<qint64>(1, rule.freeBelowMegabytes / 1024)));
    for (QWidget *field : { static_cast<QWidget *>(olderThanDays), static_cast<QWidget *>(freeBelowGigabytes) })
        field->setEnabled(rule.enabled);
    connect(removeKeptBox, &QCheckBox::toggled, olderThanDays, &QWidget::setEnabled);
    connect(removeKeptBox, &QCheckBox::toggled, freeBelowGigabytes, &QWidget::setEnabled);
    form->addRow(removeKeptBox);
    form->addRow(tr("Older than"), olderThanDays);
    form->addRow(tr("When free room is below"), freeBelowGigabytes);
    return box;
}

const HospitalSettingsDialog::NodeFields &HospitalSettingsDialog::fieldsOf(HospitalSettings::Role role) const
{
    switch (role) {
    case HospitalSettings::Role::Archive:
        return archiveFields;
    case HospitalSettings::Role::Worklist:
        return worklistFields;
    default:
        return stepFields;
    }
}

DicomNode HospitalSettingsDialog::node(HospitalSettings::Role role) const
{
    const NodeFields &fields = fieldsOf(role);
    DicomNode node;
    node.ownAeTitle = fields.ownAeTitle->text().trimmed();
    node.calledAeTitle = fields.calledAeTitle->text().trimmed();
    node.host = fields.host->text().trimmed();
    node.port = fields.port->value();
    return node;
}

QLabel *HospitalSettingsDialog::testResult(HospitalSettings::Role role) const
{
    return fieldsOf(role).result;
}

QString HospitalSettingsDialog::incompleteField(const NodeFields &fields, const QString &what) const
{
    const bool anything = !fields.calledAeTitle->text().trimmed().isEmpty() || !fields.host->text().trimmed().isEmpty();
    if (!anything)
        return QString(); // not used: left empty on purpose
    if (!DicomNode::isValidAeTitle(fields.ownAeTitle->text())) {
        fields.ownAeTitle->setFocus();
        return tr("%1: this station's AE title must be 1 to 16 letters, digits or signs, without \"\\\".").arg(what);
    }
    if (!DicomNode::isValidAeTitle(fields.calledAeTitle->text())) {
        fields.calledAeTitle->setFocus();
        return tr("%1: the AE title must be 1 to 16 letters, digits or signs, without \"\\\".").arg(what);
    }
    if (fields.host->text().trimmed().isEmpty()) {
        fields.host->setFocus();
        return tr("%1: the host is missing.").arg(what);
    }
    return QString();
}

void HospitalSettingsDialog::accept()
{
    for (const auto &[fields, what] : { std::pair { &archiveFields, tr("Archive") }, std::pair { &worklistFields, tr("Worklist") },
                                        std::pair { &stepFields, tr("Performed procedure steps") } }) {
        const QString problem = incompleteField(*fields, what);
        if (!problem.isEmpty()) {
            QMessageBox::warning(this, windowTitle(), problem);
            return;
        }
    }
    HospitalSettings::setNode(HospitalSettings::Role::Archive, node(HospitalSettings::Role::Archive));
    HospitalSettings::setNode(HospitalSettings::Role::Worklist, node(HospitalSettings::Role::Worklist));
    HospitalSettings::setNode(HospitalSettings::Role::PerformedSteps, node(HospitalSettings::Role::PerformedSteps));
    HospitalSettings::setSendAutomatically(automaticBox->isChecked());
    HospitalSettings::setCommitmentPort(commitmentPort->value());
    HospitalSettings::SpaceRule rule = HospitalSettings::spaceRule();
    rule.enabled = removeKeptBox->isChecked();
    rule.olderThanDays = olderThanDays->value();
    // A threshold set in finer steps than the box shows stays as it was.
    if (rule.freeBelowMegabytes / 1024 != freeBelowGigabytes->value())
        rule.freeBelowMegabytes = qint64(freeBelowGigabytes->value()) * 1024;
    HospitalSettings::setSpaceRule(rule);
    QDialog::accept();
}

void HospitalSettingsDialog::testConnection()
{
    testConnectionButton->setEnabled(false);
    for (const HospitalSettings::Role role : { HospitalSettings::Role::Archive, HospitalSettings::Role::Worklist,
                                               HospitalSettings::Role::PerformedSteps }) {
        const DicomNode tested = node(role);
        QLabel *result = testResult(role);
        const QString what = role == HospitalSettings::Role::Archive    ? tr("The archive")
                           : role == HospitalSettings::Role::Worklist ? tr("The worklist")
                                                                      : tr("The MPPS system");
        if (tested.calledAeTitle.isEmpty() && tested.host.isEmpty()) {
            result->setText(tr("%1 is not set up.").arg(what));
            continue;
        }
        result->setText(tr("Asking %1…").arg(tested.display()));
        ++pendingTests;
        HospitalJobs::run(
            this, [tested] { return QVariant(DicomNetwork::echo(tested)); },
            [this, result, what, tested](const QVariant &answer) {
                const QString error = answer.toString();
                result->setText(error.isEmpty() ? tr("%1 answered (%2).").arg(what, tested.display())
                                                : tr("%1: %2").arg(what, error));
                result->setStyleSheet(error.isEmpty() ? QStringLiteral("color: #2e8b57;") : QStringLiteral("color: #c0392b;"));
                if (--pendingTests == 0)
                    testConnectionButton->setEnabled(true);
            });
    }
    if (pendingTests == 0)
        testConnectionButton->setEnabled(true);
}
