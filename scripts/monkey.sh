#!/usr/bin/env bash
# Plays with the real windows at random under Xvfb: invalid texts, loads, other models, undo, run and
# stop among the gestures. When something falls, prints the seed and the last gestures.
#   scripts/monkey.sh [SECONDS [SEED]] [--wait|--haste]
#   scripts/monkey.sh --replay RECORD [--wait|--haste]
# A third of the gestures come in handfuls before the program has answered; with --haste all of them,
# with --wait none. The record of gestures stands in build/monkey/SEED.
#
# The program is built by Clang with AddressSanitizer and UndefinedBehaviorSanitizer, as the engines'
# tests are, and what these have built is used again. GCC 12 is of no use here: what its
# UndefinedBehaviorSanitizer makes of a call through a pointer to a member crashes by itself.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

options=()
rest=()
for argument in "$@"; do
  case $argument in
    --wait | --haste) options+=("$argument") ;;
    *) rest+=("$argument") ;;
  esac
done
seconds=${rest[0]:-60}
mkdir -p build/monkey
if [[ $seconds == --replay ]]; then
  seed="of ${rest[1]}" record=${rest[1]} arguments=(--replay "${rest[1]}")
else
  seed=${rest[1]:-$RANDOM}
  record=build/monkey/$seed arguments=("$seconds" "$seed" "$record")
fi

cmake --preset asan+ubsan -DTORVANE_MONKEY=ON >/dev/null
cmake --build --preset asan+ubsan --target torvane_monkey

export ASAN_OPTIONS=detect_leaks=0:hard_rss_limit_mb=4000 UBSAN_OPTIONS=print_stacktrace=1
export QT_QPA_PLATFORM=xcb
log=build/monkey/log.$$
trap 'rm -f "$log"' EXIT
status=0
xvfb-run -a -s '-screen 0 1280x800x24' build/asan+ubsan/bin/torvane_monkey "${arguments[@]}" \
  ${options[@]+"${options[@]}"} &>"$log" || status=$?
if [[ $status -ne 0 ]]; then
  cat "$log"
  printf '\nThe last gestures:\n'
  tail -n 30 "$record"
  printf '\nFAILED with code %d; seed %s, record %s\n' "$status" "$seed" "$record"
  exit 1
fi
printf 'Seed %s: %d gestures without a find\n' "$seed" "$(wc -l <"$record")"
