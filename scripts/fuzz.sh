#!/usr/bin/env bash
# Builds a fuzz target (model_file, command_line, session, response), replays its seeds and fuzzes for
# SECONDS (60). What it learns is kept in build/fuzz/corpus, an input that fails in build/fuzz/failures.
#   scripts/fuzz.sh TARGET [SECONDS]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

target=${1:?model_file, command_line, session or response}
seconds=${2:-60}
folder=${TORVANE_FUZZ_BUILD:-build/fuzz}
corpus=$folder/corpus/$target

cmake --preset fuzz -B "$folder" >/dev/null
cmake --build "$folder" --target "${target}_fuzzer"
mkdir -p "$corpus" "$folder/failures"
# What the target prints is no news; the sanitizers' reports go to standard error. Leaks are looked for
# by the tests, and where memory was allocated is told when a failure is replayed without this.
export ASAN_OPTIONS=malloc_context_size=0
options=(-timeout=10 -rss_limit_mb=1024 -max_len=16384 -close_fd_mask=1 -entropic=0
  -detect_leaks=0 "-artifact_prefix=$folder/failures/$target-")
[[ ! -f fuzz/$target.dict ]] || options+=("-dict=fuzz/$target.dict")

"$folder/bin/${target}_fuzzer" "${options[@]}" -runs=0 "fuzz/seeds/$target"
"$folder/bin/${target}_fuzzer" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 \
  "$corpus" "fuzz/seeds/$target"
