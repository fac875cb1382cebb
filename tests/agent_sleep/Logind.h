#pragma once

#include "BusMock.h"

class Logind : public BusMock
{
public:
    Logind()
        : BusMock(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                  u"org.freedesktop.login1.Manager"_s, {u"--template"_s, u"logind"_s})
    {
    }
    /// Pairs, of one on sleep and one on shut-down; -1 for half a pair.
    int locks() const
    {
        const int count = BusMock::count(call(u"ListInhibitors"_s));
        return count % 2 == 0 ? count / 2 : -1;
    }
    void prepareForSleep(bool begins) const { emitSignal(u"PrepareForSleep"_s, u"b"_s, {begins}); }
    void prepareForShutdown(bool begins) const { emitSignal(u"PrepareForShutdown"_s, u"b"_s, {begins}); }
};
