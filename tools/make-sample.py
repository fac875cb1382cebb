#!/usr/bin/env python3
"""Writes the sample history: a laptop's power events of 120 days, one JSON object a line, on standard output;
with --packed FILE, into that file, packed as Qt unpacks it: the length in four bytes, then what zlib makes of it.

The days are lived through minute by minute with a fixed seed, so the same lines come out every time. They run
from 2026-07-11 to 2026-11-08 in Europe/Berlin, across the end of summer time on 2026-10-25.
"""
import dataclasses
import datetime
import json
import math
import random
import struct
import sys
import zlib

FIRST_DAY = datetime.date(2026, 7, 11)
DAYS = 120
REFERENCE = datetime.datetime(2001, 1, 1)
END_OF_SUMMER_TIME = datetime.datetime(2026, 10, 25, 3)

LULLWATCH = "org.zelk.lullwatch"
POWER_EVENTS = "org.zelk.monitor.watcher.powerevents"
POWER_SOURCE = "org.zelk.monitor.watcher.powersource"
ACCOUNTING = "org.zelk.monitor.watcher.last"

SECOND_BATTERY_DAYS = range(24, 65)
FLIGHT_DAYS = (41, 55)
DEAD_BATTERY_DAYS = (29, 96)
DAYS_OFF = range(42, 55)
UPDATE_DAYS = (12, 58, 101)
RESTART_DAYS = (7, 19, 36, 58, 74, 88, 109)

SLEEP_BLOCKERS = [["Backup (2214)"], ["Video Call (5120)", "PulseAudio (1406)"], ["apt (31877)"],
                  ["Film Player (8841)"], ["Backup (2214)", "rsync (2251)"]]


def local(day, hour, minute=0.0):
    """Seconds since the reference date of a wall-clock time in Berlin; hours from 24 on are the next day's."""
    wall = datetime.datetime.combine(day, datetime.time()) + datetime.timedelta(hours=hour, minutes=minute)
    offset = datetime.timedelta(hours=2 if wall < END_OF_SUMMER_TIME else 1)
    return (wall - offset - REFERENCE).total_seconds()


def property_list(values):
    """The dictionary as an XML property list, as the agent writes it; "NULL" without values."""
    if not values:
        return "NULL"
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             '<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">',
             '<plist version="1.0">', "<dict>"]
    for key, value in values.items():
        lines.append(f"\t<key>{key}</key>")
        if isinstance(value, bool):
            lines.append("\t<true/>" if value else "\t<false/>")
        elif isinstance(value, int):
            lines.append(f"\t<integer>{value}</integer>")
        elif isinstance(value, list):
            lines += ["\t<array>"] + [f"\t\t<string>{item}</string>" for item in value] + ["\t</array>"]
        else:
            lines.append(f"\t<string>{value}</string>")
    return "\n".join(lines + ["</dict>", "</plist>", ""])


def charge_rate(level):
    """Percent an hour: quick up to four fifths, then less and less."""
    return 52.0 if level < 80 else max(9.0, 52.0 - (level - 80) * 2.2)


@dataclasses.dataclass
class Battery:
    name: str
    identifier: str
    hours: float  # of ordinary work with a full battery
    level: float  # percent
    present: bool = True
    charging: bool = False
    source: str = "AC Power"
    shown: tuple = ()

    def percent(self):
        return max(0, min(100, math.floor(self.level + 1e-9)))

    def minutes_to_full(self):
        return sum(60 / charge_rate(level) for level in range(math.floor(self.level), 100))

    def properties(self, load, noise):
        values = {"Name": self.name, "Is Present": self.present, "Is Charging": self.charging,
                  "Current Capacity": self.percent(), "Max Capacity": 100}
        if self.charging:
            values["Time to Full Charge"] = round(self.minutes_to_full() * noise)
        elif self.source == "Battery Power":
            values["Time to Empty"] = round(self.level * self.hours * 0.6 / load * noise)
        values.update({"Power Source ID": self.identifier, "Transport Type": "Internal", "Low Warn Level": 10,
                       "Shutdown Level": 2, "Power Source State": self.source})
        return values


