#!/usr/bin/env bash
# Builds the release preset and runs the main job on the bundled sample trace.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh build
cmake --preset release >/dev/null
cmake --build --preset release -j "$(nproc)" --target pelicor
build/release/src/cli/pelicor report examples/sample_9i.trc
