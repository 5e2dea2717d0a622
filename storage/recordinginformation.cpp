// The information file beside a movie.
#include "recordinginformation.h"

#include <QRegularExpression>
#include <QSettings>

namespace {
const QString group = QStringLiteral("Orvix");
}

void RecordingInformation::write(const QString &path) const
{
    QSettings file(path, QSettings::IniFormat);
    file.beginGroup(group);
    file.setValue(QStringLiteral("Filename"), fileName);
    file.setValue(QStringLiteral("Doctor"), doctor);
    file.setValue(QStringLiteral("Patient"), patient);
    file.setValue(QStringLiteral("Hospital"), hospital);
    file.setValue(QStringLiteral("Comment"), comment);
    file.endGroup();
}

RecordingInformation RecordingInformation::read(const QString &path)
{
    QSettings file(path, QSettings::IniFormat);
    file.beginGroup(group);
    RecordingInformation information;
    information.fileName = file.value(QStringLiteral("Filename")).toString();
    information.doctor = file.value(QStringLiteral("Doctor")).toString();
    information.patient = file.value(QStringLiteral("Patient")).toString();
    information.hospital = file.value(QStringLiteral("Hospital")).toString();
    information.comment = file.value(QStringLiteral("Comment")).toString();
    file.endGroup();
    return information;
}

QString RecordingInformation::metaDataComment() const
{
    return doctor + QLatin1Char('/') + patient + QLatin1Char('/') + hospital + QLatin1Char('/') + comment;
}

QStringList RecordingInformation::identifyingTexts() const
{
    QStringList texts { fileName, doctor, patient, hospital, comment };
    static const QRegularExpression between(QStringLiteral(R"([\s,^/]+)"));
    for (const QString &name : { fileName, doctor, patient, hospital })
        texts += name.split(between, Qt::SkipEmptyParts);
    texts.removeAll(QString());
    texts.removeDuplicates();
    return texts;
}

bool RecordingInformation::operator==(const RecordingInformation &other) const
{
    return fileName == other.fileName && doctor == other.doctor && patient == other.patient
            && hospital == other.hospital && comment == other.comment;
}
