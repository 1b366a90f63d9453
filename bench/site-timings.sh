#!/usr/bin/env bash
# Timing of the HTML site of a whole database, and its link check.
#
#   bench/site-timings.sh HOME OUT [RUNS] [-- EXTRA SITE OPTIONS]
#
# HOME is an application folder with a database (copy a read-only one first: the command writes
# the default skins and the help page into HOME/HTML). For RUNS rounds (default 3) OUT is
# emptied and `tessarin-cli --home HOME site --out OUT` is run with the built-in templates and no
# images; the wall time and peak memory of each run are printed, then the files and bytes of the
# last site, and bench/site/checklinks.py's counts for it. The program is $TESSARIN_CLI, else
# build/src/cli/tessarin-cli.
set -euo pipefail

repo=$(cd "$(dirname "$0")/.." && pwd)
home=${1:?HOME}
out=${2:?OUT}
runs=${3:-3}
shift $(( $# >= 3 ? 3 : $# ))
[ "${1:-}" = "--" ] && shift
cli=${TESSARIN_CLI:-$repo/build/src/cli/tessarin-cli}
gnutime=/usr/bin/time

[ -x "$gnutime" ] || { echo "GNU time is needed at $gnutime (Debian package 'time')" >&2; exit 2; }
[ -x "$cli" ] || { echo "No tessarin-cli at $cli: build it, or set TESSARIN_CLI" >&2; exit 2; }
[ -s "$home/DataFiles/index" ] || { echo "No database in $home" >&2; exit 2; }

for run in $(seq 1 "$runs"); do
  rm -rf "$out"
  "$gnutime" -f "run $run: %e s wall, %M KB peak" "$cli" --home "$home" site --out "$out" "$@" \
    2>&1 >/dev/null | grep -E '^run |games,'
done
echo "files: $(find "$out/tessarin" -type f | wc -l)"
echo "bytes: $(find "$out/tessarin" -type f -printf '%s\n' | awk '{s+=$1} END {print s}')"
python3 "$repo/bench/site/checklinks.py" "$out/tessarin"
