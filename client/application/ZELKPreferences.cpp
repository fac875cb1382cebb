#include "ZELKPreferences.h"

#include "ZELKArchive.h"
#include "ZELKAssertion.h"
#include "ZELKColourButton.h"
#include "ZELKDefaultBinding.h"
#include "ZELKInterfaceLoader.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>

#include <utility>

namespace {

constexpr char colourKey[] = "highlightColour";
/// Check boxes by name, and what each sets.
constexpr std::pair<const char *, const char *> switches[] = {
    {"relativeDates", "relativeDates"}, {"eventDetail", "eventDetail"}, {"highlight", "highlight"}};

QString className()
{
    return QStringLiteral("ZELKPreferences");
}

template <typename Type>
Type *outlet(const QWidget &dialog, const char *name)
{
    return ZELKInterfaceLoader::outlet<Type>(dialog, className(), name);
}

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

} // namespace

ZELKPreferences::ZELKPreferences(QWidget &window, const ZELKBundle &bundle, ZELKUserDefaults &defaults)
    : QObject(&window)
    , m_defaults(defaults)
    , m_dialog(ZELKInterfaceLoader::loadDialog(bundle, className(), window,
                                               {ZELKInterfaceLoader::widget<ZELKColourButton>()}))
    , m_colour(outlet<ZELKColourButton>(*m_dialog, "highlightColour"))
{
    for (const auto &[box, setting] : switches)
        ZELKDefaultBinding::bind(*outlet<QCheckBox>(*m_dialog, box), defaults, key(setting));
    bindColour();
    auto *buttons = outlet<QDialogButtonBox>(*m_dialog, "buttons");
    QPushButton *revert =
        buttons->addButton(ZELKInterfaceLoader::text(className(), QStringLiteral("ZELKPreferences.revert")),
                           QDialogButtonBox::ResetRole);
    revert->setObjectName(QStringLiteral("revert"));
    connect(revert, &QPushButton::clicked, this, [this] { zelkGuard([this] { revertToInitialValues(); }); });
    connect(buttons, &QDialogButtonBox::rejected, m_dialog, &QDialog::hide);
}

void ZELKPreferences::bindColour()
{
    connect(m_colour, &ZELKColourButton::colourChosen, this, [this](const QColor &colour) {
        zelkGuard([&] { m_defaults.setValue(key(colourKey), ZELKArchive::archivedColour(colour)); });
    });
    connect(&m_defaults, &ZELKUserDefaults::valueChanged, this,
            [this] { zelkGuard([this] { showColour(); }); });
    showColour();
}

/// Where nothing is highlighted, the colour does not matter.
void ZELKPreferences::showColour()
{
    const bool matters = m_defaults.boolForKey(key("highlight"));
    m_colour->setEnabled(matters);
    outlet<QLabel>(*m_dialog, "highlightColourLabel")->setEnabled(matters);
    if (const auto colour = ZELKArchive::unarchivedColour(m_defaults.value(key(colourKey)).toByteArray()))
        m_colour->setColour(*colour);
}

void ZELKPreferences::revertToInitialValues()
{
    const ZELKDictionary &initial = m_defaults.initialValues();
    for (const auto &[box, setting] : switches)
        m_defaults.setValue(key(setting), initial.value(key(setting)));
    m_defaults.setValue(key(colourKey), initial.value(key(colourKey)));
}

void ZELKPreferences::show()
{
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}
