#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <cstdint>
#include <memory>

class QComboBox;
class QWidget;
class ZELKExportSource;
class ZELKLWCEntriesView;
class ZELKLWCLog;
class ZELKOutputProgress;
class ZELKSavePanel;
class ZELKUserDefaults;

/// Exports the log, or the graph as a picture, to a file that the user names on a save panel with a chooser
/// of formats. The format last chosen is the setting "exportFormatTag".
class ZELKLWCExportController : public QObject
{
    Q_OBJECT

public:
    /// What menu items do; those that are not the controller's own are none of its business.
    enum class MenuItem : std::uint8_t { Export, Other };

    /// `defaults` must outlive the controller.
    explicit ZELKLWCExportController(ZELKUserDefaults &defaults, QObject *parent = nullptr);
    ~ZELKLWCExportController() override;

    /// Not owned; to be connected before anything is exported. Log and window must outlive the export, which
    /// reads the one, piece by piece, and shows its progress on the other.
    void setLog(const ZELKLWCLog *log) { m_log = log; }
    void setEntriesView(const ZELKLWCEntriesView *view) { m_entriesView = view; }
    /// The panel is a sheet of it.
    void setMainWindow(QWidget *window) { m_mainWindow = window; }

    /// Puts the save panel up and does not wait for it. In the home folder, with today's date in the name.
    void exportLog();
    /// An export needs an entry; and one at a time is enough.
    bool validateMenuItem(MenuItem item) const;

    /// The view with the chooser, loaded when it is first asked for; "Unable to load %@ nib." is raised where
    /// that fails.
    QWidget *exportView();
    ZELKSavePanel *activeExportPanel() const;
    /// Takes the panel over; the one before it is cancelled and goes.
    void setActiveExportPanel(ZELKSavePanel *panel);

    /// Nothing unless the panel ended with OK (1). Exports in the format that is set, to the panel's file.
    /// Where memory does not suffice for a picture, or the tag is none, there is no file and no alert.
    void exportPanelDidEnd(const ZELKSavePanel &panel, int returnCode);
    /// The chooser's action.
    void exportFormatChanged();

    /// Null, and "Unsuppported export format tag: %d" on the console, for a tag that is none.
    static QString exportSuffixForFormatTag(int tag);
    static QString dataTypeForFormatTag(int tag);
    int exportSuffixTag() const;

    bool isExporting() const { return m_progress != nullptr; }

Q_SIGNALS:
    /// An alert: "Cannot save file: '%@': %s".
    void alertPresented(const QString &message);
    /// validateMenuItem() may answer otherwise now.
    void menuItemsChanged();

private:
    void prepareChooser();
    QComboBox *chooser() const;
    static QString suggestedName();
    void startExport(std::unique_ptr<ZELKExportSource> source, const QString &path);
    void exportEnded(const QString &path, const QString &error);

    ZELKUserDefaults &m_defaults;
    const ZELKLWCLog *m_log = nullptr;
    const ZELKLWCEntriesView *m_entriesView = nullptr;
    QWidget *m_mainWindow = nullptr;
    QPointer<QWidget> m_exportView; // owned; while a panel is up, the panel's child
    QPointer<ZELKSavePanel> m_activeExportPanel;
    std::unique_ptr<ZELKOutputProgress> m_progress;
};
