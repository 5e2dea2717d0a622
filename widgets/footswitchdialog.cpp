#include "footswitchdialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
const QString pedalObjectNames[FootSwitch::pedalCount] = { QStringLiteral("Snapshot"), QStringLiteral("Record"),
                                                           QStringLiteral("Stop"), QStringLiteral("PauseResume") };
}

FootSwitchDialog::FootSwitchDialog(const std::array<QKeySequence, FootSwitch::pedalCount> &keys,
                                   const QList<std::pair<QKeySequence, QString>> &taken, QWidget *parent)
    : QDialog(parent), learned(keys), taken(taken)
{
    setObjectName(QStringLiteral("FootSwitchDialog"));
    setWindowTitle(tr("Foot Switch"));
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(tr("Press Learn, then the pedal. A pedal acts while Orvix is in front, "
                                "but not while you type into a field."));
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto *grid = new QGridLayout;
    for (int pedal = 0; pedal < FootSwitch::pedalCount; ++pedal) {
        grid->addWidget(new QLabel(FootSwitch::pedalName(FootSwitch::Pedal(pedal))), pedal, 0);
        keyLabels[pedal] = new QLabel;
        keyLabels[pedal]->setObjectName(QStringLiteral("FootSwitchKey") + pedalObjectNames[pedal]);
        keyLabels[pedal]->setMinimumWidth(keyLabels[pedal]->fontMetrics().horizontalAdvance(tr("Press the pedal now")) + 8);
        grid->addWidget(keyLabels[pedal], pedal, 1);
        learnButtons[pedal] = new QPushButton(tr("Learn"));
        learnButtons[pedal]->setObjectName(QStringLiteral("FootSwitchLearn") + pedalObjectNames[pedal]);
        learnButtons[pedal]->setAutoDefault(false);
        learnButtons[pedal]->setAccessibleName(tr("Learn: %1").arg(FootSwitch::pedalName(FootSwitch::Pedal(pedal))));
        connect(learnButtons[pedal], &QPushButton::clicked, this, [this, pedal] { learn(pedal); });
        grid->addWidget(learnButtons[pedal], pedal, 2);
        auto *clear = new QPushButton(tr("Clear"));
        clear->setObjectName(QStringLiteral("FootSwitchClear") + pedalObjectNames[pedal]);
        clear->setAutoDefault(false);
        clear->setAccessibleName(tr("Clear: %1").arg(FootSwitch::pedalName(FootSwitch::Pedal(pedal))));
        connect(clear, &QPushButton::clicked, this, [this, pedal] {
            stopLearning();
            learned[pedal] = QKeySequence();
            show(pedal);
        });
        grid->addWidget(clear, pedal, 3);
        show(pedal);
    }
    layout->addLayout(grid);
    hint = new QLabel;
    hint->setObjectName(QStringLiteral("FootSwitchHint"));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
}

void FootSwitchDialog::show(int pedal)
{
    keyLabels[pedal]->setText(learned[pedal].isEmpty() ? tr("none")
                                                       : learned[pedal].toString(QKeySequence::NativeText));
}

void FootSwitchDialog::learn(int pedal)
{
    stopLearning();
    learningPedal = pedal;
    keyLabels[pedal]->setText(tr("Press the pedal now"));
    hint->setText(tr("Escape leaves the pedal as it was."));
    // Every key comes here, whichever button has the focus.
    grabKeyboard();
}

void FootSwitchDialog::stopLearning()
{
    if (learningPedal < 0)
        return;
    releaseKeyboard();
    const int pedal = std::exchange(learningPedal, -1);
    show(pedal);
}

void FootSwitchDialog::keyPressEvent(QKeyEvent *event)
{
    if (learningPedal < 0) {
        QDialog::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        stopLearning();
        hint->clear();
        return;
    }
    const QKeySequence key = FootSwitch::keyOf(event);
    if (key.isEmpty() || event->isAutoRepeat())
        return;
    for (const auto &[used, what] : std::as_const(taken)) {
        if (used == key) {
            hint->setText(tr("%1 already does \"%2\"; press another pedal, or Escape.")
                                  .arg(key.toString(QKeySequence::NativeText), what));
            return;
        }
    }
    // One key, one pedal: a key learned again leaves its old pedal.
    for (int other = 0; other < FootSwitch::pedalCount; ++other) {
        if (other != learningPedal && learned[other] == key) {
            learned[other] = QKeySequence();
            show(other);
        }
    }
    learned[learningPedal] = key;
    hint->clear();
    stopLearning();
}
