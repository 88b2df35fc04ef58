#!/usr/bin/env bash
# Starts and stops the OpenSSH server the SFTP tests talk to, on 127.0.0.1 only, with its own
# host key, configuration and account: no system service, user or file is touched.
#
#   scripts/sftp/sshd.sh start LINK   creates a state folder under /tmp, starts sshd and two
#                                     faulty proxies, and points the symbolic link LINK at it
#   scripts/sftp/sshd.sh stop LINK    stops both, removes the folder and LINK
#
# The folder holds: user, password, port (sshd), cut.port and stall.port (the proxies),
# host_key.pub and host_key.fingerprint ("SHA256:..."), id_client
# (the authorised key, no passphrase), id_other (a key the server does not know), root/ (the
# served tree) and the servers' pid and log files.
#
# The account exists only for this sshd: libnss_wrapper (LD_PRELOAD) answers its user and
# group look-ups from passwd/group files in the folder, so the password login works against a
# hash we made, without PAM (UsePAM no) and without a system user. sshd runs as the user that
# owns the account's uid: when started by root it drops to "nobody" (setpriv), which also spares
# it the privilege separation directory only a root sshd needs. SFTP is served in-process
# (internal-sftp), so the account needs no shell.
#
# The proxies (cut_proxy.py) forward to sshd and, after a number of bytes from the server, drop
# the connection or fall silent: a connection lost, or a server gone quiet, mid-transfer.
# Every server dies on its own after a while, so an interrupted run leaves nothing behind.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
python=/usr/bin/python3
lifetime=${PELICOR_SFTP_LIFETIME:-1800}
user=oracle
password=trace-over-ssh
nss_wrapper=/usr/lib/x86_64-linux-gnu/libnss_wrapper.so

die() { echo "sshd: $*" >&2; exit 1; }
# shellcheck source=../lib/test-servers.sh
. "$here/../lib/test-servers.sh"

# Waits until something accepts connections on 127.0.0.1:PORT.
wait_for_port() {
  for _ in $(seq 1 100); do
    "$python" -c 'import socket,sys; socket.create_connection(("127.0.0.1", int(sys.argv[1])), 1)' \
      "$1" 2>/dev/null && return 0
    sleep 0.1
  done
  die "nothing listens on port $1 after 10 s"
}

