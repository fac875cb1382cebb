#pragma once

#include "ZELKPowerSupply.h"

#include <map>

/// Gives each power source the one name under which all its readings are recorded.
class ZELKPowerSourceNames
{
public:
    /// A source goes by its model, which names it to people; a second one of that model by the kernel's name
    /// as well. A name is kept while the model stays, and by one that left. Readers may spell a model
    /// differently: with `otherReader` the model is taken over and the name kept.
    QString nameFor(const ZELKPowerSupply &supply, bool otherReader);

private:
    struct Given
    {
        QString name;
        QString plainName;
    };
    bool isInUse(const QString &name, const QString &device) const;

    std::map<QString, Given> m_given; ///< by the kernel's name
};
