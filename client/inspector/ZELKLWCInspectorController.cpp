#include "ZELKLWCInspectorController.h"

#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInspectorKind.h"
#include "ZELKInspectorStack.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCDateRangeController.h"
#include "ZELKLWCInspectorWindow.h"
#include "ZELKLWCLog.h"
#include "ZELKLWCLogTableController.h"
#include "ZELKNotificationQueue.h"
#include "ZELKUserDefaults.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int codeOfNib = 66;

QString className()
{
    return QStringLiteral("ZELKLWCInspectorController");
}

/// The notification that the panel is out of date.
QString didChange()
{
    return className() + QStringLiteral(".didChange");
}

QString text(const char *key)
{
    return ZELKInterfaceLoader::text(className(), QString::fromLatin1(key));
}

} // namespace

ZELKLWCInspectorController::ZELKLWCInspectorController(const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_outlets(outlets)
{
}

/// The panel that goes with the program is not hidden: it will be back.
ZELKLWCInspectorController::~ZELKLWCInspectorController()
{
    if (!m_inspectorWindow)
        return;
    zelkGuard([this] { saveFrame(); });
    m_subViewControllers.clear();
    delete m_inspectorWindow;
}

// MARK: waking up

void ZELKLWCInspectorController::awakeFromNib()
{
    m_subViewControllers.clear();
    QCoreApplication::instance()->installEventFilter(this);
    const auto changed = [this] { zelkGuard([this] { observedValueDidChange(); }); };
    const ZELKLWCLogTableController &table = m_outlets.tableController;
    const ZELKLWCLogTableModel &model = m_outlets.tableController.model();
    connect(&table, &ZELKLWCLogTableController::showInformationPanel, this,
            [this] { zelkGuard([this] { showInformationPanel(); }); });
    connect(&m_outlets.queue, &ZELKNotificationQueue::posted, this, [this](const QString &name) {
        zelkGuard([&] {
            if (name == didChange())
                inspectorSelectionCoalescedDidChange();
        });
    });
    connect(&m_outlets.dateRange, &ZELKLWCDateRangeController::absoluteDurationChanged, this, changed);
    connect(&table, &ZELKLWCLogTableController::selectionDidChange, this, changed);
    // Rows come and go with these, and what is listed already may be repeated.
    connect(&m_outlets.log, &ZELKLWCLog::visibleEntriesDidChange, this, changed);
    connect(&model, &ZELKLWCLogTableModel::didRearrange, this, changed);
}

void ZELKLWCInspectorController::applicationDidFinishLaunching()
{
    if (m_outlets.defaults.boolForKey(visibleKey))
        QTimer::singleShot(0, this, [this] { zelkGuard([this] { showInformationPanel(); }); });
}

void ZELKLWCInspectorController::loadInspectorFromNib()
{
    std::unique_ptr<QWidget> root =
        ZELKInterfaceLoader::loadIfSound(*ZELKEnvironment::current().mainBundle, className(),
                                         {ZELKInterfaceLoader::widget<ZELKLWCInspectorWindow>()});
    auto *panel = qobject_cast<ZELKLWCInspectorWindow *>(root.get());
    if (!panel)
        ZELKAssertion::fail(QStringLiteral("client/") + className(), codeOfNib,
                            ZELKFormat("Unable to load %@ nib.", {className()}));
    m_containerView = ZELKInterfaceLoader::outlet<QWidget>(*panel, className(), "containerView");
    [[maybe_unused]] const QWidget *handedOn = root.release();
    m_inspectorWindow = panel;
    panel->setDefaults(&m_outlets.defaults);
    panel->floatOver(m_outlets.window);
    panel->setFrameUsingName(frameName);
    connect(panel, &ZELKLWCInspectorWindow::lookChanged, this,
            [this] { zelkGuard([this] { lookDidChange(); }); });
    bindVisible();
}

void ZELKLWCInspectorController::bindVisible()
{
    connect(m_inspectorWindow, &ZELKLWCInspectorWindow::visibleChanged, this,
            [this](bool isVisible) { zelkGuard([&] { panelBecameVisible(isVisible); }); });
    connect(&m_outlets.defaults, &ZELKUserDefaults::valueChanged, this, [this](const QString &key) {
        zelkGuard([&] {
            if (key != visibleKey || m_outlets.defaults.boolForKey(visibleKey) == isVisible())
                return;
            if (isVisible())
                hideInformationPanel();
            else
                showInformationPanel();
        });
    });
}

// MARK: the panel

ZELKLWCInspectorWindow &ZELKLWCInspectorController::inspectorWindow()
{
    if (!m_inspectorWindow)
        loadInspectorFromNib();
    return *m_inspectorWindow;
}

QWidget &ZELKLWCInspectorController::containerView()
{
    if (!m_containerView)
        loadInspectorFromNib();
    return *m_containerView;
}

bool ZELKLWCInspectorController::isVisible() const
{
    return m_inspectorWindow && m_inspectorWindow->isVisible();
}

/// It is filled first, so that it appears in the size of its contents.
void ZELKLWCInspectorController::showInformationPanel()
{
    ZELKLWCInspectorWindow &panel = inspectorWindow();
    updateContents();
    panel.show();
    panel.raise();
}

void ZELKLWCInspectorController::hideInformationPanel()
{
    if (isVisible())
        m_inspectorWindow->close();
}

void ZELKLWCInspectorController::saveFrame() const
{
    if (m_inspectorWindow)
        m_inspectorWindow->saveFrameUsingName(frameName);
}

void ZELKLWCInspectorController::panelBecameVisible(bool isVisible)
{
    if (!isVisible)
        saveFrame();
    if (m_outlets.defaults.boolForKey(visibleKey) != isVisible && !m_isEnding)
        m_outlets.defaults.setValue(visibleKey, isVisible);
    Q_EMIT visibleChanged(isVisible);
}

/// A program that is to end closes its windows: that hides the panel, but nobody wanted it hidden.
bool ZELKLWCInspectorController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Quit) {
        m_isEnding = true;
        QTimer::singleShot(0, this, [this] { zelkGuard([this] { programGoesOn(); }); });
    }
    return QObject::eventFilter(watched, event);
}