# traces/: whole traces to stream and parse. lookup/: candidates of a session's trace file,
# each of its own size (the lookup matches *PID*.trc).
make_tree() {
  local root=$1/root sample=$here/../../examples/sample_9i.trc
  mkdir -p "$root/traces" "$root/lookup" "$root/empty"
  cp "$sample" "$root/traces/sample_9i.trc"
  for _ in $(seq 1 300); do cat "$sample"; done >"$root/traces/repeated_9i.trc"
  printf 'line one\nline two\r\nno line feed' >"$root/traces/no_final_lf.trc"
  "$python" - "$root/lookup" <<'PY'
import sys
sizes = {"orcl_ora_4711.trc": 4711, "orcl_ora_12.trc": 120, "orcl_ora_123.trc": 1230,
         "orcl_ora_55.trc": 550, "orcl_ora_551.trc": 5510, "orcl_ora_00055.trc": 5555,
         "a_00077.trc": 77, "b_00077.trc": 770, "orcl_ora_4711.trm": 9}
for name, size in sizes.items():
    with open(sys.argv[1] + "/" + name, "w") as f:
        f.write(("%s\n" % name * (size // len(name) + 1))[:size])
PY
}

make_keys() {
  local dir=$1
  ssh-keygen -q -t ed25519 -N '' -C 'pelicor test host' -f "$dir/host_key"
  ssh-keygen -l -E sha256 -f "$dir/host_key.pub" | cut -d' ' -f2 >"$dir/host_key.fingerprint"
  ssh-keygen -q -t ed25519 -N '' -C 'pelicor test client' -f "$dir/id_client"
  ssh-keygen -q -t ed25519 -N '' -C 'pelicor unknown client' -f "$dir/id_other"
  cp "$dir/id_client.pub" "$dir/authorized_keys"
}

# The account for libnss_wrapper: name, hash, uid and gid of the user sshd runs as.
make_account() {
  local dir=$1 uid=$2 gid=$3 hash
  hash=$(openssl passwd -6 "$password")
  {
    echo "$user:$hash:$uid:$gid:pelicor test:$dir/root:/bin/false"
    echo "sshd:x:65534:65534:privilege separation:/nonexistent:/usr/sbin/nologin"
  } >"$dir/passwd"
  echo "oinstall:x:$gid:" >"$dir/group"
  echo "$user" >"$dir/user"
  echo "$password" >"$dir/password"
}

write_config() {
  local dir=$1 port=$2
  cat >"$dir/sshd_config" <<CONF
ListenAddress 127.0.0.1
Port $port
HostKey $dir/host_key
PidFile $dir/sshd.pid
AuthorizedKeysFile $dir/authorized_keys
StrictModes no
UsePAM no
PasswordAuthentication yes
KbdInteractiveAuthentication no
PubkeyAuthentication yes
PermitRootLogin no
AllowUsers $user
MaxAuthTries 10
MaxStartups 40
LoginGraceTime 30
ClientAliveInterval 0
UseDNS no
PrintMotd no
LogLevel VERBOSE
Subsystem sftp internal-sftp
CONF
}

start() {
  local link=$1 dir port uid gid runner=()
  [ -e "$link" ] && stop "$link"
  dir=$(mktemp -d /tmp/pelicor-sshd.XXXXXX)
  ln -s "$dir" "$link"
  trap 'stop "$link"' ERR EXIT
  [ -r "$nss_wrapper" ] || die "$nss_wrapper is missing (apt-get install libnss-wrapper)"
  uid=$(id -u)
  gid=$(id -g)
  if [ "$uid" -eq 0 ]; then
    uid=65534
    gid=65534
    runner=(setpriv --reuid="$uid" --regid="$gid" --clear-groups)
  fi
  make_tree "$dir"
  make_keys "$dir"
  make_account "$dir" "$uid" "$gid"
  port=$(free_port)
  write_config "$dir" "$port"
  # sshd insists that its keys and configuration belong to it and that no one else may write
  # there; the tests (root, or this user) write into root/ all the same.
  chown -R "$uid:$gid" "$dir"
  chmod 0755 "$dir"
  chmod 0600 "$dir/host_key"
  LD_PRELOAD=$nss_wrapper NSS_WRAPPER_PASSWD=$dir/passwd NSS_WRAPPER_GROUP=$dir/group \
    timeout "$lifetime" "${runner[@]}" /usr/sbin/sshd -D -e -f "$dir/sshd_config" -p "$port" \
    >>"$dir/sshd.log" 2>&1 &
  echo $! >"$dir/sshd.wrapper.pid"
  wait_for_port "$port"
  echo "$port" >"$dir/port"
  for mode in cut stall; do
    timeout "$lifetime" "$python" "$here/cut_proxy.py" "$dir" "$port" "$mode" \
      >>"$dir/$mode.log" 2>&1 &
    echo $! >"$dir/$mode.wrapper.pid"
    wait_for "$dir/$mode.port"
  done
  trap - ERR EXIT
}

stop() {
  local link=$1 dir
  [ -L "$link" ] || return 0
  dir=$(readlink "$link")
  case "$dir" in /tmp/pelicor-sshd.*) ;; *) die "refusing to remove $dir" ;; esac
  for f in "$dir"/*.wrapper.pid; do stop_one "$f"; done
  if [ -n "${PELICOR_SFTP_KEEP_LOGS:-}" ]; then
    mkdir -p "$PELICOR_SFTP_KEEP_LOGS"
    cp "$dir"/*.log "$PELICOR_SFTP_KEEP_LOGS"/ 2>/dev/null || true
  fi
  rm -rf "$dir" "$link"
}

case "${1:-}" in
  start) start "${2:?link}" ;;
  stop) stop "${2:?link}" ;;
  *) die "usage: $0 start|stop LINK" ;;
esac
