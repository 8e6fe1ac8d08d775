#!/bin/bash
# Installs the build to a scratch prefix and builds two consumers from there, one with find_package(Base) and one
# with pkg-config, then runs them. usage: installAndConsume.sh BUILD [TOOLCHAIN RUNNER COMPILER]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(cd "$1" && pwd)
toolchain=${2:+-DCMAKE_TOOLCHAIN_FILE=$(realpath "$2")}
runner=${3:+$(realpath "$3")}
compiler=${4:-g++}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

quietly() { "$@" >"$scratch/log" 2>&1 || { cat "$scratch/log"; exit 1; }; }
quietly cmake --install "$build" --prefix "$scratch/prefix"
# Where a system looks for libraries beside the program, they are put there.
run() {
  find "$scratch/prefix" "$build/bin" -name '*.dll' -exec cp -n {} "$(dirname "$1")" \;
  $runner "$1"
}

quietly cmake -S "$here/consumer" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$scratch/prefix" \
  -DCMAKE_FIND_ROOT_PATH="$scratch/prefix" $toolchain
quietly cmake --build "$scratch/cmake"
run "$(find "$scratch/cmake" -maxdepth 1 -name consumer -o -maxdepth 1 -name consumer.exe)"

export PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name Base.pc)")
mkdir "$scratch/direct"
"$compiler" "$here/consumer/consumer.cpp" -o "$scratch/direct/consumer" \
  $(pkg-config --define-prefix --cflags --libs Base) -Wl,-rpath,"$(dirname "$PKG_CONFIG_PATH")"
run "$(find "$scratch/direct" -name 'consumer*')"

# Every installed header stands alone.
find "$scratch/prefix/include" -name '*.h' | while read -r header; do
  echo "#include \"$header\"" | "$compiler" -std=c++20 -fsyntax-only -I "$scratch/prefix/include" -x c++ - ||
    { echo "$header does not stand alone"; exit 1; }
done
echo "installed and consumed"
