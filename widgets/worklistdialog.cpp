#include "worklistdialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QVariant>

#include "widgets/hospitaljobs.h"

namespace {
struct Answer
{
    QList<WorklistEntry> entries;
    QString error;
};
} // namespace
Q_DECLARE_METATYPE(Answer)

WorklistDialog::WorklistDialog(const DicomNode &node, QWidget *parent)
    : QDialog(parent), node(node)
{
    setObjectName(QStringLiteral("WorklistDialog"));
    setWindowTitle(tr("Worklist: today, %1").arg(node.ownAeTitle));
    resize(640, 360);
    auto *layout = new QVBoxLayout(this);

    auto *filterRow = new QHBoxLayout;
    nameFilter = new QLineEdit(this);
    nameFilter->setObjectName(QStringLiteral("WorklistNameFilter"));
    nameFilter->setAccessibleName(tr("Patient name begins with"));
    nameFilter->setPlaceholderText(tr("Patient name begins with… (optional)"));
    searchButton = new QPushButton(tr("Search"), this);
    searchButton->setObjectName(QStringLiteral("WorklistSearchButton"));
    filterRow->addWidget(nameFilter, 1);
    filterRow->addWidget(searchButton);
    layout->addLayout(filterRow);

    entryTable = new QTableWidget(0, 4, this);
    entryTable->setObjectName(QStringLiteral("WorklistTable"));
    entryTable->setAccessibleName(tr("Procedures scheduled today"));
    entryTable->setHorizontalHeaderLabels({ tr("Time"), tr("Patient"), tr("Patient ID"), tr("Procedure") });
    entryTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    entryTable->setSelectionMode(QAbstractItemView::SingleSelection);
    entryTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    entryTable->verticalHeader()->hide();
    entryTable->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(entryTable, 1);

    statusLabel = new QLabel(this);
    statusLabel->setObjectName(QStringLiteral("WorklistStatus"));
    statusLabel->setWordWrap(true);
    layout->addWidget(statusLabel);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    chooseButton = buttons->addButton(tr("Choose"), QDialogButtonBox::AcceptRole);
    chooseButton->setEnabled(false);
    layout->addWidget(buttons);

    connect(searchButton, &QPushButton::clicked, this, &WorklistDialog::search);
    connect(nameFilter, &QLineEdit::returnPressed, this, &WorklistDialog::search);
    connect(entryTable, &QTableWidget::itemSelectionChanged, this, &WorklistDialog::updateChooseButton);
    connect(entryTable, &QTableWidget::cellDoubleClicked, this, &WorklistDialog::accept);
    connect(buttons, &QDialogButtonBox::accepted, this, &WorklistDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &WorklistDialog::reject);
    search();
}

void WorklistDialog::search()
{
    if (asking)
        return;
    asking = true;
    searchButton->setEnabled(false);
    // The old answer is not what is being asked for: nothing of it can be
    // chosen while the new one is on its way.
    entries.clear();
    entryTable->setRowCount(0);
    updateChooseButton();
    statusLabel->setText(tr("Asking the worklist %1…").arg(node.display()));
    const WorklistQuery query { QDate::currentDate(), node.ownAeTitle, nameFilter->text() };
    const DicomNode asked = node;
    HospitalJobs::run(
        this,
        [asked, query] {
            Answer answer;
            answer.entries = DicomNetwork::findWorklist(asked, query, &answer.error);
            return QVariant::fromValue(answer);
        },
        [this](const QVariant &result) {
            const Answer answer = result.value<Answer>();
            showAnswer(answer.entries, answer.error);
        });
}

void WorklistDialog::showAnswer(const QList<WorklistEntry> &found, const QString &error)
{
    asking = false;
    searchButton->setEnabled(true);
    entries = found;
    entryTable->setRowCount(0);
    for (const WorklistEntry &entry : found) {
        const int row = entryTable->rowCount();
        entryTable->insertRow(row);
        const QStringList cells { entry.scheduledTime.isValid() ? entry.scheduledTime.toString(QStringLiteral("HH:mm")) : QString(),
                                  entry.readableName(), entry.patientId, entry.requestedProcedure };
        for (int column = 0; column < cells.size(); ++column)
            entryTable->setItem(row, column, new QTableWidgetItem(cells[column]));
    }
    entryTable->resizeColumnsToContents();
    if (!error.isEmpty() && found.isEmpty())
        statusLabel->setText(tr("The worklist could not be read. %1").arg(error));
    else if (!error.isEmpty())
        statusLabel->setText(error);
    else if (found.isEmpty())
        statusLabel->setText(tr("Nothing is scheduled for %1 today%2.")
                                 .arg(node.ownAeTitle,
                                      nameFilter->text().trimmed().isEmpty() ? QString()
                                                                             : tr(" for a patient named \"%1…\"").arg(nameFilter->text().trimmed())));
    else
        statusLabel->setText(found.size() == 1 ? tr("1 procedure is scheduled today. Choose it for the next recording.")
                                               : tr("%1 procedures are scheduled today. Choose one for the next recording.").arg(found.size()));
    if (!found.isEmpty())
        entryTable->selectRow(0);
}

void WorklistDialog::updateChooseButton()
{
    chooseButton->setEnabled(!asking && !entryTable->selectionModel()->selectedRows().isEmpty());
}

void WorklistDialog::keyPressEvent(QKeyEvent *event)
{
    // Return in the name filter asks the worklist; it must not also press
    // Choose, which would take a row of the answer before.
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && (nameFilter->hasFocus() || searchButton->hasFocus())) {
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void WorklistDialog::accept()
{
    const QModelIndexList selected = entryTable->selectionModel()->selectedRows();
    if (asking || selected.size() != 1)
        return;
    const int row = selected.first().row();
    if (row < 0 || row >= entries.size())
        return;
    chosenEntry = entries[row];
    QDialog::accept();
}
