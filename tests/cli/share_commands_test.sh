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

# Entries that are not regular files: passed over by find, refused by get and xml, never waited
# on. A 5 GiB sparse file shows its full size in find; the listing keeps its low 32 bits.
hostile=$work/hostile
mkdir "$hostile" "$hostile/dir_5555.trc"
mkfifo "$hostile/fifo_5555.trc"
ln -s nowhere "$hostile/gone_5555.trc"
truncate -s 5G "$hostile/orcl_ora_5555.trc"
check "find passes over what is not a file" "orcl_ora_5555.trc 5368709120" \
  "$("$pelicor" share find "$hostile" 5555 2>&1)"
check "the listing keeps the low 32 bits" "1073741824" \
  "$("$pelicor" share list --long "$hostile" -p 'orcl*' | awk '{print $1}')"
check "get of a FIFO" "pelicor: cannot copy $hostile/fifo_5555.trc to $work/out/fifo_5555.trc: not a regular file" \
  "$(timeout 10 "$pelicor" share get "$hostile" fifo_5555.trc -o "$work/out" 2>&1)"
check "get of a directory" "pelicor: cannot copy $hostile/dir_5555.trc to $work/out/dir_5555.trc: Is a directory" \
  "$("$pelicor" share get "$hostile" dir_5555.trc -o "$work/out" 2>&1)"
check "xml of a FIFO names it" \
  "pelicor: Trace parser failed to open parse file! $hostile/fifo_5555.trc: not a regular file" \
  "$(timeout 10 "$pelicor" share xml "$hostile" fifo_5555.trc 2>&1)"
check "xml of a missing file says why" \
  "pelicor: Trace parser failed to open parse file! missing.trc: No such file or directory" \
  "$("$pelicor" xml missing.trc 2>&1)"
check "and left nothing behind" "orcl_ora_1234.trc" "$(ls "$work/out")"

# A full disk: standard output on /dev/full, files past the file-size limit. Each fails with
# the reason, and a file written before stays as it was, with no part file beside it.
for kind in report xml "xml --aggregate"; do
  check "$kind to a full standard output" \
    "pelicor: cannot write to standard output: No space left on device 1" \
    "$("$pelicor" $kind "$udump/sample_9i.trc" 2>&1 >/dev/full) $?"
done
full() {  # full COMMAND...: runs the command where no file may grow past 1 KiB
  (trap '' XFSZ; ulimit -f 1; exec "$@")
}
mkdir "$work/full"
printf 'previous\n' >"$work/full/doc.xml"
printf 'previous\n' >"$work/full/sample_9i.trc"
check "xml -o on a full disk" "pelicor: cannot write $work/full/doc.xml: File too large 1" \
  "$(full "$pelicor" xml "$udump/sample_9i.trc" -o "$work/full/doc.xml" 2>&1) $?"
# A document of many buffers is written by the sink's writer thread: its failure counts as well.
for _ in $(seq 200); do cat "$udump/sample_9i.trc"; done >"$work/large.trc"
check "a large xml -o on a full disk" "pelicor: cannot write $work/full/doc.xml: File too large 1" \
  "$(full "$pelicor" xml "$work/large.trc" -o "$work/full/doc.xml" 2>&1) $?"
check "get on a full disk" \
  "pelicor: cannot copy $udump/sample_9i.trc to $work/full/sample_9i.trc: File too large 1" \
  "$(full "$pelicor" share get "$udump" sample_9i.trc -o "$work/full" 2>&1) $?"
check "keep what was there" "previous previous doc.xml sample_9i.trc" \
  "$(cat "$work/full/doc.xml" "$work/full/sample_9i.trc" | tr '\n' ' ')$(ls "$work/full" | tr '\n' ' ' | sed 's/ $//')"

finish
