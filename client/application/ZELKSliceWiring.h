#pragma once

#include "ZELKLWCDateJumpController.h"
#include "ZELKLWCLogSlice.h"
#include "ZELKScriptingService.h"

#include <optional>

class QMainWindow;
class ZELKApplicationWiring;

/// The range that is shown as scripts know it and as the sheet for jumping sets it.
class ZELKSliceWiring : public QObject
{
    Q_OBJECT

public:
    /// All that is given outlives this object.
    ZELKSliceWiring(QMainWindow &window, ZELKApplicationWiring &wiring, ZELKLWCLogTableController &table);
    ~ZELKSliceWiring() override;

    ZELKLWCDateJumpController &dateJump() { return m_dateJump; }

private:
    ZELKApplicationWiring &m_wiring;
    ZELKLWCLogSlice m_slice;
    ZELKLWCDateJumpController m_dateJump;
    std::optional<ZELKScriptingService> m_scripting; // of a run that serves
};
