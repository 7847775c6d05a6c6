#!/usr/bin/env bash
# A search for the best tuning beside a study of 2,000 tunings that asks the same of a loop: what
# each finds, and the processor time of both. Fails when the search finds less than the study or
# takes more than a tenth of its time.
# usage: bench/tune.sh [FOLDER OF torvane-cli]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

program=${1:-build/unity/bin}/torvane-cli
asked=(--vary KVP=0.2:3 --vary KVI=1:500:log --command vC --response vF --until 0.5
  --require "Overshoot<10" --require "GainMargin>6" --require "PhaseMargin>50" --best Settling)
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# Prints what the command wrote and the seconds of processor time that it took.
timed() {
  local TIMEFORMAT="%U"
  { time "$program" "$@" >"$folder/out" 2>"$folder/err"; } 2>"$folder/time"
  tail -1 "$folder/time"
}

study_seconds=$(timed study "6-1 PID Controller" --sample 2000 --theory --jobs 1 "${asked[@]}" \
  --out "$folder/study.csv")
study=$(awk -F, '$(NF - 1) == 1 && $7 != "" { print $7 }' "$folder/study.csv" | sort -g | head -1)
search_seconds=$(timed tune "6-1 PID Controller" --runs 200 "${asked[@]}")
search=$(awk -F, 'NR == 2 { print $5 }' "$folder/out")

echo "$study $study_seconds $search $search_seconds" | awk '{
  printf "%-24s %12s %12s\n", "", "settling, s", "processor, s"
  printf "%-24s %12s %12s\n", "study of 2,000 tunings", $1, $2
  printf "%-24s %12s %12s\n", "search of 200 at most", $3, $4
  printf "ratio of times %.3f\n", $4 / $2
  exit !($3 <= $1 && $4 <= 0.1 * $2)
}'
