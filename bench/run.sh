#!/usr/bin/env bash
# Runs every benchmark; each prints its measurements and fails when a goal is missed. At the
# end, the summary table of the run (the one docs/PERFORMANCE.md holds).
# Usage: run.sh [BUILD_DIR] [BENCHMARK...]   (VINORA_BENCH_SCALE=0.1 for a smaller collection)
set -euo pipefail
build=${1:-build}
shift || true
order=(startup catalogue lending store contents export maintenance search recognition)
[ $# -gt 0 ] && order=("$@")
table="$build/bench/results.tsv"
: > "$table"
export VINORA_BENCH_TABLE="$table"
# Outside a desktop session the windows' libraries want a private runtime folder.
export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$(mktemp -d)}
status=0
for name in "${order[@]}"; do
  bench="$build/bench/bench_$name"
  [ -x "$bench" ] || { echo "missing: $bench"; status=1; continue; }
  echo "== $(basename "$bench")"
  "$bench" || status=1
done
echo
echo "| work | figure | reference, same run | goal | |"
echo "|---|---:|---|---:|---|"
awk -F'\t' '{ printf "| %s | %s %s | %s | %s | %s |\n", $1, $2, $3, $4, $5, $6 }' "$table"
exit $status
