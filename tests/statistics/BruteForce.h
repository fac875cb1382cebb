#pragma once

#include <QString>

#include <random>

class ZELKLWCLog;

/// How long the states of a whole log lasted, in the order of its dates, found by a walk over the words of
/// its entries; in the words of the fixture.
namespace BruteForce {

struct Statistics
{
    QString usage;
    QString sources;
};
Statistics of(const ZELKLWCLog &log);

/// A life of some hours, with a little of everything, for a fixture.
QString script(std::mt19937 &random);

} // namespace BruteForce
