#!/usr/bin/env bash
# Builds the libFuzzer targets with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in build-fuzz/ and runs each for SECONDS
# (default 60). Seeds come from fuzz/corpus/<target>; what the fuzzer finds
# grows build-fuzz/corpus/<target>, and crashing inputs are kept in
# build-fuzz/artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
build=build-fuzz

CC=clang CXX=clang++ cmake -S fuzz -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
mkdir -p "$build"
if ! cmake --build "$build" -j "$(nproc)" >"$build/build.log" 2>&1; then
  tail -n 50 "$build/build.log"
  exit 1
fi

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p "$build/artifacts"
for target in load_xml_stream fast_infoset inflate; do
  corpus="$build/corpus/$target"
  mkdir -p "$corpus"
  log="$build/$target.log"
  echo "fuzzing $target for ${seconds}s"
  if ! "./$build/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=65536 \
      -dict="fuzz/$target.dict" -artifact_prefix="$build/artifacts/$target-" -print_final_stats=1 \
      "$corpus" "fuzz/corpus/$target" >"$log" 2>&1; then
    tail -n 80 "$log"
    echo "fuzz_$target failed; full log in $log" >&2
    exit 1
  fi
  grep -E '^(Done|stat::number_of_executed_units|stat::peak_rss_mb)' "$log" || true
done
