#!/usr/bin/env bash
# tests/batch/with-hosts.sh COMMAND...: runs the command while two hosts can be reached over ssh.
#
# TAMSEL_HOSTS then names their list, as GNU parallel takes it. Both are this machine, through an sshd on
# the loopback address with keys made for it, which ends with the command. Where there is no sshd, the
# command runs without TAMSEL_HOSTS.
set -euo pipefail

if ! sshd=$(PATH=$PATH:/usr/sbin:/sbin command -v sshd); then
  echo "with-hosts: there is no sshd (Debian: openssh-server), and so there are no hosts to test with" >&2
  exec "$@"
fi
# GNU parallel gives a shell what its list of hosts says, so no path in it may have blanks.
folder=$(mktemp -d -p /tmp)
server=
trap '[[ -z $server ]] || kill "$server"; rm -rf "$folder"' EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

for key in host user; do ssh-keygen -q -t ed25519 -N '' -f "$folder/$key"; done
((EUID != 0)) || mkdir -p /run/sshd  # root's sshd asks for it

: >"$folder/log"
# A port that another process takes first makes sshd end; the next try has another.
for ((tries = 0; tries < 10 && ${#server} == 0; ++tries)); do
  port=$((20000 + RANDOM % 20000))
  "$sshd" -D -e -f /dev/null -h "$folder/host" -p "$port" -o ListenAddress=127.0.0.1 -o UsePAM=no \
    -o PidFile=none -o StrictModes=no -o PermitRootLogin=yes -o MaxStartups=100 \
    -o AuthorizedKeysFile="$folder/user.pub" 2>"$folder/log" &
  server=$!
  until grep -q 'Server listening' "$folder/log" || ! kill -0 "$server" 2>/dev/null; do sleep 0.05; done
  kill -0 "$server" 2>/dev/null || server=
done
if [[ -z $server ]]; then
  cat "$folder/log" >&2
  exit 1
fi

cat >"$folder/config" <<EOF
Host north south
  HostName 127.0.0.1
  Port $port
  IdentityFile $folder/user
  IdentitiesOnly yes
  UserKnownHostsFile $folder/known
  StrictHostKeyChecking accept-new
  LogLevel ERROR
EOF
printf '2/ssh -F %s %s\n' "$folder/config" north "$folder/config" south >"$folder/hosts"
export TAMSEL_HOSTS=$folder/hosts
"$@"
