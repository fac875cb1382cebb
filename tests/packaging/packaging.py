"""Holds what is put on a computer beside the programs against the programs themselves.

usage: packaging.py PROJECT-FOLDER LULLWATCH AGENT VERSION
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest
import xml.etree.ElementTree

ROOT, LULLWATCH, AGENT = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
VERSION = sys.argv[4]
PACKAGING = ROOT / "packaging"
PAGES = {"lullwatch.1": LULLWATCH, "lullwatch-agent.8": AGENT}
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def output(*command, **arguments):
    return subprocess.run(command, capture_output=True, text=True, check=True, **arguments).stdout


def help_of(program):
    """The options that a program tells of; not those of the library that it is made with."""
    return set(OPTION.findall(output(program, "--help"))) - {"--help-all"}


def complete(line):
    """What bash offers at the end of a command line."""
    script = """source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _lullwatch; printf '%s\\n' "${COMPREPLY[@]}" """
    return output("bash", "-c", script, "bash", PACKAGING / "completions/lullwatch.bash", *line.split(" ")).split()


class Packaging(unittest.TestCase):
    def test_manual_pages_name_the_options(self):
        for page, program in PAGES.items():
            with self.subTest(page):
                text = (PACKAGING / "man" / page).read_text().replace("\\-", "-")
                named = set(OPTION.findall(text))
                self.assertLessEqual(help_of(program), named)
                self.assertLessEqual(named, help_of(program) | help_of(LULLWATCH))

    @unittest.skipUnless(shutil.which("groff"), "groff is missing")
    def test_manual_pages_are_sound(self):
        for page in PAGES:
            with self.subTest(page):
                done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", PACKAGING / "man" / page],
                                      capture_output=True, text=True, check=True)
                self.assertEqual(done.stderr, "")

    def test_completion(self):
        everything = set()
        for command in ("", "list ", "stats ", "export ", "print ", "snapshot ", "agent "):
            everything |= set(complete(f"lullwatch {command}--"))
        self.assertEqual(everything, help_of(LULLWATCH))
        for line, offered in {
                "lullwatch s": ["stats", "snapshot"], "lullwatch --profile work l": ["list"],
                "lullwatch agent install --as ": ["system", "user", "session"],
                "lullwatch export --format = p": ["plist", "png"], "lullwatch stats --format j": ["json"],
                "lullwatch stats last-": ["last-seven-days", "last-week", "last-month"],
                "lullwatch --profile ": []}.items():
            with self.subTest(line):
                self.assertEqual(complete(line), offered)

    @unittest.skipUnless(shutil.which("appstreamcli"), "appstreamcli is missing")
    def test_catalogue_takes_the_description(self):
        output("appstreamcli", "validate", "--no-net", PACKAGING / "org.zelk.lullwatch.metainfo.xml")

    def test_newest_release_is_this_one(self):
        component = xml.etree.ElementTree.parse(PACKAGING / "org.zelk.lullwatch.metainfo.xml")
        self.assertEqual(component.find("releases/release").get("version"), VERSION)


if __name__ == "__main__":
    os.environ["LC_ALL"] = "C.UTF-8"
    sys.argv[1:] = []
    unittest.main()
