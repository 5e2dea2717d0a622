// Answers the modal message boxes a test provokes and remembers their texts.
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTimer>

class MessageBoxWatcher : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxWatcher(QMessageBox::StandardButton answer = QMessageBox::Ok, QObject *parent = nullptr);

    QStringList texts;
    QList<int> defaultButtons;

private:
    void answerOpenBox();

    QMessageBox::StandardButton answer;
    QTimer poll;
};
