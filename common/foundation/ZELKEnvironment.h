#pragma once

#include "ZELKBundle.h"
#include "ZELKClock.h"

#include <QLocale>
#include <QTimeZone>

#include <memory>

/// What class operations need from the world: clock, zone, locale and the main bundle with its string tables.
/// The one thing that is reachable from everywhere; everything else comes in through constructors.
struct ZELKEnvironment
{
    std::shared_ptr<const ZELKClock> clock;
    QTimeZone zone;
    QLocale locale;
    /// Never null; an empty bundle answers every look-up with the key itself.
    std::shared_ptr<const ZELKBundle> mainBundle;

    /// The system's clock, zone and locale, and an empty bundle.
    static ZELKEnvironment system();
    /// The innermost scope's environment, or the system's when there is no scope. Main thread only.
    static const ZELKEnvironment &current();
};

/// Makes an environment the current one for as long as it lives. Scopes nest.
class ZELKEnvironmentScope
{
public:
    explicit ZELKEnvironmentScope(ZELKEnvironment environment);
    ~ZELKEnvironmentScope();
    ZELKEnvironmentScope(const ZELKEnvironmentScope &) = delete;
    ZELKEnvironmentScope &operator=(const ZELKEnvironmentScope &) = delete;

private:
    ZELKEnvironment m_environment;
    const ZELKEnvironment *m_outer;
};
