#!/usr/bin/env bash
# Installs the Debian packages that building and testing Pelicor needs, when any is missing.
# Usage: scripts/deps.sh [build|test]
set -euo pipefail
kind=${1:-test}
packages=(cmake ninja-build g++ libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev
          libarchive-dev libssh-dev libssl-dev)
if [ "$kind" = test ]; then
  # proftpd-basic brings mod_tls (proftpd-mod-crypto); openssl makes the TLS servers' certificate.
  packages+=(libpugixml-dev pkgconf clang libclang-rt-14-dev proftpd-basic python3-pyftpdlib openssl
            libwrap0 libnsl2 libpam0g libcap2  # what the unpacked vsftpd links against
            chromium libxml2-utils bzip2 xz-utils zstd zip
            openssh-server libnss-wrapper)
  # The Windows build with its COM server and its tests under Wine: GoogleTest is cross-built
  # from its sources; widl takes the base IDL files from libwine-dev and stdole2.tlb from wine64.
  packages+=(mingw-w64 g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools
             googletest libwine-dev wine wine64)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
# vsftpd is never installed (it would remove proftpd-basic): its package is unpacked aside.
fetch_vsftpd() { [ "$kind" != test ] || "$(dirname "$0")/ftp/servers.sh" fetch || true; }
if [ ${#missing[@]} -eq 0 ]; then
  fetch_vsftpd
  exit 0
fi
echo "installing: ${missing[*]}" >&2
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fetch_vsftpd
