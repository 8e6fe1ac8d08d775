#!/bin/bash
# Lets every fuzz target look for new inputs, starting from its corpus. usage: explore.sh BIN SECONDS
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
found=0
for target in "$1"/fuzz*; do
  name=$(basename "$target")
  mkdir -p "$scratch/$name"
  if ! "$target" -max_total_time="$2" -timeout=10 -rss_limit_mb=3000 -artifact_prefix="$scratch/$name-" \
    "$scratch/$name" "$here/corpus/$name" >"$scratch/$name.log" 2>&1; then
    tail -n 60 "$scratch/$name.log"
    for input in "$scratch/$name"-*; do echo "input that failed: $(basename "$input"): $(base64 -w0 "$input")"; done
    exit 1
  fi
  echo "$name: $(grep -E '^Done' "$scratch/$name.log")"
  found=1
done
[ $found = 1 ]
