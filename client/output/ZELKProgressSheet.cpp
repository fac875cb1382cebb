#include "ZELKProgressSheet.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int steps = 1000;

} // namespace

ZELKProgressSheet::ZELKProgressSheet(const QString &title, const QString &text, QWidget *window)
    : QDialog(window)
    , m_bar(new QProgressBar(this))
{
    auto *label = new QLabel(text, this);
    label->setTextFormat(Qt::PlainText);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_cancel = buttons->button(QDialogButtonBox::Cancel);
    m_bar->setRange(0, steps);
    m_bar->setAccessibleName(text);
    m_bar->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_bar);
    layout->addWidget(buttons);
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void ZELKProgressSheet::setFraction(double fraction)
{
    m_bar->setValue(int(fraction * steps));
}

void ZELKProgressSheet::setCancellable(bool can)
{
    m_cancel->setEnabled(can);
}

void ZELKProgressSheet::reject()
{
    if (m_cancel->isEnabled())
        QDialog::reject();
}
