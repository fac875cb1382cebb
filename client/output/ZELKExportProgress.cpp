#include "ZELKExportProgress.h"

#include "ZELKAssertion.h"
#include "ZELKInterfaceLoader.h"

#include <QFileInfo>

#include <utility>

namespace {

constexpr int sliceMilliseconds = 30;

QString text(const char *key)
{
    return ZELKInterfaceLoader::text(QStringLiteral("ZELKLWCExportController"), QString::fromLatin1(key));
}

} // namespace

ZELKExportProgress::ZELKExportProgress(std::unique_ptr<ZELKFileExport> work, QWidget &window, QObject *parent)
    : QObject(parent)
    , m_work(std::move(work))
    , m_window(window)
{
    m_wait.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, [this] {
        if (!zelkGuard([this] { advance(); }))
            end(true);
    });
    connect(&m_wait, &QTimer::timeout, this, [this] { zelkGuard([this] { showSheet(); }); });
}

ZELKExportProgress::~ZELKExportProgress()
{
    delete m_sheet;
}

void ZELKExportProgress::start()
{
    m_wait.start(patience);
    m_turn.start(0);
    advance();
}

void ZELKExportProgress::advance()
{
    const ZELKFileExport::State state = m_work->advance(sliceMilliseconds);
    if (state == ZELKFileExport::State::Done || state == ZELKFileExport::State::Failed)
        return end(false);
    if (m_sheet) {
        m_sheet->setFraction(m_work->fraction());
        m_sheet->setCancellable(m_work->canBeCancelled());
    }
}

void ZELKExportProgress::showSheet()
{
    m_sheet = new ZELKProgressSheet(
        text("ZELKLWCExportController.progress.title"),
        ZELKFormat(text("ZELKLWCExportController.progress"), {QFileInfo(m_work->path()).fileName()}),
        &m_window);
    connect(m_sheet, &QDialog::rejected, this, [this] { zelkGuard([this] { end(true); }); });
    m_sheet->setFraction(m_work->fraction());
    m_sheet->open();
}

void ZELKExportProgress::end(bool isCancelled)
{
    if (!m_work || !m_turn.isActive())
        return;
    m_turn.stop();
    m_wait.stop();
    if (m_sheet) {
        m_sheet->hide();
        m_sheet->deleteLater();
    }
    Q_EMIT ended(isCancelled);
}
