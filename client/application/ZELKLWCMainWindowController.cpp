#include "ZELKLWCMainWindowController.h"

#include "ZELKAgentControls.h"
#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKEmptyPage.h"
#include "ZELKEnvironment.h"
#include "ZELKExportActions.h"
#include "ZELKHelpMenu.h"
#include "ZELKInspectorWiring.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLogTableView.h"
#include "ZELKLWCWelcomeController.h"
#include "ZELKMainMenu.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKMessage.h"
#include "ZELKPrintActions.h"
#include "ZELKRangeControls.h"
#include "ZELKSearchControls.h"
#include "ZELKSearchField.h"
#include "ZELKSliceWiring.h"
#include "ZELKSplitterKeys.h"
#include "ZELKStatusLine.h"
#include "ZELKTableActions.h"
#include "ZELKToolBar.h"
#include "ZELKWindowLook.h"
#include "ZELKWindowState.h"

#include <QAction>
#include <QEvent>
#include <QHeaderView>
#include <QMainWindow>
#include <QSplitter>
#include <QStackedWidget>

#include <utility>

namespace {

using ZELKMainWindowInterface::text;

std::unique_ptr<QMainWindow> loadWindow(const ZELKBundle &bundle)
{
    return ZELKInterfaceLoader::loadWindow<QMainWindow>(bundle, ZELKMainWindowInterface::className(),
                                                        {ZELKInterfaceLoader::widget<ZELKLWCEntriesView>(),
                                                         ZELKInterfaceLoader::widget<ZELKLWCLogTableView>(),
                                                         ZELKInterfaceLoader::widget<ZELKSearchField>()});
}

/// As much of it as fits into a headline.
QString searchedText(const ZELKLWCLogTableController &table)
{
    constexpr int longest = 40;
    const QString text = table.filterString().simplified();
    return text.size() > longest ? text.first(longest) + QChar(0x2026) : text;
}

} // namespace

template <typename Type>
Type *ZELKLWCMainWindowController::outlet(const char *name) const
{
    return ZELKMainWindowInterface::outlet<Type>(*m_window, name);
}

ZELKLWCMainWindowController::Parts::~Parts()
{
    while (!made.empty())
        made.pop_back();
}

template <typename Part, typename... Outlets>
Part *ZELKLWCMainWindowController::makePart(Outlets &&...outlets)
{
    auto part = std::make_unique<Part>(*m_window, std::forward<Outlets>(outlets)...);
    Part *made = part.get();
    m_parts.made.push_back(std::move(part));
    return made;
}

ZELKLWCMainWindowController::ZELKLWCMainWindowController(ZELKApplicationWiring &wiring, QObject *parent)
    : QObject(parent)
    , m_wiring(wiring)
    , m_window(loadWindow(*wiring.settings().bundle))
    , m_table(*m_window, wiring)
    , m_emptyPage(makePart<ZELKEmptyPage>())
    , m_state(makePart<ZELKWindowState>(*m_table.view().horizontalHeader(), wiring.defaults()))
{
    makeParts();
    follow();
    fitFont();
    updatePage();
    m_state->restore();
    m_window->installEventFilter(this);
    wiring.delegate().setWindow(m_window.get());
    zelkSetFailureObserver(
        [this](const ZELKAssertionFailure &failure) { m_statusLine->showFailure(failure.message()); });
}

ZELKLWCMainWindowController::~ZELKLWCMainWindowController()
{
    zelkSetFailureObserver({});
    outlet<ZELKLWCEntriesView>("graph")->setListedEntries({}); // the table ends before the graph
    m_wiring.delegate().setWindow(nullptr);
    m_wiring.delegate().setWelcomeController(nullptr);
}

void ZELKLWCMainWindowController::makeParts()
{
    const ZELKBundle &bundle = *m_wiring.settings().bundle;
    auto *toolBar = makePart<ZELKToolBar>(bundle);
    makePart<ZELKRangeControls>(bundle, m_wiring.dateRange(), m_wiring.log());
    makePart<ZELKAgentControls>(m_wiring);
    makePart<ZELKHelpMenu>(m_wiring); // before the main menu, which shows all hints
    makePart<ZELKMainMenu>(m_wiring);
    m_inspector = makePart<ZELKInspectorWiring>(m_wiring, m_table);
    toolBar->fill();
    new ZELKSplitterKeys(*outlet<QSplitter>("parts"), text("splitter"));
    orderTabs(toolBar->controls());
    auto *slice = makePart<ZELKSliceWiring>(m_wiring, m_table.controller());
    makePart<ZELKTableActions>(m_table.controller(), m_table.view(), slice->dateJump());
    makePart<ZELKExportActions>(m_wiring);
    makePart<ZELKPrintActions>(m_wiring.dateRange(), m_table.controller(), m_table.view());
    makePart<ZELKSearchControls>(m_table.controller(), m_table.view(), m_wiring.log());
    connectGraph();
    m_statusLine = makePart<ZELKStatusLine>(m_wiring);
    const auto *look = makePart<ZELKWindowLook>();
    connect(look, &ZELKWindowLook::measured, this, [this] { zelkGuard([this] { fitFont(); }); });
}

