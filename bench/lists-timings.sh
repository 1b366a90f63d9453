#!/usr/bin/env bash
# Timings of the list writers on the real game list, against the database build of the same run.
#
#   bench/lists-timings.sh LIST.xml SETTINGS.inf [RUNS] [CHECK]
#
# SETTINGS.inf is a Tessarin.inf whose DataFile keys name the data files to build with. For RUNS
# rounds (default 3), one after the other in each round so that all see the same machine load:
#   tessarin-cli --home FRESH --yes build --dump LIST     (complete creation with the data files)
#   tessarin-cli --home FRESH list --fields all --out F   (all 47 fields of every game)
#   tessarin-cli --home FRESH dat --out F                 (the DAT export, default mask)
# and prints the median wall time and peak memory of each, and each list's time as a multiple of
# the build's. With CHECK set to "check", the last DAT is then checked against the list by
# bench/lists/check_dat.py. The program is $TESSARIN_CLI, else build/src/cli/tessarin-cli.
set -euo pipefail

repo=$(cd "$(dirname "$0")/.." && pwd)
list=${1:?LIST.xml}
settings=${2:?SETTINGS.inf}
runs=${3:-3}
check=${4:-}
cli=${TESSARIN_CLI:-$repo/build/src/cli/tessarin-cli}
gnutime=/usr/bin/time

[ -x "$gnutime" ] || { echo "GNU time is needed at $gnutime (Debian package 'time')" >&2; exit 2; }
[ -x "$cli" ] || { echo "No tessarin-cli at $cli: build it, or set TESSARIN_CLI" >&2; exit 2; }
[ -s "$list" ] || { echo "No list at $list" >&2; exit 2; }
[ -s "$settings" ] || { echo "No settings at $settings" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
home="$work/home"

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
  rm -rf "$home"
  mkdir -p "$home"
  cp "$settings" "$home/Tessarin.inf"
  measure "$work/build" "$cli" --home "$home" --yes build --dump "$list"
  measure "$work/list" "$cli" --home "$home" list --fields all --out "$work/all.txt"
  measure "$work/dat" "$cli" --home "$home" dat --out "$work/all.dat"
done

games=$("$cli" --home "$home" info | sed -n 's/^GameCount: //p')
printf 'list: %s, %s games; %s runs\n' "$list" "$games" "$runs"
printf '%-40s %10s %14s %12s\n' "command" "median s" "median peak MB" "output MB"
for name in build list dat; do
  size=""
  case $name in
    list) size=$(awk -v b="$(stat -c %s "$work/all.txt")" 'BEGIN { printf "%.1f", b / 1048576 }') ;;
    dat) size=$(awk -v b="$(stat -c %s "$work/all.dat")" 'BEGIN { printf "%.1f", b / 1048576 }') ;;
  esac
  printf '%-40s %10s %14s %12s\n' "$name" "$(median "$work/$name" 1)" \
    "$(awk -v kb="$(median "$work/$name" 2)" 'BEGIN { printf "%.1f", kb / 1024 }')" "$size"
done
awk -v b="$(median "$work/build" 1)" -v l="$(median "$work/list" 1)" -v d="$(median "$work/dat" 1)" \
  'BEGIN { printf "list / build: %.2f   dat / build: %.2f   (at most 10 wanted)\n", l / b, d / b }'

if [ "$check" = "check" ]; then
  python3 "$repo/bench/lists/check_dat.py" "$list" "$work/all.dat"
fi
