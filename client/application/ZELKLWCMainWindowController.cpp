#include "ZELKLWCMainWindowController.h"

#include "ZELKAgentControls.h"
#include "ZELKApplicationWiring.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKRangeControls.h"
#include "ZELKShortDate.h"
#include "ZELKStatusLine.h"
#include "ZELKTailFollower.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QMessageBox>
#include <QPalette>
#include <QStackedWidget>
#include <QTableView>

namespace {

constexpr int defaultWidthInCharacters = 120;
constexpr int defaultHeightInLines = 38;

QString className()
{
    return QStringLiteral("ZELKLWCMainWindowController");
}

QString text(const char *topic)
{
    return ZELKInterfaceLoader::text(className(), ZELKFormat("%@.%s", {className(), topic}));
}

QString geometryKey()
{
    return className() + QStringLiteral(".geometry");
}

std::unique_ptr<QMainWindow> loadWindow(const ZELKBundle &bundle)
{
    std::unique_ptr<QWidget> root = ZELKInterfaceLoader::loadInterface(bundle, className());
    auto *window = qobject_cast<QMainWindow *>(root.get());
    if (!window)
        ZELKAssertion::fail(QStringLiteral("client/") + className(), 0,
                            ZELKFormat("%@ window is not connected.", {className()}));
    [[maybe_unused]] const QWidget *handedOn = root.release();
    return std::unique_ptr<QMainWindow>(window);
}

void openMessage(QWidget *window, QMessageBox::Icon icon, const QString &message, const QString &informative)
{
    auto *box =
        new QMessageBox(icon, QApplication::applicationDisplayName(), message, QMessageBox::Ok, window);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(informative);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::WindowModal);
    box->open();
}

} // namespace

template <typename Type>
Type *ZELKLWCMainWindowController::outlet(const char *name) const
{
    return ZELKInterfaceLoader::outlet<Type>(*m_window, className(), name);
}

ZELKLWCMainWindowController::ZELKLWCMainWindowController(ZELKApplicationWiring &wiring, QObject *parent)
    : QObject(parent)
    , m_wiring(wiring)
    , m_window(loadWindow(*wiring.settings().bundle))
    , m_model(wiring.log())
    , m_table(outlet<QTableView>("table"))
    , m_pages(outlet<QStackedWidget>("pages"))
    , m_emptyLabel(outlet<QLabel>("emptyLabel"))
    , m_statusLine(new ZELKStatusLine(*m_window, wiring))
{
    new ZELKRangeControls(*m_window, wiring.dateRange(), wiring.log());
    new ZELKAgentControls(*m_window, wiring);
    setUpTable();
    setUpActions();
    setUpAgent();
    setUpUserGuide();
    restoreGeometry();
    m_window->installEventFilter(this);
    wiring.delegate().setWindow(m_window.get());
    zelkSetFailureObserver(
        [this](const ZELKAssertionFailure &failure) { m_statusLine->showFailure(failure.message()); });
}

ZELKLWCMainWindowController::~ZELKLWCMainWindowController()
{
    zelkSetFailureObserver({});
    m_wiring.delegate().setWindow(nullptr);
}

void ZELKLWCMainWindowController::setUpTable()
{
    new ZELKTailFollower(*m_table, m_model);
    m_table->setModel(&m_model);
    m_table->horizontalHeader()->setSectionResizeMode(ZELKLWCLogTableModel::DateColumn, QHeaderView::Fixed);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    fitDateColumn();
    const auto update = [this] { zelkGuard([this] { updateEmptyText(); }); };
    connect(&m_wiring.log(), &ZELKLWCLog::visibleEntriesDidChange, this, update);
    connect(&m_wiring.store(), &ZELKLWCStore::logIsBehindChanged, this, update);
    // An empty list looks like a list.
    outlet<QWidget>("emptyPage")->setBackgroundRole(QPalette::Base);
    outlet<QWidget>("emptyPage")->setAutoFillBackground(true);
    m_emptyLabel->setForegroundRole(QPalette::Text);
    updateEmptyText();
}

