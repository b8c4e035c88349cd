#!/usr/bin/env bash
# How the costs grow with the collection: the benchmarks on the collection at a tenth, half
# and full size, side by side. Each size is made once and kept like the full one.
# Usage: growth.sh [BUILD_DIR]
set -uo pipefail
build=${1:-build}
benches=(startup catalogue lending store export maintenance)
for scale in 0.1 0.5 1; do
  VINORA_BENCH_SCALE=$scale bash "$(dirname "$0")/run.sh" "$build" "${benches[@]}" > /dev/null
  cp "$build/bench/results.tsv" "$build/bench/growth-$scale.tsv"
done
echo "| work | 1/10 | 1/2 | full |"
echo "|---|---:|---:|---:|"
awk -F'\t' '
  FILENAME ~ /growth-0.1/ { order[++n] = $1; tenth[$1] = $2 " " $3 }
  FILENAME ~ /growth-0.5/ { half[$1] = $2 " " $3 }
  FILENAME ~ /growth-1/   { full[$1] = $2 " " $3 }
  END { for (i = 1; i <= n; ++i) { w = order[i]; printf "| %s | %s | %s | %s |\n", w, tenth[w], half[w], full[w] } }
' "$build/bench/growth-0.1.tsv" "$build/bench/growth-0.5.tsv" "$build/bench/growth-1.tsv"
