#include "ZELKPrintProgress.h"

#include "ZELKAssertion.h"
#include "ZELKInterfaceLoader.h"

#include <utility>

namespace {

constexpr int sliceMilliseconds = 30;

QString text(const char *key)
{
    return ZELKInterfaceLoader::text(QStringLiteral("ZELKLWCPrintController"), QString::fromLatin1(key));
}

} // namespace

ZELKPrintProgress::ZELKPrintProgress(std::unique_ptr<ZELKPrintOperation> operation, QWidget &window,
                                     QObject *parent)
    : QObject(parent)
    , m_operation(std::move(operation))
    , m_window(window)
{
    m_wait.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, [this] {
        if (!zelkGuard([this] { advance(); }))
            end({});
    });
    connect(&m_wait, &QTimer::timeout, this, [this] { zelkGuard([this] { showSheet(); }); });
}

ZELKPrintProgress::~ZELKPrintProgress()
{
    delete m_sheet;
}

void ZELKPrintProgress::start()
{
    m_wait.start(patience);
    m_turn.start(0);
}

void ZELKPrintProgress::advance()
{
    switch (m_operation->advance(sliceMilliseconds)) {
    case ZELKPrintOperation::State::Printing:
        if (m_sheet) {
            m_sheet->setFraction(m_operation->fraction());
            m_sheet->setCancellable(m_operation->canBeCancelled());
        }
        break;
    case ZELKPrintOperation::State::Done:
        end({});
        break;
    case ZELKPrintOperation::State::Failed:
        end(m_operation->error().isNull() ? QLatin1String("") : m_operation->error());
        break;
    }
}

void ZELKPrintProgress::showSheet()
{
    m_sheet = new ZELKProgressSheet(text("ZELKLWCPrintController.progress.title"),
                                    text("ZELKLWCPrintController.progress"), &m_window);
    connect(m_sheet, &QDialog::rejected, this, [this] { zelkGuard([this] { end({}); }); });
    m_sheet->setFraction(m_operation->fraction());
    m_sheet->open();
}

/// Printing that is not at its end is cancelled by this.
void ZELKPrintProgress::end(const QString &error)
{
    if (!std::exchange(m_operation, nullptr))
        return;
    m_turn.stop();
    m_wait.stop();
    if (m_sheet) {
        m_sheet->hide();
        m_sheet->deleteLater();
    }
    Q_EMIT ended(error);
}
