#!/bin/sh
# A stand-in for the emulator in the tests: a version line for -help, a small game list for
# -listxml (TESSARIN_FAKE_LIST names another file), and nothing for -listinfo. With
# TESSARIN_FAKE_SILENT=1 it prints no list at all, as a broken emulator would; with
# TESSARIN_FAKE_NOVERSION=1 its -help prints nothing.
here=$(dirname "$0")
list=${TESSARIN_FAKE_LIST:-$here/../dumps/machine_lf.xml}
case "$1" in
  -help)
    [ "$TESSARIN_FAKE_NOVERSION" = "1" ] && exit 0
    echo "MAME v0.999 (fake for tests)"
    echo "Copyright Nobody"
    ;;
  -listxml)
    [ "$TESSARIN_FAKE_SILENT" = "1" ] || cat "$list"
    ;;
  -listinfo)
    ;;
  *)
    echo "unknown option $1" >&2
    exit 1
    ;;
esac
