#include "ZELKInstallAlertView.h"

#include "ZELKAgentInstallation.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKInterfaceLoader.h"

#include <QComboBox>
#include <QLabel>
#include <QStandardItemModel>

namespace {

constexpr char tagsProperty[] = "tags";

QString text(const QString &topic)
{
    const QString table = QStringLiteral("ZELKAgentController");
    return ZELKInterfaceLoader::text(table, table + QStringLiteral(".install.") + topic);
}

QString text(const char *format, int tag)
{
    return text(ZELKFormat(format, {tag}));
}

/// A place that this version does not know is left to whoever reads the tag.
bool isOffered(int tag, const ZELKAgentInstallation &agent)
{
    if (tag == ZELKAgentAlert::ForAllUsers)
        return agent.isAvailable(ZELKServiceDomain::System);
    if (tag == ZELKAgentAlert::ForThisUser)
        return agent.isAvailable(ZELKServiceDomain::User);
    return true;
}

QWidget *loadView(const QString &interfaceName, QWidget *parent)
{
    std::unique_ptr<QWidget> root =
        ZELKInterfaceLoader::loadIfSound(*ZELKEnvironment::current().mainBundle, interfaceName);
    if (!root)
        ZELKAgentAlert::failWithoutInterface();
    const QString name = QStringLiteral("installAlertAccessoryView");
    QWidget *view = root->objectName() == name ? root.get() : root->findChild<QWidget *>(name);
    if (!view)
        ZELKAgentAlert::failWithoutView();
    view->setParent(parent);
    if (view == root.get()) {
        [[maybe_unused]] const QWidget *handedOn = root.release();
    }
    return view;
}

QComboBox *popUpOf(const QWidget &view)
{
    auto *popUp = view.findChild<QComboBox *>(QStringLiteral("installAlertLocationButton"));
    if (!popUp)
        ZELKAgentAlert::failWithoutChoice();
    return popUp;
}

} // namespace

ZELKInstallAlertView::ZELKInstallAlertView(const QString &interfaceName, const ZELKAgentInstallation &agent,
                                           QWidget *parent)
    : QObject(parent)
    , m_view(loadView(interfaceName, parent))
    , m_popUp(popUpOf(*m_view))
    , m_meaning(m_view->findChild<QLabel *>(QStringLiteral("installAlertMeaningLabel")))
    , m_absence(m_view->findChild<QLabel *>(QStringLiteral("installAlertAbsenceLabel")))
{
    fillPopUp(agent);
    showAbsence();
    showMeaning();
    connect(m_popUp, &QComboBox::currentIndexChanged, this, [this] { zelkGuard([this] { showMeaning(); }); });
}

/// The interface file can give a pop-up its items, but not their tags; so it names the tags, and the items'
/// texts follow from them.
void ZELKInstallAlertView::fillPopUp(const ZELKAgentInstallation &agent)
{
    int firstOffer = -1;
    for (const QString &number : m_popUp->property(tagsProperty).toStringList()) {
        const int tag = number.toInt();
        m_popUp->addItem(text("location.%d", tag), tag);
        const int index = m_popUp->count() - 1;
        if (!isOffered(tag, agent))
            disable(index);
        else if (firstOffer < 0)
            firstOffer = index;
    }
    m_popUp->setPlaceholderText(text(QStringLiteral("location.none")));
    m_popUp->setCurrentIndex(firstOffer);
    m_popUp->setEnabled(firstOffer >= 0);
}

void ZELKInstallAlertView::disable(int index)
{
    if (auto *items = qobject_cast<QStandardItemModel *>(m_popUp->model())) {
        items->item(index)->setEnabled(false);
        items->item(index)->setToolTip(text("absent.%d", m_popUp->itemData(index).toInt()));
    }
}

void ZELKInstallAlertView::showAbsence()
{
    QStringList reasons;
    for (int index = 0; index < m_popUp->count(); ++index)
        if (!(m_popUp->model()->flags(m_popUp->model()->index(index, 0)) & Qt::ItemIsEnabled))
            reasons.append(text("absent.%d", m_popUp->itemData(index).toInt()));
    if (!hasOffer())
        reasons = {text(QStringLiteral("absent"))};
    if (!m_absence)
        return;
    m_absence->setText(reasons.join(QLatin1Char(' ')));
    m_absence->setVisible(!reasons.isEmpty());
}

void ZELKInstallAlertView::showMeaning()
{
    const QString meaning = hasOffer() ? text("location.%d.meaning", locationTag()) : QString();
    m_popUp->setAccessibleDescription(meaning);
    if (!m_meaning)
        return;
    m_meaning->setText(meaning);
    m_meaning->setVisible(!meaning.isEmpty());
}

int ZELKInstallAlertView::locationTag() const
{
    return m_popUp->currentData().toInt();
}

bool ZELKInstallAlertView::hasOffer() const
{
    return m_popUp->currentIndex() >= 0;
}