/// Somebody would not let it end.
void ZELKLWCInspectorController::programGoesOn()
{
    if (!m_outlets.window.isVisible())
        return;
    m_isEnding = false;
    if (m_outlets.defaults.boolForKey(visibleKey) && !isVisible())
        showInformationPanel();
}

// MARK: following

void ZELKLWCInspectorController::observedValueDidChange()
{
    if (!isVisible())
        return;
    m_outlets.queue.dequeue(didChange());
    m_outlets.queue.enqueue(didChange());
}

void ZELKLWCInspectorController::inspectorSelectionCoalescedDidChange()
{
    if (isVisible())
        updateContents();
}

void ZELKLWCInspectorController::lookDidChange()
{
    m_isUpToDate = false;
    observedValueDidChange();
}

// MARK: contents

ZELKLWCInspectorController::Parts ZELKLWCInspectorController::parts() const
{
    const QList<ZELKLWCLogEntry *> selected = m_outlets.tableController.selectedObjects();
    if (selected.isEmpty())
        return {};
    const auto selection = std::make_shared<const ZELKLWCLogEntrySelection>(selected);
    Parts parts{{text("Summary"), QVariant::fromValue(selection), text("Event")}};
    if (selected.size() == 1)
        parts.front().repetitions = selected.constFirst()->duplicates().size();
    for (const QString &key : selection->attributes())
        if (const QVariant value = selection->attributeForKey(key); value.isValid())
            parts.push_back({key, value, key});
    return parts;
}

