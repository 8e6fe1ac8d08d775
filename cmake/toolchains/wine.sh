#!/bin/bash
# wine.sh PROGRAM WORD...   runs a Windows program
# wine.sh --start           makes the prefix and a server that stays, so that each program starts in a tenth of the time
# wine.sh --stop            ends that server
# The prefix is build/wine, made anew by --start where it is missing.
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
export WINEPREFIX=$here/build/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml= LC_ALL=C.UTF-8
ulimit -n 4096 2>/dev/null || true
PATH=$PATH:/usr/lib/wine

# A superuser opens even what is read-only for writing; tests want to be refused.
as_user=
if [ "$(id -u)" = 0 ]; then as_user="setpriv --bounding-set -dac_override"; fi

# Whatever inherits a stream keeps its reader waiting, so the server gets none of ours.
quietly() { timeout 120 $as_user "$@" </dev/null >/dev/null 2>&1; }

case $1 in
  --start)
    mkdir -p "$WINEPREFIX"
    quietly wineserver64 -k || true # one that runs already may not stay
    quietly wineserver64 -p
    # The first program starts others that stay: it must not be one whose output somebody reads.
    if [ -e "$WINEPREFIX/system.reg" ]; then quietly wine64 cmd /c exit; else quietly wine64 wineboot -i; fi
    ;;
  --stop) quietly wineserver64 -k || true ;;
  *)
    # Test programs are asked for their names; the line ends of that answer are not part of the names.
    case " $* " in
      *" --gtest_list_tests "*) timeout 120 $as_user wine64 "$@" | tr -d '\r' ;;
      *) exec timeout 900 $as_user wine64 "$@" ;;
    esac
    ;;
esac
