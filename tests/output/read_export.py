"""Reads an exported file with programs that are not ours, and prints what they find.

usage: read_export.py txt|plist|rtf|doc FILE
"""
import csv
import io
import plistlib
import re
import subprocess
import sys


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True).stdout


def tab_text(path):
    with open(path, newline="", encoding="utf-8") as file:
        for row in csv.reader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            print(" | ".join(row))


def property_list(path):
    with open(path, "rb") as file:
        entries = plistlib.load(file)
    # The other reader's, by way of the binary form.
    assert plistlib.loads(output_of("plistutil", "-i", path, "-f", "bin")) == entries
    for entry in entries:
        print(entry["Date"].isoformat(), entry["Summary"], entry["Monitor"], entry["Attributes"], sep=" | ")


def paragraphs(text):
    """Both readers break lines as they like and make spaces of tabs; a paragraph begins with its date."""
    words = " ".join(text.decode(errors="replace").split())
    for line in re.split(r" (?=\d{4}-\d\d-\d\d )", words):
        print(re.sub(r"^(\d\S* \S+ \S+) ", r"\1 | ", line))


def word_document(path):
    paragraphs(output_of("antiword", "-m", "UTF-8.txt", path))


def rich_text(path):
    paragraphs(output_of("unrtf", "--text", path).rsplit(b"-----------------\n", 1)[1])


sys.stdout = io.TextIOWrapper(sys.stdout.buffer, encoding="utf-8", newline="\n")
{"txt": tab_text, "plist": property_list, "doc": word_document, "rtf": rich_text}[sys.argv[1]](sys.argv[2])
