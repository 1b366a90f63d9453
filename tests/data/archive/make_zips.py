#!/usr/bin/env python3
"""Writes the archives that the archive tests read, made by Python's zipfile.

Usage: make_zips.py OUTPUT_FOLDER

Each archive is small, except many.zip (70,000 entries, which makes it a Zip64 archive by count).
"""
import io
import os
import sys
import zipfile


class Unseekable(io.RawIOBase):
    """A write-only stream without seek, so that zipfile writes data descriptors."""

    def __init__(self, target):
        self._target = target

    def writable(self):
        return True

    def write(self, data):
        return self._target.write(data)


def main():
    out = sys.argv[1]
    os.makedirs(out, exist_ok=True)
    text = b"The quick brown fox jumps over the lazy dog.\n" * 40

    with zipfile.ZipFile(os.path.join(out, "py_stored.zip"), "w", zipfile.ZIP_STORED) as z:
        z.writestr("readme.txt", text)
        z.writestr("docs/", b"")
        z.writestr("docs/inner/deep.txt", b"deep file\n")
        z.writestr("empty.txt", b"")

    with zipfile.ZipFile(os.path.join(out, "py_deflated.zip"), "w", zipfile.ZIP_DEFLATED) as z:
        z.writestr("readme.txt", text)
        z.writestr(zipfile.ZipInfo("snap/pacman.png", (2001, 5, 17, 13, 45, 30)), b"\x89PNG" + bytes(range(256)) * 8, zipfile.ZIP_DEFLATED)
        z.writestr("snap/", b"")

    with zipfile.ZipFile(os.path.join(out, "py_comment.zip"), "w", zipfile.ZIP_DEFLATED) as z:
        z.writestr("a.txt", b"alpha\n")
        # A comment that holds the end record's signature itself.
        z.comment = b"before PK\x05\x06 after, the signature sits in the comment"

    with open(os.path.join(out, "py_descriptor.zip"), "wb") as raw:
        with zipfile.ZipFile(Unseekable(raw), "w", zipfile.ZIP_DEFLATED) as z:
            z.writestr("streamed.txt", text)
            z.writestr("second.txt", b"second entry\n" * 10)

    with zipfile.ZipFile(os.path.join(out, "py_zip64.zip"), "w", zipfile.ZIP_DEFLATED, allowZip64=True) as z:
        info = zipfile.ZipInfo("forced64.txt", (2020, 1, 2, 3, 4, 6))
        info.compress_type = zipfile.ZIP_DEFLATED
        with z.open(info, "w", force_zip64=True) as f:
            f.write(text)

    with zipfile.ZipFile(os.path.join(out, "many.zip"), "w", zipfile.ZIP_STORED, allowZip64=True) as z:
        for i in range(70000):
            z.writestr("img/pic%05d.png" % i, b"p%05d" % i)


if __name__ == "__main__":
    main()
