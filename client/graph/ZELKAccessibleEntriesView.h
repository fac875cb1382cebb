#pragma once

#include <QAccessibleWidget>

class ZELKLWCEntriesView;

/// The timeline graph as assistive programs see it: a chart whose description is made when they ask for it.
class ZELKAccessibleEntriesView : public QAccessibleWidget
{
public:
    explicit ZELKAccessibleEntriesView(ZELKLWCEntriesView *view);

    /// From here on every graph is seen this way. More than once is as good.
    static void install();

    QString text(QAccessible::Text kind) const override;
};
