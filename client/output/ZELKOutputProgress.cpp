#include "ZELKOutputProgress.h"

#include "ZELKAssertion.h"

#include <utility>

namespace {

constexpr int sliceMilliseconds = 30;

} // namespace

ZELKOutputProgress::ZELKOutputProgress(std::unique_ptr<ZELKOutputWork> work, const Texts &texts,
                                       QWidget &window, QObject *parent)
    : QObject(parent)
    , m_work(std::move(work))
    , m_texts(texts)
    , m_window(window)
{
    m_wait.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &ZELKOutputProgress::turn);
    connect(&m_wait, &QTimer::timeout, this, [this] { zelkGuard([this] { showSheet(); }); });
}

ZELKOutputProgress::~ZELKOutputProgress()
{
    delete m_sheet;
}

void ZELKOutputProgress::start()
{
    m_wait.start(patience);
    m_turn.start(0);
    turn();
}

/// What raised once would do so again.
void ZELKOutputProgress::turn()
{
    if (!zelkGuard([this] { advance(); }))
        end({});
}

void ZELKOutputProgress::advance()
{
    if (m_work->advance(sliceMilliseconds) >= ZELKOutputWork::State::Done)
        end(m_work->error());
    else if (m_sheet)
        updateSheet();
}

void ZELKOutputProgress::showSheet()
{
    m_sheet = new ZELKProgressSheet(m_texts.title, m_texts.text, &m_window);
    connect(m_sheet, &QDialog::rejected, this, [this] { zelkGuard([this] { end({}); }); });
    updateSheet();
    m_sheet->open();
}

void ZELKOutputProgress::updateSheet()
{
    m_sheet->setFraction(m_work->fraction());
    m_sheet->setCancellable(m_work->canBeCancelled());
}

/// Work that is not at its end is cancelled by this.
void ZELKOutputProgress::end(const QString &error)
{
    if (!std::exchange(m_work, nullptr))
        return;
    m_turn.stop();
    m_wait.stop();
    if (m_sheet)
        m_sheet->hide(); // it may be telling us
    Q_EMIT ended(error);
}
