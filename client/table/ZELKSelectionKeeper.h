#pragma once

#include "ZELKEntryArrangement.h"

#include <QObject>

#include <vector>

class ZELKLWCLogTableModel;
class ZELKLWCLogTableView;

/// Carries selection, current row and what is looked at through a new filter or sort, by the entries behind
/// the rows: what is still listed stays selected. Whoever looked at the newest entries goes on doing so.
class ZELKSelectionKeeper : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive the keeper; the view has the model already.
    ZELKSelectionKeeper(ZELKLWCLogTableView &view, ZELKLWCLogTableModel &model);

private:
    void save();
    void restore();
    void saveSelection();
    void restoreSelection();
    void restoreView();
    void makeCurrent(int row);
    int rowToGoOnFrom() const;
    bool isNewestSeen() const;
    std::optional<ZELKEntryArrangement::Index> entryOf(int row) const;
    std::optional<int> rowOf(std::optional<ZELKEntryArrangement::Index> entry) const;

    ZELKLWCLogTableView &m_view;
    ZELKLWCLogTableModel &m_model;
    std::vector<bool> m_selected; // by the entry's index in the log, from `m_firstIndex` on
    std::uint64_t m_firstIndex = 0;
    std::optional<ZELKEntryArrangement::Index> m_current;
    std::optional<ZELKEntryArrangement::Index> m_top;
    bool m_isCurrentSeen = false;
    bool m_isNewestSeen = false;
};
