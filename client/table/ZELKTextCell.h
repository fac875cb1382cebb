#pragma once

#include "ZELKTextColours.h"
#include "ZELKTextLineCache.h"

#include <QPalette>
#include <QStyledItemDelegate>

#include <array>

/// A cell that draws its text as it is attributed, one paragraph a line, whatever the text; taken from the
/// model under the role given.
class ZELKTextCell : public QStyledItemDelegate
{
    Q_OBJECT

public:
    explicit ZELKTextCell(int textRole, QObject *parent = nullptr);

    /// How far texts stand off the cell's edges, in pixels: as far as a style has everything else stand off
    /// those of a window.
    static int textInset(const QStyle &style);

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
    /// Of a text without a background of its own.
    const ZELKTextColours &colours(const QStyleOptionViewItem &cell) const;

private:
    /// Colours that stand out from a palette's background take longer to find than a text to draw.
    struct Colours
    {
        QPalette palette;
        QPalette::ColorGroup group = QPalette::NColorGroups;
        ZELKTextColours colours;
    };

    int m_textRole;
    mutable ZELKTextLineCache m_lines;
    mutable std::array<Colours, 2> m_colours; // of rows that are not selected, and of those that are
};
