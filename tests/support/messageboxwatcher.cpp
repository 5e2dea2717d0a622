// Answers the modal message boxes a test provokes and remembers their texts.
#include "messageboxwatcher.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>

MessageBoxWatcher::MessageBoxWatcher(QMessageBox::StandardButton answer, QObject *parent)
    : QObject(parent), answer(answer)
{
    connect(&poll, &QTimer::timeout, this, &MessageBoxWatcher::answerOpenBox);
    poll.start(20);
}

void MessageBoxWatcher::answerOpenBox()
{
    auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    if (!box || !box->isVisible())
        return;
    texts << box->text();
    defaultButtons << (box->defaultButton() ? int(box->standardButton(box->defaultButton())) : 0);
    if (QAbstractButton *button = box->button(answer))
        button->click();
    else
        box->reject();
}
