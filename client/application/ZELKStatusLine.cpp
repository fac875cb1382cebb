#include "ZELKStatusLine.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKElidedLabel.h"
#include "ZELKEnvironment.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKShortDate.h"
#include "ZELKSymbolLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QStatusBar>
#include <QTextDocument>

#include <utility>

namespace {

QString symbolOf(const ZELKAgentController &agent)
{
    if (!agent.enabled() || agent.state() == ZELKAgentController::Inconsistent)
        return QStringLiteral("state-broken");
    return agent.installed() ? QStringLiteral("state-recording") : QStringLiteral("state-idle");
}

} // namespace

ZELKStatusLine::ZELKStatusLine(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_wiring(wiring)
    , m_dates(wiring.defaults())
    , m_stateIcon(ZELKMainWindowInterface::make<ZELKSymbolLabel>(&window, "stateIcon"))
    , m_stateLabel(ZELKMainWindowInterface::make<QLabel>(&window, "stateLabel"))
    , m_countLabel(ZELKMainWindowInterface::make<QLabel>(&window, "countLabel"))
    , m_synchronisationLabel(ZELKMainWindowInterface::make<ZELKElidedLabel>(&window, "synchronisationLabel"))
    , m_failure(ZELKMainWindowInterface::outlet<QWidget>(window, "failure"))
    , m_failureLine(ZELKMainWindowInterface::outlet<QLineEdit>(window, "failureLine"))
{
    QPalette plain; // all else is the application's, light or dark
    plain.setBrush(QPalette::Base, Qt::transparent);
    m_failureLine->setPalette(plain);
    m_dates.awakeFromNib();
    fillStatusBar(window);
    clearFailure();
    updateState();
    updateCount();
    m_synchronisationLabel->setFullText(
        ZELKMainWindowInterface::text("synchronised.never")); // the cache is not open yet
    follow();
}

/// What the agent does makes room for the hints of menus; the rest stays.
void ZELKStatusLine::fillStatusBar(QMainWindow &window)
{
    auto *state = ZELKMainWindowInterface::make<QWidget>(&window, "state");
    auto *layout = new QHBoxLayout(state);
    layout->setContentsMargins({});
    layout->addWidget(m_stateIcon);
    layout->addWidget(m_stateLabel);
    for (QLabel *label : {m_stateLabel, m_countLabel})
        label->setTextFormat(Qt::PlainText);
    window.statusBar()->addWidget(state);
    window.statusBar()->addPermanentWidget(m_countLabel);
    window.statusBar()->addPermanentWidget(m_synchronisationLabel);
    m_synchronisationLabel->setVisible(m_wiring.settings().knowsAgent());
}

void ZELKStatusLine::follow()
{
    const auto changed = [this] { zelkGuard([this] { updateState(); }); };
    connect(&m_wiring.agentController(), &ZELKAgentController::stateChanged, this, changed);
    connect(&m_wiring.agentController(), &ZELKAgentController::enabledChanged, this,
            changed); // comes after it
    connect(&m_wiring.agentController(), &ZELKAgentController::agentVersionChanged, this, changed);
    connect(&m_wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this,
            [this] { zelkGuard([this] { updateCount(); }); });
    connect(&m_wiring.store(), &ZELKLWCStore::fetchFinished, this,
            [this](bool complete) { zelkGuard([&] { fetchFinished(complete); }); });
    const auto datesChanged = [this] { zelkGuard([this] { updateSynchronisation(); }); };
    connect(&m_dates, &ZELKLWCRelativeDateFormatter::relativeDatesChanged, this, datesChanged);
    connect(&m_wiring.dateRange().passingMidnightTimer(), &ZELKWallClockTimer::fired, this, datesChanged);
}

void ZELKStatusLine::updateState()
{
    const ZELKApplicationSettings &settings = m_wiring.settings();
    const ZELKAgentController &agent = m_wiring.agentController();
    m_stateIcon->setSymbol(settings.knowsAgent() ? symbolOf(agent) : QStringLiteral("state-idle"));
    m_stateLabel->setText(settings.knowsAgent()
                              ? agent.localisedState()
                              : ZELKFormat(ZELKMainWindowInterface::text("profile"), {settings.profile}));
    const QString version = agent.agentVersion();
    const bool isKnown = !version.isEmpty() && version != QLatin1String("0");
    QString hint = isKnown ? ZELKFormat(ZELKMainWindowInterface::text("version"), {version}) : QString();
    if (!agent.enabled())
        hint = ZELKMainWindowInterface::text("remains");
    m_stateLabel->setToolTip(hint.isEmpty() ? hint : Qt::convertFromPlainText(hint));
}

void ZELKStatusLine::updateCount()
{
    const auto all = std::uint64_t(m_wiring.log().count());
    const std::uint64_t visible = m_wiring.log().countOfVisibleEntries();
    QString words;
    if (visible != all)
        words = ZELKFormat(ZELKMainWindowInterface::text(all == 1 ? "entries.someOfOne" : "entries.some"),
                           {ZELKMainWindowInterface::number(visible), ZELKMainWindowInterface::number(all)});
    else
        words = all == 1 ? ZELKMainWindowInterface::text("entries.one")
                         : ZELKFormat(ZELKMainWindowInterface::text("entries.all"),
                                      {ZELKMainWindowInterface::number(all)});
    m_countLabel->setText(words);
}

/// Until the agent was asked in this run, what the store remembers is the best that is known.
void ZELKStatusLine::updateSynchronisation()
{
    const ZELKDate date = qMax(m_synchronised, m_wiring.store().lastSyncDate());
    const bool isKnown = date > ZELKDate::distantPast();
    m_synchronisationLabel->setFullText(
        isKnown ? ZELKFormat(ZELKMainWindowInterface::text("synchronised"),
                             {m_dates.stringForObjectValue(QVariant::fromValue(date))})
                : ZELKMainWindowInterface::text("synchronised.never"));
}

void ZELKStatusLine::fetchFinished(bool complete)
{
    const QString failure = complete ? QString() : fetchFailure();
    // What was raised on the way says more than that it failed.
    const bool isTold = std::exchange(m_failureIsNew, false);
    if (complete) {
        m_synchronised = ZELKEnvironment::current().clock->now();
        clearFailure();
    } else if (!failure.isEmpty() && !isTold) {
        showFailure(failure);
    }
    m_failureIsNew = false;
    updateSynchronisation();
}

/// Empty where there is no agent to fetch from.
QString ZELKStatusLine::fetchFailure()
{
    const ZELKDatabaseResult result = m_wiring.store().lastResult();
    if (result.failed())
        return ZELKEnvironment::current().mainBundle->localizedStringForKey(
            ZELKFormat("%@.failure.cache.%d", {ZELKMainWindowInterface::className(), result.code}),
            ZELKFormat(ZELKMainWindowInterface::text("failure.cache"), {result.code}),
            ZELKMainWindowInterface::className());
    return m_wiring.agentController().installed() ? ZELKMainWindowInterface::text("failure.agent")
                                                  : QString();
}

void ZELKStatusLine::showFailure(const QString &message)
{
    m_failureIsNew = true;
    const QString now = ZELKShortDate::text(ZELKEnvironment::current().clock->now());
    setFailureText(ZELKFormat(ZELKMainWindowInterface::text("failure"), {now, message}).simplified());
    m_failure->show();
}

void ZELKStatusLine::clearFailure()
{
    setFailureText({});
    m_failure->hide();
}

void ZELKStatusLine::setFailureText(const QString &text)
{
    m_failureLine->setText(text);
    m_failureLine->setCursorPosition(0);
    m_failureLine->setToolTip(text.isEmpty() ? QString() : Qt::convertFromPlainText(text));
}
