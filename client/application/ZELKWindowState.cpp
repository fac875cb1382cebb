#include "ZELKWindowState.h"

#include "ZELKAssertion.h"
#include "ZELKUserDefaults.h"

#include <QHeaderView>
#include <QMainWindow>
#include <QScopedValueRollback>
#include <QSplitter>

namespace {

constexpr int defaultWidthInCharacters = 130;
constexpr int defaultHeightInLines = 40;
constexpr int stateVersion = 1;
/// Remembered widths are bounded, since they come from a file.
constexpr double widestInCharacters = 1000.0;

QString key(const QString &what)
{
    return QStringLiteral("ZELKLWCMainWindowController.") + what;
}

QString splitterKey(const QSplitter &splitter)
{
    return key(QStringLiteral("splitter.")) + splitter.objectName();
}

} // namespace

ZELKWindowState::ZELKWindowState(QMainWindow &window, QHeaderView &columns, ZELKUserDefaults &defaults)
    : QObject(&window)
    , m_window(window)
    , m_columns(columns)
    , m_defaults(defaults)
{
    for (const QString &width : defaults.value(key(QStringLiteral("columns"))).toStringList())
        m_widths.append(qBound(0.0, width.toDouble(), widestInCharacters));
    connect(&columns, &QHeaderView::sectionResized, this,
            [this](int column, int, int width) { zelkGuard([&] { sectionResized(column, width); }); });
}

void ZELKWindowState::restore()
{
    const QFontMetrics metrics = m_window.fontMetrics();
    m_window.resize(defaultWidthInCharacters * metrics.averageCharWidth(),
                    defaultHeightInLines * metrics.lineSpacing());
    m_window.restoreGeometry(m_defaults.value(key(QStringLiteral("geometry"))).toByteArray());
    m_window.restoreState(m_defaults.value(key(QStringLiteral("state"))).toByteArray(), stateVersion);
    for (QSplitter *splitter : m_window.findChildren<QSplitter *>())
        splitter->restoreState(m_defaults.value(splitterKey(*splitter)).toByteArray());
}

void ZELKWindowState::save()
{
    m_defaults.setValue(key(QStringLiteral("geometry")), m_window.saveGeometry());
    m_defaults.setValue(key(QStringLiteral("state")), m_window.saveState(stateVersion));
    for (const QSplitter *splitter : m_window.findChildren<QSplitter *>())
        m_defaults.setValue(splitterKey(*splitter), splitter->saveState());
    QStringList widths;
    for (const double width : m_widths)
        widths.append(QString::number(width));
    m_defaults.setValue(key(QStringLiteral("columns")), widths);
}

void ZELKWindowState::fitColumns(const QList<int> &usualWidths)
{
    const QScopedValueRollback fitting(m_fitting, true);
    for (int column = 0; column < usualWidths.size(); ++column) {
        const double chosen = m_widths.value(column) * m_columns.fontMetrics().averageCharWidth();
        m_columns.resizeSection(column, chosen > 0.0 ? qRound(chosen) : usualWidths.at(column));
    }
}

/// The last column takes what is left, and nobody's choice.
void ZELKWindowState::sectionResized(int column, int width)
{
    if (m_fitting || !m_columns.isVisible() || column == m_columns.count() - 1)
        return;
    while (m_widths.size() <= column)
        m_widths.append(0.0);
    m_widths[column] = double(width) / m_columns.fontMetrics().averageCharWidth();
}
