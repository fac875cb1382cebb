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
    <name>Localizable</name>
    <message>
        <source>today</source>
        <translation>today</translation>
    </message>
    <message>
        <source>tomorrow</source>
        <translation>tomorrow</translation>
    </message>
    <message>
        <source>yesterday</source>
        <translation>yesterday</translation>
    </message>
    <message>
        <source>ZELKLWClientAppDelegateFeedbackMessage</source>
        <translation>What is wrong with Lullwatch, or what do you miss? Every report is read.</translation>
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
        <source>%Y-%m-%d</source>
        <translation>%Y-%m-%d</translation>
    </message>
    <message>
        <source>%@-Lullwatch</source>
        <translation>%@-Lullwatch</translation>
    </message>
    <message>
        <source>Cannot save file: '%@': %s</source>
        <translation>Cannot save file: '%@': %s</translation>
    </message>
    <message>
        <source>Battery
%</source>
        <translation>Battery
%</translation>
    </message>
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
    <message>
        <source>%@ asleep</source>
        <translation>%@ asleep</translation>
    </message>
    <message>
        <source>%@ awake</source>
        <translation>%@ awake</translation>
    </message>
    <message>
        <source>%.1f%% in %@</source>
        <translation>%.1f%% in %@</translation>
    </message>
    <message>
        <source>% an hour</source>
        <translation>% an hour</translation>
    </message>
    <message>
        <source>%.1f%% an hour, %@</source>
        <translation>%.1f%% an hour, %@</translation>
    </message>
    <message>
        <source>Earlier</source>
        <translation>Earlier</translation>
    </message>
    <message>
        <source>%lu more sleeps</source>
        <translation>%lu more sleeps</translation>
    </message>
    <message>
        <source>%lu of %lu sleeps</source>
        <translation>%lu of %lu sleeps</translation>
    </message>
    <message>
        <source>no charge was read shortly before and after</source>
        <translation>no charge was read shortly before and after</translation>
    </message>
    <message>
        <source>the charge was read only around several sleeps</source>
        <translation>the charge was read only around several sleeps</translation>
    </message>
    <message>
        <source>not everything in between was recorded</source>
        <translation>not everything in between was recorded</translation>
    </message>
    <message>
        <source>there was power from outside</source>
        <translation>there was power from outside</translation>
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
        <source>ZELKAgentController.install.message</source>
        <translation>Record when this computer sleeps and wakes?</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.informative</source>
        <translation>%@ shows what a small background program records: when this computer sleeps, wakes, starts and shuts down, and how its batteries do. Install it to record always, or let it record until you log out.</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.button.install</source>
        <translation>&amp;Install</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.button.skip</source>
        <translation>&amp;Record This Session Only</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.button.cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location</source>
        <translation>Install &amp;for:</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.1</source>
        <translation>For all users of this computer (needs an administrator)</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.2</source>
        <translation>For me only</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.none</source>
        <translation>Not possible on this computer</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.toolTip</source>
        <translation>Who the recording agent is installed for</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.accessibleName</source>
        <translation>Install for</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.1.meaning</source>
        <translation>Records from start-up on, whoever is logged in. Asks for an administrator’s password.</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.location.2.meaning</source>
        <translation>Records while you are logged in, and starts again with your next login. Asks for no password.</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.absent</source>
        <translation>systemd does not run here, so nothing can be installed. Recording this session works all the same.</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.absent.1</source>
        <translation>Installing for all users is not possible, because systemd does not run this computer.</translation>
    </message>
    <message>
        <source>ZELKAgentController.install.absent.2</source>
        <translation>Installing for you only is not possible, because no systemd runs in this session.</translation>
    </message>
    <message>
        <source>ZELKAgentController.help</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>ZELKAgentController.update.message</source>
        <translation>Update the recording agent?</translation>
    </message>
    <message>
        <source>ZELKAgentController.update.informative</source>
        <translation>The recording agent on this computer is not the one that came with this %@. Updating replaces it and keeps everything it has recorded.</translation>
    </message>
    <message>
        <source>ZELKAgentController.update.button.update</source>
        <translation>&amp;Update</translation>
    </message>
    <message>
        <source>ZELKAgentController.update.button.cancel</source>
        <translation>&amp;Not Now</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.1</source>
        <translation>The recording agent could not be installed for all users, because you were not given the right to do so.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.2</source>
        <translation>The recording agent could not be installed for all users.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.3</source>
        <translation>The recording agent could not be removed, because you were not given the right to do so.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.4</source>
        <translation>The recording agent could not be removed, because the request could not be made out.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.5</source>
        <translation>The recording agent could not be removed, because it could not be reached or did not answer.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.6</source>
        <translation>The recording agent was stopped, but it answered that its files could not be deleted.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.7</source>
        <translation>The recording agent’s files were deleted, but it could not be stopped.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.8</source>
        <translation>The recording agent could not be installed, because there is no folder for it.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.9</source>
        <translation>The recording agent could not be installed, because it could not be copied.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.10</source>
        <translation>The recording agent could not be installed, because its description is missing.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.11</source>
        <translation>The recording agent could not be installed, because there is no folder for its job.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.12</source>
        <translation>The recording agent could not be installed, because its job could not be written down.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.13</source>
        <translation>The recording agent could not be installed, because there was no authorization.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.14</source>
        <translation>The recording agent was not started.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.17</source>
        <translation>The recording agent could not be removed, because its copy could not be deleted.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.18</source>
        <translation>The recording agent could not be removed, because its job’s description could not be deleted.</translation>
    </message>
    <message>
        <source>ZELKAgentController.error.19</source>
        <translation>The recording agent’s files were deleted, but it could not be stopped.</translation>
    </message>
    <message>
        <source>ZELKAgentController.systemd.absent</source>
        <translation>systemd does not run here</translation>
    </message>
    <message>
        <source>ZELKAgentController.polkit.absent</source>
        <translation>polkit does not answer</translation>
    </message>
    <message>
        <source>ZELKAgentController.polkit.refused</source>
        <translation>polkit refused</translation>
    </message>
    <message>
        <source>ZELKAgentController.polkit.dismissed</source>
        <translation>the request for a password was cancelled</translation>
    </message>
    <message>
        <source>ZELKAgentController.polkit.nobodyAsks</source>
        <translation>nothing here can ask for a password; use sudo</translation>
    </message>
    <message>
        <source>ZELKAgentController.polkit.unknownAction</source>
        <translation>Lullwatch is not installed on this computer; install it, or use sudo</translation>
    </message>
    <message>
        <source>ZELKAgentController.installer.failed</source>
        <translation>the installer failed without a word</translation>
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
    <name>ZELKCommandLine</name>
    <message>
        <source>Nothing was recorded in that range.</source>
        <translation>Nothing was recorded in that range.</translation>
    </message>
    <message>
        <source>--sample has a log of its own: it does not take --database or --profile.</source>
        <translation>--sample has a log of its own: it does not take --database or --profile.</translation>
    </message>
    <message>
        <source>The sample log cannot be opened.</source>
        <translation>The sample log cannot be opened.</translation>
    </message>
    <message>
        <source>The output cannot be written: %@</source>
        <translation>The output cannot be written: %@</translation>
    </message>
    <message>
        <source>%@ is not there; nothing has been kept in it yet.</source>
        <translation>%@ is not there; nothing has been kept in it yet.</translation>
    </message>
    <message>
        <source>%@ cannot be read: %@</source>
        <translation>%@ cannot be read: %@</translation>
    </message>
    <message>
        <source>line %lu: %@</source>
        <translation>line %lu: %@</translation>
    </message>
    <message>
        <source>The events cannot be kept: their file cannot be written.</source>
        <translation>The events cannot be kept: their file cannot be written.</translation>
    </message>
    <message>
        <source>imported %lu events, %lu of them new, skipped %lu lines</source>
        <translation>imported %lu events, %lu of them new, skipped %lu lines</translation>
    </message>
    <message>
        <source>The events cannot be read to their end; these are not all.</source>
        <translation>The events cannot be read to their end; these are not all.</translation>
    </message>
    <message>
        <source>The picture cannot be written to %@.</source>
        <translation>The picture cannot be written to %@.</translation>
    </message>
    <message>
        <source>A picture of the window stands in %@.</source>
        <translation>A picture of the window stands in %@.</translation>
    </message>
    <message>
        <source>Unknown option '%@'.</source>
        <translation>Unknown option '%@'.</translation>
    </message>
    <message>
        <source>The options are not in order: %@</source>
        <translation>The options are not in order: %@</translation>
    </message>
    <message>
        <source>There is no command "%@".</source>
        <translation>There is no command "%@".</translation>
    </message>
    <message>
        <source>import needs a FILE, or - for standard input.</source>
        <translation>import needs a FILE, or - for standard input.</translation>
    </message>
    <message>
        <source>The FILE to import has no name.</source>
        <translation>The FILE to import has no name.</translation>
    </message>
    <message>
        <source>agent needs to be told what to do: status, install, remove or update.</source>
        <translation>agent needs to be told what to do: status, install, remove or update.</translation>
    </message>
    <message>
        <source>agent does not take --start-agent, --profile or --database.</source>
        <translation>agent does not take --start-agent, --profile or --database.</translation>
    </message>
    <message>
        <source>agent install, and nothing else, needs --as system, --as user or --as session.</source>
        <translation>agent install, and nothing else, needs --as system, --as user or --as session.</translation>
    </message>
    <message>
        <source>agent status has the formats table and json.</source>
        <translation>agent status has the formats table and json.</translation>
    </message>
    <message>
        <source>State:    %@</source>
        <translation>State:    %@</translation>
    </message>
    <message>
        <source>Version:  %@</source>
        <translation>Version:  %@</translation>
    </message>
    <message>
        <source>Answers:  %@</source>
        <translation>Answers:  %@</translation>
    </message>
    <message>
        <source>unknown</source>
        <translation>unknown</translation>
    </message>
    <message>
        <source>yes</source>
        <translation>yes</translation>
    </message>
    <message>
        <source>no</source>
        <translation>no</translation>
    </message>
    <message>
        <source>"lullwatch agent update" replaces it by the agent of this application.</source>
        <translation>"lullwatch agent update" replaces it by the agent of this application.</translation>
    </message>
    <message>
        <source>The recording agent is there already (%@). "lullwatch agent remove" removes it.</source>
        <translation>The recording agent is there already (%@). "lullwatch agent remove" removes it.</translation>
    </message>
    <message>
        <source>systemd does not run this computer, so the recording agent cannot be installed for all users. "--as session" does without systemd.</source>
        <translation>systemd does not run this computer, so the recording agent cannot be installed for all users. "--as session" does without systemd.</translation>
    </message>
    <message>
        <source>No systemd runs in this session, so the recording agent cannot be installed for you. "--as session" does without systemd.</source>
        <translation>No systemd runs in this session, so the recording agent cannot be installed for you. "--as session" does without systemd.</translation>
    </message>
    <message>
        <source>Something answers for the recording agent, but it was not started from this session; whoever started it can end it.</source>
        <translation>Something answers for the recording agent, but it was not started from this session; whoever started it can end it.</translation>
    </message>
    <message>
        <source>There is no recording agent to update (%@).</source>
        <translation>There is no recording agent to update (%@).</translation>
    </message>
    <message>
        <source>The recording agent is this application's own already.</source>
        <translation>The recording agent is this application's own already.</translation>
    </message>
    <message>
        <source>The recording agent was started, but has ended again.</source>
        <translation>The recording agent was started, but has ended again.</translation>
    </message>
    <message>
        <source>The recording agent did not follow within %d seconds (%@).</source>
        <translation>The recording agent did not follow within %d seconds (%@).</translation>
    </message>
    <message>
        <source>Unexpected argument "%@".</source>
        <translation>Unexpected argument "%@".</translation>
    </message>
    <message>
        <source>--or-picture stands in for the window: it does not go together with a command.</source>
        <translation>--or-picture stands in for the window: it does not go together with a command.</translation>
    </message>
    <message>
        <source>--%@ belongs to the command %@.</source>
        <translation>--%@ belongs to the command %@.</translation>
    </message>
    <message>
        <source>--%@ needs a value.</source>
        <translation>--%@ needs a value.</translation>
    </message>
    <message>
        <source>"%@" cannot name a profile: letters, digits, ".", "_" and "-" can.</source>
        <translation>"%@" cannot name a profile: letters, digits, ".", "_" and "-" can.</translation>
    </message>
    <message>
        <source>A profile has no agent: --start-agent and --profile do not go together.</source>
        <translation>A profile has no agent: --start-agent and --profile do not go together.</translation>
    </message>
    <message>
        <source>import has nothing to do with the agent: it does not take --start-agent.</source>
        <translation>import has nothing to do with the agent: it does not take --start-agent.</translation>
    </message>
    <message>
        <source>"%@" is no date: YYYY-MM-DD, YYYY-MM-DDTHH:MM or YYYY-MM-DDTHH:MM:SS is.</source>
        <translation>"%@" is no date: YYYY-MM-DD, YYYY-MM-DDTHH:MM or YYYY-MM-DDTHH:MM:SS is.</translation>
    </message>
    <message>
        <source>There is no range "%@".</source>
        <translation>There is no range "%@".</translation>
    </message>
    <message>
        <source>--range does not go together with --from and --to.</source>
        <translation>--range does not go together with --from and --to.</translation>
    </message>
    <message>
        <source>--from lies after --to.</source>
        <translation>--from lies after --to.</translation>
    </message>
    <message>
        <source>There is no format "%@".</source>
        <translation>There is no format "%@".</translation>
    </message>
    <message>
        <source>--count needs a number from 1 to 1000000, not "%@".</source>
        <translation>--count needs a number from 1 to 1000000, not "%@".</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Summary</translation>
    </message>
    <message>
        <source>1 entry</source>
        <translation>1 entry</translation>
    </message>
    <message>
        <source>%lu entries</source>
        <translation>%lu entries</translation>
    </message>
    <message>
        <source>%lu of 1 entry</source>
        <translation>%lu of 1 entry</translation>
    </message>
    <message>
        <source>%lu of %lu entries</source>
        <translation>%lu of %lu entries</translation>
    </message>
    <message>
        <source>"lullwatch --help" tells what there is.</source>
        <translation>"lullwatch --help" tells what there is.</translation>
    </message>
    <message>
        <source>The application's folder %@ is missing or damaged.</source>
        <translation>The application's folder %@ is missing or damaged.</translation>
    </message>
    <message>
        <source>ZELKCommandLine.help</source>
        <translation>Shows what happened to this computer: when it slept, woke, started and changed its power.

