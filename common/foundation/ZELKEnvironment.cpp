#include "ZELKEnvironment.h"

namespace {

const ZELKEnvironment *innermost = nullptr;

} // namespace

ZELKEnvironment ZELKEnvironment::system()
{
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return {std::make_shared<ZELKSystemClock>(), zone.isValid() ? zone : QTimeZone::utc(), QLocale::system(),
            std::make_shared<ZELKBundle>()};
}

const ZELKEnvironment &ZELKEnvironment::current()
{
    if (innermost)
        return *innermost;
    static const ZELKEnvironment outermost = system();
    return outermost;
}

ZELKEnvironmentScope::ZELKEnvironmentScope(ZELKEnvironment environment)
    : m_environment(std::move(environment))
    , m_outer(innermost)
{
    if (!m_environment.clock)
        m_environment.clock = std::make_shared<ZELKSystemClock>();
    if (!m_environment.mainBundle)
        m_environment.mainBundle = std::make_shared<ZELKBundle>();
    innermost = &m_environment;
}

ZELKEnvironmentScope::~ZELKEnvironmentScope()
{
    innermost = m_outer;
}
