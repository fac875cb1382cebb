#include "ZELKAboutPanel.h"

#include "ZELKBundle.h"
#include "ZELKInterfaceLoader.h"

#include <QDialog>
#include <QLabel>
#include <QtGlobal>

#include <memory>

namespace {

constexpr int iconSide = 96;

QString className()
{
    return QStringLiteral("ZELKAboutPanel");
}

QLabel &label(const QWidget &panel, const char *name)
{
    return *ZELKInterfaceLoader::outlet<QLabel>(panel, className(), name);
}

} // namespace

ZELKAboutPanel::ZELKAboutPanel(const ZELKBundle &bundle, const QIcon &icon)
    : m_bundle(bundle)
    , m_icon(icon)
{
}

ZELKAboutPanel::~ZELKAboutPanel()
{
    delete m_panel;
}

QDialog *ZELKAboutPanel::load(QWidget &window) const
{
    std::unique_ptr<QDialog> panel(ZELKInterfaceLoader::loadDialog(m_bundle, className(), window));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    label(*panel, "icon").setPixmap(m_icon.pixmap(QSize(iconSide, iconSide), window.devicePixelRatio()));
    QLabel &name = label(*panel, "name");
    name.setText(m_bundle.infoDictionary().string(QStringLiteral("CFBundleName")));
    QFont font = name.font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    name.setFont(font);
    QLabel &version = label(*panel, "version");
    version.setText(
        ZELKFormat(version.text(), {m_bundle.infoDictionary().string(QStringLiteral("CFBundleVersion"))}));
    QLabel &builtWith = label(*panel, "builtWith");
    builtWith.setText(ZELKFormat(builtWith.text(), {qVersion()}));
    return panel.release(); // the window has it
}

void ZELKAboutPanel::orderFront(QWidget &window)
{
    if (!m_panel)
        m_panel = load(window);
    m_panel->show();
    m_panel->raise();
    m_panel->activateWindow();
}
