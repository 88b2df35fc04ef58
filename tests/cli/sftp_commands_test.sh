#!/usr/bin/env bash
# The pelicor sftp commands against sshd on 127.0.0.1 (the ctest fixture sftp_server, found
# through PELICOR_SFTP_STATE): output bytes, exit codes, messages, the three ways to log on.
# Usage: sftp_commands_test.sh PELICOR
set -u
pelicor=$1
state=${PELICOR_SFTP_STATE:?run through ctest: the fixture sftp_server sets PELICOR_SFTP_STATE}
. "$(dirname "$0")/check.sh"
unset SSH_AUTH_SOCK PELICOR_SFTP_PASSWORD

port=$(cat "$state/port")
served=$state/root
known=$work/known_hosts
echo "[127.0.0.1]:$port $(cut -d' ' -f1,2 "$state/host_key.pub")" >"$known"
login="--host 127.0.0.1:$port --user $(cat "$state/user") --known-hosts $known"
at() {  # at UDUMP: the connection options, logging on with the test's key
  echo $login --udump "$served/$1" --identity "$state/id_client"
}

check "list names" "$(printf 'no_final_lf.trc\nrepeated_9i.trc\nsample_9i.trc')" \
  "$("$pelicor" sftp list $(at traces))"
"$pelicor" sftp list $(at traces) --long --pattern 'S*' -o "$work/list.txt"
check "long listing to a file" "1 4729 sample_9i.trc" "$(awk '{print NR, $1, $4}' "$work/list.txt")"

check "find one of three by the padded pid" "orcl_ora_00055.trc 5555" \
  "$("$pelicor" sftp find 55 $(at lookup) 2>&1)"
check "find two without the padded pid, exit 1" \
  "pelicor: SFTP did not find a matched trace file for the session! 1" \
  "$("$pelicor" sftp find 12 $(at lookup) 2>&1) $?"

mkdir "$work/out"
"$pelicor" sftp get repeated_9i.trc $(at traces) -o "$work/out"
same "get copies the bytes" "$served/traces/repeated_9i.trc" "$work/out/repeated_9i.trc"
check "get a missing file, exit 1" \
  "pelicor: SFTP failed to open missing.trc on 127.0.0.1:$port: no such file or directory 1" \
  "$("$pelicor" sftp get missing.trc $(at traces) -o "$work/out" 2>&1) $?"
check "get a name with a path" \
  "pelicor: SFTP refused the file name ../lookup/orcl_ora_12.trc: a file name must not hold a path." \
  "$("$pelicor" sftp get ../lookup/orcl_ora_12.trc $(at traces) -o "$work/out" 2>&1)"
check "and leave nothing" "repeated_9i.trc" "$(ls -A "$work/out")"

# Streamed documents and reports equal those of the local file.
for job in "xml" "xml --aggregate --sort exe,fch --key cpu" "report --sort prs"; do
  "$pelicor" sftp $job repeated_9i.trc $(at traces) >"$work/remote"
  "$pelicor" $job "$served/traces/repeated_9i.trc" >"$work/local"
  same "$job as from the local file" "$work/local" "$work/remote"
done

# Logging on: a password from a file or the environment, the SSH agent; a wrong password.
cat "$state/password" >"$work/password"
check "password from a file" "orcl_ora_4711.trc 4711" \
  "$("$pelicor" sftp find 4711 $login --udump "$served/lookup" --password-file "$work/password" 2>&1)"
check "password from the environment" "orcl_ora_4711.trc 4711" \
  "$(PELICOR_SFTP_PASSWORD=$(cat "$state/password") "$pelicor" sftp find 4711 $login \
     --udump "$served/lookup" 2>&1)"
check "password on the command line" "orcl_ora_4711.trc 4711" \
  "$("$pelicor" sftp find 4711 $login --udump "$served/lookup" --password "$(cat "$state/password")" 2>&1)"
check "a wrong password, exit 1" \
  "pelicor: SFTP failed to log on to 127.0.0.1:$port as oracle: the server accepted neither the keys of the SSH agent and ~/.ssh nor the password. 1" \
  "$(PELICOR_SFTP_PASSWORD=wrong "$pelicor" sftp find 4711 $login --udump "$served/lookup" 2>&1) $?"
eval "$(ssh-agent -s)" >/dev/null
ssh-add -q "$state/id_client" 2>/dev/null
check "a key from the SSH agent" "orcl_ora_4711.trc 4711" \
  "$("$pelicor" sftp find 4711 $login --udump "$served/lookup" 2>&1)"
ssh-agent -k >/dev/null

# Host keys: an unknown one is refused until accepted, then recorded.
fresh="--host 127.0.0.1:$port --user oracle --udump $served/traces --identity $state/id_client"
"$pelicor" sftp list $fresh --known-hosts "$work/fresh_hosts" >/dev/null 2>"$work/err"
check "unknown host key, exit 1" "1 is not known in $work/fresh_hosts." \
  "$? $(grep -o "is not known in [^ ]*" "$work/err")"
"$pelicor" sftp list $fresh --known-hosts "$work/fresh_hosts" --accept-new-host-key >/dev/null
check "accepted and recorded" "$(cat "$known")" "$(cat "$work/fresh_hosts")"
check "bad --host" "pelicor: not a host or HOST:PORT: 127.0.0.1:99999 1" \
  "$("$pelicor" sftp list --host 127.0.0.1:99999 --user oracle --udump x 2>&1) $?"

finish
