<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Durations</name>
    <message>
        <source>shortformat</source>
        <translation>%d%@</translation>
    </message>
    <message>
        <source>longformat</source>
        <translation>%d %@</translation>
    </message>
    <message>
        <source>shortdivider</source>
        <translation> </translation>
    </message>
    <message>
        <source>longdivider</source>
        <translation>, </translation>
    </message>
    <message>
        <source>d</source>
        <translation>d</translation>
    </message>
    <message>
        <source>ds</source>
        <translation>d</translation>
    </message>
    <message>
        <source>h</source>
        <translation>h</translation>
    </message>
    <message>
        <source>hs</source>
        <translation>h</translation>
    </message>
    <message>
        <source>m</source>
        <translation>m</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>m</translation>
    </message>
    <message>
        <source>s</source>
        <translation>s</translation>
    </message>
    <message>
        <source>ss</source>
        <translation>s</translation>
    </message>
    <message>
        <source>day</source>
        <translation>day</translation>
    </message>
    <message>
        <source>days</source>
        <translation>days</translation>
    </message>
    <message>
        <source>hour</source>
        <translation>hour</translation>
    </message>
    <message>
        <source>hours</source>
        <translation>hours</translation>
    </message>
    <message>
        <source>minute</source>
        <translation>minute</translation>
    </message>
    <message>
        <source>minutes</source>
        <translation>minutes</translation>
    </message>
    <message>
        <source>second</source>
        <translation>second</translation>
    </message>
    <message>
        <source>seconds</source>
        <translation>seconds</translation>
    </message>
</context>
<context>
    <name>Monitor</name>
    <message>
        <source>org.zelk.lullwatch</source>
        <translation>Lullwatch</translation>
    </message>
    <message>
        <source>org.zelk.monitor.watcher.powerevents</source>
        <translation>Power Events</translation>
    </message>
    <message>
        <source>org.zelk.monitor.watcher.powersource</source>
        <translation>Power Source</translation>
    </message>
    <message>
        <source>org.zelk.monitor.watcher.last</source>
        <translation>System Accounting</translation>
    </message>
</context>
<context>
    <name>Summary</name>
    <message>
        <source>Starting monitor</source>
        <translation>Starting monitor</translation>
    </message>
    <message>
        <source>Stopping monitor</source>
        <translation>Stopping monitor</translation>
    </message>
    <message>
        <source>Can device power off</source>
        <translation>Can device power off</translation>
    </message>
    <message>
        <source>Device powering off</source>
        <translation>Device powering off</translation>
    </message>
    <message>
        <source>Device will power on</source>
        <translation>Device will power on</translation>
    </message>
    <message>
        <source>Device powered on</source>
        <translation>Device powered on</translation>
    </message>
    <message>
        <source>Can system power off</source>
        <translation>Can system power off</translation>
    </message>
    <message>
        <source>System will power off</source>
        <translation>System will power off</translation>
    </message>
    <message>
        <source>System will not power off</source>
        <translation>System will not power off</translation>
    </message>
    <message>
        <source>Can system sleep</source>
        <translation>Can system sleep</translation>
    </message>
    <message>
        <source>System will not sleep</source>
        <translation>System will not sleep</translation>
    </message>
    <message>
        <source>System will sleep</source>
        <translation>System will sleep</translation>
    </message>
    <message>
        <source>System has powered on</source>
        <translation>System has powered on</translation>
    </message>
    <message>
        <source>System will restart</source>
        <translation>System will restart</translation>
    </message>
    <message>
        <source>System will power on</source>
        <translation>System will power on</translation>
    </message>
    <message>
        <source>Power state changed</source>
        <translation>Power state changed</translation>
    </message>
    <message>
        <source>startup</source>
        <translation>Startup</translation>
    </message>
    <message>
        <source>accounting boot</source>
        <translation>Boot</translation>
    </message>
    <message>
        <source>accounting shut down</source>
        <translation>Shut down</translation>
    </message>
