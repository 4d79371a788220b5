"""A second reader of datalogs and of what is exported from them: CSV (RFC 4180), MSL text and MLG binary, version 1.

Written from the formats alone. Values are floats; None where a file has nothing in their place.
"""

import csv
import io
import struct
from dataclasses import dataclass, field

# ---- Datalogs

NEWER_COLUMNS = (
    ["Frame", "RPM", "MAP", "TPS", "CLT", "MAT", "BATTV", "KNOCK", "EGOV", "CHKE", "PRIADV", "SECADV", "KNKRET", "GAMA",
     "PRIDUTY", "PRIPW", "SECDUTY", "SECPW", "SECPERCENT", "EGOC", "DAFR", "AAFR", "IACP", "IACD", "INJ_TOG", "SEN_MAP",
     "INJ_VE", "INJ_MAT", "INJ_CLT", "INJ_BARO", "INJ_SE0", "INJ_ASE0", "INJ_ASE1", "MAPACCL", "TPSACCL", "INJ_ACE2",
     "INJ_ACE5", "INJ_ACE6", "INJ_VLTCOMP", "SEN_BLEND", "INJ_STAGE", "ADV_TBL", "ADV_CLT", "ADV_MAT", "ADV_BARO",
     "ADV_IDLE", "ISRPM"]
    + [f"GPIO{pin}" for pin in range(1, 21)])

OLDER_FIELDS = (
    ["Session", "Seconds", "RPM", "MAP", "TPS", "CLT", "MAT", "VOLT", "KNK", "EGOV", "CHKE", "TPSB", "ADV", "SADV",
     "KNKR", "TFPW", "UAP", "IPPC", "PIP", "PID", "PPW", "PIO", "SID", "SPW", "SIO", "POPD", "EGOC", "DAFR", "AAFR",
     "IAC", "SD"]
    + [f"GPIO{pin}" for pin in range(1, 10)])

# What the older format calls a channel, and what the newer one calls it.
NEWER_NAME = {
    "VOLT": "BATTV", "KNK": "KNOCK", "ADV": "PRIADV", "SADV": "SECADV", "KNKR": "KNKRET", "TFPW": "GAMA", "PIP": "IPP",
    "PID": "PRIDUTY", "PPW": "PRIPW", "PIO": "PRIOFFTIME", "SID": "SECDUTY", "SPW": "SECPW", "SIO": "SECOFFTIME",
    "POPD": "SECPERCENT", "IAC": "IACP", "SD": "IACD"}
IN_NO_TABLE = {"Session", "TPSB", "UAP", "IPPC"}


def number(text):
    """A number of a datalog, which may have blanks in it."""
    return float(text.replace(" ", ""))


def read_datalog(content):
    """The rows of a datalog by the names of the newer format, with "Time" in seconds. Lines that cannot be made sense
    of are left out."""
    lines = content.decode("latin-1").split("\n")
    lines = [line[:-1] if line.endswith("\r") else line for line in lines]
    oldest = lines[0].split("\t")[0] == "ZENTAQ 4.0 DATALOG"
    names = OLDER_FIELDS if oldest else NEWER_COLUMNS
    rows = []
    for line in lines[3:]:
        fields = line.split("\t" if "\t" in line else ",")
        if len(fields) != len(names):
            continue
        try:
            row = {name: number(text) for name, text in zip(names, fields) if name not in IN_NO_TABLE}
        except ValueError:
            continue
        if oldest:
            row = {NEWER_NAME.get(name, name): value for name, value in row.items()}
            row["Time"] = row.pop("Seconds")
            row["Frame"] = row["Time"] / 0.02
        else:
            row["Time"] = row["Frame"] * 0.02
        rows.append(row)
    return rows


# ---- Exports

@dataclass
class Export:
    names: list
    units: list
    rows: list  # lists of values in the order of the names
    marks: list = field(default_factory=list)  # (number of rows before it, text)


def name_and_unit(heading):
    if heading.endswith(")") and " (" in heading:
        name, unit = heading[:-1].rsplit(" (", 1)
        return name, unit
    return heading, ""


def read_csv(content):
    text = content.decode("utf-8")
    if text.startswith("\ufeff"):
        raise ValueError("a mark before the text")
    if not text.endswith("\r\n") or "\n" in text.replace("\r\n", ""):
        raise ValueError("lines end with CR LF")
    table = list(csv.reader(io.StringIO(text, newline=""), strict=True))
    names, units = zip(*map(name_and_unit, table[0]))
    rows = []
    for fields in table[1:]:
        if len(fields) != len(names):
            raise ValueError(f"a row of {len(fields)} fields under {len(names)} names")
        rows.append([float(text) if text else None for text in fields])
    return Export(list(names), list(units), rows)


def read_msl(content):
    lines = content.decode("utf-8").split("\n")
    if lines.pop() != "":
        raise ValueError("the last line has no end")
    while lines[0].startswith('"'):
        lines.pop(0)
    names = lines.pop(0).split("\t")
    units = lines.pop(0).split("\t")
    if len(names) != len(units):
        raise ValueError("names and units differ in number")
    export = Export(names, units, [])
    for line in lines:
        if line.startswith("MARK "):
            counted, text = line[len("MARK "):].split(" - ", 1)
            if counted != f"{len(export.marks) + 1:03d}":
                raise ValueError(f"the marker {counted} is not the next one")
            export.marks.append((len(export.rows), text))
            continue
        fields = line.split("\t")
        if len(fields) != len(names):
            raise ValueError(f"a row of {len(fields)} fields under {len(names)} names")
        export.rows.append([float(text) for text in fields])
    return export


TYPES = {0: ">B", 1: ">b", 2: ">H", 3: ">h", 4: ">I", 5: ">i", 6: ">q", 7: ">f"}


def padded(content):
    return content.split(b"\0", 1)[0].decode("utf-8")


def read_mlg(content):
    magic, version, _start, information, first, length, count = struct.unpack_from(">6sHIHIHH", content)
    if magic != b"MLVLG\0" or version != 1:
        raise ValueError("no MLG of version 1")
    end_of_table = 22 + 55 * count
    if not end_of_table <= information <= first:
        raise ValueError("the information text lies in the table of fields")
    names, units, readers = [], [], []
    for i in range(count):
        kind, name, unit, _style, scale, transform, _decimals = struct.unpack_from(">B34s10sBffb", content, 22 + 55 * i)
        names.append(padded(name))
        units.append(padded(unit))
        readers.append((struct.Struct(TYPES[kind]), scale, transform))
    if sum(reader.size for reader, _, _ in readers) != length:
        raise ValueError("the length of a record is not that of its fields")
    export = Export(names, units, [])
    at, counter = first, 0
    while at < len(content):
        block, rolling, _time = struct.unpack_from(">BBH", content, at)
        if rolling != counter % 256:
            raise ValueError(f"record {counter} counts {rolling}")
        counter += 1
        at += 4
        if block == 1:
            export.marks.append((len(export.rows), padded(content[at:at + 50])))
            at += 50
            continue
        values = content[at:at + length]
        if len(values) != length or sum(values) & 255 != content[at + length]:
            raise ValueError(f"record {counter} has a wrong check byte")
        row, place = [], 0
        for reader, scale, transform in readers:
            (raw,) = reader.unpack_from(values, place)
            row.append((raw + transform) * scale)
            place += reader.size
        export.rows.append(row)
        at += length + 1
    return export
