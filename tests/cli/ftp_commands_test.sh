#!/usr/bin/env bash
# The pelicor ftp commands against proftpd on 127.0.0.1 (the ctest fixture ftp_servers, found
# through PELICOR_FTP_STATE): output bytes, exit codes, messages.
# Usage: ftp_commands_test.sh PELICOR
set -u
pelicor=$1
state=${PELICOR_FTP_STATE:?run through ctest: the fixture ftp_servers sets PELICOR_FTP_STATE}
. "$(dirname "$0")/check.sh"

host=127.0.0.1:$(cat "$state/proftpd.port")
served=$state/root
printf '%s\n' "$(cat "$state/password")" >"$work/password"
at() {  # at UDUMP: the connection options, password from the file
  echo --host "$host" --user "$(cat "$state/user")" --udump "$1" --password-file "$work/password"
}

check "list names" "$(printf 'no_final_lf.trc\nrepeated_9i.trc\nsample_9i.trc')" \
  "$("$pelicor" ftp list $(at traces) | sort)"
"$pelicor" ftp list $(at traces) --long --pattern 's*' -o "$work/list.txt"
check "long listing to a file, LF line ends" "1 4729 sample_9i.trc" \
  "$(awk '{print NR, $5, $9}' "$work/list.txt" | tr -d '\r')"

check "find one of three by the padded pid" "55_ora_00055.trc 5555" \
  "$("$pelicor" ftp find 55 $(at lookup) 2>&1)"
check "find two without the padded pid, exit 1" \
  "pelicor: FTP did not find a marched trace file for the session! 1" \
  "$("$pelicor" ftp find 12 $(at lookup) 2>&1) $?"

mkdir "$work/out"
"$pelicor" ftp get repeated_9i.trc $(at traces) -o "$work/out"
same "get copies the bytes" "$served/traces/repeated_9i.trc" "$work/out/repeated_9i.trc"
check "get a missing file" "pelicor: FTP failed to open data stream connection! 1" \
  "$("$pelicor" ftp get missing.trc $(at traces) -o "$work/out" 2>&1) $?"
check "and leaves nothing" "repeated_9i.trc" "$(ls "$work/out")"

# Streamed documents and reports equal those of the local file.
for job in "xml" "xml --aggregate --sort exe,fch --key cpu" "xml --skip-waits --top-level" \
  "report --sort prs"; do
  "$pelicor" ftp $job repeated_9i.trc $(at traces) >"$work/remote"
  "$pelicor" $job "$served/traces/repeated_9i.trc" >"$work/local"
  same "$job as from the local file" "$work/local" "$work/remote"
done

# The password: a file, the environment, the command line; none, or a wrong one.
login="--host $host --user $(cat "$state/user") --udump lookup"
check "password from the environment" "4711_ora.trc 4711" \
  "$(PELICOR_FTP_PASSWORD=$(cat "$state/password") "$pelicor" ftp find 4711 $login 2>&1)"
check "password on the command line" "4711_ora.trc 4711" \
  "$("$pelicor" ftp find 4711 $login --password "$(cat "$state/password")" 2>&1)"
check "no password" "pelicor: no FTP password: give --password-file FILE or set PELICOR_FTP_PASSWORD" \
  "$(env -u PELICOR_FTP_PASSWORD "$pelicor" ftp find 4711 $login 2>&1)"
# The message every host knows, then the client's own reason.
logon="pelicor: FTP failed to logon with the given info! Check ftp hostname/username/password."
check "a wrong password" \
  "$logon ($host: Server rejects userid/passwd (530 Login incorrect.))" \
  "$("$pelicor" ftp find 4711 $login --password wrong 2>&1)"
check "an unknown host" "$logon (no-such-host.invalid: Can not resolve host adress)" \
  "$("$pelicor" ftp find 4711 --host no-such-host.invalid --user u --udump d --password p 2>&1)"
check "a missing trace directory" \
  "pelicor: FTP failed to change to trace directory! Check FTP qualified trace path. ($host: File action not taken (550 nowhere: No such file or directory))" \
  "$("$pelicor" ftp list $(at nowhere) 2>&1)"
check "active data connections" "sample_9i.trc" "$("$pelicor" ftp list $(at traces) --active -p 's*')"
for timeout in 0 86401; do
  out=$("$pelicor" ftp list $(at traces) --timeout $timeout 2>&1)
  status=$?
  check "--timeout $timeout refused" "--timeout: Value $timeout not in range 1 to 86400 105" \
    "$(echo "$out" | head -1) $status"
done

# The fault server (scripts/ftp/fault_server.py): servers that misbehave.
fault() {  # fault SCENARIO: connection options for one of its ports
  echo --host "127.0.0.1:$(awk -v s="$1" '$1 == s {print $2}' "$state/fault.ports")" \
    --user scott --udump udump --password tiger
}
check "a greeting that never ends, --timeout 1" \
  "$logon ($(fault dribble | cut -d' ' -f2): Host does not send an answer) 1" \
  "$("$pelicor" ftp list $(fault dribble) --timeout 1 2>&1) $?"
for job in "xml" "xml --aggregate" "report"; do
  check "$job of a transfer cut off without its final reply" \
    "pelicor: FTP failed to close Data connection 1" \
    "$("$pelicor" ftp $job ora_1.trc $(fault cut_off) 2>&1 >/dev/null) $?"
