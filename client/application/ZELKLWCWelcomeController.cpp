#include "ZELKLWCWelcomeController.h"

#include "ZELKAgentController.h"
#include "ZELKAssertion.h"
#include "ZELKEnvironment.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLog.h"
#include "ZELKRtfReader.h"

#include <QFile>
#include <QTimer>

#include <chrono>

namespace {

using namespace std::chrono_literals;

constexpr auto firstLook = 1s;

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
    QTimer::singleShot(firstLook, this, apply);
}

void ZELKLWCWelcomeController::applyLogLabels()
{
    ZELKLWCEntriesView &view = m_outlets.entriesView;
    view.setLabelTopLeft({});
    view.setLabelBanner({});
    if (m_outlets.agentController.installed() || m_outlets.log.count() > 0)
        return;
    view.setLabelTopLeft(label("LabelClickStart"));
    view.setLabelBanner(label("LabelWelcome"));
}
