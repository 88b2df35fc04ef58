#!/usr/bin/env bash
# Installs the build into a fresh prefix and builds a C host against the installed tree twice,
# with CMake's find_package and with pkg-config, then runs both.
# Usage: install_test.sh <build dir> <consumer source dir> [extra C flags]
set -euo pipefail
build=$1
consumer=$2
cflags=${3:-}
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix/usr" >/dev/null
for f in bin/pelicor include/pelicor/pelicor.h include/pelicor/pelicor.hpp lib/libpelicor.so \
         lib/libpelicor.so.0 lib/pkgconfig/pelicor.pc lib/cmake/pelicor/pelicorConfig.cmake; do
  [ -e "$prefix/usr/$f" ] || { echo "missing after install: $f" >&2; exit 1; }
done

cmake -S "$consumer" -B "$prefix/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix/usr" \
  -DCMAKE_C_FLAGS="$cflags" -DCMAKE_EXE_LINKER_FLAGS="$cflags" >/dev/null
cmake --build "$prefix/build" >/dev/null
LD_LIBRARY_PATH="$prefix/usr/lib" "$prefix/build/consumer"

export PKG_CONFIG_PATH="$prefix/usr/lib/pkgconfig"
# shellcheck disable=SC2046,SC2086
cc $cflags "$consumer/consumer.c" $(pkg-config --cflags --libs pelicor) -o "$prefix/consumer_pc"
LD_LIBRARY_PATH="$prefix/usr/lib" "$prefix/consumer_pc"
