// The storage browser's items, each in a cell as large as one with its
// picture, with their way to the archive shown: a small
// mark on the picture (waiting, sent, failed, needs a patient ID) and, as
// the item's tip, the state with the archive's reason and the patient the
// file goes out with.
#pragma once

#include <functional>

#include <QPointer>
#include <QStyledItemDelegate>

class ArchiveQueue;

class ArchiveStateDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    // `summary` says what the archive gets for a file: its patient, ID and study.
    ArchiveStateDelegate(ArchiveQueue *queue, std::function<QString(const QString &)> summary,
                         QObject *parent = nullptr);

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

    // What the tip says for a file.
    QString stateLine(const QString &file) const;

private:
    QPointer<ArchiveQueue> queue;
    std::function<QString(const QString &)> summary;
};