class Laptop:
    """The machine and its agent: whatever happens to it is recorded."""

    def __init__(self, chance):
        self.chance = chance
        self.events = []
        self.now = 0.0
        self.load = 1.0
        self.plugged = True
        self.main = Battery("Main Battery", "BAT0", 7.5, 100.0)
        self.second = Battery("Slice Battery", "BAT1", 4.0, 61.0, present=False)

    def record(self, description, monitor=POWER_EVENTS, properties=None):
        """Takes one event down a moment after the one before, at the earliest."""
        before = float(self.events[-1]["date"]) if self.events else 0.0
        self.now = max(self.now, before + self.chance.uniform(0.02, 0.3))
        self.events.append({"date": f"{self.now:f}", "description": description, "monitor": monitor,
                            "properties": property_list(properties)})

    def between(self, low, high):
        return self.chance.uniform(low, high)

    # Batteries

    def batteries(self):
        return [battery for battery in (self.main, self.second) if battery.present]

    def show(self, battery, always=False):
        """Records the battery when anything but its estimates changed, or always."""
        state = (battery.present, battery.charging, battery.source, battery.percent())
        if always or state != battery.shown:
            battery.shown = state
            self.record("Power state changed", POWER_SOURCE,
                        battery.properties(self.load, self.between(0.92, 1.09)))

    def settle(self):
        """Decides which battery charges, the main one first, and records what that changed."""
        waiting = [battery for battery in self.batteries() if battery.level < 100]
        for battery in self.batteries():
            battery.source = "AC Power" if self.plugged else "Battery Power"
            battery.charging = self.plugged and battery is (waiting[0] if waiting else None)
        for battery in self.batteries():
            self.show(battery)

    def plug(self, plugged=True):
        """The charger comes or goes; the battery begins to charge a moment later."""
        self.plugged = plugged
        for battery in self.batteries():
            battery.source = "AC Power" if plugged else "Battery Power"
            battery.charging = battery.charging and plugged
            self.show(battery)
        if plugged:
            self.now += self.between(2, 6)
            self.settle()

    def draining(self):
        """The battery in use, the second one first; none at the charger."""
        if self.plugged:
            return None
        return self.second if self.second.present and self.second.level > 6 else self.main

    def spend(self, hours, share):
        """Charges or drains for a time; `share` 1.0 is ordinary work."""
        for battery in self.batteries():
            if battery.charging:
                battery.level = min(100.0, battery.level + charge_rate(battery.level) * hours)
        drained = self.draining()
        if drained:
            drained.level = max(0.0, drained.level - 100 / drained.hours * hours * share)

    # Awake, asleep, off

    def work(self, until, stop_at=0):
        """Works until then, or until the main battery is down to `stop_at` percent."""
        while self.now < until and self.main.level > stop_at:
            if self.chance.random() < 0.05:
                self.load = self.between(0.6, 1.7)
            self.now += min(self.between(57, 63), until - self.now)
            self.spend(1 / 60, self.load)
            full = self.plugged and any(battery.charging and battery.level >= 100 for battery in self.batteries())
            if full:
                self.settle()
            for battery in self.batteries():
                estimate = battery.charging or battery is self.draining()
                self.show(battery, always=estimate and self.chance.random() < 0.02)
            if self.chance.random() < 0.0006:
                self.veto()

    def veto(self):
        """Nobody touched the machine, but something keeps it awake."""
        idle = {"Idle Seconds": 900}
        self.record("Can system sleep", properties=idle)
        self.now += self.between(0.5, 3)
        self.record("System will not sleep",
                    properties=dict(idle, Processes=self.chance.choice(SLEEP_BLOCKERS)))

    def sleep(self, idle=False):
        if idle:
            self.record("Can system sleep", properties={"Idle Seconds": self.chance.choice((900, 900, 1800))})
            self.now += self.between(1, 4)
        self.record("System will sleep")

    def wake(self):
        self.record("System has powered on")
        self.now += self.between(0.5, 2)
        self.settle()

    def doze(self, until, look_up=False):
        """Stays asleep until then, looking up now and then where wanted. False when the power ran out."""
        while self.now < until:
            step = min(until - self.now, self.between(6000, 11000) if look_up else until - self.now)
            for _ in range(max(1, int(step / 600))):
                self.spend(step / 3600 / max(1, int(step / 600)), 0.045)
            self.now += step
            if not self.plugged and self.main.level < 0.3:
                return False
            if look_up and until - self.now > 1800:
                self.wake()
                self.now += self.between(15, 45)
                self.sleep()
        return True

    def shut_down(self, restart=False):
        self.record("System will restart" if restart else "System will power off")
        self.record("Stopping monitor", LULLWATCH)
        self.now += self.between(3, 9)
        self.record("accounting shut down", ACCOUNTING)

    def boot(self):
        self.record("accounting boot", ACCOUNTING)
        self.now += self.between(8, 25)
        self.record("startup", ACCOUNTING)
        self.now += self.between(1, 4)
        self.record("Starting monitor", LULLWATCH)
        self.main.shown = self.second.shown = ()
        self.settle()

    def restart(self):
        self.shut_down(restart=True)
        self.now += self.between(14, 30)
        self.boot()

    def update_agent(self):
        self.record("Stopping monitor", LULLWATCH)
        self.now += self.between(6, 12)
        self.record("Starting monitor", LULLWATCH)
        for battery in self.batteries():
            self.show(battery, always=True)


