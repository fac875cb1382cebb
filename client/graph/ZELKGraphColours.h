#pragma once

#include <QColor>
#include <QString>
#include <QStringList>

#include <optional>

/// The graph's colours. What has none is not painted: other states, and curves of batteries that are away.
namespace ZELKGraphColours {

/// Of a state's blocks, more or less transparent.
std::optional<QColor> stateColour(const QString &state);
/// The states that have a colour.
QStringList colouredStates();
/// Of a curve under a power source.
std::optional<QColor> batteryColour(const QString &powerSource);

} // namespace ZELKGraphColours
