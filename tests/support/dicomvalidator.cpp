#include "dicomvalidator.h"

#include <QProcess>

namespace DicomValidator {

QStringList errors(const QString &object)
{
    QProcess validator;
    validator.setProcessChannelMode(QProcess::MergedChannels);
    validator.start(QStringLiteral("dciodvfy"), { object });
    if (!validator.waitForFinished(30000) || validator.exitStatus() != QProcess::NormalExit)
        return { QStringLiteral("dciodvfy did not run: %1").arg(validator.errorString()) };
    QStringList found;
    for (const QString &line : QString::fromUtf8(validator.readAll()).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("Error")))
            found << line;
    }
    return found;
}

} // namespace DicomValidator
