#!/usr/bin/env bash
# Builds the dev preset (ASan + UBSan, warnings as errors) and runs every test, then each fuzz
# target for a short while. Installs the Debian packages it needs first.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh test
jobs=$(nproc)
cmake --preset dev >/dev/null
cmake --build --preset dev -j "$jobs"
ctest --preset dev -j "$jobs"
scripts/fuzz.sh "${PELICOR_FUZZ_SECONDS:-30}"
