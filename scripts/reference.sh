#!/usr/bin/env bash
# Writes the reference of the headers that libtorvane-dev installs, from their comments, as web pages in
# build/reference/html. A fault in a comment is an error, and so is a class, an enumeration or a function
# outside of classes that has none; members whose names say all may go without.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install-packages.sh build reference

out=$PWD/build/reference
rm -rf "$out"
cmake -S . -B "$out/configured" -G Ninja -DTORVANE_DESKTOP=OFF -DTORVANE_TESTS=OFF >/dev/null
cmake -DCMAKE_INSTALL_PREFIX="$out" -P "$out/configured/development/headers.cmake" >/dev/null

cat >"$out/namespaces.dox" <<'END'
/// \mainpage
/// The engines as a library. How they are used stands in docs/embedding.md.
/// \namespace torvane
/// Simulation of feedback control loops.
/// \namespace torvane::loops
/// Loops from a text.
/// \namespace torvane::drawing
/// Block diagrams of such loops.
END
doxygen - >/dev/null <<END
PROJECT_NAME = Torvane
PROJECT_BRIEF = "Simulator of feedback control systems"
OUTPUT_DIRECTORY = $out
INPUT = $out/include $out/namespaces.dox
RECURSIVE = YES
EXCLUDE = $out/include/torvane/drawing/arrangement.h $out/include/torvane/drawing/block_graph.h \
  $out/include/torvane/drawing/nets.h $out/include/torvane/drawing/placing.h \
  $out/include/torvane/drawing/shape.h $out/include/torvane/loops/block.h \
  $out/include/torvane/loops/block_type.h $out/include/torvane/loops/blocks \
  $out/include/torvane/loops/instruction.h $out/include/torvane/loops/loop_machine.h \
  $out/include/torvane/loops/loop_plan.h $out/include/torvane/loops/loop_solver.h \
  $out/include/torvane/loops/operations.h
STRIP_FROM_PATH = $out/include
STRIP_FROM_INC_PATH = $out/include
JAVADOC_AUTOBRIEF = YES
DISTRIBUTE_GROUP_DOC = YES
SORT_MEMBER_DOCS = NO
GENERATE_LATEX = NO
HTML_TIMESTAMP = NO
HAVE_DOT = NO
QUIET = YES
WARN_LOGFILE = $out/warnings
END

# Members of classes are told apart by what doxygen says that they are of.
if awk '!/is not documented/ || /warning: Compound/ || /\(enumeration\)/ ||
    /\(function\) of (namespace|file)/ {print; found = 1} END {exit !found}' "$out/warnings"; then
  echo "The reference has faults." >&2
  exit 1
fi
echo "The reference is in $out/html."
