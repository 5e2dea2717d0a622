#include "archivestatedelegate.h"

#include <QAbstractItemView>
#include <QFileInfo>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include "hospital/archivequeue.h"
#include "storage/orvixstoragemodel.h"

namespace {
QString pathOf(const QModelIndex &index)
{
    return index.data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo.absoluteFilePath();
}
} // namespace

ArchiveStateDelegate::ArchiveStateDelegate(ArchiveQueue *queue, std::function<QString(const QString &)> summary,
                                           QObject *parent)
    : QStyledItemDelegate(parent), queue(queue), summary(std::move(summary))
{
}

QString ArchiveStateDelegate::stateLine(const QString &file) const
{
    if (!queue)
        return QString();
    QString reason;
    const ArchiveQueue::State state = queue->state(file, &reason);
    QString line = tr("Archive: %1").arg(ArchiveQueue::stateText(state));
    // A failure's reason, or the warning the archive stored it with.
    if (!reason.isEmpty())
        line += QStringLiteral(" (%1)").arg(reason);
    return line;
}

QSize ArchiveStateDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    // The list measures one item for all of them, often the newest: one
    // listed before its thumbnail exists would squash every item to a line
    // of text. Each is measured as if its picture were there.
    const QSize measured = QStyledItemDelegate::sizeHint(option, index);
    const int withPicture = option.decorationSize.height() + option.fontMetrics.height() + 6;
    return { qMax(measured.width(), option.decorationSize.width()), qMax(measured.height(), withPicture) };
}

void ArchiveStateDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (!queue)
        return;
    const ArchiveQueue::State state = queue->state(pathOf(index));
    if (state == ArchiveQueue::State::NotSent)
        return;
    QColor colour;
    QString mark;
    switch (state) {
    case ArchiveQueue::State::Sent:
        colour = QColor(46, 139, 87);
        mark = QStringLiteral("✓");
        break;
    case ArchiveQueue::State::Kept:
        // Sent and confirmed: the archive's promise, not only its receipt.
        colour = QColor(31, 97, 141);
        mark = QStringLiteral("✓");
        break;
    case ArchiveQueue::State::Failed:
        colour = QColor(192, 57, 43);
        mark = QStringLiteral("!");
        break;
    case ArchiveQueue::State::NeedsPatientId:
        colour = QColor(192, 57, 43);
        mark = QStringLiteral("?");
        break;
    default:
        colour = QColor(214, 150, 20);
        mark = QStringLiteral("…");
        break;
    }
    // A round mark at the picture's top right corner.
    const QRect cell = option.rect;
    const QRect badge(cell.right() - 18, cell.top() + 2, 16, 16);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(colour);
    painter->drawEllipse(badge);
    painter->setPen(Qt::white);
    QFont font = painter->font();
    font.setBold(true);
    font.setPixelSize(11);
    painter->setFont(font);
    painter->drawText(badge, Qt::AlignCenter, mark);
    painter->restore();
}

bool ArchiveStateDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                     const QModelIndex &index)
{
    if (event->type() == QEvent::ToolTip && index.isValid() && queue) {
        const QString file = pathOf(index);
        QString tip = QFileInfo(file).fileName() + QLatin1Char('\n') + stateLine(file);
        if (summary)
            tip += QLatin1Char('\n') + summary(file);
        QToolTip::showText(event->globalPos(), tip, view);
        return true;
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}
