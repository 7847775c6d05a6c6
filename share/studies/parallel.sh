#!/bin/bash
# A study in shares, on the processors of this machine or of several, with GNU parallel:
#
#   parallel.sh SHARES OUT.csv [STUDY.csv] MODEL OPTIONS...
#   HOSTS=4/ann,8/bob parallel.sh 48 OUT.csv [STUDY.csv] MODEL OPTIONS...
#
# HOSTS are machines that ssh reaches without a password, each with its number of shares at a time
# before it; torvane-cli is installed there. Files among the arguments are sent and results come
# back. Called again after an end before time, it does the shares that are missing.
set -euo pipefail
shares=$1 out=$2
shift 2

options=(--joblog "$out.log" --resume-failed --halt soon,fail=1)
if [[ -n ${HOSTS-} ]]; then
  options+=(--sshlogin "$HOSTS" --return "$out.{}" --cleanup)
  for argument; do
    if [[ -f $argument ]]; then options+=(--basefile "$argument"); fi
  done
fi
parallel "${options[@]}" --quote torvane-cli study "$@" --jobs 1 --shard "{}/$shares" --out "$out.{}" \
  ::: $(seq "$shares")

parts=()
for share in $(seq "$shares"); do parts+=("$out.$share"); done
torvane-cli study --merge "${parts[@]}" --out "$out"
rm "${parts[@]}" "$out.log"
