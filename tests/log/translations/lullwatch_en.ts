<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>Monitor</name>
    <message>
        <source>org.zelk.monitor.watcher.powerevents</source>
        <translation>~org.zelk.monitor.watcher.powerevents~</translation>
    </message>
    <message>
        <source>org.zelk.monitor.watcher.powersource</source>
        <translation>~org.zelk.monitor.watcher.powersource~</translation>
    </message>
</context>
<context>
    <name>Summary</name>
    <message>
        <source>Starting monitor</source>
        <translation>~Starting monitor~</translation>
    </message>
    <message>
        <source>System will not sleep</source>
        <translation>~System will not sleep~</translation>
    </message>
    <message>
        <source>System will restart</source>
        <translation>~System will restart~</translation>
    </message>
    <message>
        <source>System will sleep</source>
        <translation>~System will sleep~</translation>
    </message>
    <message>
        <source>Can system sleep</source>
        <translation>~Can system sleep~</translation>
    </message>
</context>
<context>
    <name>General</name>
    <message>
        <source>Preparing to sleep after %@ idle time</source>
        <translation>~Preparing to sleep after %@ idle time~</translation>
    </message>
    <message>
        <source>System sleeping after %@</source>
        <translation>~System sleeping after %@~</translation>
    </message>
    <message>
        <source>System powering on after %@</source>
        <translation>~System powering on after %@~</translation>
    </message>
    <message>
        <source>Starting up after %@</source>
        <translation>~Starting up after %@~</translation>
    </message>
    <message>
        <source>Shutting down after %@</source>
        <translation>~Shutting down after %@~</translation>
    </message>
    <message>
        <source>'%@' connected</source>
        <translation>~'%@' connected~</translation>
    </message>
    <message>
        <source>'%@' removed</source>
        <translation>~'%@' removed~</translation>
    </message>
    <message>
        <source>Switched to '%@'</source>
        <translation>~Switched to '%@'~</translation>
    </message>
    <message>
        <source>Started charging '%@' from '%@'</source>
        <translation>~Started charging '%@' from '%@'~</translation>
    </message>
    <message>
        <source>Stopped charging '%@'</source>
        <translation>~Stopped charging '%@'~</translation>
    </message>
    <message>
        <source>'%@' %@ %d%% capacity</source>
        <translation>~'%@' %@ %d%% capacity~</translation>
    </message>
    <message>
        <source>at</source>
        <translation>~at~</translation>
    </message>
    <message>
        <source>up to</source>
        <translation>~up to~</translation>
    </message>
    <message>
        <source>down to</source>
        <translation>~down to~</translation>
    </message>
    <message>
        <source>%d%%</source>
        <translation>~%d%%~</translation>
    </message>
    <message>
        <source>%@ - %@</source>
        <translation>~%@ - %@~</translation>
    </message>
    <message>
        <source>Duplicates</source>
        <translation>~Duplicates~</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>~Properties~</translation>
    </message>
    <message>
        <source>Processes</source>
        <translation>~Processes~</translation>
    </message>
    <message>
        <source>Idle Seconds</source>
        <translation>~Idle Seconds~</translation>
    </message>
    <message>
        <source>Duration</source>
        <translation>~Duration~</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>~Name~</translation>
    </message>
    <message>
        <source>Transport Type</source>
        <translation>~Transport Type~</translation>
    </message>
    <message>
        <source>Current Capacity</source>
        <translation>~Current Capacity~</translation>
    </message>
    <message>
        <source>Time to Empty</source>
        <translation>~Time to Empty~</translation>
    </message>
    <message>
        <source>Time to Full Charge</source>
        <translation>~Time to Full Charge~</translation>
    </message>
    <message>
        <source>Power Source ID</source>
        <translation>~Power Source ID~</translation>
    </message>
    <message>
        <source>Low Warn Level</source>
        <translation>~Low Warn Level~</translation>
    </message>
    <message>
        <source>Shutdown Level</source>
        <translation>~Shutdown Level~</translation>
    </message>
    <message>
        <source>Device</source>
        <translation>~Device~</translation>
    </message>
    <message>
        <source>Power State</source>
        <translation>~Power State~</translation>
    </message>
    <message>
        <source>Monitoring</source>
        <translation>~Monitoring~</translation>
    </message>
</context>
</TS>
