#!/usr/bin/env bash
# Builds pelicor.dll and the COM test client for Windows and runs the COM server's tests under
# Wine (ctest -R '^com\.', with the FTP servers they need), in one Wine prefix for the run.
#   scripts/com-test.sh [PRESET...]     default: mingw mingw32
# The 32-bit DLL is always built and its exports checked; its tests under Wine run only where
# wine32 is installed (Debian needs the i386 architecture for it), otherwise they are skipped
# with a message.
# WINEPREFIX, when set, names the prefix to use; otherwise one is made under /tmp and removed.
set -euo pipefail
cd "$(dirname "$0")/.."
presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(mingw mingw32)
jobs=$(nproc)
export WINEDEBUG=${WINEDEBUG:--all}

if [ -z "${WINEPREFIX:-}" ]; then
  WINEPREFIX=$(mktemp -d /tmp/pelicor-wine.XXXXXX)
  export WINEPREFIX
  trap 'wineserver -k 2>/dev/null || true; rm -rf "$WINEPREFIX"' EXIT
  echo "com-test: new Wine prefix $WINEPREFIX (wineboot takes a while)" >&2
  wineboot -i >/dev/null 2>&1
  wineserver -w
fi

status=0
for preset in "${presets[@]}"; do
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset" --target pelicor_shared com_client -j "$jobs"
  if [ "$preset" = mingw32 ] && ! dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null |
      grep -q 'install ok installed'; then
    echo "com-test: skipping the 32-bit COM tests under Wine: wine32 is not installed" >&2
    ctest --test-dir "build/$preset" -R '^com\.exports$' --output-on-failure || status=1
    continue
  fi
  ctest --test-dir "build/$preset" -R '^com\.' --output-on-failure || status=1
done
exit $status
