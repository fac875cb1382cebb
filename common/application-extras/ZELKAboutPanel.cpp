#include "ZELKAboutPanel.h"

#include "ZELKBundle.h"
#include "ZELKInterfaceLoader.h"

#include <QDialog>
#include <QLabel>
#include <QtGlobal>

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
    std::unique_ptr<QWidget> root = ZELKInterfaceLoader::loadInterface(m_bundle, className());
    label(*root, "icon").setPixmap(m_icon.pixmap(QSize(iconSide, iconSide), window.devicePixelRatio()));
    QLabel &name = label(*root, "name");
    name.setText(m_bundle.infoDictionary().string(QStringLiteral("CFBundleName")));
    QFont font = name.font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    name.setFont(font);
    QLabel &version = label(*root, "version");
    version.setText(
        ZELKFormat(version.text(), {m_bundle.infoDictionary().string(QStringLiteral("CFBundleVersion"))}));
    QLabel &builtWith = label(*root, "builtWith");
    builtWith.setText(ZELKFormat(builtWith.text(), {qVersion()}));
    auto *panel = qobject_cast<QDialog *>(root.release());
    panel->setParent(&window, Qt::Dialog);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    return panel;
}

void ZELKAboutPanel::orderFront(QWidget &window)
{
    if (!m_panel)
        m_panel = load(window);
    m_panel->show();
    m_panel->raise();
    m_panel->activateWindow();
}
