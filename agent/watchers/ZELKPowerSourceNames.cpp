#include "ZELKPowerSourceNames.h"

#include <algorithm>

ZELKPowerSourceNames::ZELKPowerSourceNames(ZELKPowerSourceNameMemory *memory)
    : m_memory(memory)
{
}

/// What others that share the memory named meanwhile counts.
QString ZELKPowerSourceNames::nameFor(const ZELKPowerSupply &supply, bool otherReader)
{
    if (m_memory)
        m_given = m_memory->recall();
    Given &given = m_given[supply.device];
    const Given before = given;
    given = choose(supply, before, otherReader);
    const QString name = given.name;
    if (m_memory && given != before)
        m_memory->remember(m_given);
    return name;
}

ZELKPowerSourceNames::Given ZELKPowerSourceNames::choose(const ZELKPowerSupply &supply, const Given &before,
                                                         bool otherReader) const
{
    const QString model = supply.plainName();
    if (!before.name.isEmpty() && (!supply.isPresent || before.model == model))
        return before;
    if (!before.name.isEmpty() && otherReader)
        return {before.name, model};
    const bool isSecond = isInUse(model, supply.device);
    return {isSecond ? QStringLiteral("%1 (%2)").arg(model, supply.device) : model, model};
}

bool ZELKPowerSourceNames::isInUse(const QString &name, const QString &device) const
{
    return std::any_of(m_given.begin(), m_given.end(),
                       [&](const auto &given) { return given.first != device && given.second.name == name; });
}
