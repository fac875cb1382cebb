"""Looks at the shape of the sources.

usage: house_sources.py PROJECT-FOLDER
"""
import pathlib
import re
import subprocess
import sys
import unittest

ROOT = pathlib.Path(sys.argv[1]).resolve()
LONGEST = {".cpp": 400, ".h": 150}
PRODUCT = ("common", "agent", "client")
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
# Texts speak of what is here, not of papers that lie elsewhere, nor of one machine's folders.
ELSEWHERE = re.compile(r"\bspe" r"c(s|ifications?)?\b(?!-)|\bparts? \d+\.\d|\.\./shared|/(home|root)/\w+/", re.I)


def tracked(*patterns):
    names = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--", *patterns], capture_output=True, check=True)
    paths = [ROOT / name for name in names.stdout.decode().split("\0") if name]
    return [path for path in paths if path.is_file()]


def name_of(path):
    return str(path.relative_to(ROOT))


class HouseSources(unittest.TestCase):
    def test_files_are_short(self):
        for path in tracked("*.cpp", "*.h"):
            with self.subTest(name_of(path)):
                self.assertLessEqual(len(path.read_text().splitlines()), LONGEST[path.suffix])

    def test_includes_name_no_folder(self):
        """Headers are found because their library is linked, and in no other way."""
        for path in tracked("*.cpp", "*.h"):
            for include in INCLUDE.findall(path.read_text()):
                with self.subTest(name_of(path), include=include):
                    self.assertNotIn("/", include)

    def test_programs_only_start_things(self):
        """A program's only source of its own is main.cpp; all else stands in libraries, where tests reach it."""
        for path in tracked(*(f"{room}/*CMakeLists.txt" for room in PRODUCT)):
            for name, sources in re.findall(r"add_executable\(\s*(\S+)\s+([^)]*)\)", path.read_text()):
                with self.subTest(name_of(path), program=name):
                    self.assertEqual(sources.split(), ["main.cpp"])

    def test_classes_have_their_own_pair(self):
        """A header of the product is named after what it declares."""
        for path in tracked(*(f"{room}/*.h" for room in PRODUCT)):
            with self.subTest(name_of(path)):
                declares = re.search(rf"\b(class|struct|namespace|using) {path.stem}\b|\b{path.stem}\(",
                                     path.read_text())
                constants = re.search(r"^inline constexpr", path.read_text(), re.M)
                self.assertTrue(declares or constants)

    def test_texts_stay_ours(self):
        for path in tracked():
            with self.subTest(name_of(path)):
                self.assertIsNone(ELSEWHERE.search(name_of(path)))
                try:
                    lines = path.read_text().splitlines()
                except UnicodeDecodeError:
                    continue
                found = [f"{number}: {line.strip()}" for number, line in enumerate(lines, 1) if ELSEWHERE.search(line)]
                self.assertEqual(found, [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
