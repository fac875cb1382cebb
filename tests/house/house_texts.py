"""Compares the keys of texts in the sources with the string tables.

usage: house_texts.py PROJECT-FOLDER

A text that is missing from its table shows as its key, and nobody notices in English.
"""
import pathlib
import re
import sys
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(sys.argv[1]).resolve()
APPLICATION = ROOT / "client/application"
WINDOW = "ZELKLWCMainWindowController"
# One or more literals side by side, as the compiler joins them.
LITERALS = r'((?:"(?:[^"\\]|\\.)*"\s*)+)'
PLACEHOLDER = re.compile(r"%[a-z@]+")


def read_tables():
    root = xml.etree.ElementTree.parse(ROOT / "resources/translations/lullwatch_en.ts").getroot()
    return {context.findtext("name"): {message.findtext("source"): message.findtext("translation")
                                       for message in context.iter("message")}
            for context in root.iter("context")}


def joined(literals):
    text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals))
    return text.replace('\\"', '"').replace("\\n", "\n")


def sources(*folders):
    return [path for folder in folders for path in sorted((ROOT / folder).rglob("*.cpp"))]


def keys_of_calls(paths, functions):
    """The literals that are a first argument, also behind a question mark."""
    call = re.compile(rf"\b(?:{functions})\(\s*(?:[^;\"]*?\?\s*)?{LITERALS}(?::\s*{LITERALS})?")
    return {joined(literals) for path in paths for found in call.findall(path.read_text())
            for literals in found if literals}


class HouseTexts(unittest.TestCase):
    tables = read_tables()

    def check(self, table, keys):
        self.assertTrue(keys, f"no key of {table} found; this test no longer reads the sources right")
        self.assertEqual(sorted(keys - self.tables.get(table, {}).keys()), [], f"not in the table {table}")

    def test_command_line(self):
        keys = keys_of_calls(sources("client/application"), "ZELKCommandLineText|complain|object")
        self.check("ZELKCommandLine", keys)
        self.assertEqual(sorted(self.tables["ZELKCommandLine"].keys() - keys), [], "nobody asks for these")

    def test_window(self):
        """Topics of the code, and the keys that stand in the interface file."""
        asks = re.compile(r"ZELKMainWindowInterface::text\b")
        controllers = [path for path in sources("client/application") if asks.search(path.read_text())]
        keys = {f"{WINDOW}.{topic}" for topic in keys_of_calls(controllers, "text")}
        keys |= set(re.findall(rf">({WINDOW}\.[\w.]+)<", (ROOT / f"resources/{WINDOW}.ui").read_text()))
        self.check(WINDOW, keys)
        numbered = re.compile(rf"{WINDOW}\.(range|failure\.cache)\.\d+")
        rest = {key for key in self.tables[WINDOW].keys() - keys if not numbered.fullmatch(key)}
        self.assertEqual(sorted(rest), [], "nobody asks for these")

    def test_keys_written_out(self):
        """"ZELKClass.topic" belongs to the table ZELKClass, where there is one."""
        for path in sources("common", "client"):
            for key, table in re.findall(r'"((ZELK\w+)\.[\w.]+)"', path.read_text()):
                if table in self.tables and not key.endswith(".h"):
                    with self.subTest(path.name, key=key):
                        self.assertIn(key, self.tables[table])

    def test_general(self):
        self.check("General", keys_of_calls(sources("client/log"), r"general\(QLatin1String"))

    def test_placeholders(self):
        """Where the key is a sentence, the text fills in the same things in the same order."""
        for table, texts in self.tables.items():
            for key, text in texts.items():
                with self.subTest(table, key=key):
                    self.assertTrue(text)
                    if PLACEHOLDER.search(key):
                        self.assertEqual(PLACEHOLDER.findall(text), PLACEHOLDER.findall(key))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
