#!/usr/bin/env python3
"""Checks a DAT written by `tessarin-cli dat` with the default mask against the XML list.

    check_dat.py LIST.xml EXPORT.dat

The list is read with a real XML parser. The DAT must be well formed: parentheses balanced
outside quoted texts, every block opened at the line start by `game (` or `resource (` and
closed by a line `)`, one block per game of the list (every machine that is no device), in the
list's order. For every game, its `rom ( ... )` lines must carry the same names, sizes and CRCs,
in the same order, as the list's <rom> elements of that machine (a rom without a CRC, such as a
nodump, must have none in the DAT either). The mask writes values bare, so a rom name with a
blank is read by the keywords around it, and such names are counted apart. Prints a summary and
the first disagreements, and exits 1 on any.
"""

import re
import sys
import xml.etree.ElementTree as ET

QUOTED = re.compile(r'"[^"]*"')


def expected_games(list_path):
    """[(name, [(rom name, size, crc or None), ...]), ...] of every game, in list order."""
    games = []
    for _, elem in ET.iterparse(list_path, events=("end",)):
        if elem.tag not in ("machine", "game"):
            continue
        if elem.get("isdevice") != "yes":
            roms = [(r.get("name"), r.get("size"), r.get("crc")) for r in elem.findall("rom")]
            games.append((elem.get("name"), roms))
        elem.clear()
    return games


ROM_LINE = re.compile(
    r"^\s*rom \( name (?P<name>.+?)(?: merge (?P<merge>.+?))? size (?P<size>\d+)"
    r"(?: crc (?P<crc>[0-9a-f]{8}))?(?: sha1 (?P<sha1>[0-9a-f]{40}))?(?: flags (?P<flags>\S+))? \)$")


def parse_rom_line(text):
    """The values of a `rom ( ... )` line of the default mask; None when the line isn't one.
    The mask writes values bare, so a name with a blank is found by the keywords around it."""
    m = ROM_LINE.match(text)
    return m.groupdict() if m else None


def read_dat(dat_path):
    """([(kind, name, [rom pairs...]), ...], [structure problems])."""
    with open(dat_path, "rb") as f:
        data = f.read()
    problems = []
    if b"\n" in data.replace(b"\r\n", b""):
        problems.append("a line end other than CR LF")
    lines = data.decode("utf-8", "surrogateescape").split("\r\n")
    depth = 0
    blocks = []
    blank_names = []
    current = None
    for number, line in enumerate(lines, 1):
        bare = QUOTED.sub("", line)
        if bare.count('"'):
            problems.append(f"line {number}: an unclosed quotation mark: {line!r}")
        depth += bare.count("(") - bare.count(")")
        if depth < 0:
            problems.append(f"line {number}: a ')' with nothing open")
            depth = 0
        if line in ("game (", "resource ("):
            if current is not None:
                problems.append(f"line {number}: a block opens inside another")
            current = [line.split(" ")[0], None, []]
            continue
        if current is None:
            continue
        if line == ")":
            blocks.append(tuple(current))
            current = None
            continue
        stripped = line.strip()
        if stripped.startswith("name ") and current[1] is None:
            current[1] = stripped[5:]
        elif stripped.startswith("rom "):
            pairs = parse_rom_line(line)
            if pairs is None:
                problems.append(f"line {number}: a rom line out of shape: {line!r}")
            else:
                current[2].append(pairs)
                if " " in pairs["name"]:
                    blank_names.append(pairs["name"])
    if current is not None:
        problems.append("the last block is not closed")
    if depth != 0:
        problems.append(f"parentheses unbalanced at the end (depth {depth})")
    return blocks, problems, blank_names


def main():
    if len(sys.argv) != 3:
        print(__doc__.strip())
        return 2
    list_path, dat_path = sys.argv[1], sys.argv[2]
    games = expected_games(list_path)
    blocks, problems, blank_names = read_dat(dat_path)
    kinds = {}
    for kind, _, _ in blocks:
        kinds[kind] = kinds.get(kind, 0) + 1
    print(f"list: {len(games)} games; DAT: {len(blocks)} blocks "
          + ", ".join(f"{n} {k}" for k, n in sorted(kinds.items())))
    if len(blocks) != len(games):
        problems.append(f"{len(blocks)} blocks for {len(games)} games")

    roms_checked = 0
    games_wrong = 0
    for (name, roms), block in zip(games, blocks):
        _, block_name, block_roms = block
        wrong = []
        if block_name != name:
            wrong.append(f"block named {block_name!r}")
        got = [(p.get("name"), p.get("size"), p.get("crc")) for p in block_roms]
        if got != roms:
            if len(got) != len(roms):
                wrong.append(f"{len(got)} roms in the DAT, {len(roms)} in the list")
            for g, e in zip(got, roms):
                if g != e:
                    wrong.append(f"rom {g} in the DAT, {e} in the list")
                    break
        roms_checked += len(roms)
        if wrong:
            games_wrong += 1
            if games_wrong <= 20:
                problems.append(f"game {name}: " + "; ".join(wrong))
    print(f"roms compared: {roms_checked}; games that differ: {games_wrong}")
    # Not a difference: the values are carried, but a strict reader of the format would split
    # such a name at its blank, since the mask writes values without quotation marks.
    print(f"rom lines whose name holds a blank: {len(blank_names)}"
          + (f" (e.g. {blank_names[0]!r})" if blank_names else ""))
    for p in problems[:40]:
        print("  " + p)
    if len(problems) > 40:
        print(f"  ... and {len(problems) - 40} more")
    ok = not problems and games_wrong == 0
    print("OK" if ok else "DIFFERENCES FOUND")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
