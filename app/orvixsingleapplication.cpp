// One running copy per user login; later starts wake the running copy.
#include "orvixsingleapplication.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QThread>
#include <QWidget>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

#include "orvixlogging.h"

namespace {
const QByteArray acknowledgement = QByteArrayLiteral("ACK\n");

QString userKey()
{
#ifdef Q_OS_UNIX
    return QString::number(::getuid());
#else
    return qEnvironmentVariable("USERNAME");
#endif
}

// The folder that holds the socket and the lock: the user's private runtime
// folder on Unix, so that another user's copy is never even visible.
QString meetingFolder()
{
#ifdef Q_OS_UNIX
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return folder;
#else
    return QDir::tempPath();
#endif
}
}

QString OrvixSingleApplication::serverNameFor(const QString &id)
{
    const QByteArray key = (id + QLatin1Char('-') + userKey()).toUtf8();
    const QString name = QStringLiteral("orvix-")
            + QString::fromLatin1(QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex().left(16));
#ifdef Q_OS_UNIX
    return QDir(meetingFolder()).filePath(name);
#else
    return name;
#endif
}

OrvixSingleApplication::OrvixSingleApplication(const QString &id, int &argc, char **argv)
    : QApplication(argc, argv), serverName(serverNameFor(id))
{
    const QString lockName = QDir(meetingFolder()).filePath(QDir(serverName).dirName() + QStringLiteral(".lock"));
    lockFile = std::make_unique<QLockFile>(lockName);
    // A lock left by a copy that was killed is recognised by its dead process id.
    lockFile->setStaleLockTime(0);
    becomePrimary();
}

OrvixSingleApplication::~OrvixSingleApplication()
{
    releaseInstance();
}

bool OrvixSingleApplication::becomePrimary()
{
    if (!lockFile->tryLock(0))
        return false;
    primary = true;
    // Holding the lock, no other copy serves this name: a socket file left
    // behind by a killed copy is stale and may go.
    QLocalServer::removeServer(serverName);
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(serverName))
        qCWarning(lcApp) << "single instance: cannot listen on" << serverName << server->errorString();
    connect(server, &QLocalServer::newConnection, this, &OrvixSingleApplication::acceptConnection);
    return true;
}

void OrvixSingleApplication::releaseInstance()
{
    if (server) {
        server->close();
        delete server;
        server = nullptr;
    }
    if (primary) {
        lockFile->unlock();
        primary = false;
    }
}

bool OrvixSingleApplication::sendMessage(const QString &message, int timeoutMs)
{
    if (primary)
        return false;

    const QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        QLocalSocket socket;
        socket.connectToServer(serverName);
        if (socket.waitForConnected(int(qMax<qint64>(1, deadline.remainingTime())))) {
            socket.write(message.toUtf8() + '\n');
            if (!socket.waitForBytesWritten(int(qMax<qint64>(1, deadline.remainingTime()))))
                continue;
            QByteArray answer;
            while (!answer.contains('\n') && !deadline.hasExpired()) {
                if (!socket.waitForReadyRead(int(qMax<qint64>(1, deadline.remainingTime()))))
                    break;
                answer += socket.readAll();
            }
            if (answer == acknowledgement)
                return true;
        }
        // The running copy may have died since we lost the lock to it: then
        // this copy is the first one after all.
        if (becomePrimary())
            return false;
        QThread::msleep(50);
    }
    return false;
}

void OrvixSingleApplication::setActivationWindow(QWidget *window, bool activate)
{
    activationWindow = window;
    activateOnMessage = activate;
}

void OrvixSingleApplication::acceptConnection()
{
    while (QLocalSocket *socket = server->nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        auto readMessage = [this, socket] {
            if (!socket->canReadLine())
                return;
            const QString message = QString::fromUtf8(socket->readLine()).chopped(1);
            socket->write(acknowledgement);
            socket->flush();
            socket->disconnectFromServer();
            qCDebug(lcApp) << "single instance: message" << message;
            if (activateOnMessage)
                activateWindow();
            emit messageReceived(message);
        };
        connect(socket, &QLocalSocket::readyRead, this, readMessage);
        // The line may already have arrived before the connection was taken.
        readMessage();
    }
}

void OrvixSingleApplication::activateWindow()
{
    if (!activationWindow)
        return;
    if (activationWindow->isMinimized())
        activationWindow->setWindowState(activationWindow->windowState() & ~Qt::WindowMinimized);
    activationWindow->show();
    activationWindow->raise();
    activationWindow->activateWindow();
    qCDebug(lcApp) << "single instance: brought forward" << activationWindow->objectName();
}
