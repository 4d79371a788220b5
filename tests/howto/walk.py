#!/usr/bin/env python3
"""Walks a page of docs/how-to as a newcomer would: makes exactly the edits that it names in a copy of the sources,
compiles the files that they touch, and has a probe look whether what was added shows everywhere it should.

    walk.py PAGE BUILD_FOLDER

An edit of a page is a line that names a file and a place, and the code block behind it:

    `src/unit/parameters_orba.cpp`, in front of `{.name = "SOFFSET"`:

What the edits do not touch comes from the libraries that are built already. So a file that a page has one edit must
be compiled by itself (APART in CMakeLists.txt), which whoever edits it is glad of as well.
"""

import argparse
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EDIT = re.compile(
    r"`(?P<file>[^`\n]+)`, (?P<side>new|in front of|behind)(?: `(?P<place>[^`\n]+)`)?:\n"
    r"(?P<block>\s*```\w*\n.*?\n\s*```)",
    re.DOTALL)


class Edit:
    def __init__(self, match):
        self.file = match["file"]
        self.side = match["side"]
        self.place = match["place"]
        lines = textwrap.dedent(match["block"].strip("\n")).strip("\n").split("\n")
        self.block = lines[1:-1]

    def apply(self, root):
        path = root / self.file
        if self.side == "new":
            path.write_text("\n".join(self.block) + "\n", encoding="utf-8")
            return
        lines = path.read_text(encoding="utf-8").split("\n")
        found = [i for i, line in enumerate(lines) if self.place in line]
        if len(found) != 1:
            sys.exit(f"{self.file} has {len(found)} lines with {self.place}")
        indent = lines[found[0]][:len(lines[found[0]]) - len(lines[found[0]].lstrip())]
        at = found[0] + (1 if self.side == "behind" else 0)
        lines[at:at] = [(indent + line).rstrip(" ") for line in self.block]
        path.write_text("\n".join(lines), encoding="utf-8")


def edits_of(page):
    text = (ROOT / "docs/how-to" / f"{page}.md").read_text(encoding="utf-8")
    edits = [Edit(match) for match in EDIT.finditer(text)]
    if not edits:
        sys.exit(f"{page} names no edit")
    return edits


class Workshop:
    """A copy of the sources with the edits of a page, and a build to take everything else from."""

    def __init__(self, folder, build):
        self.folder = folder
        self.build = build
        for part in ("src", "apps", "tests", "docs"):
            shutil.copytree(ROOT / part, folder / part)
        self.commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))

    def run(self, command):
        done = subprocess.run(command, cwd=self.build, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"{shlex.join(map(str, command))}\n{done.stdout}{done.stderr}")
        return done.stdout

    def _flags(self, target):
        entry = next(e for e in self.commands if f"/{target}.dir/" in e.get("output", e["command"]))
        words = shlex.split(entry["command"])
        start = next(i for i, word in enumerate(words) if re.search(r"(\+\+|clang)[-\d]*$", word))
        flags, skip = [], False
        for word in words[start:]:
            if skip or word in ("-o", "-c", "-include", "-MF", "-MT"):
                skip = not skip
            elif word not in ("-fpch-preprocess", "-Winvalid-pch", "-MD"):
                flags.append(word.replace(f"-I{ROOT}/", f"-I{self.folder}/"))
        return flags + ["-O0"]

    def compile(self, source, target):
        """`source` as the target's files are compiled. The object."""
        made = self.folder / (source.replace("/", "_") + ".o")
        self.run(self._flags(target) + ["-c", self.folder / source, "-o", made])
        return made

    def link(self, program, like, objects, instead=False):
        """Links as the program `like`, the objects before its own or instead of them."""
        lines = self.run(["ninja", "-t", "commands", like]).strip().split("\n")
        words = shlex.split(lines[-1].split(" && ")[1])
        made = self.folder / program
        at = words.index("-o")
        words[at + 1] = str(made)
        if instead:
            words = [word for word in words if not word.endswith(".o")]
        words[words.index("-o"):words.index("-o")] = map(str, objects)
        self.run(words)
        return made

    def look(self, *command):
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False,
                              env=environment, cwd=self.folder)
        if done.returncode != 0:
            sys.exit(f"{shlex.join(map(str, command))}\n{done.stdout}{done.stderr}")
        return done.stdout


