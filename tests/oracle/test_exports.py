"""Random datalogs through `zentaqctl log export`, read back by a second reader: every value, name, unit and marker.

test_exports.py ZENTAQCTL
"""

import random
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from read_exports import (NEWER_COLUMNS, OLDER_FIELDS, TABLE, in_record, read_csv, read_datalog, read_mlg, read_msl)

PROGRAM = ""
LOGS = 60
PRESSURES = ["kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"]
# What each live value is measured in. Of those that stand nowhere here a unit tells raw numbers: whatever the program
# calls them, it does so in every form.
UNITS = {unit: names.split() for unit, names in {
    "s": "Time", "rpm": "RPM ISRPM", "v": "TPS BATTV EGOV SEN_MAP", "C": "CLT MAT", ":1": "DAFR AAFR",
    "deg": "PRIADV SECADV KNKRET ADV_TBL ADV_CLT ADV_MAT ADV_BARO ADV_IDLE",
    "%": "KNOCK PRIDUTY SECDUTY SECPERCENT EGOC IACP INJ_VE INJ_MAT INJ_CLT INJ_BARO",
    "ms": "IPP PRIPW PRIOFFTIME SECPW SECOFFTIME INJ_TOG INJ_VLTCOMP",
    "": "Frame CHKE IACD " + " ".join(f"GPIO{pin}" for pin in range(1, 21))}.items()}
COMPUTED = ("IPP", "PRIOFFTIME", "SECOFFTIME")
TEXTS = ["start", "missfire?", "gear 3", "", "Kühlmittel > 110 °C", "ä" * 30, "€" * 20 + "x", "say \"go\", then stop - 1",
         "a text that is longer than the fifty bytes of a marker and is cut there"]


def value(chance, name):
    """A field as a logger writes it, and now and then one that stretches the formats."""
    if name == "CHKE":
        return str(chance.randrange(2))
    if name.startswith("GPIO"):
        return chance.choice([" 0", str(chance.randrange(256))])
    return chance.choice([
        str(chance.randrange(-40, 9000)),
        f"{chance.uniform(-99, 260):.1f}",
        f"{chance.uniform(-9, 30):.3f}",
        f"{chance.uniform(-1, 1):.6f}",
        "0", "-0.5", "1e-05", "123456.75", " 7", "1 2", "-3e38", "16777217"])


def speed(chance):
    return chance.choice([str(chance.randrange(1, 12000)), f"{chance.uniform(0.1, 9000):.1f}", "0", "-12"])


def data_line(chance, names, step, separator):
    fields = []
    for name in names:
        if name == "Frame":
            fields.append(str(step))
        elif name == "Seconds":
            fields.append(f"{step * 0.02:.2f}")
        elif name == "RPM":
            fields.append(speed(chance))
        elif name == "Session" and separator == ",":
            fields.append(chance.choice(['"Test Run Sunday, Autocross #1"', '"Drag"', "Session"]))
        else:
            fields.append(value(chance, name))
    return separator.join(fields)


def damaged(chance, line, separator):
    fields = line.split(separator)
    kind = chance.randrange(6)
    if kind == 0:
        return separator.join(fields[:chance.randrange(1, len(fields))])
    if kind == 1:
        return separator.join([*fields, "1"])
    fields[chance.randrange(-20, 0)] = ["abc", "", "\x01\x7f\xff", "1e39"][kind - 2]
    return separator.join(fields)


def random_datalog(chance):
    """A log, and the unit of its pressures."""
    banner = chance.choice(["4.10", "4.5", "4.0"])
    names = OLDER_FIELDS if banner == "4.0" else NEWER_COLUMNS
    separator = chance.choice("\t,") if banner == "4.0" else "\t"
    unit = chance.choice(PRESSURES)
    lines = [f"ZENTAQ {banner} DATALOG\tZQA-405099", "\t".join(["1", "10", "90"] + ["0"] * 20 + [unit, "14.7"]),
             separator.join(names)]
    if banner == "4.0" and chance.random() < 0.3:
        del lines[1:]
        unit = ""
    step = 0
    for i in range(chance.randrange(1, 60)):
        step += chance.choice([1, 1, 1, 2, 50])
        lines.append(data_line(chance, names, step, separator))
        if chance.random() < 0.1 and i > 0:
            lines.append(damaged(chance, data_line(chance, names, step, separator), separator))
    end = chance.choice(["\r\n", "\n"])
    text = end.join(lines) + chance.choice([end, end, ""])
    if text.endswith(end) and chance.random() < 0.4:  # the power was cut in the middle of a line
        text += data_line(chance, names, step + 1, separator).rsplit(separator, chance.randrange(1, 20))[0]
    return text.encode("latin-1"), unit


