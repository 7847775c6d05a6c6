#!/usr/bin/env bash
# Prints how many lines of tests stand beside those of code, blank lines and comments not counted:
# what is written by hand (C++, the windows' scripts, tables, claims, transcripts), and beside that
# what is recorded (drawings and looks) and the rows of trajectories that runs are compared with.
#   scripts/test-share.sh [PERCENT [RECORDED]]
# Fails where what is written by hand takes more than so much of the code, or recordings more lines.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../tests/data"

sources() { find "$@" -name '*.cpp' -o -name '*.h' -o -name '*.py' | xargs cat | grep -cvE '^\s*(//.*)?$'; }
rows() { cat -- "$@" | grep -acvE '^\s*(#.*)?$' || true; }
percent() { printf '%d.%d %%' $((100 * $1 / code)) $((1000 * $1 / code % 10)); }
entry() { printf '%-13s %6d lines  %s\n' "$1" "$2" "$(percent "$2")"; }

code=$(sources ../../src ../../python)
tests=$(sources ..)
scripts=$(($(rows ui/*.txt scope_sweeps.txt) - $(rows ui/tilings.txt)))
claims=$(rows claims/*.txt)
transcripts=$(rows cli/*.txt)
recorded=$(rows drawings/*.txt ui/*.look)
trajectories=$(rows reference/*.csv)
all=$(find . -type f -print0 | xargs -0 cat | rows -)
tables=$((all - scripts - claims - transcripts - recorded - trajectories))
by_hand=$((tests + scripts + tables + claims + transcripts))

entry "code" "$code"
entry "tests, C++" "$tests"
entry "scripts" "$scripts"
entry "tables" "$tables"
entry "claims" "$claims"
entry "transcripts" "$transcripts"
entry "by hand" "$by_hand"
entry "recorded" "$recorded"
entry "trajectories" "$trajectories"

status=0
too_much() {
  printf 'More than the bound of %s: docs/testing.md tells how tests stay short.\n' "$1" >&2
  status=1
}
[[ $# -lt 1 || $((100 * by_hand)) -le $(($1 * code)) ]] || too_much "$1 % written by hand"
[[ $# -lt 2 || $recorded -le $2 ]] || too_much "$2 lines recorded"
exit "$status"
