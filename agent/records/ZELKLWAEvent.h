#pragma once

#include "ZELKDate.h"
#include "ZELKEventVocabulary.h"

#include <QString>

#include <functional>
#include <vector>

/// One thing that happened, as a watcher saw it.
struct ZELKLWAEvent
{
    ZELKDate date;
    QString event;
    QString monitor;
    /// Property-list text, "NULL" when there are none.
    QString properties = ZELKEventNoProperties;

    friend bool operator==(const ZELKLWAEvent &, const ZELKLWAEvent &) = default;
};

/// Takes what a watcher saw; events given together are recorded together.
using ZELKLWAEventSink = std::function<void(const std::vector<ZELKLWAEvent> &)>;
