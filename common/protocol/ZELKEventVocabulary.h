#pragma once

#include <QLatin1String>

/// The fixed texts that agent, store and log share. Event names and state words are also the keys under which
/// their localised forms are looked up.

// Keys of a raw event.
inline constexpr QLatin1String ZELKEventKeyDate("date");
inline constexpr QLatin1String ZELKEventKeyDescription("description");
inline constexpr QLatin1String ZELKEventKeyMonitor("monitor");
inline constexpr QLatin1String ZELKEventKeyProperties("properties");
/// Stands for "no properties".
inline constexpr QLatin1String ZELKEventNoProperties("NULL");

// Who recorded an event.
inline constexpr QLatin1String ZELKMonitorLullwatch("org.zelk.lullwatch");
inline constexpr QLatin1String ZELKMonitorPowerEvents("org.zelk.monitor.watcher.powerevents");
inline constexpr QLatin1String ZELKMonitorPowerSource("org.zelk.monitor.watcher.powersource");
inline constexpr QLatin1String ZELKMonitorSystemAccounting("org.zelk.monitor.watcher.last");

// Event names.
inline constexpr QLatin1String ZELKEventStartingMonitor("Starting monitor");
inline constexpr QLatin1String ZELKEventStoppingMonitor("Stopping monitor");
inline constexpr QLatin1String ZELKEventCanDevicePowerOff("Can device power off");
inline constexpr QLatin1String ZELKEventDevicePoweringOff("Device powering off");
inline constexpr QLatin1String ZELKEventDeviceWillPowerOn("Device will power on");
inline constexpr QLatin1String ZELKEventDevicePoweredOn("Device powered on");
inline constexpr QLatin1String ZELKEventCanSystemPowerOff("Can system power off");
inline constexpr QLatin1String ZELKEventSystemWillPowerOff("System will power off");
inline constexpr QLatin1String ZELKEventSystemWillNotPowerOff("System will not power off");
inline constexpr QLatin1String ZELKEventCanSystemSleep("Can system sleep");
inline constexpr QLatin1String ZELKEventSystemWillNotSleep("System will not sleep");
inline constexpr QLatin1String ZELKEventSystemWillSleep("System will sleep");
inline constexpr QLatin1String ZELKEventSystemHasPoweredOn("System has powered on");
inline constexpr QLatin1String ZELKEventSystemWillRestart("System will restart");
inline constexpr QLatin1String ZELKEventSystemWillPowerOn("System will power on");
inline constexpr QLatin1String ZELKEventPowerStateChanged("Power state changed");
inline constexpr QLatin1String ZELKEventStartup("startup");
inline constexpr QLatin1String ZELKEventAccountingBoot("accounting boot");
inline constexpr QLatin1String ZELKEventAccountingShutDown("accounting shut down");

// Property keys of sleep events.
inline constexpr QLatin1String ZELKPropertyIdleSeconds("Idle Seconds");
inline constexpr QLatin1String ZELKPropertyProcesses("Processes");

// Property keys of power sources; both times are in minutes.
inline constexpr QLatin1String ZELKPropertyName("Name");
inline constexpr QLatin1String ZELKPropertyIsPresent("Is Present");
inline constexpr QLatin1String ZELKPropertyIsCharging("Is Charging");
inline constexpr QLatin1String ZELKPropertyCurrentCapacity("Current Capacity");
inline constexpr QLatin1String ZELKPropertyMaxCapacity("Max Capacity");
inline constexpr QLatin1String ZELKPropertyTimeToEmpty("Time to Empty");
inline constexpr QLatin1String ZELKPropertyTimeToFullCharge("Time to Full Charge");
inline constexpr QLatin1String ZELKPropertyPowerSourceID("Power Source ID");
inline constexpr QLatin1String ZELKPropertyTransportType("Transport Type");
inline constexpr QLatin1String ZELKPropertyLowWarnLevel("Low Warn Level");
inline constexpr QLatin1String ZELKPropertyShutdownLevel("Shutdown Level");
inline constexpr QLatin1String ZELKPropertyPowerSourceState("Power Source State");

// Values of "Power Source State".
inline constexpr QLatin1String ZELKPowerSourceAC("AC Power");
inline constexpr QLatin1String ZELKPowerSourceBattery("Battery Power");
inline constexpr QLatin1String ZELKPowerSourceUnknown("Unknown");

// State words, and the groups they belong to.
inline constexpr QLatin1String ZELKStateMonitored("Monitored");
inline constexpr QLatin1String ZELKStateUnmonitored("Unmonitored");
inline constexpr QLatin1String ZELKStateAwake("Awake");
inline constexpr QLatin1String ZELKStateAsleep("Asleep");
inline constexpr QLatin1String ZELKStateOn("On");
inline constexpr QLatin1String ZELKStateOff("Off");
inline constexpr QLatin1String ZELKGroupMonitoring("Monitoring");
inline constexpr QLatin1String ZELKGroupPowerState("Power State");
inline constexpr QLatin1String ZELKGroupSystem("System");

/// Column of an event's time in the agent's records.
inline constexpr QLatin1String ZELKAgentEventTime("event_time");
