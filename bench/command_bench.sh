#!/usr/bin/env bash
# End-to-end figures of the pelicor command on generated traces: MB/s of trace read for the
# report, the aggregated document, the call-by-call document, the profile and the HTML page,
# the peak resident memory, and the size of the page.
# Usage: bench/command_bench.sh [BUILD_DIR=build/release] [MEGABYTES=300] [REPEATS=3]
# Needs /usr/bin/time (Debian package "time"). Prints figures; judges nothing.
set -euo pipefail
build=${1:-build/release}
megabytes=${2:-300}
repeats=${3:-3}
pelicor=$build/src/cli/pelicor
generator=$build/bench/generator/gen_trace
[ -x "$pelicor" ] && [ -x "$generator" ] || { echo "build $build first (release preset)" >&2; exit 1; }
[ -x /usr/bin/time ] || { echo "needs /usr/bin/time (apt-get install time)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# best_of NAME ARGS...: runs the command REPEATS times, prints the best MB/s and its peak RSS.
best_of() {
  local name=$1 trace=$2 bytes best="" rss=""
  shift 2
  bytes=$(stat -c %s "$trace")
  for _ in $(seq "$repeats"); do
    /usr/bin/time -f '%e %M' -o "$work/time" "$pelicor" "$@" >/dev/null
    read -r seconds kilobytes <"$work/time"
    if [ -z "$best" ] || awk "BEGIN{exit !($seconds < $best)}"; then best=$seconds; rss=$kilobytes; fi
  done
  awk -v n="$name" -v b="$bytes" -v s="$best" -v r="$rss" 'BEGIN {
    printf "%-28s %7.0f MB/s  %6.2f s  peak %5.0f MB (%3.0f%% of the trace)\n",
           n, b / 1048576 / s, s, r / 1024, 100 * r * 1024 / b }'
}

for format in 9i 19c; do
  trace=$work/bench_$format.trc
  "$generator" "$trace" "$megabytes" 1 "$format"
  cat "$trace" >/dev/null  # into the page cache
  best_of "report ($format)" "$trace" report "$trace"
  best_of "xml --aggregate ($format)" "$trace" xml --aggregate "$trace"
  best_of "xml --calls ($format)" "$trace" xml --calls "$trace" -o "$work/calls.xml"
  best_of "profile ($format)" "$trace" profile "$trace"
  best_of "html ($format)" "$trace" html "$trace" -o "$work/page.html"
  echo "html page ($format): $(stat -c %s "$work/page.html") bytes"
  rm -f "$trace" "$work/calls.xml" "$work/page.html"
done
