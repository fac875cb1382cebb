"""Runs the user guide's scripts, as they are printed there, against the real program with the sample history.

usage: with-private-buses guide_scripts.py LULLWATCH BUNDLE GUIDE-TEXT
"""
import html
import os
import pathlib
import re
import struct
import subprocess
import sys
import time
import unittest
import zlib

LULLWATCH, BUNDLE, GUIDE = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
HOME = pathlib.Path(os.environ["HOME"])
NAME = "org.zelk.lullwatch"
SECONDS_TO_START = 60
# The day before that of the scripts, in the middle of the history.
YESTERDAY = "2026-10-07"


def script(heading):
    """What stands under a heading of the guide."""
    found = re.search(rf"<h3>{heading}</h3>\s*<pre>\n(.*?)</pre>", GUIDE.read_text(), re.S)
    return html.unescape(found.group(1))


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, timeout=60)


def get(path, kind, name):
    return run("busctl", "--user", "get-property", NAME, path, f"{NAME}.{kind}", name).stdout.strip()


class GuideScripts(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        os.environ.update(TZ="Europe/Berlin", LC_ALL="C.UTF-8", QT_QPA_PLATFORM="offscreen",
                          PATH=f"{HOME}/bin:{os.environ['PATH']}")
        (HOME / "bin").mkdir()
        date = HOME / "bin" / "date"
        date.write_text(f'#!/bin/sh\n[ "$*" = "-d yesterday +%s" ] && exec /bin/date -d {YESTERDAY}T15:00 +%s\nexit 1\n')
        date.chmod(0o755)
        history = HOME / "history.jsonl"
        history.write_bytes(zlib.decompress((BUNDLE / "SampleLog.jsonl.z").read_bytes()[4:]))
        subprocess.run([LULLWATCH, "import", history], check=True, stdout=subprocess.DEVNULL)
        cls.program = subprocess.Popen([LULLWATCH])
        end = time.monotonic() + SECONDS_TO_START
        while get("/org/zelk/lullwatch/database", "Database", "count") in ("", "u 0"):
            if cls.program.poll() is not None or time.monotonic() > end:
                raise RuntimeError("Lullwatch does not answer")

    @classmethod
    def tearDownClass(cls):
        cls.program.terminate()
        if cls.program.wait(20) != 0:
            raise RuntimeError("Lullwatch did not end well")

    def answer(self, heading, *command):
        """What the scripts print; all of it goes to the test's output, too."""
        text = script(heading)
        done = run(*command, text=text)
        print(f"== {heading}\n{text}--\n{done.stdout}{done.stderr}", flush=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def test_1_busctl(self):
        title, asleep = self.answer("busctl", "bash", "-eu").splitlines()
        self.assertEqual(title, 's "Wednesday,  7 October 2026"')
        self.assertAlmostEqual(float(asleep.removeprefix("d ")) / 3600, 15, delta=6)
        picture = (HOME / "yesterday.png").read_bytes()
        self.assertEqual(picture[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(struct.unpack(">I", picture[16:20])[0], 1200)

    def test_2_gdbus(self):
        printed = self.answer("gdbus", "bash", "-eu")
        for line in ("readwrite d start", "readonly a{sd} summary", "export(in  a{sv}", "readonly ao events",
                     "'visible': <false>", "'monitor': <'"):
            self.assertIn(line, printed)

    def test_3_python(self):
        last, totals = self.answer("Python", "/usr/bin/python3", "-").splitlines()
        self.assertTrue(last)
        self.assertRegex(totals, r"^\{.*'Asleep': \d+")

    def test_4_paths_lead_back(self):
        """An entry that the slice names says of itself that it is in the slice."""
        entry = re.findall(r'"(\S+)"', get("/org/zelk/lullwatch/visibleSlice", "VisibleSlice", "events"))[0]
        self.assertEqual(get(entry, "Entry", "visible"), "b true")
        self.assertIn("org.zelk.lullwatch.Entry", run("busctl", "--user", "introspect", NAME, entry).stdout)

    def test_5_errors_are_told(self):
        def export(*arguments):
            call = ["busctl", "--user", "call", NAME, "/org/zelk/lullwatch/visibleSlice", f"{NAME}.VisibleSlice", "export",
                    "a{sv}", *arguments]
            return run(*call).stderr.strip()
        self.assertEqual(export("0"), "Call failed: Unable to create file")
        self.assertEqual(export("2", "destinationFile", "s", f"{HOME}/a.png", "title", "d", "2"),
                         "Call failed: Parameter too large")


if __name__ == "__main__":
    sys.argv[1:] = sys.argv[4:]
    unittest.main()
