// The foot switch. Most USB pedals type a key; the keys learned for the
// pedals act on the window while it is in front, and never while the user
// types into a text field: there a pedal's key types as any other.
#pragma once

#include <array>

#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QWidget>

class FootSwitch final : public QObject
{
    Q_OBJECT

public:
    enum class Pedal { Snapshot, Record, Stop, PauseResume };
    static constexpr int pedalCount = 4;

    // Watches the keys that reach `window`; the keys come from the settings.
    explicit FootSwitch(QWidget *window);
    ~FootSwitch() override;

    QKeySequence key(Pedal pedal) const { return keys[std::size_t(pedal)]; }
    // Stores the keys in the settings and uses them from now on.
    void setKeys(const std::array<QKeySequence, pedalCount> &learned);
    std::array<QKeySequence, pedalCount> allKeys() const { return keys; }

    static QString pedalName(Pedal pedal);
    // Fields that take typed text: a pedal's key is theirs there.
    static bool takesText(const QWidget *widget);
    // The key of a key press, as it is stored; empty for a lone modifier.
    static QKeySequence keyOf(const QKeyEvent *event);

signals:
    void pressed(FootSwitch::Pedal pedal);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> window;
    std::array<QKeySequence, pedalCount> keys;
};
