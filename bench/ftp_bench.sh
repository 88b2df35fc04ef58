#!/usr/bin/env bash
# FTP download figures on loopback: a generated trace served by proftpd (scripts/ftp/servers.sh),
# fetched by FtpGetTraceFile through the C ABI (in ASCII mode, as that method fetches) and by
# `pelicor ftp get` (binary), against `cp` of the same file; then `pelicor ftp get` over plain
# FTP and over FTP over TLS from vsftpd (proftpd where vsftpd cannot be had), the same server
# program and configuration but for TLS. Prints MB/s of each and its ratio to cp; judges
# nothing.
# Usage: bench/ftp_bench.sh [BUILD_DIR=build/release] [MEGABYTES=300] [REPEATS=3]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
megabytes=${2:-300}
repeats=${3:-3}
pelicor=$build/src/cli/pelicor
abi=$build/bench/ftp_get_bench
generator=$build/bench/generator/gen_trace
for tool in "$pelicor" "$abi" "$generator"; do
  [ -x "$tool" ] || { echo "build $build first (release preset): no $tool" >&2; exit 1; }
done
work=$(mktemp -d)
state=$work/servers
trap 'scripts/ftp/servers.sh stop "$state" >/dev/null 2>&1 || true; rm -rf "$work"' EXIT
scripts/ftp/servers.sh start "$state" >/dev/null
trace=$state/root/traces/bench.trc
"$generator" "$trace" "$megabytes" 1 9i >/dev/null
chmod a+r "$trace"
cat "$trace" >/dev/null  # into the page cache
bytes=$(stat -c %s "$trace")
host=127.0.0.1:$(cat "$state/proftpd.port")
user=$(cat "$state/user")
password=$(cat "$state/password")
mkdir -p "$work/out"

seconds_of() {  # runs the command, prints its wall-clock seconds
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null
  end=$(date +%s.%N)
  awk -v s="$start" -v e="$end" 'BEGIN { printf "%.3f\n", e - s }'
}
best_of() {  # best_of COMMAND...: the fewest seconds of REPEATS runs
  local best="" s
  for _ in $(seq "$repeats"); do
    rm -f "$work/out/bench.trc"
    s=$("$@")
    if [ -z "$best" ] || awk "BEGIN{exit !($s < $best)}"; then best=$s; fi
  done
  echo "$best"
}
abi_seconds() {
  "$abi" "$host" "$user" "$password" traces "$work/out" bench.trc | awk '$2 == "OK" {print $1}'
}
cli_seconds() {
  PELICOR_FTP_PASSWORD=$password seconds_of "$pelicor" ftp get bench.trc --host "$host" \
    --user "$user" --udump traces -o "$work/out"
}
# get_seconds SERVER [OPTIONS...]: pelicor ftp get from one of the test servers, by the name its
# certificate has; SERVER's own account when it has one (vsftpd's anonymous one).
get_seconds() {
  local server=$1 account=$state/user secret=$state/password
  shift
  [ -f "$state/$server.user" ] && account=$state/$server.user secret=$state/$server.password
  PELICOR_FTP_PASSWORD=$(cat "$secret") seconds_of "$pelicor" ftp get bench.trc \
    --host "localhost:$(cat "$state/$server.port")" --user "$(cat "$account")" --udump traces \
    -o "$work/out" "$@"
}

curl_seconds() {  # another client, for what the server itself can give (ASCII: --use-ascii)
  seconds_of curl -s "$@" "ftp://$user:$password@$host/traces/bench.trc" -o "$work/out/bench.trc"
}

cp_s=$(best_of seconds_of cp "$trace" "$work/out/bench.trc")
abi_s=$(best_of abi_seconds)
cli_s=$(best_of cli_seconds)
report() {  # report NAME SECONDS
  awk -v n="$1" -v b="$bytes" -v s="$2" -v c="$cp_s" 'BEGIN {
    printf "%-40s %8.1f MB/s  %7.2f s  %5.2fx the time of cp\n", n, b / 1048576 / s, s, s / c }'
}
echo "$((bytes >> 20)) MB trace from proftpd on 127.0.0.1, best of $repeats:"
report "cp" "$cp_s"
report "FtpGetTraceFile (C ABI, ASCII mode)" "$abi_s"
report "pelicor ftp get (binary)" "$cli_s"
tls_server=vsftpd
[ -f "$state/vsftpd_tls.port" ] || tls_server=proftpd
report "pelicor ftp get, $tls_server, plain FTP" "$(best_of get_seconds "$tls_server")"
report "pelicor ftp get, $tls_server, FTP over TLS" \
  "$(best_of get_seconds "${tls_server}_tls" --tls --ca-file "$state/tls.pem")"
if command -v curl >/dev/null; then
  report "curl, for comparison (ASCII mode)" "$(best_of curl_seconds --use-ascii)"
  report "curl, for comparison (binary)" "$(best_of curl_seconds)"
fi