Usage: lullwatch [OPTIONS]                     opens the window
       lullwatch [OPTIONS] list [...]          prints entries
       lullwatch [OPTIONS] stats [RANGE] [...] tells how long it was awake, asleep, off, and what that cost
       lullwatch [OPTIONS] export [...]        saves the log, or a picture of the graph, for other programs
       lullwatch [OPTIONS] print [RANGE] [...] writes the table as it would be printed to a PDF file
       lullwatch [OPTIONS] import FILE         takes events in, from a file or "-" (standard input)
       lullwatch [OPTIONS] snapshot [...]      prints the latest entries, without a display
       lullwatch agent WHAT [...]              tells of the recording agent, installs, removes and updates it

Options, which may also follow the command:
  --database FILE    keep the events in FILE
  --profile NAME     a world of its own: settings and events apart from all others, and no agent
  --sample           the sample log: 120 days of a made-up laptop, apart from everything of yours
  --start-agent      start the recording agent in this session if it is not running
  -h, --help         print this
  -v, --version      print the version

window:
  --or-picture FILE  where there is no display, print the latest entries and write a picture of the window to
                     FILE instead; --count NUMBER goes with it

list:
  --range RANGE      today, yesterday, last-seven-days, this-month, last-month, this-week, last-week or
                     everything (which it is without this)
  --from DATE        entries from then on: YYYY-MM-DD, YYYY-MM-DDTHH:MM or YYYY-MM-DDTHH:MM:SS, local time
  --to DATE          entries up to then, that day or second included
  --format FORMAT    table (which it is without this), tsv or json

