#!/usr/bin/env bash
# Builds the fuzz targets, replays the seeds of each and fuzzes each for SECONDS (60), as many at a time
# as there are processors. What they learn is kept in build/fuzz/corpus, an input that fails in
# build/fuzz/failures, what they print in build/fuzz/TARGET.log.
#   scripts/fuzz.sh [SECONDS [TARGET...]]      targets: model_file, command_line, session, response,
#                                              loop
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

export seconds=${1:-60} folder=build/fuzz programs=build/asan+ubsan/bin
targets=("${@:2}")
[[ ${#targets[@]} -gt 0 ]] || targets=(model_file command_line session response loop)

fuzz() {
  local target=$1 corpus=$folder/corpus/$1 log=$folder/$1.log seeds=fuzz/seeds/$1
  [[ $target != loop ]] || seeds=share/loops
  local options=(-timeout=10 -rss_limit_mb=1024 -max_len=16384 -close_fd_mask=1 -entropic=0
    -detect_leaks=0 "-artifact_prefix=$folder/failures/$target-")
  [[ ! -f $folder/$target.dict ]] || options+=("-dict=$folder/$target.dict")
  mkdir -p "$corpus"
  if "$programs/${target}_fuzzer" "${options[@]}" -runs=0 "$seeds" &>"$log" &&
    "$programs/${target}_fuzzer" "${options[@]}" -max_total_time="$seconds" -print_final_stats=1 \
      "$corpus" "$seeds" &>>"$log"; then
    printf '%-14s %8d inputs, %6d a second\n' "$target" \
      "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
      "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")"
  else
    printf '%s FAILED\n' "$target"
    tail -n 60 "$log"
    return 1
  fi
}
export -f fuzz
# What the targets print is no news; the sanitizers' reports go to standard error. Leaks are looked for
# by the tests, and where memory was allocated is told when a failure is replayed without this.
export ASAN_OPTIONS=malloc_context_size=0

cmake --preset asan+ubsan >/dev/null
cmake --build --preset asan+ubsan --target "${targets[@]/%/_fuzzer}" torvane-cli
mkdir -p "$folder/failures"
cp fuzz/*.dict "$folder"
# The commands and options that there are.
"$programs/torvane-cli" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]\+\) .*/\1/p' |
  while read -r command; do
    printf '"%s"\n' "$command"
    "$programs/torvane-cli" "$command" --help | grep -oE -- '--[a-z-]+' | sed 's/.*/"&"/'
  done | sort -u >>"$folder/command_line.dict"
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -euo pipefail -c 'fuzz {}'
