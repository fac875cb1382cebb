#pragma once

#include <QString>

#include <random>

class ZELKLWCLog;

/// The statistics of a whole log in the order of its dates, each found by a search through all of it, in the
/// words of the fixture.
namespace BruteForce {

struct Statistics
{
    QString usage;
    QString sources;
    QString sleeps;
};
Statistics of(const ZELKLWCLog &log);

/// A life of some hours, with a little of everything, for a fixture.
QString script(std::mt19937 &random);

} // namespace BruteForce