stats: RANGE, --from and --to as for list
  --format FORMAT    text (which it is without this) or json, which is one object of raw totals

export:
  --output FILE      where to; - is standard output
  --format FORMAT    txt (tabs between date, summary and attributes), rtf, plist, doc, tiff or png; without this, as
                     the FILE's name ends
  --width NUMBER, --height NUMBER, RANGE, --from, --to (of which the days count)
                     of a picture: its size from 150 to 15000 (1200 and 300 without these), and what it shows

print: RANGE as for list; --from and --to, of which the days count
  --output FILE      where to
  --paper PAPER      A4 or Letter; without this, what is usual here
  --landscape        the sheets lie on their sides

import: raw events, one JSON object a line, with the keys "date" (seconds since 2001-01-01 UTC),
"description", "monitor" and "properties" (a property list as text, or "NULL")

snapshot:
  --count NUMBER     how many entries, 20 without this
  --picture FILE     also write a picture of the window, as PNG

agent:
  status             how it is installed, its version, and whether it answers; the exit status is 0 when it is
                     installed and answers. --format json gives one JSON object
  install --as FORM  system: for all users of this computer, which needs an administrator; user: for you only;
                     session: until you log out, without installing anything
  remove             ends it and takes away what was installed; what it has recorded stays
  update             replaces it by the agent of this application, in the form that it has

