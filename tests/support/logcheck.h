// Reading the program's log in a test.
#pragma once

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace LogCheck {

inline QStringList lines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// A line as the log writes it: time, level, [thread], category, message.
inline bool wholeLine(const QString &line)
{
    static const QRegularExpression format(
            QStringLiteral(R"(^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}\S* [DIWCF] \[[^\]]+\] [\w.]+: )"));
    return format.match(line).hasMatch();
}

// Empty when a line holding each of `expected` follows the one before;
// else the first that is missing or out of order, with the log.
inline QString missingInOrder(const QStringList &lines, const QStringList &expected)
{
    qsizetype at = 0;
    for (const QString &wanted : expected) {
        while (at < lines.size() && !lines.at(at).contains(wanted))
            ++at;
        if (at == lines.size())
            return wanted + QStringLiteral(" missing or out of order in:\n") + lines.join(QLatin1Char('\n'));
        ++at;
    }
    return {};
}

} // namespace LogCheck
