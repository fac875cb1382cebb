#include "ZELKAccessibleEntriesView.h"

#include "ZELKAssertion.h"
#include "ZELKLWCEntriesView.h"

namespace {

/// Asked along the line of an object's classes, once for each.
QAccessibleInterface *interfaceFor(const QString &className, QObject *object)
{
    auto *view = qobject_cast<ZELKLWCEntriesView *>(object);
    const bool isItsClass = className == QLatin1String(ZELKLWCEntriesView::staticMetaObject.className());
    return view && isItsClass ? new ZELKAccessibleEntriesView(view) : nullptr; // Qt owns it
}

} // namespace

ZELKAccessibleEntriesView::ZELKAccessibleEntriesView(ZELKLWCEntriesView *view)
    : QAccessibleWidget(view, QAccessible::Chart)
{
}

void ZELKAccessibleEntriesView::install()
{
    QAccessible::installFactory(interfaceFor);
}

QString ZELKAccessibleEntriesView::text(QAccessible::Text kind) const
{
    const auto *view = qobject_cast<const ZELKLWCEntriesView *>(widget());
    if (kind != QAccessible::Description || !view)
        return QAccessibleWidget::text(kind);
    QString description;
    zelkGuard([&] { description = view->description(); });
    return description;
}
