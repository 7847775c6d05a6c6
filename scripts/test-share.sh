#!/usr/bin/env bash
# Prints how many lines of tests stand beside how many of code, blank lines and comments not counted.
# With a bound, in percent, fails where the tests take more:  scripts/test-share.sh [BOUND]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

lines() { find "$1" -name '*.cpp' -o -name '*.h' | xargs cat | grep -cvE '^\s*(//.*)?$'; }

tests=$(lines tests)
code=$(lines src)
share=$((1000 * tests / code))
printf 'Tests: %d lines to %d of code, %d.%d %%\n' "$tests" "$code" $((share / 10)) $((share % 10))
if [[ $# -gt 0 && $share -gt $((10 * $1)) ]]; then
  printf 'That is more than the bound of %d %%: docs/testing.md tells how tests stay short.\n' "$1" >&2
  exit 1
fi
