#!/usr/bin/env python3
"""Checks a database built by `tessarin-cli build --dump LIST` against the XML list itself.

    check_listxml_build.py LIST.xml HOME/DataFiles/index

The list is read with a real XML parser (not the line tests of the import), and for every machine
that is no device, in list order, the record of the index must give: its name, the offset of its
opening line in the dump, description, year, manufacturer, parent, driver source file,
orientation (rotate of the first display), control type (first control), buttons (the input's
attribute, else the first control that has one), driver status and save state. Coded fields are
followed through the index's tables. The EndRecord must hold the offset of the first machine line
behind the last game. Prints a summary and exits 1 on any disagreement.
"""

import mmap
import re
import sys
import xml.etree.ElementTree as ET

TITLES = ["Manufacturer", "Year", "Orientation", "Buttons", "Controls", "Status", "Genre",
          "Category", "VerAdded", "Bios", "Driver", "nPlayers", "Savestate"]
TAIL = re.compile(
    r";C([^;]*);D([^;]*);E([^;]*);F([^;]*);G([^;]*);H([^;]*);I([^;]*);J([^;]*);K([^;]*);"
    r"L([^;]*);M([^;]*);N([^;]*);O([^;]*);P([^;]*);Q([^;]*);R([^;]*);S([^;]*);T([^;]*);"
    r"U([^;]*);V([^;*]*)\**$")
HEAD = re.compile(r"^([^;]*);A(\d+);0;B")


def raw(text):
    """A decoded XML text as the emulator wrote it (the tables keep texts as written)."""
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace('"', "&quot;"))


def resolved(text):
    """A decoded text as the build leaves it in a record: only &amp; &lt; &gt; are resolved."""
    return text.replace('"', "&quot;")


def read_index(path):
    with open(path, "rb") as f:
        lines = f.read().decode("utf-8", "surrogateescape").split("\r\n")
    if lines and lines[-1] == "":
        lines.pop()
    version = lines[0]
    records, tables, current = [], {t: [""] for t in TITLES}, None
    for line in lines[1:]:
        if line.startswith("[") and line[1:-1] in TITLES and line.endswith("]"):
            current = line[1:-1]
        elif current is None:
            records.append(line)
        else:
            tables[current].append(line)
    return version, records, tables


def expected_machines(list_path):
    """(name, fields) of every non-device machine in order, and the first machine name after the
    last game (None when none)."""
    games, after_last = [], None
    machine, fields = None, None
    for event, elem in ET.iterparse(list_path, events=("start", "end")):
        tag = elem.tag
        if event == "start":
            if tag in ("machine", "game"):
                if elem.get("isdevice") == "yes":
                    machine = None
                    if after_last is None and games:
                        after_last = elem.get("name")
                    continue
                after_last = None
                machine = elem.get("name")
                fields = {"desc": None, "year": None, "manu": None, "parent": elem.get("cloneof"),
                          "driver": elem.get("sourcefile"), "rotate": None, "control": None,
                          "buttons_input": None, "buttons_control": None, "status": None,
                          "savestate": None}
                games.append((machine, fields))
            elif machine is not None:
                if tag == "display" and fields["rotate"] is None:
                    fields["rotate"] = elem.get("rotate")
                elif tag == "input" and fields["buttons_input"] is None:
                    fields["buttons_input"] = elem.get("buttons")
                elif tag == "control":
                    if fields["control"] is None:
                        fields["control"] = elem.get("type") or None
                    if fields["buttons_control"] is None:
                        fields["buttons_control"] = elem.get("buttons")
                elif tag == "driver" and fields["status"] is None:
                    fields["status"] = elem.get("status")
                    fields["savestate"] = elem.get("savestate")
        else:
            if machine is not None and tag in ("description", "year", "manufacturer"):
                key = {"description": "desc", "year": "year", "manufacturer": "manu"}[tag]
                if fields[key] is None:
                    fields[key] = elem.text or ""
            if tag in ("machine", "game"):
                machine = None
                elem.clear()
    return games, after_last


