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
# on where it stopped. Its log tells each minute how many of its runs are done; SIGTERM, which comes
# before its time is up, ends it with all of them on the disk.
#SBATCH --job-name=torvane-study
#SBATCH --cpus-per-task=1
#SBATCH --time=1-00:00:00
#SBATCH --requeue
#SBATCH --signal=B:TERM@60
#SBATCH --output=%x-%A-%a.log
set -euo pipefail
out=$1.$SLURM_ARRAY_TASK_ID
shift
torvane-cli study "$@" --jobs "${SLURM_CPUS_PER_TASK:-1}" \
  --shard "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" --out "$out" &
study=$!
trap 'kill -TERM "$study" 2>/dev/null || true' TERM INT

# The part file has a line for the study, one for the captions and one a run.
progress() {
  while sleep 60; do
    if [[ -e $out.part ]]; then echo "$(($(wc -l <"$out.part") - 2)) runs are done"; fi
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
