"""A second reader of datalogs and of what is exported from them: CSV (RFC 4180), MSL text and MLG binary, version 1.

Written from the formats alone. Values are floats; None where a file has nothing in their place.
"""

import csv
import io
import re
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

# The columns of the table of the newer formats, in its order.
TABLE = (
    ["Frame", "RPM", "MAP", "TPS", "CLT", "MAT", "BATTV", "KNOCK", "EGOV", "CHKE", "PRIADV", "SECADV", "KNKRET", "GAMA",
     "IPP", "PRIDUTY", "PRIPW", "PRIOFFTIME", "SECDUTY", "SECPW", "SECOFFTIME", "SECPERCENT", "EGOC", "DAFR", "AAFR",
     "IACP", "IACD"]
    + [f"GPIO{pin}" for pin in range(1, 17)]
    + ["INJ_TOG", "SEN_MAP", "INJ_VE", "INJ_MAT", "INJ_CLT", "INJ_BARO", "INJ_SE0", "INJ_ASE0", "INJ_ASE1", "MAPACCL",
       "TPSACCL", "INJ_ACE2", "INJ_ACE5", "INJ_ACE6", "INJ_VLTCOMP", "SEN_BLEND", "INJ_STAGE", "ADV_TBL", "ADV_CLT",
       "ADV_MAT", "ADV_BARO", "ADV_IDLE", "ISRPM"]
    + [f"GPIO{pin}" for pin in range(17, 21)])


LARGEST = (2 - 2.0**-23) * 2.0**127  # 32-bit floats


def number(text):
    """A number of a datalog: a 32-bit float, which may have blanks in it."""
    value = float(text.replace(" ", ""))
    if not abs(value) <= LARGEST:
        raise ValueError("too large")
    return value


def fields_of(line):
    """Of a line with tabs, or one with commas whose texts may stand in quotes."""
    return line.split("\t") if "\t" in line else next(csv.reader([line]), [])


def read_datalog(content):
    """The rows of a datalog by the names of the newer format, with "Time" in seconds. Lines that cannot be made sense
    of are left out."""
    lines = content.decode("latin-1").split("\n")
    lines = [line[:-1] if line.endswith("\r") else line for line in lines]
    oldest = lines[0].split("\t")[0] == "ZENTAQ 4.0 DATALOG"
    names = OLDER_FIELDS if oldest else NEWER_COLUMNS
    rows = []
    for line in lines[1:]:  # lines of a head are no rows either
        fields = fields_of(line)
        if len(fields) != len(names):
            continue
        try:
            row = {name: number(text) for name, text in zip(names, fields) if name not in IN_NO_TABLE}
        except ValueError:
            continue
        if oldest:
            row = {NEWER_NAME.get(name, name): value for name, value in row.items()}
            row["Time"] = row.pop("Seconds")
            row["Frame"] = round(row["Time"] * 50)
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
    marks: list = field(default_factory=list)  # (number of rows before it, text), and the record's time in an MLG file
    start: int = 0  # seconds since 1970, where the form tells it


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
        comment = lines.pop(0)
        if comment.count('"') != 2 or not comment.endswith('"'):
            raise ValueError("a comment stands in two quotes")
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
        if not re.fullmatch(r"-?\d+\.\d{3}", fields[0]):
            raise ValueError(f"the time {fields[0]} has not three decimals")
        export.rows.append([float(text) for text in fields])
    return export


TYPES = {0: ">B", 1: ">b", 2: ">H", 3: ">h", 4: ">I", 5: ">i", 6: ">q", 7: ">f"}


def padded(content):
    text, _, zeros = content.partition(b"\0")
    if len(text) == len(content) or zeros.strip(b"\0"):
        raise ValueError("a text is padded with zeros")
    return text.decode("utf-8")


def in_record(seconds):
    """The time of a record: units of 10 microseconds, which wrap."""
    return round(seconds * 100000) % 65536


def read_mlg(content):
    magic, version, start, information, first, length, count = struct.unpack_from(">6sHIHIHH", content)
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
    export = Export(names, units, [], start=start)
    at, counter = first, 0
    while at < len(content):
        block, rolling, time = struct.unpack_from(">BBH", content, at)
        if rolling != counter % 256:
            raise ValueError(f"record {counter} counts {rolling}")
        counter += 1
        at += 4
        if block == 1:
            export.marks.append((len(export.rows), padded(content[at:at + 50]), time))
            at += 50
            continue
        if block != 0:
            raise ValueError(f"a block of type {block}")
        values = content[at:at + length]
        if len(values) != length or sum(values) & 255 != content[at + length]:
            raise ValueError(f"record {counter} has a wrong check byte")
        row, place = [], 0
        for reader, scale, transform in readers:
            (raw,) = reader.unpack_from(values, place)
            row.append((raw + transform) * scale)
            place += reader.size
        if abs((in_record(row[0]) - time + 32768) % 65536 - 32768) > row[0] * 0.01 + 1:  # of a 32-bit float
            raise ValueError(f"record {counter} of {row[0]} s tells the time {time}")
        export.rows.append(row)
        at += length + 1
    return export