class Life:
    """What the laptop's owner does, day by day. Each day begins and ends with the machine asleep or off."""

    def __init__(self, laptop):
        self.laptop = laptop
        self.off = False

    def at(self, day, hour, spread=20):
        """About that hour, never before now."""
        return max(self.laptop.now + 60, local(day, hour, self.laptop.between(-spread, spread)))

    def open_lid(self, when, look_up=False):
        """Wakes or boots the machine; a night that emptied the battery ends at the charger."""
        laptop = self.laptop
        if not self.off:
            self.off = not laptop.doze(when, look_up)
        laptop.now = max(laptop.now, when)
        if self.off:
            laptop.plugged = laptop.plugged or laptop.main.level < 5
            self.off = False
            laptop.boot()
        else:
            laptop.wake()

    def session(self, begin, end, plugged=None, look_up=False):
        """From opening the lid to closing it."""
        laptop = self.laptop
        self.open_lid(begin, look_up)
        if laptop.plugged and laptop.main.level < 15:
            plugged = True
        if plugged is not None and plugged != laptop.plugged:
            laptop.now += laptop.between(3, 90)
            laptop.plug(plugged)
        laptop.work(end, stop_at=4 if not laptop.plugged else -1)
        if not laptop.plugged and laptop.main.level <= 4:
            laptop.plug()
            laptop.work(end)
        laptop.sleep(idle=laptop.chance.random() < 0.35)

    def night(self, day, plugged):
        """The last look at the machine before bed."""
        laptop = self.laptop
        if laptop.plugged != plugged:
            self.open_lid(self.at(day, 23, 30))
            laptop.plug(plugged)
            laptop.now += laptop.between(20, 200)
            laptop.sleep()

    def office_day(self, day, number):
        laptop = self.laptop
        self.session(self.at(day, 7.1), self.at(day, 7.6, 8), plugged=False, look_up=True)
        self.session(self.at(day, 8.1, 10), self.at(day, 8.7, 6))
        self.session(self.at(day, 9, 10), self.at(day, 12.4), plugged=True)
        if number in UPDATE_DAYS:
            laptop.doze(self.at(day, 12.8, 2))
            laptop.wake()
            laptop.update_agent()
            laptop.sleep()
        meeting = laptop.chance.random() < 0.4
        self.session(self.at(day, 13.2), self.at(day, 14.6), plugged=not meeting)
        if number in RESTART_DAYS:
            self.open_lid(self.at(day, 14.9, 2))
            laptop.restart()
            laptop.now += 40
            laptop.sleep()
        self.session(self.at(day, 15.1, 8), self.at(day, 17.4), plugged=True)
        self.session(self.at(day, 17.9, 8), self.at(day, 18.4, 6), plugged=False)
        if laptop.chance.random() < 0.6:
            self.session(self.at(day, 20.3), self.at(day, 21.9))
        self.night(day, plugged=laptop.chance.random() < 0.7 or laptop.main.level < 30)

    def home_day(self, day, number):
        laptop = self.laptop
        self.session(self.at(day, 9.5, 50), self.at(day, 11, 30), plugged=False, look_up=True)
        if number in RESTART_DAYS:
            self.open_lid(self.at(day, 11.9, 10))
            laptop.restart()
            laptop.now += 40
            laptop.sleep()
        if laptop.chance.random() < 0.5:
            self.session(self.at(day, 15, 50), self.at(day, 16.5, 30))
        self.session(self.at(day, 20), self.at(day, 22), plugged=laptop.main.level < 45)
        self.night(day, plugged=laptop.chance.random() < 0.6 or laptop.main.level < 40)

    def holiday(self, day, _number):
        if self.laptop.chance.random() < 0.7:
            self.session(self.at(day, 21, 40), self.at(day, 22.2, 20), plugged=self.laptop.main.level < 35)

    def flight(self, day, _number):
        """Charged at home, shut down at the gate's end, used all the way."""
        laptop = self.laptop
        self.session(self.at(day, 6, 10), self.at(day, 7, 10), plugged=True)
        laptop.doze(local(day, 8.6))
        laptop.wake()
        laptop.plug(False)
        laptop.shut_down()
        self.off = True
        self.session(self.at(day, 11, 5), self.at(day, 15.6, 10), plugged=False)
        self.session(self.at(day, 20.5), self.at(day, 22.5), plugged=True)

    def dead_battery(self, day, _number):
        """Left running away from the charger, kept awake, until the power is gone."""
        laptop = self.laptop
        self.open_lid(self.at(day, 10), look_up=True)
        if laptop.plugged:
            laptop.plug(False)
        while laptop.main.level > 1.4:
            laptop.veto()
            laptop.work(laptop.now + 4200, stop_at=1.4)
        laptop.now += laptop.between(60, 200)
        self.off = True

    def live(self):
        laptop = self.laptop
        laptop.now = local(FIRST_DAY, 6.9)
        laptop.boot()
        laptop.now += 240
        laptop.sleep()
        for number in range(DAYS):
            day = FIRST_DAY + datetime.timedelta(days=number)
            self.second_battery(number)
            if number in FLIGHT_DAYS:
                self.flight(day, number)
            elif number in DEAD_BATTERY_DAYS:
                self.dead_battery(day, number)
            elif number in DAYS_OFF:
                self.holiday(day, number)
            elif day.weekday() < 5:
                self.office_day(day, number)
            else:
                self.home_day(day, number)
        if not self.off:
            self.open_lid(self.at(FIRST_DAY + datetime.timedelta(days=DAYS), 7))

    def second_battery(self, number):
        """Clicked on and off between two wakings."""
        battery = self.laptop.second
        present = number in SECOND_BATTERY_DAYS
        if present != battery.present:
            self.open_lid(self.laptop.now + 300)
            battery.present, battery.charging = present, False
            battery.source = "AC Power" if self.laptop.plugged else "Battery Power"
            self.laptop.show(battery)
            self.laptop.settle()
            self.laptop.now += self.laptop.between(20, 60)
            self.laptop.sleep()


def lines():
    laptop = Laptop(random.Random(20260711))
    Life(laptop).live()
    return "".join(json.dumps(event, ensure_ascii=False) + "\n" for event in laptop.events)


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "--packed":
        text = lines().encode()
        with open(sys.argv[2], "wb") as file:
            file.write(struct.pack(">I", len(text)) + zlib.compress(text, 9))
    else:
        sys.stdout.write(lines())


if __name__ == "__main__":
    main()
