#!/usr/bin/env bash
# Runs one step of the COM server tests under Wine, in the prefix that WINEPREFIX names (one per
# test run: scripts/wine-prefix.sh makes it; Wine creates it on first use otherwise).
#
#   com_tests.sh register DLL STATE          export the class keys, then regsvr32 DLL
#   com_tests.sh unregister DLL STATE        regsvr32 /u DLL; every key must be gone (exports
#                                            compared); then the same for regsvr32 /n /i:user
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

register() {
  local dll=$1 state=$2
  mkdir -p "$state"
  export_classes "$state/before.reg"
  "$wine" "$(system_dir "$dll")\\regsvr32.exe" /s "$(winpath "$dll")" ||
    die "regsvr32 $dll failed ($?)"
  query 'HKLM\Software\Classes\Pelicor.CPelicor\CLSID' || die "no ProgID after regsvr32"
  echo "registered $dll"
}

same_as_before() {
  local state=$1 what=$2
  export_classes "$state/after.reg"
  if ! diff -u "$state/before.reg" "$state/after.reg" >"$state/left.diff"; then
    cat "$state/left.diff"
    die "$what left keys behind (above)"
  fi
}

unregister() {
  local dll=$1 state=$2 tools
  tools=$(system_dir "$dll")
  "$wine" "$tools\\regsvr32.exe" /s /u "$(winpath "$dll")" || die "regsvr32 /u failed ($?)"
  same_as_before "$state" "regsvr32 /u"
  # Per user: the keys go to HKCU, HKLM stays untouched, and unregistering removes them again.
  # (Wine does not merge HKCU\Software\Classes into HKEY_CLASSES_ROOT, so no object can be
  # created from this registration here; Windows does.)
  "$wine" "$tools\\regsvr32.exe" /s /n /i:user "$(winpath "$dll")" ||
    die "regsvr32 /n /i:user failed ($?)"
  query 'HKCU\Software\Classes\Pelicor.CPelicor\CLSID' || die "no per-user ProgID"
  query 'HKLM\Software\Classes\Pelicor.CPelicor' && die "per-user registration wrote HKLM"
  "$wine" "$tools\\regsvr32.exe" /s /u /n /i:user "$(winpath "$dll")" ||
    die "regsvr32 /u /n /i:user failed ($?)"
  same_as_before "$state" "regsvr32 /u /n /i:user"
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
