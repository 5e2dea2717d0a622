// Texts a window cuts off: a label or a button narrower than its text needs,
// or reaching out of the widget that holds it (where the rest is not drawn).
// For the translated windows, whose texts are longer than the English ones.
#pragma once

#include <QAbstractButton>
#include <QLabel>
#include <QStringList>
#include <QWidget>

inline QStringList cutTexts(QWidget *window)
{
    QStringList cut;
    const auto check = [&](QWidget *widget, const QString &text, int needed) {
        if (!widget->isVisibleTo(window) || text.isEmpty())
            return;
        const QString name = widget->objectName().isEmpty() ? QString::fromLatin1(widget->metaObject()->className())
                                                             : widget->objectName();
        if (widget->width() < needed) {
            cut.append(QStringLiteral("%1 \"%2\": %3 px of %4").arg(name, text).arg(widget->width()).arg(needed));
            return;
        }
        // What of it every widget around it leaves to be seen.
        const QRect whole(widget->mapTo(window, QPoint(0, 0)), widget->size());
        QRect seen = whole;
        for (QWidget *around = widget->parentWidget(); around && around != window; around = around->parentWidget())
            seen &= QRect(around->mapTo(window, QPoint(0, 0)), around->size());
        seen &= window->rect();
        if (seen != whole)
            cut.append(QStringLiteral("%1 \"%2\": %3 px of %4 seen").arg(name, text).arg(seen.width()).arg(whole.width()));
    };
    for (QLabel *label : window->findChildren<QLabel *>()) {
        // Pictures, wrapped texts and rich text size themselves otherwise.
        if (!label->wordWrap() && label->pixmap().isNull() && label->textFormat() != Qt::RichText
            && !Qt::mightBeRichText(label->text()))
            check(label, label->text(), label->fontMetrics().horizontalAdvance(label->text()) + 2 * label->margin());
    }
    for (QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
        const QString text = QString(button->text()).remove(QLatin1Char('&'));
        check(button, text, button->fontMetrics().horizontalAdvance(text));
    }
    return cut;
}
