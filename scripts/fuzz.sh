#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for the given number of seconds
# (default 30; the FTP session target, which runs a scripted server per input, at most 20),
# starting from the corpus in fuzz/corpus/<target>.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
if ! command -v clang++ >/dev/null; then
  echo "fuzz: clang++ not found, fuzzing skipped" >&2
  exit 0
fi
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"
shopt -s nullglob
for target in build/fuzz/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  work=$(mktemp -d)
  trap 'rm -rf "$work"' EXIT
  [ -d "fuzz/corpus/$name" ] && cp -r "fuzz/corpus/$name/." "$work/"
  run_for=$seconds
  [ "$name" = fuzz_ftp_session ] && [ "$run_for" -gt 20 ] && run_for=20
  echo "fuzz: $name for ${run_for}s" >&2
  "$target" -max_total_time="$run_for" -max_len=4096 -rss_limit_mb=2048 -print_final_stats=1 \
    "$work" 2>&1 | tail -n 12
  rm -rf "$work"
done
