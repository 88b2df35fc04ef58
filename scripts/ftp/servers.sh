#!/usr/bin/env bash
# Starts and stops the FTP servers the transport tests talk to, all on 127.0.0.1 only:
# proftpd (a real daemon), pyftpdlib (a second real server with other habits), vsftpd (a
# third, when its binary can be had), the fault-injecting server of fault_server.py, and for
# FTP over TLS a second proftpd (mod_tls) and a second vsftpd that both require TLS.
#
#   scripts/ftp/servers.sh start LINK   creates a state folder under /tmp, starts the servers,
#                                       and points the symbolic link LINK at the folder
#   scripts/ftp/servers.sh stop LINK    stops every server, removes the folder and LINK
#   scripts/ftp/servers.sh fetch        unpacks vsftpd into the cache folder (see below)
#
# The folder holds: user, password (the account on proftpd and pyftpdlib), proftpd.port,
# pyftpdlib.port, vsftpd.port with vsftpd.user and vsftpd.password (its anonymous account),
# fault.ports ("scenario port" lines), root/ (the served tree, the account's home),
# transcripts/ (what the fault server received) and the servers' pid and log files. The TLS
# servers: proftpd_tls.port (the account of proftpd), vsftpd_tls.port with vsftpd_tls.user and
# vsftpd_tls.password, and tls.pem, the self-signed certificate both present (for
# "localhost" only, so that 127.0.0.1 is a wrong host name for it).
#
# vsftpd conflicts with proftpd-basic in apt (installing one removes the other), so it is
# never installed: its package is downloaded and unpacked into $PELICOR_CACHE (default
# ~/.cache/pelicor). Without it, its tests skip.
# PELICOR_FTP_KEEP_LOGS=DIR copies the logs there before the folder goes.
# Every server also dies on its own after a while, so an interrupted run leaves nothing behind.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
python=/usr/bin/python3
lifetime=${PELICOR_FTP_LIFETIME:-1800}
cache=${PELICOR_CACHE:-${HOME:-/tmp}/.cache/pelicor}
vsftpd=$cache/vsftpd/usr/sbin/vsftpd
user=pelicor
password=trace-fetch

die() { echo "ftp servers: $*" >&2; exit 1; }
# shellcheck source=../lib/test-servers.sh
. "$here/../lib/test-servers.sh"

make_tree() {
  local root=$1/root
  mkdir -p "$root/udump" "$root/empty"
  printf 'first line\nsecond line\r\nthird line without end' >"$root/udump/small.txt"
  "$python" - "$root/udump" <<'PY'
import sys, random
rnd = random.Random(4711)
with open(sys.argv[1] + "/big.bin", "wb") as f:
    f.write(bytes(rnd.getrandbits(8) for _ in range(300000)))
with open(sys.argv[1] + "/ora_1234.trc", "w") as f:
    for i in range(2000):
        f.write("PARSING IN CURSOR #%d len=20 dep=0 uid=5 oct=3 lid=5 tim=%d\n" % (i, 1000 + i))
PY
  : >"$root/udump/ora_1234_extra.trc"
  make_trace_tree "$root"
  chmod -R a+rX "$root"
}

