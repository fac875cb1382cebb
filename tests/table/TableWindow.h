#pragma once

#include "TableFixture.h"
#include "ZELKArchive.h"
#include "ZELKLWCLogEntryFormatter.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKLWCRelativeDateFormatter.h"
#include "ZELKNotificationQueue.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QtTest>

using Model = ZELKLWCLogTableModel;

/// A table of 400 entries in a window, with its search field.
struct Table : TableFixture
{
    QLineEdit field;
    ZELKLWCLogTableView view;
    ZELKLWCRelativeDateFormatter dates{defaults};
    ZELKLWCLogEntryFormatter summaries;
    ZELKNotificationQueue queue;
    ZELKLWCLogTableController controller{{log, view, field, dates, summaries, defaults, queue}};

    explicit Table(int count = 400, double today = 50.5)
        : TableFixture(today)
    {
        defaults.setValue(u"highlight"_s, true);
        defaults.setValue(u"highlightColour"_s, ZELKArchive::archivedColour(Qt::red));
        grow(count);
        controller.awakeFromNib();
        view.resize(600, 400);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view))
            qFatal("no window");
        view.setFocus();
    }
    Model &model() { return controller.model(); }
    void select(int first, int last)
    {
        view.selectionModel()->select({model().index(first, 0), model().index(last, 1)},
                                      QItemSelectionModel::ClearAndSelect);
    }
    QList<int> selected() const
    {
        QList<int> rows;
        for (const ZELKRowRange &span : controller.selectedRows())
            for (int row = span.first; row <= span.last; ++row)
                rows.append(row);
        return rows;
    }
    QString summaryAt(int row) { return model().entryAtRow(row)->summary(); }
    QPoint centreOf(int row, int column = 1) { return view.visualRect(model().index(row, column)).center(); }
    int topRow() { return view.indexAt({1, 1}).row(); }
    int rowOf(int logIndex) { return model().rowOfEntry(log.objectAtIndex(logIndex)).value_or(-1); }
    void pair(int later, int earlier) { log.objectAtIndex(later)->setPair(log.objectAtIndex(earlier)); }
    void clickHeader(int column)
    {
        QHeaderView *header = view.horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, header->height() / 2});
    }
};
