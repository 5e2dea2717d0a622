#include "logfile.h"

#include <atomic>
#include <cstring>
#include <mutex>

#include <QByteArray>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QThread>

#ifdef Q_OS_UNIX
#include <csignal>
#include <pthread.h>
#include <unistd.h>
#endif

namespace {
struct State
{
    std::mutex lock;
    QFile file;
    LogFile::Limits limits;
    QtMessageHandler qtHandler = nullptr;
    QLoggingCategory::CategoryFilter qtFilter = nullptr;
    bool rulesGiven = false;
    // What the user's rules let through to the terminal, by category.
    std::mutex levelsLock;
    QHash<QByteArray, QList<bool>> terminalLevels;
};

State &state()
{
    static State instance;
    return instance;
}

std::atomic<bool> installed { false };
// For the crash handler, which may not take a lock.
std::atomic<int> crashDescriptor { -1 };

// The program's own categories are logged in full, whatever the rules say.
bool ownCategory(const char *name)
{
    return std::strncmp(name, "orvix.", 6) == 0 || std::strcmp(name, "default") == 0;
}

void filter(QLoggingCategory *category)
{
    State &s = state();
    if (s.qtFilter)
        s.qtFilter(category);
    {
        const std::lock_guard<std::mutex> locked(s.levelsLock);
        s.terminalLevels.insert(QByteArray(category->categoryName()),
                                { category->isDebugEnabled(), category->isInfoEnabled(), category->isWarningEnabled(),
                                  category->isCriticalEnabled() });
    }
    if (ownCategory(category->categoryName())) {
        category->setEnabled(QtDebugMsg, true);
        category->setEnabled(QtInfoMsg, true);
    }
}

int levelIndex(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg: return 0;
    case QtInfoMsg: return 1;
    case QtWarningMsg: return 2;
    default: return 3;
    }
}

char levelLetter(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg: return 'D';
    case QtInfoMsg: return 'I';
    case QtWarningMsg: return 'W';
    case QtCriticalMsg: return 'C';
    default: return 'F';
    }
}

QByteArray threadName()
{
    const QString qtName = QThread::currentThread()->objectName();
    if (!qtName.isEmpty())
        return qtName.toUtf8();
#ifdef Q_OS_UNIX
    char name[32] = {};
    if (pthread_getname_np(pthread_self(), name, sizeof name) == 0 && name[0])
        return QByteArray(name);
#endif
    return QByteArray::number(quintptr(QThread::currentThreadId()), 16);
}

// The terminal gets what the user's rules ask for; without rules, warnings
// and worse, but not the connections the window makes by text on purpose
// that Qt cannot find (those stay in the file).
bool forTerminal(State &s, QtMsgType type, const char *category)
{
    if (s.rulesGiven) {
        QList<bool> levels;
        {
            const std::lock_guard<std::mutex> locked(s.levelsLock);
            levels = s.terminalLevels.value(QByteArray(category));
        }
        return levels.isEmpty() || levels.at(levelIndex(type));
    }
    return type != QtDebugMsg && type != QtInfoMsg && std::strcmp(category, "qt.core.qobject.connect") != 0;
}

QString oldFile(int number)
{
    return LogFile::path() + QLatin1Char('.') + QString::number(number);
}

// Called with the lock held.
void rotate(State &s)
{
    s.file.close();
    QFile::remove(oldFile(s.limits.oldFiles));
    for (int number = s.limits.oldFiles - 1; number >= 1; --number)
        QFile::rename(oldFile(number), oldFile(number + 1));
    if (s.limits.oldFiles > 0)
        QFile::rename(LogFile::path(), oldFile(1));
    else
        QFile::remove(LogFile::path());
    s.file.setFileName(LogFile::path());
    s.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
    crashDescriptor = s.file.isOpen() ? s.file.handle() : -1;
}

void handler(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    State &s = state();
    const char *category = context.category ? context.category : "default";
    const QByteArray line = QDateTime::currentDateTime().toString(Qt::ISODateWithMs).toUtf8() + ' ' + levelLetter(type)
            + " [" + threadName() + "] " + category + ": " + message.toUtf8() + '\n';
    {
        const std::lock_guard<std::mutex> locked(s.lock);
        if (s.file.isOpen()) {
            if (s.file.size() + line.size() > s.limits.fileBytes)
                rotate(s);
            s.file.write(line);
        }
    }
    if (forTerminal(s, type, category) && s.qtHandler)
        s.qtHandler(type, context, message);
}

#ifdef Q_OS_UNIX
void crashed(int signalNumber)
{
    const int descriptor = crashDescriptor;
    if (descriptor >= 0) {
        static const char text[] = "F [crash] orvix: the program ended on signal ";
        char number[4] = { char('0' + signalNumber / 10 % 10), char('0' + signalNumber % 10), '\n', 0 };
        (void)!::write(descriptor, text, sizeof text - 1);
        (void)!::write(descriptor, number, 3);
    }
    std::signal(signalNumber, SIG_DFL);
    std::raise(signalNumber);
}
#endif
}

namespace LogFile {

QString folder()
{
    const QString names = QCoreApplication::organizationName() + QLatin1Char('/') + QCoreApplication::applicationName();
#ifdef Q_OS_LINUX
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty() || QDir::isRelativePath(base))
        base = QDir::homePath() + QStringLiteral("/.local/state");
    return base + QLatin1Char('/') + names;
#else
    Q_UNUSED(names);
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + QStringLiteral("/log");
#endif
}

QString path()
{
    return folder() + QStringLiteral("/orvix.log");
}

bool install(const Limits &limits)
{
    State &s = state();
    {
        const std::lock_guard<std::mutex> locked(s.lock);
        if (installed)
            return s.file.isOpen();
        s.limits = limits;
        if (!QDir().mkpath(folder()))
            return false;
        s.file.setFileName(path());
        if (!s.file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
            return false;
        crashDescriptor = s.file.handle();
        // Called from main(): the log names the window's thread so.
        if (QThread::currentThread()->objectName().isEmpty())
            QThread::currentThread()->setObjectName(QStringLiteral("main"));
        s.rulesGiven = !qEnvironmentVariableIsEmpty("QT_LOGGING_RULES");
        installed = true;
    }
    s.qtHandler = qInstallMessageHandler(handler);
    // Last: it runs the filter over every category there is at once.
    s.qtFilter = QLoggingCategory::installFilter(filter);
#ifdef Q_OS_UNIX
    for (const int signalNumber : { SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL })
        std::signal(signalNumber, crashed);
#endif
    return true;
}

void uninstall()
{
    State &s = state();
    if (!installed)
        return;
    QLoggingCategory::installFilter(s.qtFilter);
    qInstallMessageHandler(s.qtHandler);
#ifdef Q_OS_UNIX
    for (const int signalNumber : { SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL })
        std::signal(signalNumber, SIG_DFL);
#endif
    {
        const std::lock_guard<std::mutex> locked(s.levelsLock);
        s.terminalLevels.clear();
    }
    const std::lock_guard<std::mutex> locked(s.lock);
    crashDescriptor = -1;
    s.file.close();
    installed = false;
}

} // namespace LogFile
