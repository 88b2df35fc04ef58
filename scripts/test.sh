#!/usr/bin/env bash
# Builds the dev preset (ASan + UBSan, warnings as errors), runs each fuzz target for a short
# while, then every test. Installs the Debian packages it needs first.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
jobs=$(nproc)
cmake --preset dev >/dev/null
cmake --build --preset dev -j "$jobs"
# The fuzz targets first, so that the test runner's summary is the last thing printed.
scripts/fuzz.sh "${PELICOR_FUZZ_SECONDS:-20}"
ctest --preset dev -j "$jobs"