</context>
<context>
    <name>General</name>
    <message>
        <source>Preparing to sleep after %@ idle time</source>
        <translation>Preparing to sleep after %@ idle time</translation>
    </message>
    <message>
        <source>System sleeping after %@</source>
        <translation>System sleeping after %@</translation>
    </message>
    <message>
        <source>System powering on after %@</source>
        <translation>System powering on after %@</translation>
    </message>
    <message>
        <source>Starting up after %@</source>
        <translation>Starting up after %@</translation>
    </message>
    <message>
        <source>Shutting down after %@</source>
        <translation>Shutting down after %@</translation>
    </message>
    <message>
        <source>'%@' connected</source>
        <translation>'%@' connected</translation>
    </message>
    <message>
        <source>'%@' removed</source>
        <translation>'%@' removed</translation>
    </message>
    <message>
        <source>Switched to '%@'</source>
        <translation>Switched to '%@'</translation>
    </message>
    <message>
        <source>Started charging '%@' from '%@'</source>
        <translation>Started charging '%@' from '%@'</translation>
    </message>
    <message>
        <source>Stopped charging '%@'</source>
        <translation>Stopped charging '%@'</translation>
    </message>
    <message>
        <source>'%@' %@ %d%% capacity</source>
        <translation>'%@' %@ %d%% capacity</translation>
    </message>
    <message>
        <source>at</source>
        <translation>at</translation>
    </message>
    <message>
        <source>up to</source>
        <translation>up to</translation>
    </message>
    <message>
        <source>down to</source>
        <translation>down to</translation>
    </message>
    <message>
        <source>%d%%</source>
        <translation>%d%%</translation>
    </message>
    <message>
        <source>%@ - %@</source>
        <translation>%@ - %@</translation>
    </message>
    <message>
        <source>Duplicates</source>
        <translation>Duplicates</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Properties</translation>
    </message>
    <message>
        <source>Processes</source>
        <translation>Processes</translation>
    </message>
    <message>
        <source>Idle Seconds</source>
        <translation>Idle Seconds</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>Duration</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Transport Type</source>
        <translation>Transport Type</translation>
    </message>
    <message>
        <source>Current Capacity</source>
        <translation>Current Capacity</translation>
    </message>
    <message>
        <source>Max Capacity</source>
        <translation>Max Capacity</translation>
    </message>
    <message>
        <source>Is Present</source>
        <translation>Is Present</translation>
    </message>
    <message>
        <source>Is Charging</source>
        <translation>Is Charging</translation>
    </message>
    <message>
        <source>Time to Empty</source>
        <translation>Time to Empty</translation>
    </message>
    <message>
        <source>Time to Full Charge</source>
        <translation>Time to Full Charge</translation>
    </message>
    <message>
        <source>Power Source ID</source>
        <translation>Power Source ID</translation>
    </message>
    <message>
        <source>Low Warn Level</source>
        <translation>Low Warn Level</translation>
    </message>
    <message>
        <source>Shutdown Level</source>
        <translation>Shutdown Level</translation>
    </message>
    <message>
        <source>Power Source State</source>
        <translation>Power Source State</translation>
    </message>
    <message>
        <source>Monitored</source>
        <translation>Monitored</translation>
    </message>
    <message>
        <source>Unmonitored</source>
        <translation>Unmonitored</translation>
    </message>
    <message>
        <source>Awake</source>
        <translation>Awake</translation>
    </message>
    <message>
        <source>Asleep</source>
        <translation>Asleep</translation>
    </message>
    <message>
        <source>On</source>
        <translation>On</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Off</translation>
    </message>
    <message>
        <source>Monitoring</source>
        <translation>Monitoring</translation>
    </message>
    <message>
        <source>Power State</source>
        <translation>Power State</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>AC Power</source>
        <translation>AC Power</translation>
    </message>
    <message>
        <source>Battery Power</source>
        <translation>Battery Power</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unknown</translation>
    </message>
</context>
<context>
    <name>ZELKAgentController</name>
    <message>
        <source>ZELKAgentController.state.1</source>
        <translation>Not installed</translation>
    </message>
    <message>
        <source>ZELKAgentController.state.2</source>
        <translation>Recording for all users</translation>
    </message>
    <message>
        <source>ZELKAgentController.state.3</source>
        <translation>Recording for this user</translation>
    </message>
    <message>
        <source>ZELKAgentController.state.4</source>
        <translation>Recording in this session</translation>
    </message>
    <message>
        <source>ZELKAgentController.state.6</source>
        <translation>Recording agent not working properly</translation>
    </message>
    <message>
        <source>ZELKAgentController.startStop.label.installed.0</source>
        <translation>Start Recording…</translation>
    </message>
    <message>
        <source>ZELKAgentController.startStop.label.installed.1</source>
        <translation>Stop Recording</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.20</source>
        <translation>Recording could not be stopped, because the recording agent is not running exactly once.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.21</source>
        <translation>Recording could not be stopped, because the recording agent refused to quit.</translation>
    </message>
    <message>
        <source>ZELKAgentController.launch.failed</source>
        <translation>The recording agent could not be started.</translation>
    </message>