Examples:
  lullwatch list --range yesterday            what happened yesterday
  lullwatch stats last-month                  how long it was asleep last month, and what that cost
  lullwatch stats --from 2026-11-01 --format json | jq .
  lullwatch export --output week.png --width 1600 last-week
  lullwatch agent install --as user           record from now on, whenever you are logged in
  lullwatch --sample                          look around in a full window

The exit status is 0, 1 when something failed, and 2 when the command line was wrong. More stands in lullwatch(1), and
in the user guide (Help in the window).
</translation>
    </message>
    <message>
        <source>There is no display to open the window on. "lullwatch list" and "lullwatch snapshot" need none.</source>
        <translation>There is no display to open the window on. "lullwatch list" and "lullwatch snapshot" need none.</translation>
    </message>
    <message>
        <source>longer than 16 MiB</source>
        <translation>longer than 16 MiB</translation>
    </message>
    <message>
        <source>unknown key "%@"</source>
        <translation>unknown key "%@"</translation>
    </message>
    <message>
        <source>not a JSON object</source>
        <translation>not a JSON object</translation>
    </message>
    <message>
        <source>the object is not closed</source>
        <translation>the object is not closed</translation>
    </message>
    <message>
        <source>more than one object</source>
        <translation>more than one object</translation>
    </message>
    <message>
        <source>missing key "%@"</source>
        <translation>missing key "%@"</translation>
    </message>
    <message>
        <source>the key "%@" stands twice</source>
        <translation>the key "%@" stands twice</translation>
    </message>
    <message>
        <source>no value for "%@"</source>
        <translation>no value for "%@"</translation>
    </message>
    <message>
        <source>"%@" is no text</source>
        <translation>"%@" is no text</translation>
    </message>
    <message>
        <source>no text where one is needed</source>
        <translation>no text where one is needed</translation>
    </message>
    <message>
        <source>a control character in a text</source>
        <translation>a control character in a text</translation>
    </message>
    <message>
        <source>a text is not closed</source>
        <translation>a text is not closed</translation>
    </message>
    <message>
        <source>an unknown escape in a text</source>
        <translation>an unknown escape in a text</translation>
    </message>
    <message>
        <source>half a surrogate pair in a text</source>
        <translation>half a surrogate pair in a text</translation>
    </message>
    <message>
        <source>a NUL in a text</source>
        <translation>a NUL in a text</translation>
    </message>
    <message>
        <source>"date" is no number</source>
        <translation>"date" is no number</translation>
    </message>
    <message>
        <source>"date" is out of range</source>
        <translation>"date" is out of range</translation>
    </message>
    <message>
        <source>"properties" is no property-list text</source>
        <translation>"properties" is no property-list text</translation>
    </message>
    <message>
        <source>"properties" cannot be read: %@</source>
        <translation>"properties" cannot be read: %@</translation>
    </message>
    <message>
        <source>"properties" is no dictionary</source>
        <translation>"properties" is no dictionary</translation>
    </message>
    <message>
        <source>a NUL</source>
        <translation>a NUL</translation>
    </message>
    <message>
        <source>not UTF-8</source>
        <translation>not UTF-8</translation>
    </message>
    <message>
        <source>The recording agent was started, but does not answer.</source>
        <translation>The recording agent was started, but does not answer.</translation>
    </message>
    <message>
        <source>The recording agent's events could not be fetched; these are from the cache.</source>
        <translation>The recording agent's events could not be fetched; these are from the cache.</translation>
    </message>
    <message>
        <source>--%@ needs a number from %d to %d, not &quot;%@&quot;.</source>
        <translation>--%@ needs a number from %d to %d, not &quot;%@&quot;.</translation>
    </message>
    <message>
        <source>export needs --output FILE, or --output - for standard output.</source>
        <translation>export needs --output FILE, or --output - for standard output.</translation>
    </message>
    <message>
        <source>export needs --format txt, rtf, plist, doc, tiff or png.</source>
        <translation>export needs --format txt, rtf, plist, doc, tiff or png.</translation>
    </message>
    <message>
        <source>--width, --height and a range are for pictures; of the log, all is exported.</source>
        <translation>--width, --height and a range are for pictures; of the log, all is exported.</translation>
    </message>
    <message>
        <source>print needs --output FILE.</source>
        <translation>print needs --output FILE.</translation>
    </message>
    <message>
        <source>There is no paper "%@": A4 and Letter there are.</source>
        <translation>There is no paper "%@": A4 and Letter there are.</translation>
    </message>
    <message>
        <source>There is nothing to print in that range.</source>
        <translation>There is nothing to print in that range.</translation>
    </message>
    <message>
        <source>There is nothing to export yet.</source>
        <translation>There is nothing to export yet.</translation>
    </message>
    <message>
        <source>%@ is the file that the events are kept in.</source>
        <translation>%@ is the file that the events are kept in.</translation>
    </message>
    <message>
        <source>There is not enough memory for a picture of that size.</source>
        <translation>There is not enough memory for a picture of that size.</translation>
    </message>
    <message>
        <source>Cannot save file: '%@': %s</source>
        <translation>Cannot save file: '%@': %s</translation>
    </message>
    <message>
        <source>Cancelled; nothing was written to %@.</source>
        <translation>Cancelled; nothing was written to %@.</translation>
    </message>
    <message>
        <source>Cancelled; a part was written to %@ already.</source>
        <translation>Cancelled; a part was written to %@ already.</translation>
    </message>
    <message>
        <source>%d%%</source>
        <translation>%d%%</translation>
    </message>