/// The table goes to the entry nearest to the date that is chosen in the graph.
void ZELKLWCMainWindowController::connectGraph()
{
    auto *graph = outlet<ZELKLWCEntriesView>("graph");
    graph->setLog(&m_wiring.log());
    graph->setDateRange(&m_wiring.dateRange());
    const ZELKLWCLogTableModel &rows = m_table.controller().model();
    graph->setListedEntries([&rows](ZELKDate date) { return rows.neighboursOfDate(date); });
    graph->awakeFromNib();
    connect(graph, &ZELKLWCEntriesView::selectionDidChange, this,
            [this, graph] { zelkGuard([&] { m_table.controller().selectEntryByDate(graph); }); });
    m_welcome = new ZELKLWCWelcomeController({m_wiring.agentController(), *graph, m_wiring.log()}, graph);
    m_welcome->awakeFromNib();
    m_wiring.delegate().setWelcomeController(m_welcome);
}

/// As they stand: the tool bar, then what is below it.
void ZELKLWCMainWindowController::orderTabs(QList<QWidget *> controls) const
{
    for (const char *name : {"filterField", "graph", "partsHandle", "table", "emptyButton", "failureLine"})
        controls.append(outlet<QWidget>(name));
    for (qsizetype i = 1; i < controls.size(); ++i)
        QWidget::setTabOrder(controls.at(i - 1), controls.at(i));
}

void ZELKLWCMainWindowController::fitFont()
{
    m_table.fitFont(*m_state);
}

void ZELKLWCMainWindowController::follow()
{
    const auto update = [this] { zelkGuard([this] { updatePage(); }); };
    const ZELKAgentController &agent = m_wiring.agentController();
    connect(&m_wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this, update);
    connect(&m_table.controller().model(), &ZELKLWCLogTableModel::didRearrange, this, update);
    connect(&m_wiring.defaults(), &ZELKUserDefaults::valueChanged, this, [this](const QString &key) {
        zelkGuard([&] {
            if (key == QLatin1String("relativeDates"))
                fitFont();
        });
    });
    connect(&m_wiring.store(), &ZELKLWCStore::logIsBehindChanged, this, update);
    connect(&agent, &ZELKAgentController::installedChanged, this, update);
    connect(&agent, &ZELKAgentController::enabledChanged, this, update);
    connect(&agent, &ZELKAgentController::errorPresented, this,
            [this](const ZELKAgentError &error) { zelkGuard([&] { presentError(error); }); });
}

void ZELKLWCMainWindowController::updatePage()
{
    const bool isEmpty = m_hasFinishedLaunching && m_table.controller().model().rowCount() == 0;
    if (isEmpty)
        showEmptyPage();
    outlet<ZELKLWCEntriesView>("graph")->setVisible(hasPicture());
    outlet<QStackedWidget>("pages")->setCurrentIndex(isEmpty ? 1 : 0);
}

/// The graph gives its room away only where nothing will come: what came and went while a window starts, or
/// while recording begins, would flicker.
bool ZELKLWCMainWindowController::hasPicture() const
{
    const bool canGrow = m_wiring.settings().knowsAgent() && !m_wiring.store().isLogBehind();
    return !m_hasFinishedLaunching || m_wiring.log().count() > 0 || canGrow;
}

void ZELKLWCMainWindowController::showEmptyPage()
{
    const ZELKLWCLog &log = m_wiring.log();
    if (log.countOfVisibleEntries() > 0)
        m_emptyPage->show({QStringLiteral("unmatched"),
                           ZELKFormat(text("empty.search"), {searchedText(m_table.controller())}),
                           text("empty.search.hint"), outlet<QAction>("actionClearSearch")});
    else if (log.count() > 0)
        m_emptyPage->show({QStringLiteral("no-entries"), text("empty.range"), text("empty.range.hint"),
                           outlet<QAction>("actionRange8"), text("empty.range.show")});
    else
        showPageOfEmptyLog();
}

/// What starts the recording is told by the welcome, and stands in the tool bar; who is not sure yet may look
/// at a made-up log.
void ZELKLWCMainWindowController::showPageOfEmptyLog()
{
    const ZELKAgentController &agent = m_wiring.agentController();
    const QString symbol = QStringLiteral("asleep");
    if (m_wiring.store().isLogBehind())
        m_emptyPage->show(
            {QStringLiteral("warning"), text("empty.unreadable"), text("empty.unreadable.hint")});
    else if (!m_wiring.settings().knowsAgent())
        m_emptyPage->show({symbol, text("empty.profile"), text("empty.profile.hint")});
    else if (!agent.installed())
        m_emptyPage->show(
            {symbol, text("empty"), text("empty.hint"), outlet<QAction>("actionOpenSampleLog")});
    else if (agent.enabled())
        m_emptyPage->show({symbol, text("empty.recording"), text("empty.recording.hint")});
    else
        m_emptyPage->show({symbol, text("empty"), text("empty.silent.hint")});
}

void ZELKLWCMainWindowController::presentError(const ZELKAgentError &error)
{
    ZELKMessage::open(*m_window, QMessageBox::Warning, error.localisedDescription(), error.underlyingText());
}

void ZELKLWCMainWindowController::showWindow()
{
    m_window->show();
    m_table.view().setFocus();
}

void ZELKLWCMainWindowController::applicationDidFinishLaunching()
{
    m_hasFinishedLaunching = true;
    m_inspector->applicationDidFinishLaunching();
    m_welcome->applyLogLabels();
    updatePage();
}

bool ZELKLWCMainWindowController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Close)
        zelkGuard([this] { saveState(); });
    return QObject::eventFilter(watched, event);
}

void ZELKLWCMainWindowController::saveState()
{
    m_state->save();
    m_inspector->saveState();
}
