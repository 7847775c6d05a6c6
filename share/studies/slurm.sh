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
# on where it stopped.
#SBATCH --job-name=torvane-study
#SBATCH --cpus-per-task=1
#SBATCH --time=1-00:00:00
#SBATCH --requeue
#SBATCH --output=%x-%A-%a.log
set -euo pipefail
out=$1
shift
exec torvane-cli study "$@" --jobs "${SLURM_CPUS_PER_TASK:-1}" \
  --shard "$SLURM_ARRAY_TASK_ID/$SLURM_ARRAY_TASK_COUNT" --out "$out.$SLURM_ARRAY_TASK_ID"