# traces/: whole traces to stream and parse. lookup/: candidates of a session's trace file,
# each of its own size (names that start with the session, as the lookup first lists
# SESSION*.trc, and one named as Oracle names them, orcl_ora_4242.trc).
make_trace_tree() {
  local root=$1 sample=$here/../../examples/sample_9i.trc
  mkdir -p "$root/traces" "$root/lookup"
  cp "$sample" "$root/traces/sample_9i.trc"
  for _ in $(seq 1 300); do cat "$sample"; done >"$root/traces/repeated_9i.trc"
  printf 'line one\nline two\r\nno line feed' >"$root/traces/no_final_lf.trc"
  "$python" - "$root/lookup" <<'PY'
import sys
sizes = {"orcl_ora_4242.trc": 4242, "4711_ora.trc": 4711, "12_ora.trc": 120, "123_ora.trc": 1230, "55_ora.trc": 550,
         "551_ora.trc": 5510, "55_ora_00055.trc": 5555, "00077_a.trc": 77, "00077_b.trc": 770}
for name, size in sizes.items():
    with open(sys.argv[1] + "/" + name, "w") as f:
        f.write(("%s\n" % name * (size // len(name) + 1))[:size])
PY
}

# A key and a self-signed certificate for "localhost", valid for two days.
make_certificate() {
  local dir=$1
  openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost \
    -addext subjectAltName=DNS:localhost -keyout "$dir/tls.key" -out "$dir/tls.pem" 2>/dev/null
  chmod 0600 "$dir/tls.key"
}

make_accounts() {
  local dir=$1 hash
  hash=$(openssl passwd -6 "$password")
  echo "$user:$hash:65534:65534::$dir/root:/bin/false" >"$dir/passwd"
  echo "nogroup:x:65534:" >"$dir/group"
  chmod 0600 "$dir/passwd" "$dir/group"
}

# start_proftpd DIR NAME [CONFIGURATION]: an instance with its own port, pid and log files;
# CONFIGURATION is added to the common part.
start_proftpd() {
  local dir=$1 name=$2 extra=${3:-} port
  port=$(free_port)
  cat >"$dir/$name.conf" <<CONF
ServerName "pelicor test"
ServerType standalone
DefaultServer on
DefaultAddress 127.0.0.1
SocketBindTight on
UseIPv6 off
Port $port
PassivePorts 40000 60000
User nobody
Group nogroup
MaxInstances 40
PidFile $dir/$name.pid
ScoreboardFile $dir/$name.scoreboard
DelayTable $dir/$name.delay
DelayEngine off
SystemLog $dir/$name.log
TransferLog none
WtmpLog off
UseReverseDNS off
AuthOrder mod_auth_file.c
AuthUserFile $dir/passwd
AuthGroupFile $dir/group
RequireValidShell off
DefaultRoot ~
AllowOverwrite off
TimeoutIdle 120
$extra
CONF
  timeout "$lifetime" proftpd -n -q -c "$dir/$name.conf" >>"$dir/$name.log" 2>&1 &
  echo $! >"$dir/$name.wrapper.pid"
  wait_for "$dir/$name.pid"
  echo "$port" >"$dir/$name.port"
}

# TLS required on control and data connections, with the session of the control connection
# resumed on each data connection (mod_tls requires that unless told otherwise).
proftpd_tls_configuration() {
  local dir=$1
  cat <<CONF
ModulePath /usr/lib/proftpd
LoadModule mod_tls.c
TLSEngine on
TLSLog $dir/proftpd_tls.tls.log
TLSProtocol TLSv1.2 TLSv1.3
TLSRSACertificateFile $dir/tls.pem
TLSRSACertificateKeyFile $dir/tls.key
TLSVerifyClient off
TLSRequired on
CONF
}

# Downloads the vsftpd package (not installing it) and unpacks it into the cache.
fetch_vsftpd() {
  [ -x "$vsftpd" ] && return 0
  local tmp
  tmp=$(mktemp -d)
  chmod 0777 "$tmp"  # apt's download user writes there
  mkdir -p "$cache/vsftpd"
  if (cd "$tmp" && apt-get download vsftpd >/dev/null 2>&1) &&
    dpkg -x "$tmp"/vsftpd_*.deb "$cache/vsftpd"; then
    echo "ftp servers: vsftpd unpacked into $cache/vsftpd" >&2
  else
    echo "ftp servers: vsftpd could not be had; its tests will skip" >&2
  fi
  rm -rf "$tmp"
}

# start_vsftpd DIR NAME [CONFIGURATION]: anonymous, read-only, on 127.0.0.1, serving the same
# tree; CONFIGURATION is added to the common part. vsftpd wants an empty folder that nobody
# can write to for its unprivileged process (secure_chroot_dir); the system's
# (/var/run/vsftpd/empty) exists only when the package is installed, so we make our own.
start_vsftpd() {
  local dir=$1 name=$2 extra=${3:-} port
  [ -x "$vsftpd" ] || return 0
  port=$(free_port)
  mkdir -p "$dir/vsftpd.empty"
  chmod 0555 "$dir/vsftpd.empty"
  cat >"$dir/$name.conf" <<CONF
listen=YES
listen_ipv6=NO
listen_address=127.0.0.1
listen_port=$port
background=NO
anonymous_enable=YES
local_enable=NO
write_enable=NO
no_anon_password=NO
anon_root=$dir/root
ftp_username=daemon
secure_chroot_dir=$dir/vsftpd.empty
seccomp_sandbox=NO
isolate=NO
isolate_network=NO
pasv_enable=YES
pasv_address=127.0.0.1
port_enable=YES
connect_from_port_20=NO
xferlog_enable=NO
syslog_enable=NO
vsftpd_log_file=$dir/$name.log
pam_service_name=vsftpd
tcp_wrappers=NO
hide_ids=YES
ftpd_banner=vsftpd ready
$extra
CONF
  timeout "$lifetime" "$vsftpd" "$dir/$name.conf" >>"$dir/$name.log" 2>&1 &
  echo $! >"$dir/$name.wrapper.pid"
  # vsftpd writes no pid file: wait until its port answers.
  for _ in $(seq 1 50); do
    if "$python" -c 'import socket, sys
socket.create_connection(("127.0.0.1", int(sys.argv[1])), 1).close()' "$port" 2>/dev/null; then
      echo anonymous >"$dir/$name.user"
      echo pelicor@ >"$dir/$name.password"
      echo "$port" >"$dir/$name.port"
      return 0
    fi
    sleep 0.1
  done
  echo "ftp servers: $name did not come up; its tests will skip" >&2
}

# TLS required for the log-on and every data connection, each of which must resume the
# control connection's session (what vsftpd does by default, and local accounts would get
# with force_local_logins_ssl and force_local_data_ssl).
vsftpd_tls_configuration() {
  local dir=$1
  cat <<CONF
ssl_enable=YES
allow_anon_ssl=YES
force_anon_logins_ssl=YES
force_anon_data_ssl=YES
require_ssl_reuse=YES
ssl_ciphers=HIGH
rsa_cert_file=$dir/tls.pem
rsa_private_key_file=$dir/tls.key
CONF
}

start_python() {
  local dir=$1 name=$2
  shift 2
  timeout "$lifetime" "$python" "$@" >>"$dir/$name.log" 2>&1 &
  echo $! >"$dir/$name.wrapper.pid"
}

start() {
  local link=$1 dir
  [ -e "$link" ] && stop "$link"
  dir=$(mktemp -d /tmp/pelicor-ftp.XXXXXX)
  chmod 0755 "$dir"
  ln -s "$dir" "$link"
  # A server that fails to come up must not leave the others running.
  trap 'stop "$link"' ERR EXIT
  echo "$user" >"$dir/user"
  echo "$password" >"$dir/password"
  mkdir -p "$dir/transcripts"
  make_tree "$dir"
  make_accounts "$dir"
  make_certificate "$dir"
  start_proftpd "$dir" proftpd
  start_proftpd "$dir" proftpd_tls "$(proftpd_tls_configuration "$dir")"
  fetch_vsftpd
  start_vsftpd "$dir" vsftpd
  start_vsftpd "$dir" vsftpd_tls "$(vsftpd_tls_configuration "$dir")"
  start_python "$dir" pyftpdlib "$here/pyftpd_server.py" "$dir"
  start_python "$dir" fault "$here/fault_server.py" "$dir"
  wait_for "$dir/pyftpdlib.port"
  wait_for "$dir/fault.ports"
  trap - ERR EXIT
}

stop() {
  local link=$1 dir
  [ -L "$link" ] || return 0
  dir=$(readlink "$link")
  case "$dir" in /tmp/pelicor-ftp.*) ;; *) die "refusing to remove $dir" ;; esac
  for f in "$dir"/*.wrapper.pid; do stop_one "$f"; done
  # PELICOR_FTP_KEEP_LOGS=DIR keeps the servers' logs for a look after a failed run.
  if [ -n "${PELICOR_FTP_KEEP_LOGS:-}" ]; then
    mkdir -p "$PELICOR_FTP_KEEP_LOGS"
    cp "$dir"/*.log "$PELICOR_FTP_KEEP_LOGS"/ 2>/dev/null || true
  fi
  rm -rf "$dir" "$link"
}

case "${1:-}" in
  start) start "${2:?link}" ;;
  stop) stop "${2:?link}" ;;
  fetch) fetch_vsftpd ;;
  *) die "usage: $0 start|stop LINK | fetch" ;;
esac