done
# One time-out for the whole stalled transfer (it took two, and three for a listing).
start=$SECONDS
out=$("$pelicor" ftp xml ora_1.trc $(fault data_stall) --timeout 1 2>&1 >/dev/null)
status=$?
check "xml of a stalled transfer fails within the time-out" \
  "pelicor: FTP failed to read the data stream of ora_1.trc from $(fault data_stall | cut -d' ' -f2): Connection on data-port failed 1 fast" \
  "$out $status $([ $((SECONDS - start)) -le 3 ] && echo fast)"
mkdir "$work/endless"
check "get stops past --max-size" \
  "pelicor: FTP stopped copying x.trc to $work/endless/x.trc: the server sent more than 5000 bytes (the most allowed) 1" \
  "$("$pelicor" ftp get x.trc $(fault endless_data) --max-size 5000 -o "$work/endless" 2>&1) $?"
"$pelicor" ftp list --help | grep -q -- '--password TEXT.*discouraged'
check "help discourages --password" "0" "$?"

# FTP over TLS against proftpd with mod_tls, whose certificate names "localhost" only.
tls_port=$(cat "$state/proftpd_tls.port")
tls() {  # tls HOST UDUMP: the connection options for the TLS server
  echo --host "$1:$tls_port" --user "$(cat "$state/user")" --udump "$2" --password-file "$work/password"
}
ca="--tls --ca-file $state/tls.pem"
check "list over TLS" "sample_9i.trc" "$("$pelicor" ftp list $(tls localhost traces) $ca -p 's*' 2>&1)"
mkdir "$work/tls"
"$pelicor" ftp get repeated_9i.trc $(tls localhost traces) $ca --active -o "$work/tls"
same "get over TLS, active" "$served/traces/repeated_9i.trc" "$work/tls/repeated_9i.trc"
"$pelicor" ftp xml repeated_9i.trc --aggregate $(tls localhost traces) $ca >"$work/tls.xml"
"$pelicor" xml "$served/traces/repeated_9i.trc" --aggregate >"$work/local.xml"
same "xml over TLS as from the local file" "$work/local.xml" "$work/tls.xml"
out=$("$pelicor" ftp find 4711 $(tls 127.0.0.1 lookup) --tls --insecure 2>"$work/err")
check "--insecure warns and goes on" \
  "4711_ora.trc 4711|pelicor: warning: --insecure: the certificate of 127.0.0.1:$tls_port is not checked; whoever can pose as that server gets the password" \
  "$out|$(cat "$work/err")"
while IFS='|' read -r name to options expected; do
  check "$name, exit 1" "pelicor: $expected 1" \
    "$("$pelicor" ftp list $(tls "$to" traces) $options 2>&1) $?"
done <<CASES
TLS required, not asked|127.0.0.1||FTP failed to logon: 127.0.0.1:$tls_port requires an encrypted connection (FTP over TLS), which is not switched on! Server reply: 550 SSL/TLS required on the control channel
a certificate of an unknown CA|localhost|--tls|FTP failed to secure the connection to localhost:$tls_port: certificate verify failed: self-signed certificate
a wrong host name|127.0.0.1|$ca|FTP failed to secure the connection to 127.0.0.1:$tls_port: certificate verify failed: IP address mismatch
CASES
check "TLS refused by a server without it, exit 1" \
  "pelicor: FTP over TLS refused by $host, so the user name and password were not sent! Server reply: 500 AUTH not understood 1" \
  "$("$pelicor" ftp list $(at traces) --tls 2>&1) $?"
check "--ca-file needs --tls" "--ca-file requires --tls" \
  "$("$pelicor" ftp list $(at traces) --ca-file "$state/tls.pem" 2>&1 | head -1)"

# Downloads take their name only when complete: a failed one leaves nothing and removes
# nothing that was there, a complete one replaces a link rather than writing through it.
mkdir "$work/keep" "$work/keep/empty.trc"
printf 'older\n' >"$work/keep/older.trc"
"$pelicor" ftp get empty.trc $(fault data_drop) -o "$work/keep" >/dev/null 2>&1
check "get onto a directory fails and keeps it" "1 yes" "$? $([ -d "$work/keep/empty.trc" ] && echo yes)"
"$pelicor" ftp get older.trc $(fault data_drop) -o "$work/keep" >/dev/null 2>&1
check "a dropped transfer keeps the older copy" "1 older" "$? $(cat "$work/keep/older.trc")"
check "and leaves no part file" "empty.trc older.trc" "$(ls "$work/keep" | tr '\n' ' ' | sed 's/ $//')"
printf 'victim\n' >"$work/victim"
ln -s ../victim "$work/keep/repeated_9i.trc"
"$pelicor" ftp get repeated_9i.trc $(at traces) -o "$work/keep"
cmp -s "$served/traces/repeated_9i.trc" "$work/keep/repeated_9i.trc"
check "get replaces a link, not its target" "0 victim" "$? $(cat "$work/victim")"

# Interrupted while waiting for a silent server: the scratch folder goes with the process.
mkdir "$work/tmp"
TMPDIR=$work/tmp "$pelicor" ftp xml x.trc $(fault silent) >/dev/null 2>&1 &
pid=$!
for _ in $(seq 100); do [ -n "$(ls "$work/tmp")" ] && break; sleep 0.05; done
scratch=$(ls "$work/tmp")
kill -TERM "$pid"
wait "$pid"
check "SIGTERM ends the command and removes its scratch folder" "143 pelicor- " \
  "$? ${scratch%%[0-9]*} $(ls "$work/tmp")"

finish
