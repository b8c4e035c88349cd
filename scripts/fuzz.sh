#!/usr/bin/env bash
# Builds the fuzz targets with clang's libFuzzer under ASan and UBSan and runs each of them
# for FUZZ_SECONDS (default 300). The corpus grows in build-fuzz/fuzz-corpus/<target>;
# a crashing input is saved as build-fuzz/crash-* by libFuzzer.
#   FUZZ_SECONDS=60 FUZZ_TARGETS="fuzz_ini fuzz_iso" make fuzz
set -euo pipefail
cd "$(dirname "$0")/.."
build=build-fuzz
seconds=${FUZZ_SECONDS:-300}
CC=clang-14 CXX=clang++-14 cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DVINORA_SANITIZE=ON -DVINORA_LIBFUZZER=ON > /dev/null
cmake --build "$build" -j "$(nproc)" --target fuzzers
targets=${FUZZ_TARGETS:-$(cd "$build" && ctest -N -L fuzz | sed -n 's/^ *Test *#[0-9]*: \(fuzz_[a-z0-9_]*\)$/\1/p')}
export ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 QT_QPA_PLATFORM=offscreen
for target in $targets; do
  echo "== $target for ${seconds}s"
  # The input scripts make the starting corpus with real tools.
  (cd "$build" && ctest -R "^${target}_inputs\$" > /dev/null || true)
  inputs=()
  [ -d "fuzz/inputs/$target" ] && inputs+=("fuzz/inputs/$target")
  mkdir -p "$build/fuzz-corpus/$target"
  (cd "$build" && "./fuzz/$target" -max_total_time="$seconds" -timeout=20 -detect_leaks=0 \
     -print_final_stats=1 "fuzz-corpus/$target" "${inputs[@]/#/../}")
done