</context>
<context>
    <name>ZELKLWCEntriesView</name>
    <message>
        <source>ZELKLWCEntriesView.entry</source>
        <translation>%d entry</translation>
    </message>
    <message>
        <source>ZELKLWCEntriesView.entries</source>
        <translation>%d entries</translation>
    </message>
    <message>
        <source>ZELKLWCEntriesView.once</source>
        <translation>%@ once, %@</translation>
    </message>
    <message>
        <source>ZELKLWCEntriesView.times</source>
        <translation>%@ %d times, %@ in all</translation>
    </message>
    <message>
        <source>ZELKLWCEntriesView.level</source>
        <translation>%@ at %d %%</translation>
    </message>
    <message>
        <source>ZELKLWCEntriesView.levels</source>
        <translation>%@ from %d %% to %d %%</translation>
    </message>
</context>
<context>
    <name>ZELKLWCInspectorController</name>
    <message>
        <source>ZELKLWCInspectorController.title</source>
        <translation>Inspector</translation>
    </message>
    <message>
        <source>Summary</source>
        <translation>Summary</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Event</translation>
    </message>
    <message>
        <source>No Selection</source>
        <translation>No Selection</translation>
    </message>
    <message>
        <source>Unsupported attribute</source>
        <translation>Unsupported attribute</translation>
    </message>
    <message>
        <source>and %@ more</source>
        <translation>and %@ more</translation>
    </message>
    <message>
        <source>%@ entries</source>
        <translation>%@ entries</translation>
    </message>
    <message>
        <source>%@ %@</source>
        <translation>%@ %@</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Time</translation>
    </message>
    <message>
        <source>Repeated</source>
        <translation>Repeated</translation>
    </message>
    <message>
        <source>once</source>
        <translation>once</translation>
    </message>
    <message>
        <source>%@ times</source>
        <translation>%@ times</translation>
    </message>
    <message>
        <source>Last</source>
        <translation>Last</translation>
    </message>
    <message>
        <source>From then on</source>
        <translation>From then on</translation>
    </message>
    <message>
        <source>%@ since %@</source>
        <translation>%@ since %@</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Before</translation>
    </message>
    <message>
        <source>Reported by</source>
        <translation>Reported by</translation>
    </message>
    <message>
        <source>From</source>
        <translation>From</translation>
    </message>
    <message>
        <source>To</source>
        <translation>To</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Length</translation>
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
        <translation>&amp;Custom…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayBackward</source>
        <translation>&amp;Previous Day</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayForward</source>
        <translation>&amp;Next Day</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthBackward</source>
        <translation>P&amp;revious Month</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthForward</source>
        <translation>Ne&amp;xt Month</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomIn</source>
        <translation>&amp;Fewer Days</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomOut</source>
        <translation>More &amp;Days</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayBackward.toolTip</source>
        <translation>The days before, moved by one day</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.dayForward.toolTip</source>
        <translation>The days after, moved by one day</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.startStop</source>
        <translation>Start or Stop</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.startStop.toolTip</source>
        <translation>Starts or stops recording this computer’s power events</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.updateAgent</source>
        <translation>&amp;Update Recording Agent</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.updateAgent.toolTip</source>
        <translation>Replaces the recording agent by the one that came with this application</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.version</source>
        <translation>Recording agent, version %@</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.remains</source>
        <translation>The recording agent is there only in part: it does not answer, or nothing says who started it. “lullwatch agent remove” takes away what is left of it.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.graph.accessibleName</source>
        <translation>Timeline</translation>
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
        <source>ZELKLWCMainWindowController.menuComment</source>
        <translation>When this computer slept, woke and ran on battery</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.openSampleLog</source>
        <translation>Open &amp;Sample Log</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.openSampleLog.toolTip</source>
        <translation>Opens a window with 120 days of a made-up laptop</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.openSampleLog.failed</source>
        <translation>The sample log cannot be opened.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.feedback</source>
        <translation>Send &amp;Feedback…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.feedback.toolTip</source>
        <translation>Tell the makers what is wrong, or what you miss</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.feedback.noAddress</source>
        <translation>This build was made without an address that reports could go to</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.about.menu</source>
        <translation>&amp;About Lullwatch</translation>
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
        <source>ZELKLWCMainWindowController.entries.someOfOne</source>
        <translation>%@ of 1 entry</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.synchronised</source>
        <translation>Synchronised: %@</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.synchronised.never</source>
        <translation>Not synchronised yet</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure.accessibleName</source>
        <translation>Warning</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.failure</source>
        <translation>%@ %@</translation>
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
        <translation>Nothing has been recorded yet</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.unreadable</source>
        <translation>The recorded entries cannot be read</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.recording</source>
        <translation>Recording has begun</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.profile</source>
        <translation>This profile is empty</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.range</source>
        <translation>No entries in this range</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.pageSetup</source>
        <translation>Page Set&amp;up…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.pageSetup.toolTip</source>
        <translation>Choose the paper, its direction and its margins</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.printPreview</source>
        <translation>Print Pre&amp;view…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.printPreview.toolTip</source>
        <translation>See the table as it would be printed</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.print</source>
        <translation>&amp;Print…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.print.toolTip</source>
        <translation>Print the table as it is shown, or write it to a PDF file</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.print.failed</source>
        <translation>The report could not be printed.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthBackward.toolTip</source>
        <translation>The days before, moved by one month</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.monthForward.toolTip</source>
        <translation>The days after, moved by one month</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomIn.toolTip</source>
        <translation>Fewer days: one less at each end</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.zoomOut.toolTip</source>
        <translation>More days: one more at each end</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.jumpToDate</source>
        <translation>&amp;Jump to Date…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.jumpToDate.toolTip</source>
        <translation>Shows one day, which you choose</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.jumpToSelection</source>
        <translation>Jump to Se&amp;lection</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.jumpToSelection.toolTip</source>
        <translation>Shows the days of the selected entries and no others</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.file</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.edit</source>
        <translation>&amp;Edit</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.view</source>
        <translation>&amp;View</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.go</source>
        <translation>&amp;Go</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.agent</source>
        <translation>&amp;Agent</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.menu.sort</source>
        <translation>&amp;Sort</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.fetch</source>
        <translation>&amp;Fetch New Entries</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.fetch.toolTip</source>
        <translation>Asks the recording agent for what it recorded since it was last asked</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.close</source>
        <translation>&amp;Close Window</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.copy</source>
        <translation>&amp;Copy</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.copy.toolTip</source>
        <translation>Copies the selected entries as text and as a table</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.selectAll</source>
        <translation>Select &amp;All</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.find</source>
        <translation>&amp;Find</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.find.toolTip</source>
        <translation>Shows only the entries that contain a text</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.clearSearch</source>
        <translation>C&amp;lear Search</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.clearSearch.toolTip</source>
        <translation>Shows the entries again that the search left out</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.selectPair</source>
        <translation>Select &amp;Partner</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.selectPair.toolTip</source>
        <translation>Selects the other end of what the selected entry began or ended</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.extendToPair</source>
        <translation>&amp;Extend Selection to Partner</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.extendToPair.toolTip</source>
        <translation>Selects everything from the selected entry to the other end of what it began or ended</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.preferences</source>
        <translation>Prefere&amp;nces…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.detail</source>
        <translation>Show &amp;Details</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.detail.toolTip</source>
        <translation>Shows a second line with an entry’s details</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.relativeDates</source>
        <translation>&amp;Relative Dates</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.relativeDates.toolTip</source>
        <translation>Names today, tomorrow and yesterday instead of their dates</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.highlight</source>
        <translation>&amp;Highlight Partner</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.highlight.toolTip</source>
        <translation>Colours the other end of what the selected entry began or ended</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.sortByDate</source>
        <translation>By &amp;Date</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.sortBySummary</source>
        <translation>By &amp;Event</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.sortAscending</source>
        <translation>&amp;Ascending</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.sortDescending</source>
        <translation>De&amp;scending</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.showToolBar</source>
        <translation>Show &amp;Toolbar</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.inspector</source>
        <translation>Show &amp;Inspector</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.inspector.hide</source>
        <translation>Hide &amp;Inspector</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.inspector.toolTip</source>
        <translation>What is known of the selected entries</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.goToInspector</source>
        <translation>&amp;Go to Inspector</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.goToInspector.toolTip</source>
        <translation>Select and copy what the inspector shows with the keys</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.fullScreen</source>
        <translation>&amp;Full Screen</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.toolBar</source>
        <translation>Toolbar</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.toolBar.more</source>
        <translation>More buttons</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.splitter</source>
        <translation>Divides graph and entries</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.aboutQt</source>
        <translation>About &amp;Qt</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.search.placeholder</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.search.toolTip</source>
        <translation>Shows only the entries that contain this text, with the same capitals (Ctrl+F)</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.search.accessibleName</source>
        <translation>Search</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.hint</source>
        <translation>Each sleep, wake, start and change of power will be listed here. A sample shows how that looks.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.silent.hint</source>
        <translation>The list fills once the recording agent answers.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.unreadable.hint</source>
        <translation>The line below says why. Lullwatch will try again.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.recording.hint</source>
        <translation>What happens to this computer appears here.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.profile.hint</source>
        <translation>Fill it with “lullwatch --profile NAME import FILE”.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.range.hint</source>
        <translation>Nothing was recorded on these days. Choose other days.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.search.of</source>
        <translation>%@ of %@ match</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.search.ofOne</source>
        <translation>%@ of 1 matches</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.search</source>
        <translation>No entry contains “%@”</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.search.hint</source>
        <translation>Only summaries are searched, and capitals count.</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.empty.range.show</source>
        <translation>Show Everything</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.export</source>
        <translation>&amp;Export…</translation>
    </message>
    <message>
        <source>ZELKLWCMainWindowController.export.toolTip</source>
        <translation>Save the whole log, or the graph as a picture, for another program</translation>
    </message>
