# The process helpers of the test-server scripts (scripts/ftp/servers.sh, scripts/sftp/sshd.sh).
# Sourced, not run: the caller defines `python` (an interpreter path) and `die MESSAGE`.

# A port on 127.0.0.1 that nothing listens on right now.
free_port() {
  "$python" -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'
}

# Waits until FILE exists and is not empty (a server writes its port once it listens).
wait_for() {
  for _ in $(seq 1 100); do [ -s "$1" ] && return 0; sleep 0.1; done
  die "no $1 after 10 s"
}

# True while the process runs; a zombie (which an init that does not reap leaves) is gone.
alive() {
  [ -r "/proc/$1/stat" ] || return 1
  local state
  state=$(sed -E 's/^.*\) ([A-Za-z]).*$/\1/' "/proc/$1/stat" 2>/dev/null) || return 1
  [ -n "$state" ] && [ "$state" != Z ] && [ "$state" != X ]
}

# Stops the server whose timeout wrapper has its pid in FILE; the wrapper passes the signal on.
stop_one() {
  local file=$1 pid
  [ -f "$file" ] || return 0
  pid=$(cat "$file")
  kill "$pid" 2>/dev/null || true
  for _ in $(seq 1 50); do alive "$pid" || return 0; sleep 0.1; done
  kill -9 "$pid" 2>/dev/null || true
}
