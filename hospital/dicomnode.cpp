#include "dicomnode.h"

#include <QSettings>

namespace {
const QString group = QStringLiteral("hospital");
const QString defaultOwnAeTitle = QStringLiteral("ORVIX");

QString roleGroup(HospitalSettings::Role role)
{
    switch (role) {
    case HospitalSettings::Role::Archive:
        return QStringLiteral("archive");
    case HospitalSettings::Role::Worklist:
        return QStringLiteral("worklist");
    case HospitalSettings::Role::PerformedSteps:
        return QStringLiteral("mpps");
    }
    return QString();
}
} // namespace

bool DicomNode::isComplete() const
{
    return isValidAeTitle(ownAeTitle) && isValidAeTitle(calledAeTitle) && !host.trimmed().isEmpty() && port > 0
        && port < 65536;
}

QString DicomNode::display() const
{
    return QStringLiteral("%1@%2:%3").arg(calledAeTitle, host).arg(port);
}

bool DicomNode::isValidAeTitle(const QString &title)
{
    const QString trimmed = title.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > 16)
        return false;
    for (const QChar c : trimmed) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7e || c == QLatin1Char('\\'))
            return false;
    }
    return true;
}

bool DicomNode::operator==(const DicomNode &other) const
{
    return ownAeTitle == other.ownAeTitle && calledAeTitle == other.calledAeTitle && host == other.host
        && port == other.port;
}

namespace HospitalSettings {

DicomNode node(Role role)
{
    QSettings settings;
    settings.beginGroup(group);
    settings.beginGroup(roleGroup(role));
    DicomNode node;
    node.ownAeTitle = settings.value(QStringLiteral("ownAeTitle"), defaultOwnAeTitle).toString();
    node.calledAeTitle = settings.value(QStringLiteral("calledAeTitle")).toString();
    node.host = settings.value(QStringLiteral("host")).toString();
    node.port = settings.value(QStringLiteral("port"), 104).toInt();
    return node;
}

void setNode(Role role, const DicomNode &node)
{
    QSettings settings;
    settings.beginGroup(group);
    settings.beginGroup(roleGroup(role));
    settings.setValue(QStringLiteral("ownAeTitle"), node.ownAeTitle.trimmed());
    settings.setValue(QStringLiteral("calledAeTitle"), node.calledAeTitle.trimmed());
    settings.setValue(QStringLiteral("host"), node.host.trimmed());
    settings.setValue(QStringLiteral("port"), node.port);
}

bool sendAutomatically()
{
    return QSettings().value(group + QStringLiteral("/sendAutomatically"), false).toBool();
}

void setSendAutomatically(bool on)
{
    QSettings().setValue(group + QStringLiteral("/sendAutomatically"), on);
}

int commitmentPort()
{
    return QSettings().value(group + QStringLiteral("/commitmentPort"), 0).toInt();
}

void setCommitmentPort(int port)
{
    QSettings().setValue(group + QStringLiteral("/commitmentPort"), port);
}

int commitmentWaitSeconds()
{
    return qMax(1, QSettings().value(group + QStringLiteral("/commitmentWaitSeconds"), 600).toInt());
}

void setCommitmentWaitSeconds(int seconds)
{
    QSettings().setValue(group + QStringLiteral("/commitmentWaitSeconds"), seconds);
}

SpaceRule spaceRule()
{
    QSettings settings;
    settings.beginGroup(group + QStringLiteral("/space"));
    SpaceRule rule;
    rule.enabled = settings.value(QStringLiteral("removeKept"), false).toBool();
    rule.olderThanDays = settings.value(QStringLiteral("olderThanDays"), rule.olderThanDays).toInt();
    rule.freeBelowMegabytes = settings.value(QStringLiteral("freeBelowMegabytes"), rule.freeBelowMegabytes).toLongLong();
    return rule;
}

void setSpaceRule(const SpaceRule &rule)
{
    QSettings settings;
    settings.beginGroup(group + QStringLiteral("/space"));
    settings.setValue(QStringLiteral("removeKept"), rule.enabled);
    settings.setValue(QStringLiteral("olderThanDays"), rule.olderThanDays);
    settings.setValue(QStringLiteral("freeBelowMegabytes"), rule.freeBelowMegabytes);
}

} // namespace HospitalSettings
