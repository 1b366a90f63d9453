#!/bin/sh
# A stand-in for the emulator in the tests: a version line for -help, a small game list for
# -listxml (TESSARIN_FAKE_LIST names another file), and nothing for -listinfo. With
# TESSARIN_FAKE_SILENT=1 it prints no list at all, as a broken emulator would; with
# TESSARIN_FAKE_NOVERSION=1 its -help prints nothing. With TESSARIN_FAKE_HANG=1 its -listxml
# prints the start of the list and then hangs for a minute; with TESSARIN_FAKE_HANG=stubborn it
# also ignores the request to terminate, so only a kill ends it.
here=$(dirname "$0")
list=${TESSARIN_FAKE_LIST:-$here/../dumps/machine_lf.xml}
case "$1" in
  -help)
    [ "$TESSARIN_FAKE_NOVERSION" = "1" ] && exit 0
    echo "MAME v0.999 (fake for tests)"
    echo "Copyright Nobody"
    ;;
  -listxml)
    [ "$TESSARIN_FAKE_SILENT" = "1" ] && exit 0
    if [ -n "$TESSARIN_FAKE_HANG" ]; then
      head -c 200 "$list"
      [ "$TESSARIN_FAKE_HANG" = "stubborn" ] && trap '' TERM
      exec sleep 60
    fi
    cat "$list"
    ;;
  -listinfo)
    ;;
  *)
    echo "unknown option $1" >&2
    exit 1
    ;;
esac
