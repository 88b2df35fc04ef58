#!/usr/bin/env bash
# End-to-end figures of the pelicor command on generated traces: for the 9i and the 19c layout,
# MB/s of trace read by the report, the aggregated document, the call-by-call document, the
# profile and the HTML page, the MB/s of a bare fgets+sscanf scan of the same file in the same
# run and each job's ratio to it, the peak resident memory as a fraction of the trace, and the
# size of the page. Best of REPEATS runs. Then the call document of a LARGE_MEGABYTES trace
# (3 GB by default; 0 leaves it out), whose peak memory must stay what it is for the small one.
# Usage: bench/command_bench.sh [BUILD_DIR=build/release] [MEGABYTES=300] [REPEATS=3]
#                               [LARGE_MEGABYTES=3072]
# PELICOR=path runs another build of the command (say, the one before a change) against the
# same traces and scan. Needs /usr/bin/time (Debian package "time"). Prints figures; judges
# nothing.
set -euo pipefail
build=${1:-build/release}
megabytes=${2:-300}
repeats=${3:-3}
large_megabytes=${4:-3072}
pelicor=${PELICOR:-$build/src/cli/pelicor}
generator=$build/bench/generator/gen_trace
bare_scan=$build/bench/bare_scan
for tool in "$pelicor" "$generator" "$bare_scan"; do
  [ -x "$tool" ] || { echo "build $build first (release preset): no $tool" >&2; exit 1; }
done
[ -x /usr/bin/time ] || { echo "needs /usr/bin/time (apt-get install time)" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# best_of TRACE COMMAND...: runs the command REPEATS times; sets best (seconds) and rss (KB)
# of the fastest run. Each run writes its document afresh, as a user's first run does: a file
# written over its copy of the run before costs ext4 a flush of the new one at the rename
# (0.1 s for a 300 MB call document), which is the file system's time, not the job's.
best_of() {
  local trace=$1 start end seconds kilobytes
  shift
  best="" rss=""
  for _ in $(seq "$repeats"); do
    rm -f "$work"/*.xml "$work"/*.html
    start=$(date +%s%N)
    /usr/bin/time -f '%M' -o "$work/time" "$@" >/dev/null
    end=$(date +%s%N)
    seconds=$(awk -v s="$start" -v e="$end" 'BEGIN { printf "%.4f", (e - s) / 1e9 }')
    read -r kilobytes <"$work/time"
    if [ -z "$best" ] || awk "BEGIN{exit !($seconds < $best)}"; then best=$seconds; rss=$kilobytes; fi
  done
}

# row NAME BYTES: prints the figures of the last best_of against the bare scan's.
row() {
  awk -v n="$1" -v b="$2" -v s="$best" -v r="$rss" -v floor="$scan_seconds" 'BEGIN {
    if (s <= 0) s = 0.01
    printf "%-26s %7.0f MB/s  %6.3f s  %5.2fx the bare scan  peak %5.0f MB (%.2fx the trace)\n",
           n, b / 1048576 / s, s, floor / s, r / 1024, r * 1024 / b }'
}

echo "load before: $(cut -d' ' -f1-3 /proc/loadavg); best of $repeats; $pelicor"
for format in 9i 19c; do
  trace=$work/bench_$format.trc
  "$generator" "$trace" "$megabytes" 1 "$format" >/dev/null
  bytes=$(stat -c %s "$trace")
  cat "$trace" >/dev/null  # into the page cache
  best_of "$trace" "$bare_scan" "$trace"
  scan_seconds=$best
  row "bare scan ($format)" "$bytes"
  best_of "$trace" "$pelicor" report "$trace"
  row "report ($format)" "$bytes"
  best_of "$trace" "$pelicor" xml --aggregate "$trace" -o "$work/aggregate.xml"
  row "xml --aggregate ($format)" "$bytes"
  best_of "$trace" "$pelicor" xml --calls "$trace" -o "$work/calls.xml"
  row "xml --calls ($format)" "$bytes"
  best_of "$trace" "$pelicor" profile "$trace"
  row "profile ($format)" "$bytes"
  best_of "$trace" "$pelicor" html "$trace" -o "$work/page.html"
  row "html ($format)" "$bytes"
  echo "html page ($format): $(stat -c %s "$work/page.html") bytes"
  rm -f "$trace" "$work/calls.xml" "$work/aggregate.xml" "$work/page.html"
done
if [ "$large_megabytes" -gt 0 ]; then
  trace=$work/large_9i.trc
  "$generator" "$trace" "$large_megabytes" 1 9i >/dev/null
  bytes=$(stat -c %s "$trace")
  repeats=1
  best_of "$trace" "$bare_scan" "$trace"
  scan_seconds=$best
  row "bare scan ($((bytes >> 20)) MB, 9i)" "$bytes"
  best_of "$trace" "$pelicor" xml --calls "$trace" -o "$work/calls.xml"
  row "xml --calls ($((bytes >> 20)) MB, 9i)" "$bytes"
  rm -f "$trace" "$work/calls.xml"
fi
echo "load after: $(cut -d' ' -f1-3 /proc/loadavg)"
