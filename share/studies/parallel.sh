#!/bin/bash
# A study in shares, on the processors of this machine or of several, with GNU parallel:
#
#   parallel.sh SHARES OUT.csv [STUDY.csv] MODEL OPTIONS...
#   HOSTS=4/ann,8/bob parallel.sh 48 OUT.csv [STUDY.csv] MODEL OPTIONS...
#
# HOSTS are machines that ssh reaches without a password, each with its number of shares at a time
# before it; torvane-cli is installed there. Files among the arguments are sent and results come
# back. Called again after an end before time, it does the shares that are missing. It tells how many
# shares are done, and an end by SIGTERM or Ctrl-C ends those that run.
set -euo pipefail
shares=$1 out=$2
shift 2

options=(--joblog "$out.log" --resume-failed --halt soon,fail=1 --termseq TERM,5000,KILL,25)
if [[ -n ${HOSTS-} ]]; then
  options+=(--sshlogin "$HOSTS" --return "$out.{}" --cleanup)
  for argument; do
    if [[ -f $argument ]]; then options+=(--basefile "$argument"); fi
  done
fi

# A line whenever another share is done. The log has one for its captions.
show_progress() {
  local done told=-1
  while :; do
    done=0
    for share in $(seq "$shares"); do
      if [[ -e $out.$share ]]; then done=$((done + 1)); fi
    done
    if [[ $done -ne $told ]]; then printf '%d of %d shares are done\n' "$done" "$shares" >&2; fi
    told=$done
    sleep 1
  done
}

# Twice: parallel lets its jobs end at the first SIGTERM, and ends them at the second.
end_jobs() {
  trap '' TERM INT
  kill -TERM "$jobs" 2>/dev/null || true
  sleep 1
  kill -TERM "$jobs" 2>/dev/null || true
  wait "$jobs" || true
  echo "The shares that run were ended; the same command goes on with them" >&2
  exit 143
}

parallel "${options[@]}" --quote torvane-cli study "$@" --jobs 1 --shard "{}/$shares" --out "$out.{}" \
  ::: $(seq "$shares") &
jobs=$!
trap end_jobs TERM INT
show_progress &
progress=$!
trap 'kill "$progress" 2>/dev/null || true' EXIT
wait "$jobs"

parts=()
for share in $(seq "$shares"); do parts+=("$out.$share"); done
torvane-cli study --merge "${parts[@]}" --out "$out"
rm "${parts[@]}" "$out.log"
