#!/usr/bin/python3
"""The real upowerd over made-up hardware, on the system bus of the environment; for umockdev-wrapper.

usage: upowerd_bed.py FOLDER [serve]

There are a battery BAT0 and mains AC. Orders come on standard input, one a line, each answered by "done":
  start | stop                     the daemon
  set DEVICE ATTRIBUTE VALUE       and the kernel's word of the change
  add DEVICE | remove DEVICE       a battery of the same model
With "serve" the daemon starts at once and nothing is read, as for a bus that activates it. FOLDER takes its history.
"""
import os
import subprocess
import sys

import gi
gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev  # noqa: E402 (the version comes first)

BATTERY = ["type", "Battery", "present", "1", "status", "Discharging", "scope", "System", "model_name", "PRB-1",
           "energy_full", "60000000", "energy_now", "48000000", "voltage_now", "12000000", "capacity", "80"]
MAINS = ["type", "Mains", "online", "0"]


class Bed:
    def __init__(self, folder):
        self.folder = folder
        self.daemon = None
        self.hardware = UMockdev.Testbed.new()
        self.devices = {}
        self.plug("BAT0", BATTERY)
        self.plug("AC", MAINS)

    def plug(self, name, attributes):
        self.devices[name] = self.hardware.add_device("power_supply", name, None, attributes,
                                                      ["POWER_SUPPLY_NAME", name])

    def start(self):
        environment = dict(os.environ, UMOCKDEV_DIR=self.hardware.get_root_dir(), UPOWER_HISTORY_DIR=self.folder)
        self.daemon = subprocess.Popen(["/usr/libexec/upowerd"], env=environment, stdin=subprocess.DEVNULL,
                                       stderr=subprocess.DEVNULL)

    def stop(self):
        self.daemon.terminate()
        self.daemon.wait()

    def set(self, name, attribute, value):
        self.hardware.set_attribute(self.devices[name], attribute, value)
        self.hardware.uevent(self.devices[name], "change")

    def add(self, name):
        self.plug(name, BATTERY)
        self.hardware.uevent(self.devices[name], "add")

    def remove(self, name):
        self.hardware.uevent(self.devices[name], "remove")
        self.hardware.remove_device(self.devices.pop(name))


bed = Bed(sys.argv[1])
if sys.argv[2:] == ["serve"]:
    bed.start()
    sys.exit(bed.daemon.wait())
print("done", flush=True)
for line in sys.stdin:
    order, *arguments = line.split()
    getattr(bed, order)(*arguments)
    print("done", flush=True)
