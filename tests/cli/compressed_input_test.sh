#!/usr/bin/env bash
# Every command that reads a local trace reads it compressed (.gz .bz2 .xz .zst), inside a .zip,
# and from standard input ("-"), with exactly the plain file's output; a damaged archive gives
# a message naming it and no output at all.
# Usage: compressed_input_test.sh PELICOR TRACE
set -uo pipefail
pelicor=$1
trace=$2
. "$(dirname "$0")/check.sh"
for tool in gzip bzip2 xz zstd zip; do
  command -v "$tool" >/dev/null || { echo "skip: $tool is not installed"; exit 77; }
done

name=$(basename "$trace")
cp "$trace" "$work/$name"
(cd "$work" && gzip -k "$name" && bzip2 -k "$name" && xz -k "$name" && zstd -q "$name" &&
  zip -q traces.zip "$name")

# Each command's output for the trace file $1, in one text; with a second argument, the trace
# is given on standard input.
outputs() {
  local file=$1 input=$1
  [ $# -gt 1 ] && input=-
  for command in "report" "xml --aggregate" "xml --calls" "profile --top 3"; do
    # shellcheck disable=SC2086
    "$pelicor" $command "$input" <"$file" 2>&1
    echo "== exit $?"
  done
  "$pelicor" html "$input" -o "$work/page.html" <"$file" 2>&1 && cat "$work/page.html"
  echo "== exit $?"
}

expected=$(outputs "$work/$name")
check "gzip" "$expected" "$(outputs "$work/$name.gz")"
check "standard input" "$expected" "$(outputs "$work/$name" stdin)"
check "compressed standard input" "$expected" "$(outputs "$work/$name.zst" stdin)"
# The other forms with the aggregated document and the profile.
for packed in "$name.bz2" "$name.xz" "$name.zst" traces.zip; do
  check "$packed" "$("$pelicor" xml --aggregate "$work/$name"; "$pelicor" profile "$work/$name")" \
    "$("$pelicor" xml --aggregate "$work/$packed"; "$pelicor" profile "$work/$packed")"
done

head -c 300 "$work/$name.gz" >"$work/cut.trc.gz"
message=$("$pelicor" xml --aggregate "$work/cut.trc.gz" 2>&1 >"$work/cut.out")
check "damaged: exit status" 1 $?
check "damaged: message" "pelicor: cannot read $work/cut.trc.gz: truncated gzip input" "$message"
check "damaged: no output" 0 "$(wc -c <"$work/cut.out")"
"$pelicor" html "$work/cut.trc.gz" -o "$work/cut.html" 2>/dev/null
check "damaged: no page" "no page" "$([ -e "$work/cut.html" ] && echo page || echo no page)"
finish
