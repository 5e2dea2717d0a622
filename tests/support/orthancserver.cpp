#include "orthancserver.h"

#include <sys/resource.h>

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTcpServer>
#include <QTest>
#include <QTimer>

namespace {
const QString orthancProgram = QStringLiteral("/usr/sbin/Orthanc");
const QString worklistPlugin = QStringLiteral("/usr/share/orthanc/plugins/libModalityWorklists.so");
} // namespace

int OrthancServer::freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    return server.serverPort();
}

OrthancServer::OrthancServer() = default;

OrthancServer::~OrthancServer()
{
    stop();
}

DicomNode OrthancServer::node(const QString &ownAeTitle) const
{
    DicomNode node;
    node.ownAeTitle = ownAeTitle;
    node.calledAeTitle = aeTitle();
    node.host = QStringLiteral("127.0.0.1");
    node.port = dicomPortNumber;
    return node;
}

bool OrthancServer::start(QString *error)
{
    if (!folder.isValid() || !QFile::exists(orthancProgram) || !QFile::exists(worklistPlugin)) {
        *error = QStringLiteral("Orthanc and its worklist plugin are not installed (package orthanc)");
        return false;
    }
    if (dicomPortNumber == 0) {
        dicomPortNumber = freePort();
        httpPortNumber = freePort();
    }
    QDir(folder.path()).mkpath(QStringLiteral("db"));
    QDir(folder.path()).mkpath(QStringLiteral("worklists"));
    QJsonObject configuration {
        { "Name", "OrvixTestArchive" },
        { "StorageDirectory", folder.filePath(QStringLiteral("db")) },
        { "IndexDirectory", folder.filePath(QStringLiteral("db")) },
        { "DicomAet", aeTitle() },
        { "DicomPort", dicomPortNumber },
        { "HttpPort", httpPortNumber },
        { "RemoteAccessAllowed", false },
        { "AuthenticationEnabled", false },
        { "DicomCheckCalledAet", true },
        { "DicomAlwaysAllowEcho", true },
        { "DicomAlwaysAllowStore", true },
        { "DicomAlwaysAllowFindWorklist", true },
        { "DefaultEncoding", "Utf8" },
        { "Mpeg4TransferSyntaxAccepted", acceptsMovies },
        { "LuaScripts", QJsonArray { folder.filePath(QStringLiteral("refuse.lua")) } },
        { "Plugins", QJsonArray { worklistPlugin } },
        { "Worklists", QJsonObject { { "Enable", true }, { "Database", folder.filePath(QStringLiteral("worklists")) } } },
    };
    QJsonObject stations;
    for (const auto &[title, port] : std::as_const(modalities))
        stations.insert(title.toLower(), QJsonArray { title, QStringLiteral("127.0.0.1"), port });
    configuration.insert(QStringLiteral("DicomModalities"), stations);
    QFile filter(folder.filePath(QStringLiteral("refuse.lua")));
    if (!filter.open(QIODevice::WriteOnly)
        || filter.write(QStringLiteral("function ReceivedInstanceFilter(dicom, origin, info)\n"
                                       "  if dicom.InstitutionName == '%1' then\n"
                                       "    error('this archive cannot take it now')\n"
                                       "  end\n"
                                       "  return true\n"
                                       "end\n")
                                .arg(busyHospital())
                                .toUtf8())
                   < 0) {
        *error = QStringLiteral("cannot write the archive's filter");
        return false;
    }
    filter.close();
    const QString configurationFile = folder.filePath(QStringLiteral("orthanc.json"));
    QFile file(configurationFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(configuration).toJson()) < 0) {
        *error = QStringLiteral("cannot write %1").arg(configurationFile);
        return false;
    }
    file.close();
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardOutputFile(folder.filePath(QStringLiteral("orthanc.log")), QIODevice::Append);
    const int nice = niceness;
    process.setChildProcessModifier([nice] { setpriority(PRIO_PROCESS, 0, nice); });
    process.start(orthancProgram, { configurationFile });
    if (!process.waitForStarted(5000)) {
        *error = QStringLiteral("Orthanc did not start: %1").arg(process.errorString());
        return false;
    }
    if (!QTest::qWaitFor([this] { return !isRunning() || get(QStringLiteral("/system")).isObject(); }, 30000)
        || !isRunning()) {
        QFile log(folder.filePath(QStringLiteral("orthanc.log")));
        log.open(QIODevice::ReadOnly);
        *error = QStringLiteral("Orthanc did not come up: %1").arg(QString::fromUtf8(log.readAll().right(2000)));
        stop();
        return false;
    }
    return true;
}

