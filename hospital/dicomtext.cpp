#include "dicomtext.h"

#include <QStringList>

namespace {
QString cleaned(const QString &typed)
{
    QString text;
    text.reserve(typed.size());
    for (const QChar c : typed) {
        if (c == QLatin1Char('\\'))
            continue;
        text.append(c.category() == QChar::Other_Control || c == QChar::LineSeparator
                            || c == QChar::ParagraphSeparator
                        ? QLatin1Char(' ')
                        : c);
    }
    return text.simplified();
}

QString cut(const QString &text, int maxBytes)
{
    if (text.toUtf8().size() <= maxBytes)
        return text;
    const QString mark = QStringLiteral("…");
    const int room = maxBytes - int(mark.toUtf8().size());
    QString kept;
    for (int at = 0; at < text.size();) {
        // A surrogate pair is one character: never split it.
        const int length = text.at(at).isHighSurrogate() && at + 1 < text.size() ? 2 : 1;
        const QString next = text.mid(at, length);
        if (kept.toUtf8().size() + next.toUtf8().size() > room)
            break;
        kept += next;
        at += length;
    }
    return kept.trimmed() + mark;
}
} // namespace

namespace DicomText {

QString fitted(const QString &typed, int maxBytes)
{
    return cut(cleaned(typed), maxBytes);
}

QString personName(const QString &typed)
{
    const QString text = cleaned(typed);
    QStringList groups;
    if (text.contains(QLatin1Char('^')) || text.contains(QLatin1Char('='))) {
        // Already in the archive's form, perhaps with ideographic and
        // phonetic groups after "=": kept, each component made to fit.
        groups = text.split(QLatin1Char('=')).mid(0, 3);
    } else {
        const int comma = text.indexOf(QLatin1Char(','));
        groups = { comma < 0 ? text : text.left(comma).trimmed() + QLatin1Char('^') + text.mid(comma + 1).trimmed() };
    }
    for (QString &group : groups) {
        QStringList components = group.split(QLatin1Char('^'));
        // Five components at most; anything beyond goes with the last.
        while (components.size() > 5)
            components[4] += QLatin1Char(' ') + components.takeAt(5);
        for (QString &component : components)
            component = cut(component.trimmed(), nameComponent);
        while (!components.isEmpty() && components.last().isEmpty())
            components.removeLast();
        group = components.join(QLatin1Char('^'));
    }
    while (!groups.isEmpty() && groups.last().isEmpty())
        groups.removeLast();
    return groups.join(QLatin1Char('='));
}

QString readableName(const QString &personName)
{
    const QStringList parts = personName.split(QLatin1Char('^'));
    const QString family = parts.value(0).trimmed();
    const QString given = parts.value(1).trimmed();
    if (given.isEmpty())
        return family;
    if (family.isEmpty())
        return given;
    return family + QStringLiteral(", ") + given;
}

} // namespace DicomText