/// Rows as high and the date column as wide as the font asks for. Dates of one format differ little; the
/// widest of some that have two digits everywhere, in both halves of the day and all months, leaves room for
/// all.
void ZELKLWCMainWindowController::fitDateColumn()
{
    const QFontMetrics metrics = m_table->fontMetrics();
    m_table->verticalHeader()->setDefaultSectionSize(metrics.height() + metrics.height() / 3);
    int widest = metrics.horizontalAdvance(
        m_model.headerData(ZELKLWCLogTableModel::DateColumn, Qt::Horizontal, Qt::DisplayRole).toString());
    constexpr double late = 28.0 * 86400.0 - 1.0; // 28 January 2001, 23:59:59 UTC
    for (int month = 0; month < 12; ++month)
        for (const double halfDay : {0.0, 43200.0})
            widest = std::max(widest, metrics.horizontalAdvance(ZELKShortDate::text(
                                          ZELKDate(late + month * 30.0 * 86400.0 - halfDay))));
    m_table->setColumnWidth(ZELKLWCLogTableModel::DateColumn, widest + 3 * metrics.averageCharWidth());
}

void ZELKLWCMainWindowController::setUpActions()
{
    connect(outlet<QAction>("actionQuit"), &QAction::triggered, m_window.get(), &QWidget::close);
    connect(outlet<QAction>("actionAbout"), &QAction::triggered, this,
            [this] { zelkGuard([this] { showAbout(); }); });
}

void ZELKLWCMainWindowController::setUpAgent()
{
    const ZELKAgentController &agent = m_wiring.agentController();
    connect(&agent, &ZELKAgentController::installedChanged, this,
            [this] { zelkGuard([this] { updateEmptyText(); }); });
    connect(&agent, &ZELKAgentController::errorPresented, this,
            [this](const ZELKAgentError &error) { zelkGuard([&] { presentError(error); }); });
}

void ZELKLWCMainWindowController::setUpUserGuide()
{
    auto *open = outlet<QAction>("actionUserGuide");
    ZELKLWClientAppDelegate &delegate = m_wiring.delegate();
    open->setEnabled(delegate.canOpenUserGuide());
    connect(&delegate, &ZELKLWClientAppDelegate::canOpenUserGuideChanged, open, &QAction::setEnabled);
    connect(open, &QAction::triggered, this,
            [this] { zelkGuard([this] { m_wiring.delegate().openUserGuide(); }); });
}

void ZELKLWCMainWindowController::updateEmptyText()
{
    const ZELKLWCLog &log = m_wiring.log();
    m_pages->setCurrentIndex(log.countOfVisibleEntries() > 0 ? 0 : 1);
    if (log.count() > 0)
        m_emptyLabel->setText(text("empty.range"));
    else if (m_wiring.store().isLogBehind())
        m_emptyLabel->setText(text("empty.unreadable"));
    else if (!m_wiring.settings().knowsAgent())
        m_emptyLabel->setText(text("empty.profile"));
    else
        m_emptyLabel->setText(text(m_wiring.agentController().installed() ? "empty.recording" : "empty"));
}

void ZELKLWCMainWindowController::presentError(const ZELKAgentError &error)
{
    openMessage(m_window.get(), QMessageBox::Warning, error.localisedDescription(), error.underlyingText());
}

void ZELKLWCMainWindowController::showAbout()
{
    const ZELKBundle &bundle = *m_wiring.settings().bundle;
    const QString version = bundle.infoDictionary().string(QStringLiteral("CFBundleVersion"));
    openMessage(m_window.get(), QMessageBox::Information, ZELKFormat(text("about"), {version}),
                text("about.informative"));
}

void ZELKLWCMainWindowController::showWindow()
{
    m_window->show();
    m_table->setFocus();
}

bool ZELKLWCMainWindowController::eventFilter(QObject *watched, QEvent *event)
{
    zelkGuard([&] {
        if (event->type() == QEvent::Close)
            saveGeometry();
        if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
            fitDateColumn();
    });
    return QObject::eventFilter(watched, event);
}

void ZELKLWCMainWindowController::restoreGeometry()
{
    const QFontMetrics metrics = m_window->fontMetrics();
    m_window->resize(defaultWidthInCharacters * metrics.averageCharWidth(),
                     defaultHeightInLines * metrics.lineSpacing());
    m_window->restoreGeometry(m_wiring.defaults().value(geometryKey()).toByteArray());
}

void ZELKLWCMainWindowController::saveGeometry()
{
    m_wiring.defaults().setValue(geometryKey(), m_window->saveGeometry());
}
