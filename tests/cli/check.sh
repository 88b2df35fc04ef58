# Sourced by the command tests: a scratch directory $work, `check NAME EXPECTED ACTUAL`,
# `same NAME FILE1 FILE2` (the two files hold the same bytes), and `finish`, which reports and
# sets the exit status.
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
passed=0
failed=0

check() {
  if [ "$2" == "$3" ]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    printf 'FAIL %s\n--- expected\n%s\n--- actual\n%s\n' "$1" "$2" "$3"
  fi
}

same() {
  cmp -s "$2" "$3"
  check "$1" 0 $?
}

finish() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
}
