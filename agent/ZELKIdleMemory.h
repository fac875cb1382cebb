#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

/// Hands memory back when the work is done, for a program that does nothing nearly all the time. Most of what
/// such a program occupies is what its start, or its last client, left behind: freed heap, and pages of the
/// libraries' files that were used once. Those are clean copies of files, so the system can have them at any
/// time; whatever is needed again comes back from its cache of files, at the first touch and without the
/// disk.
///
/// It has no clock of its own: it works in the turn of the event loop that the end of the work has woken.
class ZELKIdleMemory : public QObject
{
    Q_OBJECT

public:
    /// `isQuiet` tells whether there is no work at all; whoever ends the last of it says so.
    explicit ZELKIdleMemory(std::function<bool()> isQuiet, QObject *parent = nullptr);

    /// At once. Nothing in a build whose memory is watched by a sanitizer.
    static void giveBack();

public Q_SLOTS:
    /// Some work is done. Gives back once the loop has nothing else to do and all is quiet, once for any
    /// number of calls until then.
    void workDidEnd();

Q_SIGNALS:
    void gaveBack();

private:
    std::function<bool()> m_isQuiet;
    QTimer m_turn;
};
