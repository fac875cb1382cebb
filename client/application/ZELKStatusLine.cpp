#include "ZELKStatusLine.h"

#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKShortDate.h"

#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QStyle>
#include <QTextDocument>

#include <utility>

namespace {

QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

QString text(const char *topic)
{
    return ZELKInterfaceLoader::text(className(), ZELKFormat("%@.%s", {className(), topic}));
}

QString number(std::uint64_t value)
{
    return ZELKEnvironment::current().locale.toString(qulonglong(value));
}

template <typename Type>
Type *outlet(const QMainWindow &window, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(window, className(), name);
}

} // namespace

ZELKStatusLine::ZELKStatusLine(QMainWindow &window, ZELKApplicationWiring &wiring)
    : QObject(&window)
    , m_wiring(wiring)
    , m_stateLabel(outlet<QLabel>(window, "stateLabel"))
    , m_countLabel(outlet<QLabel>(window, "countLabel"))
    , m_synchronisationLabel(outlet<QLabel>(window, "synchronisationLabel"))
    , m_failureIcon(outlet<QLabel>(window, "failureIcon"))
    , m_failureLine(outlet<QLineEdit>(window, "failureLine"))
{
    const int size = window.style()->pixelMetric(QStyle::PM_SmallIconSize);
    m_failureIcon->setPixmap(window.style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    QPalette plain = m_failureLine->palette();
    plain.setBrush(QPalette::Base, Qt::transparent);
    m_failureLine->setPalette(plain);
    m_synchronisationLabel->setVisible(wiring.settings().knowsAgent());
    clearFailure();
    updateState();
    updateCount();
    m_synchronisationLabel->setText(text("synchronised.never"));
    follow();
}

void ZELKStatusLine::follow()
{
    const auto changed = [this] { zelkGuard([this] { updateState(); }); };
    connect(&m_wiring.agentController(), &ZELKAgentController::stateChanged, this, changed);
    connect(&m_wiring.agentController(), &ZELKAgentController::agentVersionChanged, this, changed);
    connect(&m_wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this,
            [this] { zelkGuard([this] { updateCount(); }); });
    connect(&m_wiring.store(), &ZELKLWCStore::fetchFinished, this,
            [this](bool complete) { zelkGuard([&] { fetchFinished(complete); }); });
}

void ZELKStatusLine::updateState()
{
    const ZELKApplicationSettings &settings = m_wiring.settings();
    const ZELKAgentController &agent = m_wiring.agentController();
    m_stateLabel->setText(settings.knowsAgent() ? agent.localisedState()
                                                : ZELKFormat(text("profile"), {settings.profile}));
    const QString version = agent.agentVersion();
    const bool isKnown = !version.isEmpty() && version != QLatin1String("0");
    QString hint = isKnown ? ZELKFormat(text("version"), {version}) : QString();
    if (!agent.enabled())
        hint = text("remains");
    m_stateLabel->setToolTip(hint.isEmpty() ? hint : Qt::convertFromPlainText(hint));
}

void ZELKStatusLine::updateCount()
{
    const auto all = std::uint64_t(m_wiring.log().count());
    const std::uint64_t visible = m_wiring.log().countOfVisibleEntries();
    QString words;
    if (visible != all)
        words =
            ZELKFormat(text(all == 1 ? "entries.someOfOne" : "entries.some"), {number(visible), number(all)});
    else
        words = all == 1 ? text("entries.one") : ZELKFormat(text("entries.all"), {number(all)});
    m_countLabel->setText(words);
}

void ZELKStatusLine::updateSynchronisation()
{
    const ZELKDate date = m_wiring.store().lastSyncDate();
    m_synchronisationLabel->setText(date > ZELKDate::distantPast()
                                        ? ZELKFormat(text("synchronised"), {ZELKShortDate::text(date)})
                                        : text("synchronised.never"));
}

void ZELKStatusLine::fetchFinished(bool complete)
{
    const QString failure = complete ? QString() : fetchFailure();
    // What was raised on the way says more than that it failed.
    const bool isTold = std::exchange(m_failureIsNew, false);
    if (complete)
        clearFailure();
    else if (!failure.isEmpty() && !isTold)
        showFailure(failure);
    m_failureIsNew = false;
    updateSynchronisation();
}

/// Empty where there is no agent to fetch from.
QString ZELKStatusLine::fetchFailure()
{
    const ZELKDatabaseResult result = m_wiring.store().lastResult();
    if (result.failed())
        return ZELKEnvironment::current().mainBundle->localizedStringForKey(
            ZELKFormat("%@.failure.cache.%d", {className(), result.code}),
            ZELKFormat(text("failure.cache"), {result.code}), className());
    return m_wiring.agentController().installed() ? text("failure.agent") : QString();
}

void ZELKStatusLine::showFailure(const QString &message)
{
    m_failureIsNew = true;
    const QString now = ZELKShortDate::text(ZELKEnvironment::current().clock->now());
    setFailureText(ZELKFormat(text("failure"), {now, message}).simplified());
    m_failureIcon->show();
    m_failureLine->show();
}

void ZELKStatusLine::clearFailure()
{
    setFailureText({});
    m_failureIcon->hide();
    m_failureLine->hide();
}

void ZELKStatusLine::setFailureText(const QString &text)
{
    m_failureLine->setText(text);
    m_failureLine->setCursorPosition(0);
    m_failureLine->setToolTip(text.isEmpty() ? QString() : Qt::convertFromPlainText(text));
}
