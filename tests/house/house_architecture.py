"""Compares the picture in docs/architecture.md with what CMake builds.

usage: house_architecture.py PROJECT-FOLDER GRAPH

GRAPH, written by CMake, has a line for each library and program: its name, type, folder, what it links and where
its sources look for headers.
"""
import pathlib
import re
import sys
import unittest

ROOT = pathlib.Path(sys.argv[1]).resolve()
OPTIONS = "zelk_options"


class Target:
    def __init__(self, line):
        name, self.type, folder, links, includes = line.split("\t")
        self.name = name
        self.folder = pathlib.Path(folder)
        self.links = {link for link in links.split("|") if link}
        self.includes = {pathlib.Path(place) for place in includes.split("|") if place}


def read_graph(path):
    targets = [Target(line) for line in pathlib.Path(path).read_text().splitlines()]
    return {target.name: target for target in targets}


def read_picture():
    """The arrows of the picture: "a --> b & c" means that a links b and c."""
    text = (ROOT / "docs/architecture.md").read_text()
    picture = re.search(r"^```mermaid\n(.*?)^```$", text, re.M | re.S).group(1)
    arrows, names = set(), set()
    for line in picture.splitlines():
        sides = [[name.strip() for name in side.split("&")] for side in line.split("-->")]
        if len(sides) == 2:
            names.update(sides[0] + sides[1])
            arrows.update((left, right) for left in sides[0] for right in sides[1])
        elif re.fullmatch(r"\s*\w+\s*", line) and line.strip() != "end":
            names.add(line.strip())
    return names, arrows


class HouseArchitecture(unittest.TestCase):
    targets = read_graph(sys.argv[2])

    def arrows(self):
        return {(target.name, link) for target in self.targets.values() for link in target.links
                if link in self.targets}

    def reached(self, name):
        """What a target links, directly or not, and the target itself."""
        found, waiting = set(), [name]
        while waiting:
            name = waiting.pop()
            if name not in found:
                found.add(name)
                waiting += self.targets[name].links & self.targets.keys()
        return found

    def test_picture_is_true(self):
        names, drawn = read_picture()
        self.assertEqual(sorted(self.targets.keys() - names), [], "built, but not in the picture")
        self.assertEqual(sorted(names - self.targets.keys()), [], "in the picture, but not built")
        self.assertEqual(sorted(self.arrows() - drawn), [], "linked, but not in the picture")
        self.assertEqual(sorted(drawn - self.arrows()), [], "in the picture, but not linked")

    def test_arrows_make_no_circle(self):
        for name, target in self.targets.items():
            for link in target.links & self.targets.keys():
                self.assertNotIn(name, self.reached(link))

    def test_nobody_sees_what_it_does_not_link(self):
        for name, target in self.targets.items():
            allowed = {self.targets[other].folder for other in self.reached(name)}
            seen = {place for place in target.includes
                    if place.is_relative_to(ROOT) and not place.is_relative_to(ROOT / "build")}
            self.assertEqual(sorted(seen - allowed), [], name)

    def test_agent_and_client_never_meet(self):
        for name, target in self.targets.items():
            seen = [self.targets[other].folder for other in self.reached(name)] + list(target.includes)
            rooms = {room for room in ("agent", "client") for place in seen if place.is_relative_to(ROOT / room)}
            self.assertLessEqual(len(rooms), 1, f"{name} sees {sorted(rooms)}")

    def test_one_folder_one_library(self):
        folders = [target.folder for target in self.targets.values() if target.type != "EXECUTABLE"]
        self.assertEqual(len(folders), len(set(folders)), "two libraries in one folder")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
