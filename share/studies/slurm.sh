#!/bin/bash
# A study in shares, each a task of a Slurm array, in a folder that all nodes share:
#
#   sbatch --array=1-48 slurm.sh OUT.csv [STUDY.csv] MODEL OPTIONS...
#
# leaves OUT.csv.1 ... OUT.csv.48. When all tasks are done,
#
#   torvane-cli study --merge OUT.csv.[0-9]* --out OUT.csv
#
# makes the whole of them. A task that is requeued, or submitted again after its time was up, goes
# on where it stopped. Its log tells each minute, or as often as PROGRESS_EVERY has seconds, how many
# of its runs are done; SIGTERM, which comes before its time is up, ends it with all of them on the disk.
#SBATCH --job-name=torvane-study
#SBATCH --cpus-per-task=1
#SBATCH --time=1-00:00:00
#SBATCH --requeue
#SBATCH --signal=B:TERM@60
#SBATCH --output=%x-%A-%a.log
set -euo pipefail
out=$1.$SLURM_ARRAY_TASK_ID
shift
study=
ended=
# Before the study begins, so that no signal is missed.
trap 'ended=1; [[ -z $study ]] || kill -TERM "$study" 2>/dev/null || true' TERM INT
torvane-cli study "$@" --jobs "${SLURM_CPUS_PER_TASK:-1}" \
  --shard "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" --out "$out" &
study=$!
if [[ -n $ended ]]; then kill -TERM "$study" 2>/dev/null || true; fi

# The part file has a line for the study, one for the captions and one a run.
progress() {
  local pause="" rows
  trap 'kill $pause 2>/dev/null || true; exit' TERM
  while :; do
    sleep "${PROGRESS_EVERY:-60}" &
    pause=$!
    wait "$pause"
    rows=$(wc -l 2>/dev/null <"$out.part") || continue
    if ((rows > 2)); then echo "$((rows - 2)) runs are done"; fi
  done
}
progress &
teller=$!
trap 'kill "$teller" 2>/dev/null || true' EXIT
status=0
wait "$study" || status=$?
# A signal ends the waiting, not the study, which still puts its rows in order.
while kill -0 "$study" 2>/dev/null; do
  status=0
  wait "$study" || status=$?
done
exit "$status"
