#!/usr/bin/env bash
# Whole-program timings of the database build on the real game list.
#
#   bench/build-timings.sh [LIST.xml] [RUNS]
#
# LIST.xml is the emulator's -listxml output; without it the list is made once with
# `mame -listxml` into /tmp/listxml.xml. For RUNS rounds (default 5) it measures, one after the
# other in each round so that all see the same machine load:
#   grep -c '<machine ' LIST                           (the yardstick: one pass over the file)
#   tessarin-cli --home FRESH --yes build --dump LIST  (complete creation, no data files; the
#                                                      list is copied into the data folder)
#   the same with --link                               (the list linked, not copied)
#   tessarin-cli --home FRESH info                     (loading the index it wrote)
# and prints the median wall time and the median peak resident memory of each (GNU time), and
# the build's time as a multiple of grep's. The program is $TESSARIN_CLI, else
# build/src/cli/tessarin-cli of this repository.
set -euo pipefail

repo=$(cd "$(dirname "$0")/.." && pwd)
list=${1:-}
runs=${2:-5}
cli=${TESSARIN_CLI:-$repo/build/src/cli/tessarin-cli}
gnutime=/usr/bin/time

if [ ! -x "$gnutime" ]; then
  echo "GNU time is needed at $gnutime (Debian package 'time')" >&2
  exit 2
fi
if [ ! -x "$cli" ]; then
  echo "No tessarin-cli at $cli: build it, or set TESSARIN_CLI" >&2
  exit 2
fi
if [ -z "$list" ]; then
  list=/tmp/listxml.xml
  if [ ! -s "$list" ]; then
    mame=$(command -v mame || echo /usr/games/mame)
    echo "Making $list with $mame -listxml ..." >&2
    "$mame" -listxml > "$list"
  fi
fi
[ -s "$list" ] || { echo "No list at $list" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
home="$work/home"

# Runs a command under GNU time; appends "seconds kilobytes" to the file named first.
measure() {
  local out=$1
  shift
  "$gnutime" -f '%e %M' -o "$work/one" "$@" > "$work/stdout" 2> "$work/stderr" || {
    echo "failed: $*" >&2
    cat "$work/stderr" >&2
    exit 1
  }
  cat "$work/one" >> "$out"
}

median() {  # column $2 of file $1
  sort -n -k"$2","$2" "$1" | awk -v col="$2" '{ v[NR] = $col } END {
    if (NR % 2) print v[(NR + 1) / 2]; else printf "%.3f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

for ((r = 1; r <= runs; r++)); do
  measure "$work/grep" grep -c '<machine ' "$list"
  machines=$(cat "$work/stdout")
  rm -rf "$home"
  measure "$work/build" "$cli" --home "$home" --yes build --dump "$list"
  rm -rf "$home.link"
  measure "$work/build-link" "$cli" --home "$home.link" --yes build --dump "$list" --link
  measure "$work/info" "$cli" --home "$home" info
  games=$(sed -n 's/^GameCount: //p' "$work/stdout")
done

grep_s=$(median "$work/grep" 1)
build_s=$(median "$work/build" 1)
link_s=$(median "$work/build-link" 1)
printf 'list: %s (%s bytes), %s machine lines, %s games in the database; %s runs\n' \
  "$list" "$(stat -c %s "$list")" "$machines" "$games" "$runs"
printf '%-34s %10s %14s\n' "command" "median s" "median peak MB"
for name in grep build build-link info; do
  printf '%-34s %10s %14s\n' "$name" "$(median "$work/$name" 1)" \
    "$(awk -v kb="$(median "$work/$name" 2)" 'BEGIN { printf "%.1f", kb / 1024 }')"
done
awk -v b="$build_s" -v l="$link_s" -v g="$grep_s" 'BEGIN {
  printf "build / grep: %.2f   build-link / grep: %.2f\n", (g > 0 ? b / g : 0), (g > 0 ? l / g : 0) }'
