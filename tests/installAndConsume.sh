#!/bin/bash
# Installs the build to a scratch prefix and builds two consumers from there, one with find_package(Base) and one
# with pkg-config. usage: installAndConsume.sh BUILD
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/prefix" >"$scratch/log" || { cat "$scratch/log"; exit 1; }

cmake -S "$here/consumer" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$scratch/prefix" >"$scratch/log" &&
  cmake --build "$scratch/cmake" >>"$scratch/log" || { cat "$scratch/log"; exit 1; }
"$scratch/cmake/consumer"

export PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name Base.pc)")
g++ "$here/consumer/consumer.cpp" -o "$scratch/consumer" \
  $(pkg-config --define-prefix --cflags --libs Base) -Wl,-rpath,"$(dirname "$PKG_CONFIG_PATH")"
"$scratch/consumer"

# Every installed header stands alone.
find "$scratch/prefix/include" -name '*.h' | while read -r header; do
  echo "#include \"$header\"" | g++ -std=c++20 -fsyntax-only -I "$scratch/prefix/include" -x c++ - ||
    { echo "$header does not stand alone"; exit 1; }
done
echo "installed and consumed"
