// Configuration > Foot Switch: the pedals' keys, learned by pressing them.
#pragma once

#include <array>

#include <QDialog>
#include <QKeySequence>

#include "widgets/footswitch.h"

class QLabel;
class QPushButton;

class FootSwitchDialog final : public QDialog
{
    Q_OBJECT

public:
    // `taken`: keys that already do something in the window, with what.
    FootSwitchDialog(const std::array<QKeySequence, FootSwitch::pedalCount> &keys,
                     const QList<std::pair<QKeySequence, QString>> &taken, QWidget *parent = nullptr);

    std::array<QKeySequence, FootSwitch::pedalCount> keys() const { return learned; }
    // The pedal waiting for its key; -1 when none is.
    int learning() const { return learningPedal; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void learn(int pedal);
    void stopLearning();
    void show(int pedal);

    std::array<QKeySequence, FootSwitch::pedalCount> learned;
    QList<std::pair<QKeySequence, QString>> taken;
    std::array<QLabel *, FootSwitch::pedalCount> keyLabels {};
    std::array<QPushButton *, FootSwitch::pedalCount> learnButtons {};
    QLabel *hint = nullptr;
    int learningPedal = -1;
};
