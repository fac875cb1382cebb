#pragma once

#include "ZELKTextCell.h"

#include <QColor>

#include <functional>
#include <optional>

/// The text cell of the summary column: a row that is highlighted has a capsule behind its text instead of a
/// rectangle. A selected row shows its selection alone.
class BLRoundedTableCell : public ZELKTextCell
{
    Q_OBJECT

public:
    /// The background of a cell; nothing for a cell that draws none.
    using Background = std::function<std::optional<QColor>(const QModelIndex &index)>;

    BLRoundedTableCell(int textRole, Background background, QObject *parent = nullptr);

protected:
    void drawInterior(QPainter &painter, const QStyleOptionViewItem &cell,
                      const QModelIndex &index) const override;

private:
    Background m_background;
};
