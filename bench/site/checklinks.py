#!/usr/bin/env python3
"""Link check of a generated HTML site.

Every href and src of every .htm file below SITE (the "tessarin" folder) that points inside the
site must name a file that exists. Two kinds of dead links are required by the site's rules and
are counted apart rather than reported:
  - links to the page of a rom name longer than 12 characters (pages are named after the first
    12 characters, links use the whole name);
  - group links of a game with no value in that table (an empty name gives "<folder>/.htm");
  - parent links read out of a description: the database keeps "&quot;" as it stands, so its ";"
    followed by a field letter (";S" of '&quot;Spitz') is taken for that field, and the parent
    is "pitz&quot". The link ends in an unresolved entity without its ";".
Addresses with a scheme (file:, http:, ...) and bare anchors are not checked.

Usage: checklinks.py SITE [--show N]
Exit status 0 when no other link is broken.
"""
import os
import re
import sys
from urllib.parse import unquote

LINK = re.compile(rb'(?:href|src)="([^"]*)"', re.IGNORECASE)
ENTITY_CUT = re.compile(rb'&(?:quot|apos)$')
SCHEME = re.compile(rb'^[A-Za-z][A-Za-z0-9+.-]*:')


def main():
    if len(sys.argv) < 2:
        print(__doc__)
        return 2
    site = sys.argv[1]
    show = 10
    if '--show' in sys.argv:
        show = int(sys.argv[sys.argv.index('--show') + 1])
    files = pages = links = ok = long_names = empty_groups = external = hash_names = 0
    entity_cuts = 0
    broken = []
    exists_cache = {}
    for root, _dirs, names in os.walk(site):
        for name in names:
            files += 1
            if not name.lower().endswith('.htm'):
                continue
            pages += 1
            path = os.path.join(root, name)
            with open(path, 'rb') as f:
                text = f.read()
            for match in LINK.finditer(text):
                target = match.group(1)
                if SCHEME.match(target):
                    external += 1
                    continue
                if b'#' in target:
                    # MakeFileSafeName turns "*" into "#": such a file exists under its whole
                    # name, though a browser takes what follows "#" for an anchor.
                    whole = os.path.normpath(os.path.join(root.encode(), target))
                    if b'#' not in target[:1] and os.path.isfile(whole):
                        hash_names += 1
                        links += 1
                        continue
                    target = target.split(b'#', 1)[0]
                if not target:
                    continue
                links += 1
                full = os.path.normpath(os.path.join(root.encode(), target))
                found = exists_cache.get(full)
                if found is None:
                    found = os.path.isfile(full)
                    exists_cache[full] = found
                if found:
                    ok += 1
                    continue
                base = os.path.basename(target)
                stem = os.path.splitext(base)[0]
                if base == b'.htm':
                    empty_groups += 1
                elif ENTITY_CUT.search(stem):
                    entity_cuts += 1
                elif len(stem) > 12 and os.path.isfile(
                        os.path.join(os.path.dirname(full), stem[:12].strip() + b'.htm')):
                    long_names += 1
                else:
                    broken.append((path, target.decode('latin-1')))
    print(f'files: {files}  pages: {pages}')
    print(f'internal links checked: {links}  resolved: {ok}')
    print(f'required dead links, rom name over 12 characters: {long_names}')
    print(f'required dead links, empty group name: {empty_groups}')
    print(f'required dead links, a field letter behind "&quot;" in a description: {entity_cuts}')
    print(f'file names holding "#" (from "*", exist but a browser cuts them): {hash_names}')
    print(f'addresses with a scheme (not checked): {external}')
    print(f'broken: {len(broken)}')
    for path, target in broken[:show]:
        print(f'  {path} -> {target}')
    return 0 if not broken else 1


if __name__ == '__main__':
    sys.exit(main())
