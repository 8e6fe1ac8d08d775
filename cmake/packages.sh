# need PACKAGE...: makes sure that the named Debian packages are there, installing what is missing.
need() {
  missing=
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed' || missing="$missing $package"
  done
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" = 0 ]; then as_root=; elif sudo -n true 2>/dev/null; then as_root=sudo; else
    echo "These Debian packages are missing, and only an administrator may install them:$missing" >&2
    echo "Install them with: apt-get install$missing" >&2
    exit 1
  fi
  echo "installing$missing"
  export DEBIAN_FRONTEND=noninteractive
  if ! $as_root apt-get install -y -qq $missing >/tmp/base-packages.$$ 2>&1; then
    $as_root apt-get update -qq >/tmp/base-packages.$$ 2>&1 &&
      $as_root apt-get install -y -qq $missing >>/tmp/base-packages.$$ 2>&1 || {
      cat /tmp/base-packages.$$ >&2
      echo "Could not install:$missing" >&2
      exit 1
    }
  fi
  rm -f /tmp/base-packages.$$
}

# build PRESET [TARGET...]: configures and builds quietly; a failure shows everything.
build() {
  preset=$1
  shift
  log=build/$preset.log
  mkdir -p build
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
  fi
}

# Objects are shared between checkouts.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

build_packages="g++ cmake ninja-build libgtest-dev ccache python3"
