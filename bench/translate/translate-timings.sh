#!/usr/bin/env bash
# Times the translation of a real History.dat with a 5,000-entry [HISTORY] dictionary, the
# one-scan matcher beside the row-by-row method, and shows a game of a database whose History
# is the translated file.
#
#   bench/translate/translate-timings.sh BUILD BENCH_BUILD HISTORY_DAT [HOME [GAME]]
#
# BUILD holds tessarin-cli (src/cli/tessarin-cli), BENCH_BUILD bench_translate (a build with
# -DTESSARIN_BUILD_BENCH=ON). HISTORY_DAT is copied, never written. HOME, when given, is an
# application folder with a database; it is copied too, and GAME (default pacman) is shown
# from the copy after its History was updated from the translated file.
set -euo pipefail
build=$1 bench=$2 history=$3 home=${4:-} game=${5:-pacman}
cli=$build/src/cli/tessarin-cli
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$work/app"
cp "$history" "$work/History.dat"
"$cli" --home "$work/app" set DataFile2 "$work/History.dat" 2>/dev/null
"$cli" --home "$work/app" translate make-dictionary >/dev/null
python3 "$here/make_history_dictionary.py" "$work/History.dat" "$work/app/TRANSLATE.DIC.txt" 5000

echo "== both methods on every line, in memory"
"$bench/bench/translate/bench_translate" "$work/app/TRANSLATE.DIC.txt" "[HISTORY]" "$work/History.dat"

echo "== tessarin-cli translate run --files history"
/usr/bin/time -f "%e s elapsed, %U s user" "$cli" --home "$work/app" translate run --files history

if [ -n "$home" ]; then
  echo "== tessarin-cli show $game, from a database whose History is the translated file"
  cp -a "$home" "$work/home"
  "$cli" --home "$work/home" set DataFile2 "$work/History.dat" 2>/dev/null
  "$cli" --home "$work/home" update history
  "$cli" --home "$work/home" show "$game"
fi
