#!/usr/bin/env bash
# The pelicor share commands against a real directory: output bytes, exit codes, messages.
# Usage: share_commands_test.sh PELICOR
set -u
pelicor=$1
. "$(dirname "$0")/check.sh"

udump=$work/udump
mkdir "$udump"
printf 'x\n' >"$udump/ORA00777.TRC"
printf 'abc\n' >"$udump/orcl_ora_00123.trc"
printf 'abcdefgh\n' >"$udump/orcl_ora_1234.trc"
printf 'n\n' >"$udump/notes.txt"
touch -d '2004-07-04 13:05' "$udump"/*

check "list names" "$(printf 'ORA00777.TRC\norcl_ora_00123.trc\norcl_ora_1234.trc')" \
  "$("$pelicor" share list "$udump")"
check "list long" "$(printf '           2 07/04/2004 13:05 ORA00777.TRC\n           4 07/04/2004 13:05 orcl_ora_00123.trc\n           9 07/04/2004 13:05 orcl_ora_1234.trc')" \
  "$(TZ=UTC "$pelicor" share list --long "$udump")"
"$pelicor" share list "$udump" --pattern '*.txt' -o "$work/list.txt"
check "list to a file" "notes.txt" "$(cat "$work/list.txt")"

check "find one of several by the padded pid" "orcl_ora_00123.trc 4" \
  "$("$pelicor" share find "$udump" 123 2>&1)"
check "find a pid that no candidate holds padded" \
  "pelicor: NFS did not find a matched trace file for the session!" \
  "$("$pelicor" share find "$udump" 12 2>&1)"
check "find the only candidate as it is" "ORA00777.TRC 2" "$("$pelicor" share find "$udump" 777 2>&1)"
"$pelicor" share find "$udump" 99999 >/dev/null 2>&1
check "find nothing exits 1" "1" "$?"

mkdir "$work/out"
"$pelicor" share get "$udump" orcl_ora_1234.trc -o "$work/out"
check "get copies the bytes" "abcdefgh" "$(cat "$work/out/orcl_ora_1234.trc")"
check "get a missing file names it" \
  "pelicor: cannot copy $udump/missing.trc to $work/out/missing.trc: No such file or directory" \
  "$("$pelicor" share get "$udump" missing.trc -o "$work/out" 2>&1)"
check "list a missing directory" "pelicor: No such file or directory" \
  "$("$pelicor" share list "$work/nowhere" 2>&1)"
cp "$(dirname "$0")/../../examples/sample_9i.trc" "$udump/"
check "report in place equals the local report" "$("$pelicor" report "$udump/sample_9i.trc" --sort exe)" \
  "$("$pelicor" share report "$udump" sample_9i.trc --sort exe)"
check "xml in place equals the local document" "$("$pelicor" xml --aggregate "$udump/sample_9i.trc")" \
  "$("$pelicor" share xml "$udump" sample_9i.trc --aggregate)"
"$pelicor" share list --help | grep -q -- '--pattern'
check "help names the options" "0" "$?"

finish
