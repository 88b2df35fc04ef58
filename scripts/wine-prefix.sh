#!/usr/bin/env bash
# One Wine prefix for one test run of the Windows build.
#
#   scripts/wine-prefix.sh create        makes a fresh prefix in a temporary folder, starts its
#                                        wine server and prints the folder (use it as WINEPREFIX)
#   scripts/wine-prefix.sh remove DIR    stops the prefix's wine server and removes DIR
#
# Setting up a prefix (wineboot) takes 10-60 s; every Windows test of the run shares the one
# prefix. Its wine server is kept running until `remove`: without it each test process would
# start the server and the Windows services again (about 2 s instead of a few hundredths).
# Mono and Gecko are not installed: no test needs .NET or a browser engine.
set -euo pipefail
export WINEDEBUG=-all

die() { echo "wine-prefix: $*" >&2; exit 1; }

create() {
  command -v wine >/dev/null || die "wine is not installed (scripts/deps.sh test installs it)"
  local dir
  dir=$(mktemp -d "${TMPDIR:-/tmp}/pelicor-wine.XXXXXX")
  touch "$dir/.pelicor-wine-prefix"
  export WINEPREFIX=$dir WINEDLLOVERRIDES="mscoree,mshtml="
  # Wine reports the missing 32-bit loader here; the tests are 64-bit.
  if ! wineboot --init >"$dir/.wineboot.log" 2>&1; then
    cat "$dir/.wineboot.log" >&2
    die "wineboot failed in $dir"
  fi
  wineserver --wait </dev/null >/dev/null 2>&1
  wineserver --persistent </dev/null >/dev/null 2>&1
  # The first program started in the prefix also starts Wine's services, which inherit its
  # output: started by a test they would hold ctest's pipe open until the end of the run.
  wine cmd /c exit </dev/null >/dev/null 2>&1
  echo "$dir"
}

remove() {
  local dir=${1:-}
  [ -n "$dir" ] || die "usage: $0 remove DIR"
  [ -d "$dir" ] || return 0
  # Only a folder this script made: never a user's own prefix.
  [ -e "$dir/.pelicor-wine-prefix" ] || die "$dir was not made by $0 create"
  WINEPREFIX=$dir wineserver --kill 2>/dev/null || true
  WINEPREFIX=$dir wineserver --wait 2>/dev/null || true
  rm -rf "$dir"
}

case "${1:-}" in
  create) create ;;
  remove) remove "${2:-}" ;;
  *) die "usage: $0 create | remove DIR" ;;
esac