void OrthancServer::stop()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(10000)) {
        process.kill();
        process.waitForFinished(5000);
    }
}

bool OrthancServer::addWorklist(const QString &name, const QString &dump, QString *error)
{
    const QString dumpFile = folder.filePath(name + QStringLiteral(".txt"));
    QFile file(dumpFile);
    if (!file.open(QIODevice::WriteOnly) || file.write(dump.toUtf8()) < 0) {
        *error = QStringLiteral("cannot write %1").arg(dumpFile);
        return false;
    }
    file.close();
    QProcess dump2dcm;
    dump2dcm.setProcessChannelMode(QProcess::MergedChannels);
    dump2dcm.start(QStringLiteral("dump2dcm"),
                   { QStringLiteral("+te"), dumpFile, folder.filePath(QStringLiteral("worklists/%1.wl").arg(name)) });
    if (!dump2dcm.waitForFinished(10000) || dump2dcm.exitStatus() != QProcess::NormalExit || dump2dcm.exitCode() != 0) {
        *error = QStringLiteral("dump2dcm: %1 %2").arg(dump2dcm.errorString(), QString::fromUtf8(dump2dcm.readAll()));
        return false;
    }
    return true;
}

QString OrthancServer::log() const
{
    QFile file(folder.filePath(QStringLiteral("orthanc.log")));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void OrthancServer::clearWorklists()
{
    QDir worklists(folder.filePath(QStringLiteral("worklists")));
    for (const QString &name : worklists.entryList({ QStringLiteral("*.wl") }, QDir::Files))
        worklists.remove(name);
}

QByteArray OrthancServer::request(const QByteArray &verb, const QString &path, const QByteArray &body, bool *ok) const
{
    QNetworkAccessManager manager;
    QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(httpPortNumber).arg(path)));
    request.setTransferTimeout(30000);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("text/plain"));
    QNetworkReply *reply = manager.sendCustomRequest(request, verb, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const bool answered = reply->error() == QNetworkReply::NoError;
    if (ok)
        *ok = answered;
    const QByteArray answer = answered ? reply->readAll() : QByteArray();
    reply->deleteLater();
    return answer;
}

QByteArray OrthancServer::getRaw(const QString &path) const
{
    return request("GET", path, QByteArray(), nullptr);
}

QJsonValue OrthancServer::post(const QString &path, const QByteArray &body) const
{
    const QJsonDocument document = QJsonDocument::fromJson(request("POST", path, body, nullptr));
    return document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
}

bool OrthancServer::remove(const QString &path) const
{
    bool ok = false;
    request("DELETE", path, QByteArray(), &ok);
    return ok;
}

QJsonValue OrthancServer::get(const QString &path) const
{
    const QJsonDocument document = QJsonDocument::fromJson(getRaw(path));
    if (document.isObject())
        return document.object();
    if (document.isArray())
        return document.array();
    return QJsonValue();
}

QString OrthancServer::busyHospital()
{
    return QStringLiteral("Busy Archive Hospital");
}

QString OrthancServer::worklistEntry(const QString &name, const QString &id, const QString &studyUid,
                                     const QString &station, const QDate &date, const QString &time,
                                     const QString &procedure)
{
    return QStringLiteral("(0008,0005) CS [ISO_IR 192]\n"
                          "(0008,0050) SH [ACC-%2]\n"
                          "(0010,0010) PN [%1]\n"
                          "(0010,0020) LO [%2]\n"
                          "(0010,0021) LO [HOSP-A]\n"
                          "(0010,0030) DA [19800214]\n"
                          "(0010,0040) CS [F]\n"
                          "(0020,000d) UI [%3]\n"
                          "(0032,1060) LO [%7]\n"
                          "(0040,1001) SH [RP-%2]\n"
                          "(0040,0100) SQ (Sequence with explicit length #=1)\n"
                          "(fffe,e000) na (Item with explicit length #=6)\n"
                          "(0008,0060) CS [ES]\n"
                          "(0040,0001) AE [%4]\n"
                          "(0040,0002) DA [%5]\n"
                          "(0040,0003) TM [%6]\n"
                          "(0040,0007) LO [%7]\n"
                          "(0040,0009) SH [SPS-%2]\n"
                          "(fffe,e00d) na (ItemDelimitationItem for re-encoding)\n"
                          "(fffe,e0dd) na (SequenceDelimitationItem for re-encod.)\n")
        .arg(name, id, studyUid, station, date.toString(QStringLiteral("yyyyMMdd")), time, procedure);
}
