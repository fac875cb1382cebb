#include "ZELKGuidePictures.h"

#include "ZELKEnvironment.h"
#include "ZELKInspectorWiring.h"
#include "ZELKLWCEntriesView.h"
#include "ZELKMainWindowInterface.h"
#include "ZELKSampleLog.h"
#include "ZELKWindowSession.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMainWindow>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimeZone>

namespace {

constexpr qreal scale = 2.0;
constexpr QSize windowSize(900, 620);

/// The last morning of the sample log, where it was lived.
ZELKEnvironment environmentOf(const QString &bundleFolder)
{
    ZELKEnvironment environment = ZELKEnvironment::system();
    environment.zone = QTimeZone("Europe/Berlin");
    environment.locale = QLocale(QLocale::English, QLocale::UnitedKingdom);
    environment.mainBundle = std::make_shared<const ZELKBundle>(bundleFolder);
    const QDateTime morning(QDate(2026, 11, 8), QTime(9, 0), environment.zone);
    environment.clock = std::make_shared<ZELKFixedClock>(ZELKDate::fromDateTime(morning));
    return environment;
}

/// One window, brought from one state to the next.
class Camera
{
public:
    explicit Camera(const ZELKApplicationSettings &settings)
        : m_session(settings, ZELKApplicationWiring::World::withoutAgent())
        , m_window(*m_session.mainWindow().window())
    {
        m_session.start(false);
        m_window.resize(windowSize);
        settle();
    }
    ~Camera() { m_session.applicationWillTerminate(); }

    QImage window() { return picture(m_window); }
    QImage graph() { return picture(find<QWidget>("graph")); }
    /// Days of one month, counted from the first.
    void showDays(int month, int first, int last)
    {
        auto &range = m_session.wiring().dateRange();
        range.setAbsoluteDuration(std::make_shared<ZELKLWCAbsoluteDuration>(
            ZELKLWCAbsoluteDuration::absoluteDurationFromDate(begin(month, first), end(month, last))));
        settle();
    }
    void search(const QString &text)
    {
        find<QLineEdit>("filterField").setText(text);
        settle();
    }
    void selectRows(int first, int last)
    {
        auto &table = find<ZELKLWCLogTableView>("table");
        const QAbstractItemModel &rows = *table.model();
        table.selectionModel()->select({rows.index(first, 0), rows.index(last, 1)},
                                       QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        table.scrollTo(rows.index(first, 0), QAbstractItemView::PositionAtCenter);
        settle();
    }
    int rowOf(const QString &summary) const
    {
        const QAbstractItemModel &rows = *find<ZELKLWCLogTableView>("table").model();
        for (int row = 0; row < rows.rowCount(); ++row)
            if (rows.index(row, 1).data(Qt::AccessibleTextRole).toString().contains(summary) ||
                rows.index(row, 1).data().toString().contains(summary))
                return row;
        return 0;
    }
    void trigger(const char *action)
    {
        find<QAction>(action).trigger();
        settle();
    }
    /// A window beside the main one, found by its class.
    QImage panel(const char *className)
    {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->isVisible() &&
                (widget->inherits(className) || widget->objectName() == QLatin1String(className)))
                return picture(*widget);
        throw std::runtime_error(std::string("there is no ") + className);
    }

private:
    static ZELKDate begin(int month, int day)
    {
        return ZELKDate::fromDateTime(QDate(2026, month, day).startOfDay(ZELKEnvironment::current().zone));
    }
    static ZELKDate end(int month, int day)
    {
        return ZELKDate::fromDateTime(QDate(2026, month, day).endOfDay(ZELKEnvironment::current().zone));
    }
    template <typename Type>
    Type &find(const char *name) const
    {
        return *ZELKMainWindowInterface::outlet<Type>(m_window, name);
    }
    /// Until nothing is left that waits for an idle moment; nobody tells of that.
    static void settle()
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 400;)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    static QImage picture(QWidget &widget)
    {
        QImage image(widget.size() * scale, QImage::Format_RGB32);
        image.setDevicePixelRatio(scale);
        image.fill(widget.palette().color(QPalette::Window));
        widget.render(&image);
        return image;
    }

    ZELKWindowSession m_session;
    QMainWindow &m_window;
};

} // namespace

QMap<QString, QImage> ZELKGuidePictures::take() const
{
    const QTemporaryDir home;
    for (const char *variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_DOCUMENTS_DIR"})
        qputenv(variable, home.path().toLocal8Bit());
    const ZELKEnvironmentScope scope(environmentOf(m_bundleFolder));
    const ZELKApplicationSettings settings{
        ZELKEnvironment::current().mainBundle, ZELKSampleLog::profile(), {}};
    ZELKSampleLog sample(settings);
    if (const auto complaint = sample.prepare())
        throw std::runtime_error(complaint->toStdString());

    Camera camera(settings);
    QMap<QString, QImage> pictures;
    camera.showDays(10, 5, 11);
    pictures[QStringLiteral("window")] = camera.window();
    camera.showDays(10, 7, 7);
    pictures[QStringLiteral("day")] = camera.graph();
    camera.showDays(10, 5, 11);
    camera.search(QStringLiteral("sleeping"));
    pictures[QStringLiteral("search")] = camera.window();
    camera.search({});
    camera.trigger("actionInspector");
    camera.selectRows(camera.rowOf(QStringLiteral("sleeping")), camera.rowOf(QStringLiteral("sleeping")));
    pictures[QStringLiteral("entry")] = camera.panel("ZELKLWCInspectorController");
    camera.selectRows(0, camera.rowOf(QStringLiteral("sleeping")) + 60);
    pictures[QStringLiteral("selection")] = camera.panel("ZELKLWCInspectorController");
    camera.trigger("actionInspector");
    camera.trigger("actionJumpToDate");
    pictures[QStringLiteral("jump")] = camera.panel("ZELKLWCDateJumpController");
    return pictures;
}