def random_marks(chance, rows):
    """Markers in the order of their times, one of them often that of a row, and the text of their file."""
    times = [round(chance.uniform(0, rows[-1]["Time"] * 1.1), 3) for _ in range(chance.randrange(4))]
    if times:
        times += chance.choices([times[0], 0, round(chance.choice(rows)["Time"], 3)], k=chance.randrange(3))
    marks = [(time, f"lap {i} - {chance.choice(TEXTS)}".strip()) for i, time in enumerate(times)]
    lines = [f"{time}\t{text}" for time, text in marks]
    for wrong in ("no marker", "x\tno time", "nan\tno time", "", "1e300\tno log is so long"):
        lines.insert(chance.randrange(len(lines) + 1), wrong)
    return sorted(marks, key=lambda mark: mark[0]), chance.choice(["\n", "\r\n"]).join(lines)


def cut_to_bytes(text, most):
    """The whole characters of a text that so many bytes hold."""
    while len(text.encode("utf-8")) > most:
        text = text[:-1]
    return text


def as_float32(number_):
    return struct.unpack("f", struct.pack("f", number_))[0]


class Exports(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def export(self, log, form):
        out = log.with_suffix("." + form)
        told = subprocess.run([PROGRAM, "log", "export", log, "-o", out, "--to", form], capture_output=True, timeout=60)
        self.assertEqual(told.returncode, 0, told.stderr)
        return out.read_bytes()

    def check_computed(self, at, row, channels, form):
        """Not in a newer log: two turns of the engine, and what is left of them."""
        cycle = 120000 / row["RPM"] if row["RPM"] > 0 else 0
        for name, wanted in zip(COMPUTED, (cycle, max(0, cycle - row["PRIPW"]), max(0, cycle - row["SECPW"]))):
            digits = abs(wanted) * 1e-7 if form == "mlg" else 0.0005
            self.assertAlmostEqual(channels[name], wanted, delta=digits + abs(wanted) * 1e-12, msg=f"{at} {name}")

    def check_time(self, at, row, channels, exact):
        """A log of frames counts fiftieths of a second, one of seconds has two decimals."""
        self.assertEqual(channels["Time"], exact(round(row["Time"], 3)), at)
        self.assertEqual(channels["Frame"], exact(row["Frame"]), at)

    def check_values(self, export, rows, at, form):
        exact = as_float32 if form == "mlg" else float
        self.assertEqual(len(export.rows), len(rows), at)
        for number_, (got, row) in enumerate(zip(export.rows, rows)):
            channels = dict(zip(export.names, got))
            self.check_time(f"{at} row {number_}", row, channels, exact)
            for name in export.names[2:]:
                if name in row:
                    self.assertEqual(channels[name], exact(row[name]), f"{at} row {number_} {name}")
                elif name not in COMPUTED or "IPP" in row:
                    # The log has it not: an empty field, or what stands still where each has a number.
                    self.assertEqual(channels[name], None if form == "csv" else 0, f"{at} row {number_} {name}")
            if "IPP" not in row:
                self.check_computed(f"{at} row {number_}", row, channels, form)

    def check_names(self, export, pressure, at):
        self.assertEqual(export.names, ["Time", *TABLE], at)
        channels = dict(zip(export.names, export.units))
        self.assertEqual(channels["MAP"], pressure, at)
        for unit, names in UNITS.items():
            for name in names:
                self.assertEqual(channels[name], unit, f"{at} {name}")

    def check_marks(self, export, marks, rows, at, form):
        before = [sum(row["Time"] < time for row in rows) for time, _ in marks]
        texts = [cut_to_bytes(text, 49) if form == "mlg" else text for _, text in marks]
        self.assertEqual([mark[:2] for mark in export.marks], list(zip(before, texts)), at)
        if form == "mlg":
            self.assertEqual([mark[2] for mark in export.marks], [in_record(time) for time, _ in marks], at)

    def check_log(self, seed):
        chance = random.Random(seed)
        log = Path(self.folder.name) / f"{seed}.dat"
        content, pressure = random_datalog(chance)
        log.write_bytes(content)
        rows = read_datalog(content)
        marks, marks_file = random_marks(chance, rows)
        Path(str(log) + ".marks").write_text(marks_file, encoding="utf-8", newline="")
        units = []
        for form, reader in (("csv", read_csv), ("msl", read_msl), ("mlg", read_mlg)):
            at = f"log {seed} as {form}"
            export = reader(self.export(log, form))
            self.check_names(export, pressure, at)
            self.check_values(export, rows, at, form)
            units.append(export.units)
            if form != "csv":
                self.check_marks(export, marks, rows, at, form)
            if form == "mlg":
                self.assertEqual(export.start, int(log.stat().st_mtime), at)
        self.assertTrue(units[0] == units[1] == units[2], f"log {seed}: {units}")
        return len(rows), len(marks)

    def test_every_value_name_unit_and_marker_comes_out(self):
        rows, marks = map(sum, zip(*(self.check_log(seed) for seed in range(LOGS))))
        print(f"{LOGS} logs, {rows} rows, {marks} markers")
        self.assertGreater(rows, 1000)
        self.assertGreater(marks, 60)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
