#pragma once

#include "ZELKPowerSupply.h"

#include <map>

/// Keeps the names that were given, so that a source has the same one in every run, whichever is seen first.
class ZELKPowerSourceNameMemory
{
public:
    struct Given
    {
        QString name;
        /// What its model was read as.
        QString model;

        friend bool operator==(const Given &, const Given &) = default;
    };
    using Names = std::map<QString, Given>; ///< by the kernel's name

    virtual ~ZELKPowerSourceNameMemory() = default;
    virtual Names recall() const = 0;
    virtual void remember(const Names &names) = 0;
};

/// Gives each power source the one name under which all its readings are recorded.
class ZELKPowerSourceNames
{
public:
    /// `memory` outlives it; without one all names are given anew.
    explicit ZELKPowerSourceNames(ZELKPowerSourceNameMemory *memory = nullptr);

    /// A source goes by its model, which names it to people; a second one of that model by the kernel's name
    /// as well. A name is kept while the model stays, and by one that left. Readers may spell a model
    /// differently: with `otherReader` the model is taken over and the name kept.
    QString nameFor(const ZELKPowerSupply &supply, bool otherReader);

private:
    using Given = ZELKPowerSourceNameMemory::Given;
    Given choose(const ZELKPowerSupply &supply, const Given &before, bool otherReader) const;
    bool isInUse(const QString &name, const QString &device) const;

    ZELKPowerSourceNameMemory *m_memory;
    ZELKPowerSourceNameMemory::Names m_given;
};