</context>
<context>
    <name>ZELKLWCExportController</name>
    <message>
        <source>ZELKLWCExportController.title</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format</source>
        <translation>&amp;Format:</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.accessibleName</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.0</source>
        <translation>Rich text (.rtf)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.1</source>
        <translation>Text with tabs, for spreadsheets (.txt)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.2</source>
        <translation>XML property list (.plist)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.3</source>
        <translation>Word document (.doc)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.5</source>
        <translation>Picture of the graph, TIFF (.tiff)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.format.6</source>
        <translation>Picture of the graph, PNG (.png)</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.progress.title</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>ZELKLWCExportController.progress</source>
        <translation>Exporting to “%@”</translation>
    </message>
</context>
<context>
    <name>ZELKLWCPrintController</name>
    <message>
        <source>ZELKLWCPrintController.progress.title</source>
        <translation>Print</translation>
    </message>
    <message>
        <source>ZELKLWCPrintController.progress</source>
        <translation>Printing the report…</translation>
    </message>
    <message>
        <source>ZELKLWCPrintController.preview.first</source>
        <translation>Print Preview: the first %d of %d pages</translation>
    </message>
</context>
<context>
    <name>ZELKLWCPrintableReportView</name>
    <message>
        <source>Page %d of %d</source>
        <translation>Page %d of %d</translation>
    </message>
