#include "ZELKPowerSourceNames.h"

#include <algorithm>

QString ZELKPowerSourceNames::nameFor(const ZELKPowerSupply &supply, bool otherReader)
{
    const QString plain = supply.plainName();
    Given &given = m_given[supply.device];
    if (!given.name.isEmpty()) {
        if (!supply.isPresent || given.plainName == plain)
            return given.name;
        if (otherReader) {
            given.plainName = plain;
            return given.name;
        }
    }
    given.plainName = plain;
    return given.name =
               isInUse(plain, supply.device) ? QStringLiteral("%1 (%2)").arg(plain, supply.device) : plain;
}

bool ZELKPowerSourceNames::isInUse(const QString &name, const QString &device) const
{
    return std::any_of(m_given.begin(), m_given.end(),
                       [&](const auto &given) { return given.first != device && given.second.name == name; });
}
