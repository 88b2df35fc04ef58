#!/usr/bin/env bash
# The pelicor db commands against the stand-in client library: the trace read through the
# package or the view must give what the local file gives; names, refusals and messages.
# Usage: db_commands_test.sh PELICOR FAKE_OCI_LIBRARY
set -u
pelicor=$1
. "$(dirname "$0")/../cli/check.sh"

export PELICOR_OCI_LIBRARY=$2
export PELICOR_FAKE_OCI_SCENARIO=$work/scenario.txt
folder=$work/udump
mkdir "$folder" "$work/out"
cp "$(dirname "$0")/../../examples/sample_9i.trc" "$folder/orcl_ora_4242.trc"
printf 'tiger\n' >"$work/password"
server() {
  cat >"$PELICOR_FAKE_OCI_SCENARIO" <<SCENARIO
tns_banner=TNS for Linux: Version 19.0.0.0.0 - Production
plsql_banner=PL/SQL Release 19.0.0.0.0 - Production
instance=orcl
user_dump_dest=/u01/app/oracle/diag/rdbms/orcl/orcl/trace
trace_folder=$folder
user=scott
password=tiger
connect=orcl
spid=17,4711,4242
tracefile=17,4711,/u01/app/oracle/diag/rdbms/orcl/orcl/trace/orcl_ora_4242.trc
transcript=$work/transcript
$1
SCENARIO
}
db() { "$pelicor" db "$@" --connect scott@orcl --password-file "$work/password" 2>&1; }

server ""
check "find through the package" "orcl_ora_4242.trc" "$(db find --sid 17 --serial 4711)"
grep -q 'validate_file' "$work/transcript"
check "the package was asked" "0" "$?"
server "package=missing"
check "find through the view when the package is missing" "orcl_ora_4242.trc" \
  "$(db find --sid 17 --serial 4711)"
check "the package asked for and missing" \
  "pelicor: UTL did not find a valid Vandel file IO package!  Or the package is not accessible to the user." \
  "$(db find --sid 17 --serial 4711 --via package)"
check "a session the server does not know" "pelicor: No trace file found for session 17,1." \
  "$(db find --sid 17 --serial 1 --via diag)"

for via in package diag; do
  server ""
  db get --sid 17 --serial 4711 --via $via -o "$work/out" >/dev/null
  check "get via $via copies the lines" "$(cat "$folder/orcl_ora_4242.trc")" \
    "$(cat "$work/out/orcl_ora_4242.trc")"
  rm -f "$work/out/orcl_ora_4242.trc"
  check "report via $via equals the local report" \
    "$("$pelicor" report "$folder/orcl_ora_4242.trc" --sort exe)" \
    "$(db report --file orcl_ora_4242.trc --via $via --sort exe)"
  check "xml via $via equals the local document" \
    "$("$pelicor" xml --aggregate "$folder/orcl_ora_4242.trc")" \
    "$(db xml --file orcl_ora_4242.trc --via $via --aggregate)"
done

check "a file the package cannot read" \
  "pelicor: the trace package cannot read missing.trc in /u01/app/oracle/diag/rdbms/orcl/orcl/trace" \
  "$(db report --file missing.trc --via package)"
check "a file the view does not show" "pelicor: cannot read missing.trc" \
  "$(db get --file missing.trc --via diag -o "$work/out")"
check "get refuses a name that leaves the directory" \
  "pelicor: refusing to write the trace file name ../x.trc" \
  "$(db get --file ../x.trc -o "$work/out")"
check "neither a file nor a session" "pelicor: give --file NAME, or --sid N and --serial N" \
  "$(db find)"
printf 'lion\n' >"$work/password"
check "a wrong password is the server's message" \
  "pelicor: ORA-01017: invalid username/password; logon denied" "$(db find --sid 17 --serial 4711)"
rm "$work/password"
check "no password" "pelicor: no database password: give --password-file FILE or set PELICOR_DB_PASSWORD" \
  "$("$pelicor" db find --connect scott@orcl --sid 17 --serial 4711 2>&1)"
check "no client library" \
  "pelicor: Could not load the Oracle client library $work/none.so: $work/none.so: cannot open shared object file: No such file or directory" \
  "$(PELICOR_OCI_LIBRARY=$work/none.so PELICOR_DB_PASSWORD=tiger "$pelicor" db find --connect scott@orcl --file x.trc 2>&1)"

finish
