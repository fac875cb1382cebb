#pragma once

#include <QHeaderView>

#include <functional>

/// The headings above a table, which begin where the texts below them do, and not where the style puts those
/// of any table.
class ZELKTableHeader : public QHeaderView
{
    Q_OBJECT

public:
    /// How many pixels the texts of a column stand off the edge at which they begin.
    using TextInset = std::function<int(int column)>;

    explicit ZELKTableHeader(QWidget *parent = nullptr);

    /// Asked for each painting, as styles change.
    void setTextInset(TextInset inset) { m_inset = std::move(inset); }

protected:
    void paintSection(QPainter *painter, const QRect &rect, int logicalIndex) const override;

private:
    void drawHeading(QPainter &painter, const QRect &rect, int column) const;

    TextInset m_inset;
};
