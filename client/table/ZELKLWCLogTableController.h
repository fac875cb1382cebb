#pragma once

#include "ZELKDate.h"
#include "ZELKLWCLogTableModel.h"
#include "ZELKLWCLogTableView.h"

#include <QColor>
#include <QPersistentModelIndex>
#include <QPointer>

class QLineEdit;
class ZELKLWCLogEntryFormatter;
class ZELKNotificationQueue;
class ZELKSelectionKeeper;
class ZELKUserDefaults;

/// The table of the main window: which of the log's visible entries it lists and in which order, which row is
/// the partner of the selected one, which entry is nearest to a date, and what rows are elsewhere.
///
/// It gives the view its model and cells. Of the settings it reads "eventDetail", "relativeDates",
/// "highlight" and "highlightColour", live, and writes "columnSortDescriptors".
class ZELKLWCLogTableController : public QObject,
                                  public ZELKLWCLogTableViewDelegate,
                                  public ZELKLWCLogTableViewCopy
{
    Q_OBJECT

public:
    using Column = ZELKLWCLogTableModel::Column;
    enum class MenuItem { CancelFilter, SelectPair, ExtendSelectionToPair, Other };

    /// What the controller stands between; none owned, all to outlive it.
    struct Outlets
    {
        ZELKLWCLog &log;
        ZELKLWCLogTableView &tableView;
        QLineEdit &filterField;
        const ZELKFormatter &dateFormatter;
        ZELKLWCLogEntryFormatter &summaryFormatter;
        ZELKUserDefaults &defaults;
        ZELKNotificationQueue &queue;
    };

    explicit ZELKLWCLogTableController(const Outlets &outlets, QObject *parent = nullptr);
    ~ZELKLWCLogTableController() override;
    /// From here on settings, filter field and view are followed.
    void awakeFromNib();

    /// Sorts as the settings remember it; without memory the order is the log's.
    void restoreSortDescriptors();
    const ZELKSortDescriptors &sortDescriptors() const { return m_model.sortDescriptors(); }
    /// Sorts, and remembers it.
    void setSortDescriptors(const ZELKSortDescriptors &descriptors);

    QString filterString() const { return m_filterString; }
    void setFilterString(const QString &filterString);
    /// Lists the entries whose summary contains the filter string.
    void filter();
    void cancelFilter();

    bool highlightRelated() const { return m_highlightRelated; }
    void setHighlightRelated(bool highlightRelated);
    /// Rows whose summary has the highlight behind it: at most one, the partner of the one selected row.
    QList<int> highlightEntries() const;
    /// Invalid when none is set.
    QColor highlightColour() const { return m_highlightColour; }
    void setHighlightColour(const QColor &colour);
    /// The background of a cell; nothing for a cell that draws none.
    std::optional<QColor> tableViewWillDisplayCell(Column column, int row) const;

    /// Chooses the template by the setting "eventDetail", scales it to the view's font, and makes all rows as
    /// high as it asks for.
    void adjustRowHeight();

    /// Selects the row of the first selected entry's partner.
    void selectPair();
    /// Selects all rows from the first selected one to its partner's, besides those that are selected.
    void extendSelectionToPair();
    /// `sender` chose a date, its property "selection": the nearest entry is selected once the event loop is
    /// idle, for the last such call.
    void selectEntryByDate(QObject *sender);
    /// The row of the entry nearest to a date. Before the first entry that is the first, after the last the
    /// last; in between it is the first one after the date or the one before that, the later one when both
    /// are as far. Nothing without rows, and where a last entry of that very date leaves none after it.
    std::optional<int> nearestVisibleEntryToDate(ZELKDate date) const;
    void doubleClickShowInformationPanel();
    bool validateMenuItem(MenuItem item) const;

    /// The whole log as a list, for those who show it without the arrangement.
    int numberOfRowsInTableView() const;
    QVariant tableViewObjectValueForTableColumn(Column column, int row) const;

    void tableViewCancel(ZELKLWCLogTableView &view) override;
    /// Plain and rich text: columns divided by tabs, rows by line feeds.
    bool tableViewWriteRowsToPasteboard(const ZELKRowRanges &rows, QMimeData &pasteboard) override;
    /// What Edit, Copy does: the selected rows, as a drag of them would carry them. False without a
    /// selection.
    bool copySelection();

    ZELKLWCLogTableModel &model() { return m_model; }
    ZELKRowRanges selectedRows() const { return m_view.selectedRows(); }
    /// In the order shown; null without a selection.
    ZELKLWCLogEntry *firstSelectedEntry() const;
    ZELKLWCLogEntry *lastSelectedEntry() const;
    QList<ZELKLWCLogEntry *> selectedObjects() const;

Q_SIGNALS:
    void showInformationPanel();
    void selectionDidChange();
    void highlightRelatedChanged(bool highlightRelated);
    void highlightColourChanged(const QColor &colour);

private:
    void setUpView();
    void setUpHeader();
    void followSettings();
    void settingChanged(const QString &key);
    void showSortIndicator();
    void sortByColumn(int column, Qt::SortOrder order);
    void notificationPosted(const QString &name);
    void coalescedSelectEntryByDate();
    void tableViewSelectionDidChange();
    void tableSelectionCoalescedDidChange();
    std::optional<int> rowOfSelectedEntrysPair() const;
    std::optional<int> rowOfOnlySelectedEntrysPair() const;
    void selectRow(int row);
    void redisplay();

    ZELKLWCLogTableView &m_view;
    QLineEdit &m_filterField;
    ZELKLWCLog &m_log;
    ZELKLWCLogEntryFormatter &m_summaryFormatter;
    ZELKUserDefaults &m_defaults;
    ZELKNotificationQueue &m_queue;
    ZELKLWCLogTableModel m_model;
    std::unique_ptr<ZELKSelectionKeeper> m_keeper;
    QString m_filterString;
    bool m_highlightRelated = false;
    QPersistentModelIndex m_highlight; // stays with its entry while rows come and go
    QColor m_highlightColour;
    QPointer<QObject> m_dateSender;
};
