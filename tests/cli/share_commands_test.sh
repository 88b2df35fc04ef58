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

# What a session wrote after a point of a 9i trace: the banner before that point still gives
# the microsecond clock. The same SQL twice under one cursor is one statement with --merge.
printf 'Oracle9i Enterprise Edition Release 9.2.0.4.0 - Production\n' >"$udump/session.trc"
offset=$(wc -c <"$udump/session.trc")
for tim in 1083929217641977 1083929217741977; do
  printf '%s\n' '=====================' \
    "PARSING IN CURSOR #1 len=18 dep=0 uid=5 oct=3 lid=5 tim=$tim hv=1 ad='6b'" \
    'select 1 from dual' 'END OF STMT' \
    "EXEC #1:c=2500000,e=2600000,p=0,cr=0,cu=0,mis=0,r=0,dep=0,og=4,tim=$tim" >>"$udump/session.trc"
done
check "aggregate from an offset" \
  "$(printf '%s\n' '<EXEC count="1" cpu="2.50" elapsed="2.60" disk="0" query="0" current="0" rows="0"></EXEC>' \
    '<EXEC count="1" cpu="2.50" elapsed="2.60" disk="0" query="0" current="0" rows="0"></EXEC>')" \
  "$("$pelicor" xml --aggregate --offset "$offset" "$udump/session.trc" | grep '^<EXEC')"
check "merged aggregate from an offset, in place" \
  '<EXEC count="2" cpu="5.00" elapsed="5.20" disk="0" query="0" current="0" rows="0"></EXEC>' \
  "$("$pelicor" share xml "$udump" session.trc --aggregate --merge --offset "$offset" | grep '^<EXEC')"
check "report from an offset" \
  "Execute      2      5.00       5.20          0          0          0           0" \
  "$("$pelicor" report --merge --offset "$offset" "$udump/session.trc" | grep '^Execute')"
"$pelicor" share list --help | grep -q -- '--pattern'
check "help names the options" "0" "$?"

finish
