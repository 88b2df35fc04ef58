#!/usr/bin/env bash
# Installs the Debian packages that building and testing Pelicor needs, when any is missing.
# Usage: scripts/deps.sh [build|test]
set -euo pipefail
kind=${1:-test}
packages=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev libssh-dev)
if [ "$kind" = test ]; then
  packages+=(libpugixml-dev pkgconf clang libclang-rt-14-dev proftpd-basic python3-pyftpdlib openssl
    openssh-server libnss-wrapper)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
echo "installing: ${missing[*]}" >&2
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
