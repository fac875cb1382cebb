#pragma once

#include "ZELKDatabaseController.h"
#include "ZELKLWAEventPosition.h"
#include "ZELKRawEvent.h"

#include <functional>

class ZELKLWAWaitingEvents;

/// One page of the records: settled events in ascending order, from the file and from those that wait for it.
class ZELKLWAEventPage
{
public:
    /// False stops. The texts are valid only within the handler.
    using Handler = std::function<bool(ZELKLWAEventPosition, const ZELKRawEventView &)>;
    enum class End { Complete, Stopped, Failed };

    ZELKLWAEventPage(ZELKDatabaseController &database, const ZELKLWAWaitingEvents &waiting)
        : m_database(database)
        , m_waiting(waiting)
    {
    }

    /// Shows the events of `range` that stand after `after`, at most `limit`. Failed when a statement did,
    /// which the controller's lastResult() tells of.
    End read(ZELKLWAEventPosition after, const ZELKLWAEventRange &range, int limit, const Handler &handler);

private:
    QString statementFor(const ZELKDictionary &bounds);

    ZELKDatabaseController &m_database;
    const ZELKLWAWaitingEvents &m_waiting;
};