</context>
<context>
    <name>ZELKNoAgent</name>
    <message>
        <source>ZELKNoAgent.refusal</source>
        <translation>A profile has no recording agent.</translation>
    </message>
</context>
<context>
    <name>ZELKSearchField</name>
    <message>
        <source>ZELKSearchField.clear</source>
        <translation>Clear Search</translation>
    </message>
</context>
<context>
    <name>ZELKCustomRange</name>
    <message>
        <source>ZELKCustomRange.title</source>
        <translation>Choose Days</translation>
    </message>
    <message>
        <source>ZELKCustomRange.explanation</source>
        <translation>Show the entries of these days:</translation>
    </message>
    <message>
        <source>ZELKCustomRange.from</source>
        <translation>&amp;From:</translation>
    </message>
    <message>
        <source>ZELKCustomRange.from.accessibleName</source>
        <translation>First day</translation>
    </message>
    <message>
        <source>ZELKCustomRange.to</source>
        <translation>&amp;To:</translation>
    </message>
    <message>
        <source>ZELKCustomRange.to.accessibleName</source>
        <translation>Last day</translation>
    </message>
</context>
<context>
    <name>ZELKPreferences</name>
    <message>
        <source>ZELKPreferences.title</source>
        <translation>Preferences</translation>
    </message>
    <message>
        <source>ZELKPreferences.dates</source>
        <translation>Dates</translation>
    </message>
    <message>
        <source>ZELKPreferences.entries</source>
        <translation>Entries</translation>
    </message>
    <message>
        <source>ZELKPreferences.relativeDates</source>
        <translation>Name &amp;today, tomorrow and yesterday</translation>
    </message>
    <message>
        <source>ZELKPreferences.relativeDates.toolTip</source>
        <translation>“Today” instead of the date, wherever dates are shown</translation>
    </message>
    <message>
        <source>ZELKPreferences.eventDetail</source>
        <translation>Show a second line with &amp;details</translation>
    </message>
    <message>
        <source>ZELKPreferences.eventDetail.toolTip</source>
        <translation>What was recorded along with the event, below its summary</translation>
    </message>
    <message>
        <source>ZELKPreferences.highlight</source>
        <translation>&amp;Highlight the partner of the selected entry</translation>
    </message>
    <message>
        <source>ZELKPreferences.highlight.toolTip</source>
        <translation>The other end of what the selected entry began or ended, such as the sleep before a wake</translation>
    </message>
    <message>
        <source>ZELKPreferences.colour</source>
        <translation>&amp;Colour:</translation>
    </message>
    <message>
        <source>ZELKPreferences.colour.accessibleName</source>
        <translation>Colour of the highlight</translation>
    </message>
    <message>
        <source>ZELKPreferences.colour.toolTip</source>
        <translation>The colour behind the partner of the selected entry</translation>
    </message>
    <message>
        <source>ZELKPreferences.revert</source>
        <translation>Restore &amp;Initial Values</translation>
    </message>
