#!/usr/bin/env bash
# Runs every benchmark; each prints its measurements and fails when a goal is missed.
set -euo pipefail
build=${1:-build}
status=0
for bench in "$build"/bench/bench_*; do
  [ -f "$bench" ] && [ -x "$bench" ] || continue
  echo "== $(basename "$bench")"
  "$bench" || status=1
done
exit $status
