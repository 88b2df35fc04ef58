#!/usr/bin/env bash
# Runs one step of the COM server tests under Wine, in the prefix that WINEPREFIX names (one per
# test run: scripts/wine-prefix.sh makes it; Wine creates it on first use otherwise).
#
#   com_tests.sh register DLL STATE          regsvr32 DLL, noting the keys it added
#   com_tests.sh unregister DLL STATE        regsvr32 /u DLL: those keys must be gone; then a
#                                            register/unregister round trip, machine-wide and
#                                            per user (/n /i:user), must leave the exports equal
#   com_tests.sh client EXE early|late FIXTURES DIR FTP_STATE
#   com_tests.sh client EXE unload DLL       wine EXE ... (DIR made empty first)
#   com_tests.sh vbscript DLL VBS FIXTURES DIR
#                                            wine cscript //nologo VBS FIXTURES DIR in DIR
#
# STATE is a folder for the registry exports. Unix paths are passed to Windows programs as Z:
# paths. A 32-bit DLL uses the 32-bit regsvr32 and cscript of the prefix (syswow64).
set -euo pipefail
: "${WINEPREFIX:?WINEPREFIX must name this run\'s Wine prefix}"
export WINEPREFIX WINEDEBUG=${WINEDEBUG:--all}
wine=${PELICOR_WINE:-wine}

die() { echo "com_tests: $*" >&2; exit 1; }
winpath() { local p=$1; echo "Z:${p//\//\\}"; }

# The Windows tools of the DLL's architecture.
system_dir() {
  if [ "$(od -An -tx1 -j "$(( $(od -An -tu4 -j 60 -N 4 "$1") + 4 ))" -N 2 "$1" | tr -d ' ')" = 4c01 ]
  then echo 'C:\windows\syswow64'; else echo 'C:\windows\system32'; fi
}

# HKLM and HKCU Software\Classes as text, for a before/after comparison.
export_classes() {
  local out=$1 hive tmp
  : >"$out"
  for hive in HKLM HKCU; do
    tmp=$out.$hive.utf16
    rm -f "$tmp"
    "$wine" reg export "$hive\\Software\\Classes" "$(winpath "$tmp")" /y >/dev/null 2>&1 || true
    [ -f "$tmp" ] && iconv -f UTF-16LE -t UTF-8 "$tmp" | tr -d '\r' >>"$out"
    rm -f "$tmp"
  done
}

query() { "$wine" reg query "$1" >/dev/null 2>&1; }

headers() { grep -E '^\[' "$1" | sort -u; }

register() {
  local dll=$1 state=$2
  mkdir -p "$state"
  # Windows always has it; a fresh Wine prefix gets it only when something writes below it.
  "$wine" reg add 'HKCU\Software\Classes' /f >/dev/null
  export_classes "$state/before.reg"
  "$wine" "$(system_dir "$dll")\\regsvr32.exe" /s "$(winpath "$dll")" ||
    die "regsvr32 $dll failed ($?)"
  export_classes "$state/registered.reg"
  comm -13 <(headers "$state/before.reg") <(headers "$state/registered.reg") >"$state/added"
  grep -qF 'Pelicor.CPelicor]' "$state/added" || die "no ProgID after regsvr32"
  echo "registered $dll: $(wc -l <"$state/added") keys"
}

# Registers with ARGS and unregisters again with nothing else running in between: the registry
# must be exactly as before. CHECK (a key) must exist while registered.
round_trip() {
  local dll=$1 state=$2 check=$3 tools
  shift 3
  tools=$(system_dir "$dll")
  export_classes "$state/round.before.reg"
  "$wine" "$tools\\regsvr32.exe" /s "$@" "$(winpath "$dll")" || die "regsvr32 $* failed ($?)"
  query "$check" || die "regsvr32 $* did not write $check"
  "$wine" "$tools\\regsvr32.exe" /s /u "$@" "$(winpath "$dll")" || die "regsvr32 /u $* failed"
  export_classes "$state/round.after.reg"
  if ! diff -u "$state/round.before.reg" "$state/round.after.reg"; then
    die "regsvr32 /u $* left the registry changed (above)"
  fi
}

unregister() {
  local dll=$1 state=$2
  "$wine" "$(system_dir "$dll")\\regsvr32.exe" /s /u "$(winpath "$dll")" ||
    die "regsvr32 /u failed ($?)"
  # The hosts run in between may have registered their own things (cscript does on first use),
  # so here only the keys regsvr32 added must be gone.
  export_classes "$state/after.reg"
  local left
  left=$(comm -12 "$state/added" <(headers "$state/after.reg"))
  [ -z "$left" ] || die "regsvr32 /u left: $left"
  round_trip "$dll" "$state" 'HKLM\Software\Classes\Pelicor.CPelicor\CLSID'
  # Per user: HKCU only. (Wine does not merge HKCU\Software\Classes into HKEY_CLASSES_ROOT, so
  # no object can be created from this registration here; Windows does.)
  round_trip "$dll" "$state" 'HKCU\Software\Classes\Pelicor.CPelicor\CLSID' /n /i:user
  echo "unregistered: no keys left"
}

case "${1:-}" in
  register) register "$2" "$3" ;;
  unregister) unregister "$2" "$3" ;;
  client)
    shift
    [ "$2" = unload ] || { rm -rf "$4" && mkdir -p "$4"; }
    exec "$wine" "$@" ;;
  vbscript)
    # The script works in DIR, its current directory, as a host does.
    rm -rf "$5" && mkdir -p "$5" && cd "$5"
    exec "$wine" "$(system_dir "$2")\\cscript.exe" //nologo "$(winpath "$3")" "$(winpath "$4")" \
      "$(winpath "$5")" ;;
  *) die "usage: $0 register|unregister|client|vbscript ..." ;;
esac
