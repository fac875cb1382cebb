#include "ZELKLWCExportController.h"

#include "ZELKAssertion.h"
#include "ZELKCalendar.h"
#include "ZELKConsole.h"
#include "ZELKEnvironment.h"
#include "ZELKExportFormat.h"
#include "ZELKExportSource.h"
#include "ZELKFileExport.h"
#include "ZELKInterfaceLoader.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKLWCLog.h"
#include "ZELKLogRepresentation.h"
#include "ZELKOutputProgress.h"
#include "ZELKSavePanel.h"
#include "ZELKUserDefaults.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>

#include <utility>

namespace {

const QString className = QStringLiteral("ZELKLWCExportController");
const QString formatTagKey = QStringLiteral("exportFormatTag");
/// Where a missing view is reported from; the number is fixed.
constexpr int missingViewLine = 100;

/// The chooser, and its property that lists the tags of its items.
constexpr char chooserName[] = "exportFormat";
constexpr char tagsProperty[] = "tags";

QString general(const char *key)
{
    const QString text = QString::fromLatin1(key);
    return ZELKLWCLogEntry::localizedStringForKey(text, text, QStringLiteral("General"));
}

/// Of the interface file's table.
QString text(const char *key)
{
    return ZELKInterfaceLoader::text(className, QString::fromLatin1(key));
}

std::optional<ZELKExportFormat> formatWithTag(int tag)
{
    const std::optional<ZELKExportFormat> format = ZELKExportFormat::withTag(tag);
    if (!format)
        ZELKConsole::log(ZELKFormat("Unsuppported export format tag: %d", {tag}));
    return format;
}

} // namespace

ZELKLWCExportController::ZELKLWCExportController(ZELKUserDefaults &defaults, QObject *parent)
    : QObject(parent)
    , m_defaults(defaults)
{
}

ZELKLWCExportController::~ZELKLWCExportController()
{
    setActiveExportPanel(nullptr);
    delete m_exportView;
}

// MARK: formats

QString ZELKLWCExportController::exportSuffixForFormatTag(int tag)
{
    const auto format = formatWithTag(tag);
    return format ? QString::fromLatin1(format->suffix) : QString();
}

QString ZELKLWCExportController::dataTypeForFormatTag(int tag)
{
    const auto format = formatWithTag(tag);
    return format ? QString::fromLatin1(format->dataType) : QString();
}

int ZELKLWCExportController::exportSuffixTag() const
{
    return m_defaults.integerForKey(formatTagKey);
}

// MARK: the view with the chooser

QWidget *ZELKLWCExportController::exportView()
{
    if (m_exportView)
        return m_exportView;
    m_exportView =
        ZELKInterfaceLoader::loadIfSound(*ZELKEnvironment::current().mainBundle, className).release();
    if (!chooser())
        ZELKAssertion::fail(QStringLiteral("client/") + className, missingViewLine,
                            ZELKFormat("Unable to load %@ nib.", {className}));
    prepareChooser();
    return m_exportView;
}

QComboBox *ZELKLWCExportController::chooser() const
{
    return m_exportView ? m_exportView->findChild<QComboBox *>(QString::fromLatin1(chooserName)) : nullptr;
}

/// The interface file says which tags there are, the string table what they are called.
void ZELKLWCExportController::prepareChooser()
{
    QComboBox *formats = chooser();
    for (const QString &tag : formats->property(tagsProperty).toStringList())
        formats->addItem(ZELKInterfaceLoader::text(className, ZELKFormat("%@.format.%@", {className, tag})),
                         tag.toInt());
    connect(formats, &QComboBox::activated, this, [this] { zelkGuard([this] { exportFormatChanged(); }); });
}

void ZELKLWCExportController::exportFormatChanged()
{
    const int tag = chooser()->currentData().toInt();
    m_defaults.setValue(formatTagKey, tag);
    const QString suffix = exportSuffixForFormatTag(tag);
    if (m_activeExportPanel && !suffix.isNull())
        m_activeExportPanel->setRequiredFileType(suffix);
}

// MARK: the panel

bool ZELKLWCExportController::validateMenuItem(MenuItem item) const
{
    return item != MenuItem::Export || (m_log && m_log->count() > 0 && !isExporting());
}

QString ZELKLWCExportController::suggestedName()
{
    const QString today = ZELKCalendar::format(ZELKEnvironment::current().clock->now(), general("%Y-%m-%d"));
    return ZELKFormat(general("%@-Lullwatch"), {today});
}

void ZELKLWCExportController::exportLog()
{
    QWidget *view = exportView();
    auto *panel = new ZELKSavePanel(m_mainWindow);
    setActiveExportPanel(panel);
    panel->setAccessoryView(view);
    panel->setWindowTitle(text("ZELKLWCExportController.title"));
    chooser()->setCurrentIndex(chooser()->findData(exportSuffixTag()));
    panel->setDirectory(QDir::homePath());
    panel->setFileName(suggestedName());
    connect(panel, &QDialog::finished, this, [this, panel](int returnCode) {
        zelkGuard([&] { exportPanelDidEnd(*panel, returnCode); });
        zelkGuard([&] {
            if (panel == m_activeExportPanel)
                setActiveExportPanel(nullptr);
        });
    });
    panel->open();
    const QString suffix = exportSuffixForFormatTag(exportSuffixTag());
    if (!suffix.isNull())
        panel->setRequiredFileType(suffix);
}

ZELKSavePanel *ZELKLWCExportController::activeExportPanel() const
{
    return m_activeExportPanel;
}

void ZELKLWCExportController::setActiveExportPanel(ZELKSavePanel *panel)
{
    const QPointer<ZELKSavePanel> previous = std::exchange(m_activeExportPanel, panel);
    if (!previous || previous == panel)
        return;
    if (m_exportView)
        m_exportView->setParent(nullptr);
    if (previous->isVisible())
        previous->reject();
    previous->deleteLater();
}

// MARK: exporting

void ZELKLWCExportController::exportPanelDidEnd(const ZELKSavePanel &panel, int returnCode)
{
    if (returnCode != QDialog::Accepted)
        return;
    const auto format = formatWithTag(exportSuffixTag());
    auto source = format ? format->source(*m_log, [this] { return m_entriesView->imageValue(); })
                         : ZELKLogRepresentation::sourceOfType(*m_log, {}); // which tells of it, too
    if (source)
        startExport(std::move(source), panel.filePath());
}

void ZELKLWCExportController::startExport(std::unique_ptr<ZELKExportSource> source, const QString &path)
{
    m_progress = std::make_unique<ZELKOutputProgress>(
        std::make_unique<ZELKFileExport>(std::move(source), std::make_unique<ZELKExportFile>(path)),
        ZELKOutputProgress::Texts{
            text("ZELKLWCExportController.progress.title"),
            ZELKFormat(text("ZELKLWCExportController.progress"), {QFileInfo(path).fileName()})},
        *m_mainWindow);
    connect(m_progress.get(), &ZELKOutputProgress::ended, this,
            [this, path](const QString &error) { zelkGuard([&] { exportEnded(path, error); }); });
    Q_EMIT menuItemsChanged();
    m_progress->start();
}

void ZELKLWCExportController::exportEnded(const QString &path, const QString &error)
{
    m_progress.release()->deleteLater(); // it is telling us
    Q_EMIT menuItemsChanged();
    if (!error.isNull())
        Q_EMIT alertPresented(ZELKFormat(general("Cannot save file: '%@': %s"), {path, error}));
}
