#!/usr/bin/env bash
# Fails when a logic file includes a QtGui or QtWidgets header. Only windows may: files whose
# names end in dialog, frame, panel, widget or ui (.cpp or .h), the names that go to
# tessarin_ui. The include path alone doesn't stop it, since every Qt module sits on it.
#
#   scripts/check-includes.sh [SOURCE_ROOT] [QT_INCLUDE_DIR]
# SOURCE_ROOT defaults to src/ of this repository; QT_INCLUDE_DIR to the one qmake or the usual
# Debian place give. Prints each offending line as file:line: include.
set -euo pipefail

TOP=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
ROOT=${1:-$TOP/src}
QT_INCLUDE=${2:-}
if [ -z "$QT_INCLUDE" ]; then
  for candidate in "$(qmake6 -query QT_INSTALL_HEADERS 2>/dev/null || true)" \
    /usr/include/x86_64-linux-gnu/qt6 /usr/include/aarch64-linux-gnu/qt6 /usr/include/qt6; do
    if [ -n "$candidate" ] && [ -d "$candidate/QtWidgets" ]; then
      QT_INCLUDE=$candidate
      break
    fi
  done
fi

# The headers of the two modules: the module names themselves and every class header in them.
forbidden=$(mktemp)
trap 'rm -f "$forbidden"' EXIT
{
  echo QtGui
  echo QtWidgets
  if [ -n "$QT_INCLUDE" ]; then
    for module in QtGui QtWidgets; do
      [ -d "$QT_INCLUDE/$module" ] && ls "$QT_INCLUDE/$module"
    done
  fi
} | sort -u >"$forbidden"

status=0
while IFS= read -r -d '' file; do
  name=$(basename "$file")
  if [[ "$name" =~ (dialog|frame|panel|widget|ui)\.(cpp|h)$ ]]; then continue; fi
  # #include <QtWidgets/QWidget>, <QtGui>, <QImage>...: the first path part or the class name.
  while IFS=: read -r line text; do
    header=$(sed -E 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*<([^>]*)>.*/\1/' <<<"$text")
    first=${header%%/*}
    last=${header##*/}
    if grep -qxF "$first" "$forbidden" || grep -qxF "$last" "$forbidden"; then
      # QtCore's own headers share no name with these modules, but keep "QtCore/..." allowed.
      [ "$first" = "QtCore" ] && continue
      echo "${file#"$ROOT"/}:$line: $header (a window header outside the window files)"
      status=1
    fi
  done < <(grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*<Q' "$file" || true)
done < <(find "$ROOT" -type f \( -name '*.cpp' -o -name '*.h' \) -print0)

if [ "$status" -ne 0 ]; then
  echo "Logic files may use QtCore only; move the window code into a *dialog/*ui file." >&2
fi
exit "$status"