def main():
    if len(sys.argv) != 3:
        print(__doc__)
        return 2
    list_path, index_path = sys.argv[1], sys.argv[2]
    version, records, tables = read_index(index_path)
    games, after_last = expected_machines(list_path)
    problems = []

    def problem(text):
        if len(problems) < 40:
            print("DISAGREE:", text)
        problems.append(text)

    end_record = records[-1] if records else ""
    records = records[:-1]
    if len(records) != len(games):
        problem(f"{len(records)} records for {len(games)} games")

    with open(list_path, "rb") as f:
        dump = mmap.mmap(f.fileno(), 0, access=mmap.ACCESS_READ)

        def line_at(offset):
            end = dump.find(b"\n", offset)
            return dump[offset:end if end >= 0 else len(dump)].decode("utf-8", "replace")

        def coded(table, code, what, name, expected):
            if expected is None or expected == "":
                if not code.startswith("#"):
                    problem(f"{name}: {what} is {code}, the list gives none")
                return
            if code.startswith("#") or not code.isdigit() or int(code) >= len(tables[table]):
                problem(f"{name}: {what} code {code!r}, the list gives {expected!r}")
                return
            if tables[table][int(code)] != raw(expected):
                problem(f"{name}: {what} {tables[table][int(code)]!r} != {raw(expected)!r}")

        checked = 0
        for i, (name, f_) in enumerate(games):
            if i >= len(records):
                break
            rec = records[i]
            head, tail = HEAD.match(rec), TAIL.search(rec)
            if not head or not tail:
                problem(f"record {i + 1} unreadable: {rec[:80]}")
                continue
            rname, offset = head.group(1), int(head.group(2))
            desc = rec[head.end():tail.start()]
            (c, d, e, fb, g, h, _i, _j, _k, _l, _m, n, _o, _p, _q, _r, s, _t, _u, v) = tail.groups()
            if rname != name:
                problem(f"record {i + 1} is {rname!r}, the list has {name!r}")
                continue
            opening = line_at(offset).lstrip("\t ")
            if not (opening.startswith(f'<machine name="{name}"') or
                    opening.startswith(f'<game name="{name}"')):
                problem(f"{name}: offset {offset} points at {opening[:60]!r}")
            want_desc = f_["desc"]
            if want_desc is None:
                if desc not in ("", "#Z"):
                    problem(f"{name}: description {desc!r}, the list gives none")
            elif desc != resolved(want_desc):
                problem(f"{name}: description {desc!r} != {resolved(want_desc)!r}")
            coded("Manufacturer", c, "manufacturer", name, f_["manu"])
            coded("Year", d, "year", name, f_["year"])
            coded("Orientation", e, "orientation", name, f_["rotate"])
            buttons = f_["buttons_input"] if f_["buttons_input"] is not None else f_["buttons_control"]
            coded("Buttons", fb, "buttons", name, buttons)
            coded("Controls", g, "control", name, f_["control"])
            coded("Status", h, "status", name, f_["status"])
            coded("Driver", n, "driver", name, f_["driver"])
            coded("Savestate", v, "save state", name, f_["savestate"])
            parent = f_["parent"]
            if (parent is None and s != "#CL") or (parent is not None and s != parent):
                problem(f"{name}: parent {s!r} != {parent!r}")
            checked += 1

        m = re.match(r"^\x1f;A(\d+);0;", end_record)
        if not m:
            problem(f"no EndRecord: {end_record[:40]!r}")
        else:
            end = int(m.group(1))
            if after_last is None:
                if end != len(dump):
                    problem(f"EndRecord {end} != file length {len(dump)}")
            elif not line_at(end).lstrip("\t ").startswith(f'<machine name="{after_last}"'):
                problem(f"EndRecord {end} points at {line_at(end)[:60]!r}, not {after_last}")

    print(f"version line: {version}")
    print(f"games in the list (no devices): {len(games)}; records: {len(records)}; "
          f"checked: {checked}; disagreements: {len(problems)}")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
