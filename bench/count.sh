#!/usr/bin/env bash
# Instructions and data references a step of the engine beside the hand-fused loops and
# Boost.odeint, counted under cachegrind: the same on every machine, however busy. Fails when the
# engine needs more than its bound.
# usage: bench/count.sh [FOLDER OF torvane_count]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

program=${1:-build/bench/bin}/torvane_count
short=20000
long=60000

# Prints the totals "instructions data-references" of one run of a program.
total() {
  local out
  out=$(mktemp)
  valgrind --tool=cachegrind --cache-sim=yes --cachegrind-out-file="$out" "$@" \
    >/dev/null 2>&1
  awk '/^summary:/ { print $2, $5 + $8 }' "$out"
  rm "$out"
}

# Prints "instructions data-references" a step of what the program and its arguments name.
count() {
  local few many
  few=$(total "$@" "$short")
  many=$(total "$@" "$long")
  echo "$few $many" | awk -v steps=$((long - short)) \
    '{ printf "%.1f %.1f\n", ($3 - $1) / steps, ($4 - $2) / steps }'
}

failed=0

# compare TITLE ENGINE PEER BOUND
compare() {
  local ratio
  ratio=$(awk -v own="$2" -v peer="$3" 'BEGIN { printf "%.2f", own / peer }')
  printf '%-34s %8s %8s %7s %7s\n' "$1" "$2" "$3" "$ratio" "$4"
  if awk -v own="$2" -v peer="$3" -v bound="$4" 'BEGIN { exit (own > 0 && peer > 0 && own <= bound * peer) }'; then
    echo "  not within its bound"
    failed=1
  fi
}

printf '%-34s %8s %8s %7s %7s\n' 'a step' engine peer ratio bound
while read -r figure instruction_bound reference_bound; do
  read -r own_instructions own_references <<<"$(count "$program" engine "$figure")"
  read -r instructions references <<<"$(count "$program" fused "$figure")"
  compare "$figure instructions" "$own_instructions" "$instructions" "$instruction_bound"
  compare "$figure data references" "$own_references" "$references" "$reference_bound"
  [[ $figure == 3-1 ]] || continue
  read -r instructions references <<<"$(count "$program" odeint "$figure")"
  compare '3-1 instructions, Boost.odeint' "$own_instructions" "$instructions" 1
done <<'BOUNDS'
2-1 1.25 1.35
3-1 1.2 1.05
6-1 1.35 1.45
15-1 1.47 1.5
BOUNDS

# Loops as texts beside the models that they are twins of.
while read -r figure twin bound; do
  read -r own_instructions _ <<<"$(count "$program" text "share/loops/$twin.mo")"
  read -r instructions _ <<<"$(count "$program" engine "$figure")"
  compare "$figure as a text, instructions" "$own_instructions" "$instructions" "$bound"
done <<'TWINS'
2-1 PIPlus 2.8
3-1 AnalogPI 2.95
6-1 DigitalPID 2.9
15-1 Resonance 2.95
TWINS

# A run of a study, with its model and all that is read off it, beside its steps alone.
steps=$("${program}_study" 1)
read -r few _ <<<"$(total "${program}_study" 5)"
read -r many _ <<<"$(total "${program}_study" 15)"
read -r step _ <<<"$(count "$program" engine 6-1)"
compare 'a run of a study of 6-1' "$(((many - few) / 10))" \
  "$(awk -v step="$step" -v steps="$steps" 'BEGIN { printf "%.0f", step * steps }')" 2.75

# What watching adds to a step, in instructions: FIGURE, the row of bench/watchers.h, the one that it
# is more than, how many instruments that is, and the bound.
printf '%-34s %8s %8s\n' 'watching, instructions a step' more bound
declare -A watched
for row in nothing scope_1_trace scope_and_swept_sine scope_and_15_meters; do
  read -r watched[$row] _ <<<"$(count "${program}_watch" 2-1 "$row")"
done
while read -r title row beside number bound; do
  more=$(awk -v all="${watched[$row]}" -v rest="${watched[$beside]}" -v number="$number" \
    'BEGIN { printf "%.1f", (all - rest) / number }')
  printf '%-34s %8s %8s\n' "$title" "$more" "$bound"
  if awk -v more="$more" -v bound="$bound" 'BEGIN { exit (more > 0 && more <= bound) }'; then
    echo "  not within its bound"
    failed=1
  fi
done <<'WATCHERS'
scope scope_1_trace nothing 1 165
swept_sine scope_and_swept_sine scope_1_trace 1 590
a_meter_of_15 scope_and_15_meters scope_1_trace 15 13
WATCHERS
exit "$failed"
