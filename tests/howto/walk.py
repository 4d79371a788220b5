#!/usr/bin/env python3
"""Walks a page of docs/how-to as a newcomer would: makes exactly the edits that it names in a copy of the sources,
compiles the files that they touch, and has a probe and the tests that the page names look whether what was added shows
everywhere it should. A page that needs more files than it promises fails.

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
        for part in ("src", "apps", "tests", "docs", "data"):
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
            if skip or word in ("-o", "-c", "-MF", "-MT"):
                skip = not skip
            elif word not in ("-fpch-preprocess", "-MD"):
                word = word.replace(f"-I{ROOT}/", f"-I{self.folder}/")
                flags.append(word.replace(f'ZENTAQ_SOURCE_DIR="{ROOT}"', f'ZENTAQ_SOURCE_DIR="{self.folder}"'))
        return flags

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


def compiled(shop, edits, more=()):
    """The objects of the sources that the edits touch, and of `more`."""
    files = {edit.file for edit in edits if edit.file.startswith("src/") and edit.file.endswith(".cpp")} | set(more)
    return [shop.compile(file, "zentaq_" + file.split("/")[1]) for file in sorted(files)]


def probe(shop, like, objects, tests):
    """Runs tests, each compiled as its folder's are, in a program that is linked as `like`."""
    made = []
    for test in tests:
        folder = test.split("/")[0]
        made.append(shop.compile(f"tests/{test}.cpp", like if folder == "howto" else f"test_{folder}"))
    shop.look(shop.link("probe", like, [*made, *objects], instead=True))


def parameter(shop, edits):
    objects = compiled(shop, edits)
    probe(shop, "test_config", objects, ["howto/parameter_probe", "unit/expectations_test", "unit/old_file_test"])
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
    objects = compiled(shop, edits, [*knowing, "src/refdata/schema.cpp", "src/app/data_points.cpp"])
    probe(shop, "test_app", objects, ["howto/channel_probe", "live/channels_test"])


def window(shop, edits):
    info = json.loads((shop.build / "CMakeFiles/zentaq_windows_autogen.dir/AutogenInfo.json").read_text())
    for header in (edit.file for edit in edits if edit.file.endswith(".h")):
        moc = "src/windows/moc_" + Path(header).stem + ".cpp"
        shop.run([info["QT_MOC_EXECUTABLE"], "-p", "windows", shop.folder / header, "-o", shop.folder / moc])
        edits.append(argparse.Namespace(file=moc))
    probe(shop, "test_windows", compiled(shop, edits),
          ["windows/frm_channels_test", "windows/window_registry_test", "windows/qt_application"])


def option(shop, edits):
    objects = compiled(shop, edits)
    probe(shop, "test_windows", objects, ["howto/option_probe", "windows/qt_application"])
    probe(shop, "test_app", objects, ["app/options_test"])


def unit_kind(shop, edits):
    objects = compiled(shop, edits)
    probe(shop, "test_sim", objects, ["unit/kind_facts_test"])
    kind = [made for made in objects if made.name.startswith("src_unit_")]
    data = shop.folder / "bin/data"
    data.mkdir(parents=True)
    shop.look(shop.link("zentaq-refdata", "zentaq-refdata", kind), shop.folder / "data/seeds", data / "zentaq410-02.pak")

    ctl = shop.link("zentaqctl", "zentaqctl", kind)
    expect("members", shop.look(ctl, "members", "--kind", "E"), "\nORB E\tVE\t")
    engine = "4 Cylinder Wasted Spark, Paired Injection"
    expect("engines", shop.look(ctl, "engines", "--unit", "ORB E"), f"\nORB E\t{engine}\t")
    images = []
    for model, file in (("ORB E", "Same.ZQ4OE"), ("ORB A Standard", "Same.ZQ4OA")):
        shop.look(ctl, "new", "--unit", model, "--engine", engine, "--sensor", "1 BAR (10-105 kPa)",
                  "-o", shop.folder / file)
        images.append(shop.look(ctl, "image", shop.folder / file, "-o", "-"))
    expect("info", shop.look(ctl, "info", shop.folder / "Same.ZQ4OE"), "ORB E")
    if images[0] != images[1] or not images[0].startswith("S1"):
        sys.exit("the image is not that of an ORB A with the same engine")

    sim = shop.link("zentaq-sim", "zentaq-sim", [made for made in objects if made not in kind])
    line = shop.folder / "line"
    with subprocess.Popen([sim, "--unit", "E", "--link", line, "--baud", "0", "--with-parent"],
                          stdout=subprocess.PIPE, text=True) as unit:
        try:
            expect("simulated unit", unit.stdout.readline(), f"ready {line}")
            expect("identify", shop.look(ctl, "identify", "--port", line), "ORB E 800001 (E) on ")
        finally:
            unit.terminate()


# What each page takes, and how many files it may edit.
WALKS = {
    "add-a-parameter": (parameter, 6),
    "add-a-channel": (channel, 3),
    "add-an-option": (option, 2),
    "add-a-window": (window, 4),
    "add-a-unit-kind": (unit_kind, 3),
}


def main():
    page, build = sys.argv[1], Path(sys.argv[2]).resolve()
    walk, most = WALKS[page]
    edits = edits_of(page)
    files = {edit.file for edit in edits}
    if len(files) > most:
        sys.exit(f"{page} edits {len(files)} files, more than {most}: {', '.join(sorted(files))}")
    with tempfile.TemporaryDirectory() as folder:
        shop = Workshop(Path(folder), build)
        for edit in edits:
            edit.apply(shop.folder)
        walk(shop, edits)
    print(f"{page}: {len(files)} files")


if __name__ == "__main__":
    main()
