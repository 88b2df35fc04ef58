#!/usr/bin/env bash
# MB/s of the report of a generated trace read from the local file and streamed over SFTP from
# the test sshd on 127.0.0.1 (scripts/sftp/sshd.sh), and of a plain copy over SFTP.
# Usage: bench/sftp_bench.sh [BUILD_DIR=build/release] [MEGABYTES=300] [REPEATS=3]
# Prints figures; judges nothing.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build/release}
megabytes=${2:-300}
repeats=${3:-3}
pelicor=$build/src/cli/pelicor
generator=$build/bench/generator/gen_trace
[ -x "$pelicor" ] && [ -x "$generator" ] || { echo "build $build first (release preset)" >&2; exit 1; }
work=$(mktemp -d)
server=$work/sshd
trap '"$here/../scripts/sftp/sshd.sh" stop "$server"; rm -rf "$work"' EXIT
"$here/../scripts/sftp/sshd.sh" start "$server"

port=$(cat "$server/port")
served=$(readlink -f "$server")/root  # sshd runs as nobody: not through our private folder
trace=$served/bench.trc
"$generator" "$trace" "$megabytes" 1 19c >/dev/null
cat "$trace" >/dev/null  # into the page cache
bytes=$(stat -c %s "$trace")
echo "[127.0.0.1]:$port $(cut -d' ' -f1,2 "$server/host_key.pub")" >"$work/known_hosts"
remote=(--host "127.0.0.1:$port" --user "$(cat "$server/user")" --udump "$served"
  --identity "$server/id_client" --known-hosts "$work/known_hosts")

# best_of NAME COMMAND...: the best MB/s of REPEATS runs.
best_of() {
  local name=$1 best="" start end seconds
  shift
  for _ in $(seq "$repeats"); do
    start=$(date +%s.%N)
    "$@" >/dev/null
    end=$(date +%s.%N)
    seconds=$(awk -v a="$start" -v b="$end" 'BEGIN { print b - a }')
    if [ -z "$best" ] || awk "BEGIN{exit !($seconds < $best)}"; then best=$seconds; fi
  done
  awk -v n="$name" -v b="$bytes" -v s="$best" \
    'BEGIN { printf "%-34s %7.0f MB/s  %6.2f s\n", n, b / 1048576 / s, s }'
}

echo "trace: $((bytes / 1048576)) MB (19c layout), best of $repeats"
best_of "report, local file" "$pelicor" report "$trace"
best_of "report, streamed over SFTP" "$pelicor" sftp report bench.trc "${remote[@]}"
mkdir "$work/copy"
best_of "get over SFTP (copy only)" "$pelicor" sftp get bench.trc "${remote[@]}" -o "$work/copy"
