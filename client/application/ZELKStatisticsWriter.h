#pragma once

class ZELKLWCLogEntrySelection;
class ZELKTextOutput;

/// Writes the statistics of a selection.
namespace ZELKStatisticsWriter {

/// For people: the period, how many entries, and each attribute with its values in columns; each sleep.
void writeText(const ZELKLWCLogEntrySelection &selection, ZELKTextOutput &output);

/// One JSON object of raw totals: from, to (seconds since the reference date), count, usage and powerSource
/// (seconds by state), batteries (minimum, average, maximum, and secondsPerPercent or null while the charge
/// did not change), and sleeps: count, unknown (how many have no cost), batteries (asleep and awake, each
/// with the points lost, seconds and percentPerHour or null), and each (from, to, why it is unknown or null,
/// and costs by battery: lost, percentPerHour or null for a sleep of no length).
void writeJson(const ZELKLWCLogEntrySelection &selection, ZELKTextOutput &output);

} // namespace ZELKStatisticsWriter
