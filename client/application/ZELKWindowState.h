#pragma once

#include <QList>
#include <QObject>

class QHeaderView;
class QMainWindow;
class ZELKUserDefaults;

/// Remembers how the user arranged the main window: its place and size, its tool bar, its splitters, and the
/// widths of the columns that the user changed.
///
/// Widths are kept in characters of the list's font, so that they fit another font as well.
class ZELKWindowState : public QObject
{
    Q_OBJECT

public:
    /// All outlive the state; `columns` belongs to `window`.
    ZELKWindowState(QMainWindow &window, QHeaderView &columns, ZELKUserDefaults &defaults);

    /// What was remembered; else the usual size, for so many characters by so many lines.
    void restore();
    void save();
    /// Gives the columns the widths that the user chose; the others take those given. Pixels, by column.
    void fitColumns(const QList<int> &usualWidths);

private:
    void sectionResized(int column, int width);

    QMainWindow &m_window;
    QHeaderView &m_columns;
    ZELKUserDefaults &m_defaults;
    QList<double> m_widths; // of columns, in characters; 0 where the usual width holds
    bool m_fitting = false;
};
