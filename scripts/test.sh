#!/usr/bin/env bash
# Builds the dev preset (ASan + UBSan, warnings as errors), runs each fuzz target for a short
# while, then every test; then cross-builds the Windows preset (mingw) and runs the same tests
# under Wine, in a Wine prefix of its own that is removed afterwards. Installs the Debian
# packages it needs first. PELICOR_SKIP_WINDOWS=1 leaves out the Windows part.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
jobs=$(nproc)
cmake --preset dev >/dev/null
cmake --build --preset dev -j "$jobs"
# The fuzz targets first, so that the test runners' summaries are the last thing printed.
scripts/fuzz.sh "${PELICOR_FUZZ_SECONDS:-20}"
status=0
ctest --preset dev -j "$jobs" || status=$?
[ "${PELICOR_SKIP_WINDOWS:-0}" = 1 ] && exit "$status"

cmake --preset mingw >/dev/null
cmake --build --preset mingw -j "$jobs"
# One prefix for every Windows test of this run (the COM server's tests included): they find it
# in WINEPREFIX.
WINEPREFIX=$(scripts/wine-prefix.sh create)
export WINEPREFIX WINEDEBUG=-all
trap 'scripts/wine-prefix.sh remove "$WINEPREFIX"' EXIT
# The 32-bit COM server: built, its exports checked, and run under Wine where wine32 is there.
scripts/com-test.sh mingw32 || status=$?
ctest --preset mingw -j "$jobs" || status=$?
exit "$status"
