// One running copy per user login; later starts wake the running copy.
#pragma once

#include <memory>

#include <QApplication>
#include <QPointer>
#include <QString>

class QLocalServer;
class QLockFile;
class QWidget;

class OrvixSingleApplication final : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixSingleApplication)

public:
    OrvixSingleApplication(const QString &id, int &argc, char **argv);
    ~OrvixSingleApplication() override;

    // True when a running copy received the message within the time-out.
    // The first copy has nobody to tell and returns false at once.
    bool sendMessage(const QString &message, int timeoutMs);
    void setActivationWindow(QWidget *window, bool activateOnMessage = true);

    bool isPrimary() const { return primary; }
    // Stops answering later starts; called on the way out so that a start
    // during shutdown becomes a new first copy instead of waking this one.
    void releaseInstance();

    // Where the copies of this user meet, derived from the id and the user.
    static QString serverNameFor(const QString &id);

signals:
    void messageReceived(const QString &message);

private:
    bool becomePrimary();
    void acceptConnection();
    void activateWindow();

    QString serverName;
    std::unique_ptr<QLockFile> lockFile;
    QLocalServer *server = nullptr;
    QPointer<QWidget> activationWindow;
    bool activateOnMessage = false;
    bool primary = false;
};
