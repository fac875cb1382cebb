#pragma once

#include "ZELKTextColours.h"

#include <QStyledItemDelegate>

class ZELKAttributedString;

/// A cell that draws its text as it is attributed, one paragraph a line, whatever the text; taken from the
/// model under the role given.
class ZELKTextCell : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ZELKTextCell(int textRole, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;

protected:
    /// Behind the text; the option's state, palette and rectangle are those of the cell.
    virtual void drawBackground(QPainter &painter, const QStyleOptionViewItem &cell,
                                const QModelIndex &index) const;
    virtual void drawInterior(QPainter &painter, const QStyleOptionViewItem &cell,
                              const QModelIndex &index) const;
    void drawText(QPainter &painter, const QRectF &frame, const QModelIndex &index,
                  const ZELKTextColours &colours) const;

private:
    int m_textRole;
};
