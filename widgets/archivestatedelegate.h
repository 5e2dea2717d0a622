// The storage browser's items with their way to the archive shown: a small
// mark on the picture (waiting, sent, failed) and the state, with the
// reason of a failure, as the item's tip.
#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

class ArchiveQueue;

class ArchiveStateDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    ArchiveStateDelegate(ArchiveQueue *queue, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

    // What the tip says for a file.
    QString stateLine(const QString &file) const;

private:
    QPointer<ArchiveQueue> queue;
};
