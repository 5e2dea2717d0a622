#include "footswitch.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSettings>
#include <QTextEdit>

#include "app/settingskeys.h"

namespace {
const std::array<const char *, FootSwitch::pedalCount> settingNames { "snapshot", "record", "stop", "pauseResume" };

QString settingKey(int pedal)
{
    return SettingsKeys::footSwitchGroup + QLatin1Char('/') + QLatin1String(settingNames[std::size_t(pedal)]);
}
}

FootSwitch::FootSwitch(QWidget *window)
    : QObject(window), window(window)
{
    const QSettings settings;
    for (int pedal = 0; pedal < pedalCount; ++pedal)
        keys[std::size_t(pedal)] = QKeySequence::fromString(settings.value(settingKey(pedal)).toString(),
                                                             QKeySequence::PortableText);
    qApp->installEventFilter(this);
}

FootSwitch::~FootSwitch()
{
    qApp->removeEventFilter(this);
}

void FootSwitch::setKeys(const std::array<QKeySequence, pedalCount> &learned)
{
    keys = learned;
    QSettings settings;
    for (int pedal = 0; pedal < pedalCount; ++pedal)
        settings.setValue(settingKey(pedal), keys[std::size_t(pedal)].toString(QKeySequence::PortableText));
}

QString FootSwitch::pedalName(Pedal pedal)
{
    switch (pedal) {
    case Pedal::Snapshot: return tr("Snapshot");
    case Pedal::Record: return tr("Record");
    case Pedal::Stop: return tr("Stop");
    case Pedal::PauseResume: return tr("Pause / Resume");
    }
    return {};
}

bool FootSwitch::takesText(const QWidget *widget)
{
    if (!widget)
        return false;
    if (const auto *line = qobject_cast<const QLineEdit *>(widget))
        return !line->isReadOnly();
    if (const auto *text = qobject_cast<const QTextEdit *>(widget))
        return !text->isReadOnly();
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(widget))
        return !plain->isReadOnly();
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        return combo->isEditable();
    return qobject_cast<const QAbstractSpinBox *>(widget) != nullptr;
}

QKeySequence FootSwitch::keyOf(const QKeyEvent *event)
{
    const int key = event->key();
    if (key == 0 || key == Qt::Key_unknown || key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt
        || key == Qt::Key_Meta || key == Qt::Key_AltGr || key == Qt::Key_CapsLock || key == Qt::Key_NumLock)
        return {};
    // A keypad's key is the same pedal whatever the keypad modifier says.
    return QKeySequence(QKeyCombination(event->modifiers() & ~Qt::KeypadModifier, Qt::Key(key)));
}

bool FootSwitch::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
        return false;
    // Once per press: where Qt delivers it first, the focus widget or the
    // window itself.
    QWidget *focus = QApplication::focusWidget();
    if (!window || !window->isActiveWindow() || watched != (focus ? static_cast<QObject *>(focus) : window.data()))
        return false;
    if (focus && (focus->window() != window || takesText(focus)))
        return false;
    const auto *press = static_cast<QKeyEvent *>(event);
    const QKeySequence pressedKey = keyOf(press);
    if (pressedKey.isEmpty())
        return false;
    for (int pedal = 0; pedal < pedalCount; ++pedal) {
        if (keys[std::size_t(pedal)] != pressedKey)
            continue;
        // The pedal's key is not a shortcut of anything else here.
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept();
            return false;
        }
        // A pedal held down repeats its key: one press is one action.
        if (!press->isAutoRepeat())
            emit pressed(Pedal(pedal));
        return true;
    }
    return false;
}
