#include "ZELKLWCWelcomeController.h"

#include "ZELKAgentController.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKGraphText.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLog.h"
#include "ZELKRtfReader.h"
#include "ZELKSystemFonts.h"

#include <QEvent>
#include <QFile>
#include <QTimer>

#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr auto firstLook = 1s;
constexpr double writtenFontSize = 10.0; // of the labels' running text, in their files

QString className()
{
    return QStringLiteral("ZELKLWCWelcomeController");
}

ZELKAttributedString label(const char *topic)
{
    const QString name = className() + QLatin1String(topic);
    const QString path = ZELKEnvironment::current().mainBundle->pathForResource(name, QStringLiteral("rtf"));
    QFile file(path);
    std::optional<ZELKAttributedString> text;
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
        text = ZELKRtfReader::read(file.read(ZELKRtfReader::mostBytes)).text;
    if (!text)
        ZELKAssertion::fail(QStringLiteral("client/") + className(), 0,
                            ZELKFormat("Label '%@' missing", {name}));
    return *text;
}

/// As a label stands in the graph: in sizes that go with its other texts, and dark in a dark desktop too, for
/// the graph stays white.
ZELKAttributedString onPaper(ZELKAttributedString text)
{
    text = text.scaled(ZELKSystemFonts::systemFontSize() / writtenFontSize);
    text.changeAttributes(
        [](ZELKTextAttributes &run) { run.colour = ZELKTextColour::rgb(0x33, 0x33, 0x33); });
    return text;
}

/// The first paragraphs of `banner` that leave the other label alone; the first one in any case.
ZELKAttributedString fitting(ZELKAttributedString banner, const ZELKAttributedString &topLeft,
                             const QRectF &frame)
{
    qsizetype end = -1;
    while (!ZELKGraphText::fitTogether(frame, topLeft, banner) &&
           (end = banner.string().lastIndexOf(QLatin1Char('\n'))) > 0)
        banner = banner.substring(0, end);
    return banner;
}

} // namespace

ZELKLWCWelcomeController::ZELKLWCWelcomeController(const Outlets &outlets, QObject *parent)
    : QObject(parent)
    , m_outlets(outlets)
{
}

void ZELKLWCWelcomeController::awakeFromNib()
{
    const auto apply = [this] { zelkGuard([this] { applyLogLabels(); }); };
    connect(&m_outlets.agentController, &ZELKAgentController::installedChanged, this, apply);
    connect(&m_outlets.log, &ZELKLWCLog::visibleEntriesDidChange, this, apply);
    m_outlets.entriesView.installEventFilter(this);
    QTimer::singleShot(firstLook, this, apply);
}

void ZELKLWCWelcomeController::applyLogLabels()
{
    m_clickStart = {};
    m_welcome = {};
    if (!m_outlets.agentController.installed() && m_outlets.log.count() == 0) {
        zelkGuard([this] { m_clickStart = label("LabelClickStart"); });
        zelkGuard([this] { m_welcome = label("LabelWelcome"); });
    }
    fitLabels();
}

void ZELKLWCWelcomeController::fitLabels()
{
    ZELKLWCEntriesView &view = m_outlets.entriesView;
    const ZELKAttributedString topLeft = onPaper(m_clickStart);
    view.setLabelTopLeft(topLeft);
    view.setLabelBanner(m_welcome.isEmpty() ? m_welcome : fitting(onPaper(m_welcome), topLeft, view.rect()));
}

bool ZELKLWCWelcomeController::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::Resize)
        zelkGuard([this] { fitLabels(); });
    return QObject::eventFilter(watched, event);
}
