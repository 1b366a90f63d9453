#!/usr/bin/env python3
"""Makes a [HISTORY] section of N entries for timing the translation on a real History.dat.

Usage: make_history_dictionary.py HISTORY_DAT DICTIONARY [N]

DICTIONARY is a TRANSLATE.DIC.txt made by `tessarin-cli translate make-dictionary`; its
[HISTORY] section (the fixed examples) is completed up to N entries (default 5000) with the
most frequent words and word pairs of the History texts, each translated by writing it
backwards. Words that occur inside a `$` line (`$info=` lists of rom names, `$end`) are left
out, so the translated file keeps every game name and builds the same database records.
"""
import collections
import re
import sys


def main():
    history_path, dictionary_path = sys.argv[1], sys.argv[2]
    wanted = int(sys.argv[3]) if len(sys.argv) > 3 else 5000
    with open(history_path, "rb") as f:
        lines = f.read().replace(b"\r\n", b"\n").split(b"\n")
    markers = b"\n".join(line for line in lines if line.startswith(b"$"))
    counts = collections.Counter()
    token = re.compile(rb"[A-Za-z][A-Za-z'-]{2,}")
    for line in lines:
        if line.startswith(b"$") or line.startswith(b"#"):
            continue
        words = token.findall(line)
        counts.update(words)
        counts.update(a + b" " + b for a, b in zip(words, words[1:]))

    with open(dictionary_path, "rb") as f:
        text = f.read()
    head, sep, rest = text.partition(b"[HISTORY]\r\n")
    if not sep:
        sys.exit("no [HISTORY] section in " + dictionary_path)
    section, sep2, tail = rest.partition(b"\r\n[MAMEINFO]")
    existing = [l for l in section.split(b"\r\n") if b"=" in l and not l.startswith(b";")]
    entries = []
    for word, _ in counts.most_common():
        if len(existing) + len(entries) >= wanted:
            break
        if word in markers:
            continue
        entries.append(word + b" = " + word[::-1])
    body = section.rstrip(b"\r\n") + b"\r\n" + b"".join(e + b"\r\n" for e in entries)
    with open(dictionary_path, "wb") as f:
        f.write(head + sep + body + sep2 + tail)
    print(f"{len(existing) + len(entries)} [HISTORY] entries in {dictionary_path}")


if __name__ == "__main__":
    main()