/// What is shown already stays as it is, with what the user may have selected in it.
bool ZELKLWCInspectorController::isShown(const Parts &parts) const
{
    const auto isSame = [](const Part &a, const Part &b) {
        return a.label == b.label && a.key == b.key && a.repetitions == b.repetitions &&
               ZELKInspectorValue::isSame(a.value, b.value);
    };
    return m_isUpToDate && std::equal(parts.begin(), parts.end(), m_shown.begin(), m_shown.end(), isSame);
}

/// Then it is looked at where it was.
bool ZELKLWCInspectorController::hasSameSelection(const Parts &parts) const
{
    return !parts.empty() && !m_shown.empty() &&
           ZELKInspectorValue::isSame(parts.front().value, m_shown.front().value);
}

void ZELKLWCInspectorController::updateContents()
{
    using SubViewController = ZELKLWCInspectorSubViewController;
    Parts wanted = parts();
    if (!isShown(wanted)) {
        const int position = hasSameSelection(wanted) ? inspectorWindow().scrollPosition() : 0;
        const bool hasKeys = inspectorWindow().isAncestorOf(QApplication::focusWidget());
        removeAllSubViewControllers();
        if (wanted.empty())
            addSubViewController(
                SubViewController::inspectorSubViewControllerWithMessage(text("No Selection")));
        for (const Part &part : wanted) {
            addSubViewController(SubViewController::inspectorSubViewControllerWithLabel(part.label));
            addSubViewController(
                SubViewController::inspectorSubViewControllerWithAttributeValue(part.value, part.key));
        }
        m_shown = std::move(wanted);
        m_isUpToDate = true;
        layoutSubViewControllers();
        if (hasKeys)
            inspectorWindow().takeKeys();
        inspectorWindow().setScrollPosition(position);
    }
    Q_EMIT didUpdateContents();
}

void ZELKLWCInspectorController::addSubViewController(ZELKLWCInspectorSubViewController::Pointer controller)
{
    m_isUpToDate = false;
    m_subViewControllers.push_back(std::move(controller));
}

void ZELKLWCInspectorController::removeSubViewController(const ZELKLWCInspectorSubViewController *controller)
{
    m_isUpToDate = false;
    std::erase_if(m_subViewControllers, [controller](const auto &held) { return held.get() == controller; });
}

void ZELKLWCInspectorController::removeAllSubViewControllers()
{
    m_isUpToDate = false;
    m_subViewControllers.clear();
}

/// All are as wide as the widest, and as high as they are at that width.
void ZELKLWCInspectorController::layoutSubViewControllers()
{
    QWidget &container = containerView();
    int width = 0;
    for (const auto &controller : m_subViewControllers)
        if (const QWidget *view = controller->view())
            width = std::max(width, view->sizeHint().width());
    std::vector<std::optional<QSizeF>> sizes;
    for (const auto &controller : m_subViewControllers) {
        const QWidget *view = controller->view();
        sizes.push_back(
            view ? std::optional(QSizeF(width, view->hasHeightForWidth() ? view->heightForWidth(width)
                                                                         : view->sizeHint().height()))
                 : std::nullopt);
    }
    const ZELKInspectorStack stack = ZELKInspectorStack::of(sizes);
    container.resize(stack.size().toSize());
    for (std::size_t i = 0; i < m_subViewControllers.size(); ++i) {
        QWidget *view = m_subViewControllers[i]->view();
        if (!view)
            continue;
        view->setParent(&container);
        view->setGeometry(stack.frames[i].turned(double(stack.height)).toRect());
        view->show();
        followCaret(*view);
    }
    inspectorWindow().fitContent(stack.size());
}

void ZELKLWCInspectorController::followCaret(const QWidget &view)
{
    for (const auto *shown : view.findChildren<ZELKInspectorTextView *>())
        connect(shown, &ZELKInspectorTextView::caretMoved, m_inspectorWindow,
                [this, shown](const QRect &place) {
                    zelkGuard([&] {
                        const QPoint corner = shown->viewport()->mapTo(m_containerView, place.topLeft());
                        m_inspectorWindow->showContent({corner, place.size()});
                    });
                });
}