</context>
<context>
    <name>ZELKLWCLogTableModel</name>
    <message>
        <source>ZELKLWCLogTableModel.date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>ZELKLWCLogTableModel.summary</source>
        <translation>Summary</translation>
    </message>
</context>
<context>
    <name>ZELKLWCMainWindowController</name>
    <message>
        <source>ZELKLWCMainWindowController.title</source>
        <translation>Lullwatch</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range</source>
        <translation>&amp;Show:</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.toolTip</source>
        <translation>The days whose entries are shown</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.accessibleName</source>
        <translation>Days shown</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.1</source>
        <translation>&amp;Today</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.2</source>
        <translation>&amp;Yesterday</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.3</source>
        <translation>Last &amp;Seven Days</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.4</source>
        <translation>This &amp;Month</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.5</source>
        <translation>Last M&amp;onth</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.6</source>
        <translation>This &amp;Week</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.7</source>
        <translation>Last W&amp;eek</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.8</source>
        <translation>E&amp;verything</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.range.9</source>
        <translation>&amp;Custom</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayBackward</source>
        <translation>Day &amp;Back</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayForward</source>
        <translation>Day &amp;Forward</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthBackward</source>
        <translation>Month Bac&amp;k</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthForward</source>
        <translation>Month Forwa&amp;rd</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomIn</source>
        <translation>Fewer Days (Zoom &amp;In)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomOut</source>
        <translation>More Days (&amp;Zoom Out)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayBackward.toolTip</source>
        <translation>One day back (Alt+Left)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayBackward.accessibleName</source>
        <translation>One day back</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayForward.toolTip</source>
        <translation>One day forward (Alt+Right)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayForward.accessibleName</source>
        <translation>One day forward</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.startStop</source>
        <translation>Start or Stop</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.startStop.toolTip</source>
        <translation>Starts or stops recording this computer’s power events (Ctrl+R)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.table.accessibleName</source>
        <translation>Events</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.quit</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.userGuide</source>
        <translation>&amp;User Guide</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.about.menu</source>
        <translation>&amp;About Lullwatch</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.recording</source>
        <translation>&amp;Recording</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.range</source>
        <translation>&amp;Days</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.help</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.profile</source>
        <translation>Profile “%@”, not recording</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.entries.one</source>
        <translation>1 entry</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.entries.all</source>
        <translation>%@ entries</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.entries.some</source>
        <translation>%@ of %@ entries</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.synchronised</source>
        <translation>Last new entries fetched %@</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.synchronised.never</source>
        <translation>No entries fetched yet</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.accessibleName</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.agent</source>
        <translation>The recording agent did not answer. What is shown may not be all.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.cache</source>
        <translation>New entries could not be kept (database error %d).</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.cache.5</source>
        <translation>New entries could not be kept, because another program is using their file.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.cache.8</source>
        <translation>New entries could not be kept, because their file may not be written to.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.cache.10</source>
        <translation>New entries could not be kept, because the disk failed to write them.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.cache.13</source>
        <translation>New entries could not be kept, because the disk is full.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty</source>
        <translation>Nothing has been recorded yet. Choose “Start Recording…” to record when this computer sleeps, wakes, starts and changes its power.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.recording</source>
        <translation>Recording has begun. What happens to this computer appears here.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.profile</source>
        <translation>This profile is empty. Fill it with “lullwatch --profile NAME import FILE”.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.range</source>
        <translation>Nothing was recorded on these days.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.about</source>
        <translation>Lullwatch %@</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.about.informative</source>
        <translation>Shows when this computer slept, woke, started and changed its power.</translation>
    </message>
</context>
<context>
    <name>ZELKNoAgent</name>
    <message>
        <source>ZELKNoAgent.refusal</source>
        <translation>A profile has no recording agent.</translation>
    </message>
</context>
</TS>
