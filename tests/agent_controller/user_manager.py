"""A user's service manager on the session bus, for one unit.

usage: user_manager.py UNIT-FILE [METHOD-THAT-FAILS]

Says "ready", then each call it gets and whether the unit's file is there at that time. Jobs last for three looks.
"""
import os
import sys

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

MANAGER = "org.freedesktop.systemd1.Manager"
PROPERTIES = "org.freedesktop.DBus.Properties"
UNIT_FILE = sys.argv[1]
FAILING = sys.argv[2] if len(sys.argv) > 2 else ""


def tell(*words):
    print(*words, "with file" if os.path.exists(UNIT_FILE) else "without file", flush=True)
    if words[0] == FAILING:
        raise dbus.DBusException("told to fail", name="org.test.Failed")


class Job(dbus.service.Object):
    looks = 0

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        self.looks += 1
        if self.looks == 3:
            self.remove_from_connection()
        return "running"


class Unit(dbus.service.Object):
    state = "inactive"

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return {"LoadState": "loaded" if os.path.exists(UNIT_FILE) else "not-found", "ActiveState": self.state}


class Manager(dbus.service.Object):
    def __init__(self, bus):
        super().__init__(bus, "/org/freedesktop/systemd1")
        self.bus, self.jobs, self.unit = bus, 0, Unit(bus, "/unit")

    def job(self):
        self.jobs += 1
        path = f"/job/{self.jobs}"
        Job(self.bus, path)
        return dbus.ObjectPath(path)

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _interface, _name):
        folder = os.path.dirname(UNIT_FILE)
        return dbus.Array([folder + ".control", "/run/user/1/systemd/user", folder, "/etc/systemd/user"], "s")

    @dbus.service.method(MANAGER, in_signature="s", out_signature="o")
    def LoadUnit(self, _name):
        return dbus.ObjectPath("/unit")

    @dbus.service.method(MANAGER)
    def Reload(self):
        tell("Reload")

    @dbus.service.method(MANAGER, in_signature="asbb", out_signature="ba(sss)")
    def EnableUnitFiles(self, names, _runtime, _force):
        tell("Enable", *names)
        return True, dbus.Array(signature="(sss)")

    @dbus.service.method(MANAGER, in_signature="asb", out_signature="a(sss)")
    def DisableUnitFiles(self, names, _runtime):
        tell("Disable", *names)
        return dbus.Array(signature="(sss)")

    @dbus.service.method(MANAGER, in_signature="ss", out_signature="o")
    def StartUnit(self, name, _mode):
        tell("Start", name)
        self.unit.state = "failed" if FAILING == "service" else "active"
        return self.job()

    @dbus.service.method(MANAGER, in_signature="ss", out_signature="o")
    def StopUnit(self, name, _mode):
        tell("Stop", name)
        self.unit.state = "inactive"
        return self.job()


DBusGMainLoop(set_as_default=True)
BUS = dbus.SessionBus()
NAME = dbus.service.BusName("org.freedesktop.systemd1", BUS)
MANAGER_OBJECT = Manager(BUS)
print("ready", flush=True)
GLib.MainLoop().run()
