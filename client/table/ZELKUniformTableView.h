#pragma once

#include <QTableView>

#include <memory>

class QAbstractItemModel;

/// A table whose rows all have one height, which makes the place of a row a product instead of a sum. Rows
/// cost no memory and rows that come or go no time, where the usual table keeps a section for each.
///
/// The height is the vertical header's default section size; that header is never shown and knows of no rows.
/// It scrolls by rows.
class ZELKUniformTableView : public QTableView
{
    Q_OBJECT

public:
    explicit ZELKUniformTableView(QWidget *parent = nullptr);
    ~ZELKUniformTableView() override;

    /// In pixels, at least 1.
    int uniformRowHeight() const;
    void setUniformRowHeight(int height);

    /// Scroll ranges for the rows there are, without waiting for the next turn of the event loop.
    void layOutNow();

    void setModel(QAbstractItemModel *model) override;
    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint &point) const override;
    /// Looking for a row by its first letters would format a million of them.
    void keyboardSearch(const QString &) override {}

protected:
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    int verticalOffset() const override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void updateGeometries() override;
    int sizeHintForRow(int row) const override;
    QSize viewportSizeHint() const override;
    bool isIndexHidden(const QModelIndex &index) const override;

private:
    int rows() const;
    /// How many rows are seen whole.
    int rowsInPage() const;
    int rowAtHeight(int y) const;
    void placeHeader();
    void setScrollRanges();
    void paintCell(QPainter &painter, const QStyleOptionViewItem &option, const QModelIndex &index);

    std::unique_ptr<QAbstractItemModel> m_noRows;
    QList<QMetaObject::Connection> m_connections;
    bool m_isUpdating = false;
};