</context>
<context>
    <name>ZELKFeedbackController</name>
    <message>
        <source>ZELKFeedbackController.title</source>
        <translation>Send Feedback</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.message</source>
        <translation>Tell us what is wrong, or what you miss.</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.name</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.name.accessibleName</source>
        <translation>Your name</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.email</source>
        <translation>&amp;E-mail:</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.email.accessibleName</source>
        <translation>Your e-mail address</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.optional</source>
        <translation>Optional</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.detail</source>
        <translation>&amp;What would you like to tell us?</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.detail.accessibleName</source>
        <translation>Your report</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.sentAlong</source>
        <translation>Sent along with it, and nothing else:</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.sentTo</source>
        <translation>to: %@</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.connecting</source>
        <translation>Sending…</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.report</source>
        <translation>&amp;Send</translation>
    </message>
    <message>
        <source>ZELKFeedbackController.report.toolTip</source>
        <translation>Send what this window shows</translation>
    </message>
</context>
<context>
    <name>ZELKAboutPanel</name>
    <message>
        <source>ZELKAboutPanel.title</source>
        <translation>About Lullwatch</translation>
    </message>
    <message>
        <source>ZELKAboutPanel.version</source>
        <translation>Version %@</translation>
    </message>
    <message>
        <source>ZELKAboutPanel.purpose</source>
        <translation>When this computer slept and woke, who kept it awake,
and what it cost the battery.</translation>
    </message>
    <message>
        <source>ZELKAboutPanel.license</source>
        <translation>Free software under the Apache License, version 2.0.</translation>
    </message>
    <message>
        <source>ZELKAboutPanel.builtWith</source>
        <translation>Uses Qt %s, SQLite, libplist, libtiff, libgsf and libsystemd.</translation>
    </message>
</context>
<context>
    <name>ZELKApplicationExtras</name>
    <message>
        <source>ZELKApplicationExtras.checkForUpdates</source>
        <translation>&amp;Check for Updates…</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.checkForUpdates.toolTip</source>
        <translation>Ask what this system knows of newer versions</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.newest</source>
        <translation>%@ %@ is the newest version known.</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.source</source>
        <translation>%@ knows of no newer one.</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.newer</source>
        <translation>%@ %@ is there.</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.newer.informative</source>
        <translation>This is version %@. %@ brings the newer one with the next update of the system.</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.unknown</source>
        <translation>Nobody here knows of newer versions of %@ %@.</translation>
    </message>
    <message>
        <source>ZELKApplicationExtras.updates.unknown.informative</source>
        <translation>It did not come with a package of this system. Look where you got it from.</translation>
    </message>
</context>
<context>
    <name>ZELKApplicationsMenuOffer</name>
    <message>
        <source>ZELKApplicationsMenuOffer.message</source>
        <translation>Add %@ to your applications menu?</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.informative</source>
        <translation>It runs from “%@”, of which no menu knows. It stays there; only an entry and an icon are put into your own menu.</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.suppress</source>
        <translation>Do not ask again</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.add</source>
        <translation>&amp;Add</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.notNow</source>
        <translation>&amp;Not Now</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.failed</source>
        <translation>%@ cannot be added to the menu.</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.added</source>
        <translation>%@ is in your applications menu.</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.added.informative</source>
        <translation>It can be started again from there, so that the desktop knows it by its icon.</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.startAgain</source>
        <translation>&amp;Start Again</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.goOn</source>
        <translation>&amp;Go On</translation>
    </message>
    <message>
        <source>ZELKApplicationsMenuOffer.notStarted</source>
        <translation>It could not be started from the menu.</translation>
    </message>
</context>
<context>
    <name>ZELKLWCDateJumpController</name>
    <message>
        <source>ZELKLWCDateJumpController.title</source>
        <translation>Jump to Date</translation>
    </message>
    <message>
        <source>ZELKLWCDateJumpController.date</source>
        <translation>&amp;Day:</translation>
    </message>
    <message>
        <source>ZELKLWCDateJumpController.date.accessibleName</source>
        <translation>Day</translation>
    </message>
    <message>
        <source>ZELKLWCDateJumpController.calendar.accessibleName</source>
        <translation>Days that were recorded</translation>
    </message>
</context>
</TS>
