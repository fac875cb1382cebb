#include "ZELKSavePanel.h"

#include "ZELKAssertion.h"

#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace {

/// Qt's own panel, whose name field is a child of that name.
QLineEdit *nameField(const QFileDialog &panel)
{
    return panel.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
}

} // namespace

/// A desktop's own panel has no room for a view of ours.
ZELKSavePanel::ZELKSavePanel(QWidget *window)
    : QFileDialog(window)
{
    setOption(QFileDialog::DontUseNativeDialog);
    setAcceptMode(QFileDialog::AcceptSave);
    setFileMode(QFileDialog::AnyFile);
    setWindowModality(Qt::WindowModal);
}

/// In the row that chooses which files are listed: here the format says that.
void ZELKSavePanel::setAccessoryView(QWidget *view)
{
    auto *grid = qobject_cast<QGridLayout *>(layout());
    auto *types = findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
    if (!grid || !types)
        return;
    types->hide();
    if (auto *label = findChild<QLabel *>(QStringLiteral("fileTypeLabel")))
        label->hide();
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    grid->getItemPosition(grid->indexOf(types), &row, &column, &rows, &columns);
    grid->addWidget(view, row, 0, 1, 2);
    view->show();
}

QString ZELKSavePanel::fileName() const
{
    const QLineEdit *field = nameField(*this);
    return field ? field->text() : QString();
}

void ZELKSavePanel::setFileName(const QString &name)
{
    QLineEdit *field = nameField(*this);
    if (!field)
        return;
    field->setText(name);
    const qsizetype point = name.lastIndexOf(QLatin1Char('.') + m_suffix);
    field->setSelection(0, int(m_suffix.isEmpty() || point < 0 ? name.size() : point));
}

void ZELKSavePanel::setRequiredFileType(const QString &suffix)
{
    QString name = fileName();
    if (!m_suffix.isEmpty() && name.endsWith(QLatin1Char('.') + m_suffix, Qt::CaseInsensitive))
        name.chop(m_suffix.size() + 1);
    m_suffix = suffix;
    setDefaultSuffix(suffix);
    setNameFilter(suffix.isEmpty() ? QStringLiteral("*") : QStringLiteral("*.") + suffix);
    setFileName(withSuffix(name));
}

/// A folder's name is the way into it.
QString ZELKSavePanel::withSuffix(const QString &name) const
{
    const bool isFolder = name.isEmpty() || name.endsWith(QLatin1Char('/')) ||
                          name.startsWith(QLatin1Char('~')) || QFileInfo(directory(), name).isDir();
    if (isFolder || m_suffix.isEmpty() || name.endsWith(QLatin1Char('.') + m_suffix, Qt::CaseInsensitive))
        return name;
    return name + QLatin1Char('.') + m_suffix;
}

/// Before Qt asks whether the file of that name is to be replaced.
void ZELKSavePanel::accept()
{
    zelkGuard([this] { setFileName(withSuffix(fileName())); });
    QFileDialog::accept();
}
