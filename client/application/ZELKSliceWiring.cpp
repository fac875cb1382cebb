#include "ZELKSliceWiring.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKMainWindowInterface.h"

#include <QAction>

ZELKSliceWiring::ZELKSliceWiring(QMainWindow &window, ZELKApplicationWiring &wiring,
                                 ZELKLWCLogTableController &table)
    : QObject(&window)
    , m_wiring(wiring)
    , m_slice({wiring.dateRange(), *ZELKMainWindowInterface::outlet<ZELKLWCEntriesView>(window, "graph"),
               wiring.log()})
    , m_dateJump(window, *wiring.settings().bundle, {m_slice, table, wiring.log()})
{
    ZELKLWClientAppDelegate &delegate = wiring.delegate();
    delegate.setVisibleSlice(&m_slice);
    const ZELKBundle &bundle = *wiring.settings().bundle;
    if (wiring.servesBus())
        m_scripting.emplace(
            wiring.bus(), bundle.bundleIdentifier(),
            ZELKScriptObjects::Subject{
                bundle.infoDictionary().string(QStringLiteral("CFBundleVersion")), wiring.log(), m_slice,
                [&delegate](const QString &key) { return delegate.applicationDelegateHandlesKey(key); }});
    auto *jump = ZELKMainWindowInterface::outlet<QAction>(window, "actionJumpToDate");
    const auto validate = [this, jump] {
        zelkGuard([&] {
            jump->setEnabled(m_dateJump.validateMenuItem(ZELKLWCDateJumpController::MenuItem::Show));
        });
    };
    connect(&wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this, validate);
    connect(jump, &QAction::triggered, this, [this] { zelkGuard([this] { m_dateJump.show(); }); });
    validate();
}

ZELKSliceWiring::~ZELKSliceWiring()
{
    m_wiring.delegate().setVisibleSlice(nullptr);
}