def expect(what, seen, wanted):
    if wanted not in seen:
        sys.exit(f"{what}: {wanted!r} is not in\n{seen}")


def sources(edits):
    return [edit.file for edit in edits if edit.file.startswith("src/") and edit.file.endswith(".cpp")]


def target_of(source):
    return "zentaq_" + source.split("/")[1]


def probe(shop, like, edits, tests, more=()):
    """Runs tests that are linked as `like`, on the edited sources and `more`. The objects of the sources."""
    compiled = sorted({*sources(edits), *more})
    objects = [shop.compile(source, target_of(source)) for source in compiled]
    made = [shop.compile(f"tests/{name}.cpp", like) for name in tests]
    shop.look(shop.link("probe", like, [*made, *objects], instead=True))
    return objects


def parameter(shop, edits):
    objects = probe(shop, "test_config", edits, ["howto/parameter_probe"])
    ctl = shop.link("zentaqctl", "zentaqctl", objects)
    file = shop.folder / "scratch.ZQ4OA"
    shutil.copy(shop.build / "app/samples/Street V8.ZQ4OA", file)

    expect("members", shop.look(ctl, "members", "--kind", "A"), "\tKNK_Hold\t32\t1\t(0 to 25 Seconds)\tSeconds\t")
    shop.look(ctl, "set", file, "KNK_Hold", "12.5")
    expect("get", shop.look(ctl, "get", file, "KNK_Hold"), "12.5\n")
    expect("record", shop.look(ctl, "record", file, "KNK_Hold", "12.5"), "S10411207D4D")
    expect("listing", shop.look(ctl, "export", file), "\nKNK_Hold = 12.5\n")
    image = shop.folder / "image.s19"
    shop.look(ctl, "image", file, "-o", image)
    second = "import sys, unit_encoder as u; print(u.encode(open(sys.argv[1], 'rb').read()), end='')"
    encoded = shop.look("env", f"PYTHONPATH={shop.folder}/tests/oracle", sys.executable, "-c", second, file)
    if image.read_text(encoding="ascii").split() != encoded.split():
        sys.exit("the second encoder makes another image")


def channel(shop, edits):
    # All that knows the rows and what the probes need: the others would hold live values of another shape.
    knowing = [f"src/live/{name}.cpp" for name in ("dashboard_readings", "datalog_writer", "gauges")]
    probe(shop, "test_app", edits, ["howto/channel_probe", "live/channels_test"],
          [*knowing, "src/refdata/schema.cpp", "src/app/data_points.cpp"])


def window(shop, edits):
    info = json.loads((shop.build / "CMakeFiles/zentaq_windows_autogen.dir/AutogenInfo.json").read_text())
    for header in (edit.file for edit in edits if edit.file.endswith(".h")):
        moc = "src/windows/moc_" + Path(header).stem + ".cpp"
        shop.run([info["QT_MOC_EXECUTABLE"], "-p", "windows", shop.folder / header, "-o", shop.folder / moc])
        edits.append(argparse.Namespace(file=moc))
    probe(shop, "test_windows", edits, ["howto/window_probe", "windows/window_registry_test", "windows/qt_application"])


def option(shop, edits):
    probe(shop, "test_windows", edits, ["howto/option_probe", "windows/qt_application"])


WALKS = {"add-a-parameter": parameter, "add-a-channel": channel, "add-an-option": option, "add-a-window": window}


def main():
    page, build = sys.argv[1], Path(sys.argv[2]).resolve()
    edits = edits_of(page)
    files = {edit.file for edit in edits}
    with tempfile.TemporaryDirectory() as folder:
        shop = Workshop(Path(folder), build)
        for edit in edits:
            edit.apply(shop.folder)
        WALKS[page](shop, edits)
    print(f"{page}: {len(files)} files")


if __name__ == "__main__":
    main()
