#!/usr/bin/env bash
# Builds the fuzz target of the model file reader, replays its seeds and fuzzes for SECONDS (60).
# What it learns is kept in build/fuzz/corpus, an input that fails in build/fuzz/failures.
#   scripts/fuzz.sh [SECONDS]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=${1:-60}
folder=${TORVANE_FUZZ_BUILD:-build/fuzz}

cmake --preset fuzz -B "$folder" >/dev/null
cmake --build "$folder" --target model_file_fuzzer
mkdir -p "$folder/corpus" "$folder/failures"
limits=(-timeout=10 -rss_limit_mb=1024 -max_len=16384 "-artifact_prefix=$folder/failures/")

"$folder/bin/model_file_fuzzer" "${limits[@]}" -runs=0 fuzz/seeds
"$folder/bin/model_file_fuzzer" "${limits[@]}" -dict=fuzz/model_file.dict \
  -max_total_time="$seconds" -print_final_stats=1 "$folder/corpus" fuzz/seeds
