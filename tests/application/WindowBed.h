#pragma once

#include "ApplicationFixture.h"
#include "ZELKWindowSession.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QStandardItemModel>
#include <QTest>

/// A window that has finished launching, over 77 days with an event each, or over what is said.
struct Session
{
    /// In a world of its own.
    explicit Session(bool isFilled = true)
        : Session(std::make_unique<ApplicationFixture>(), isFilled)
    {
    }
    explicit Session(const ApplicationFixture &fixture, bool isFilled = true)
        : Session(fixture, fixture.settings(),
                  isFilled ? eventEachDay(QDate(2024, 1, 15), QDate(2024, 3, 31)) : QList<ZELKRawEvent>())
    {
    }
    Session(const ApplicationFixture &fixture, const ZELKApplicationSettings &settings,
            const QList<ZELKRawEvent> &events = {})
        : session(settings,
                  settings.knowsAgent() ? fixture.world : ZELKApplicationWiring::World::real(settings))
        , wiring(session.wiring())
        , window(*session.mainWindow().window())
    {
        if (!events.isEmpty())
            wiring.store().cacheEvents(events);
        session.start(false);
        QCoreApplication::processEvents();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not come up");
    }
    template <typename Type>
    Type &find(const char *name) const
    {
        auto *found = window.findChild<Type *>(QString::fromLatin1(name));
        if (!found)
            qFatal("there is no %s", name);
        return *found;
    }
    ZELKLWCLogTableController &table() { return session.mainWindow().table().controller(); }
    /// Where the focus is, as a key press finds it.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QWidget *focus = window.focusWidget();
        QTest::keyClick(focus ? focus : &window, key, modifiers);
    }
    QString text(const char *label) const { return find<QLabel>(label).text(); }
    int rows() const { return find<ZELKLWCLogTableView>("table").model()->rowCount(); }
    int shownTag() const { return find<QComboBox>("filterPopUpButton").currentData().toInt(); }
    void pick(int tag) const
    {
        auto &popUp = find<QComboBox>("filterPopUpButton");
        popUp.setCurrentIndex(popUp.findData(tag));
        Q_EMIT popUp.activated(popUp.currentIndex());
    }
    bool canPick(int tag) const
    {
        auto &popUp = find<QComboBox>("filterPopUpButton");
        return qobject_cast<QStandardItemModel *>(popUp.model())->item(popUp.findData(tag))->isEnabled();
    }
    void add(int count, ZELKDate first = localDate(2024, 3, 31, 13)) const
    {
        QList<ZELKRawEvent> events;
        for (int i = 0; i < count; ++i)
            events.append(ZELKMakeRawEvent(first.addingTimeInterval(i), u"new"_s, u"org.example"_s));
        wiring.log().addExternalEntries(events);
        QCoreApplication::processEvents();
    }

private:
    Session(std::unique_ptr<ApplicationFixture> world, bool isFilled)
        : Session(*world, isFilled)
    {
        m_world = std::move(world);
    }
    std::unique_ptr<ApplicationFixture> m_world; // outlives the rest

public:
    ZELKWindowSession session;
    ZELKApplicationWiring &wiring;
    QMainWindow &window;
};
