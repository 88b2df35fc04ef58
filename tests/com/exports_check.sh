#!/usr/bin/env bash
# What pelicor.dll shows a Windows loader, read with objdump (no Wine needed):
#   exports_check.sh OBJDUMP DLL
# - the COM entry points under their plain names (a 32-bit build must not export
#   DllGetClassObject@12) beside the C ABI;
# - imports from system DLLs only: the C++ runtime, libgcc and winpthread are linked in, so the
#   one file is the whole install.
set -euo pipefail
objdump=$1 dll=$2
headers=$("$objdump" -p "$dll")
failed=0
for name in DllGetClassObject DllCanUnloadNow DllRegisterServer DllUnregisterServer DllInstall \
            pelicor_new pelicor_ParseFile pelicor_free; do
  if ! grep -qE "^[[:space:]]+\[ *[0-9]+\] $name\$" <<<"$headers"; then
    echo "FAILED: $name is not exported by that name"
    failed=$((failed + 1))
  fi
done
system='^(KERNEL32|USER32|ADVAPI32|OLE32|OLEAUT32|WS2_32|MSVCRT|PSAPI|SHELL32)\.DLL$'
while read -r imported; do
  if ! grep -qiE "$system" <<<"$imported"; then
    echo "FAILED: imports $imported"
    failed=$((failed + 1))
  fi
done < <(sed -n 's/^[[:space:]]*DLL Name: //p' <<<"$headers")
echo "$((8 + $(grep -c 'DLL Name:' <<<"$headers") - failed)) passed, $failed failed"
[ "$failed" -eq 0 ]
