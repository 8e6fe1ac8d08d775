#!/bin/sh
# The main job on real input: packs two real directories, lists, verifies and extracts them, compares every byte with
# the source, and then stores and reads back a real object graph. usage: mainJob.sh BIN
set -eu
bin=$(cd "$1" && pwd)
source=$(cd "$(dirname "$0")/.." && pwd)
scratch=$(mktemp -d "${TMPDIR:-/tmp}/base-main-job.XXXXXX")
trap 'rm -rf "$scratch"' EXIT

now() { date +%s%N; }
# rate LABEL BYTES START: how fast BYTES passed since START
rate() {
  awk -v label="$1" -v bytes="$2" -v ns="$(($(now) - $3))" \
    'BEGIN { printf "  %-8s %7.2f s  %8.1f MB/s\n", label, ns / 1e9, bytes / 1e6 / (ns / 1e9 + 1e-9) }'
}
# sums DIR: a line per file below DIR; symbolic links to directories are not followed
sums() { (cd "$1" && find . \( -type f -o -type l -xtype f \) -print0 | LC_ALL=C sort -z | xargs -0 sha256sum); }

# round_trip PARENT FOLDER: PARENT/FOLDER into a package and out again
round_trip() {
  package=$scratch/$2.package
  files=$(cd "$1" && find "$2" \( -type f -o -type l -xtype f \) | wc -l)
  bytes=$(cd "$1" && find "$2" \( -type f -o -type l -xtype f \) -print0 | xargs -0 stat -L -c %s | awk '{ n += $1 } END { print n }')
  echo "$1/$2: $files files, $bytes bytes"
  start=$(now); "$bin/qvpackage" create "$package" -compress -from "$1" "$1/$2"; rate create "$bytes" "$start"
  "$bin/qvpackage" list "$package" | tail -n 1 | sed 's/^/  /'
  start=$(now); "$bin/qvpackage" verify "$package"; rate verify "$bytes" "$start"
  start=$(now); "$bin/qvpackage" extract "$package" -into "$scratch/out-$2"; rate extract "$bytes" "$start"
  sums "$1/$2" >"$scratch/source"
  sums "$scratch/out-$2/$2" >"$scratch/extracted"
  if ! cmp -s "$scratch/source" "$scratch/extracted"; then
    echo "what was extracted differs from $1/$2:" >&2
    diff "$scratch/source" "$scratch/extracted" | head >&2
    exit 1
  fi
  echo "  every byte of $files files is the same; package $(stat -c %s "$package") bytes"
}

round_trip "$source" src
round_trip /usr include
"$bin/scene" "$scratch/scene.package"
