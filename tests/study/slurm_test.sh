#!/bin/bash
# Whether slurm.sh, as an array of tasks, gives the bytes of a study left alone, also when it is
# cancelled on the way and submitted again; which then has left nothing running.
#
#   slurm_test.sh SLURM.SH                    with torvane-cli on PATH
#
# Stand-ins play the queue: sbatch starts all tasks of an array at once, scancel sends the script of each a
# SIGTERM and squeue lists those that still run.
set -euo pipefail
script=$(readlink -f "$1")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
mkdir bin queue
cat >bin/sbatch <<'EOF'
#!/bin/bash
tasks=${1#--array=1-}
shift
rm -f queue/*
for ((task = 1; task <= tasks; ++task)); do
  SLURM_ARRAY_TASK_ID=$task SLURM_ARRAY_TASK_COUNT=$tasks SLURM_CPUS_PER_TASK=1 \
    setsid bash "$@" >"task-$task.log" 2>&1 &
  echo $! >"queue/$task"
done
EOF
cat >bin/squeue <<'EOF'
#!/bin/bash
# All that a task has started, and the task itself where it has not begun yet.
for task in queue/*; do
  pid=$(<"$task")
  if kill -0 -- "$pid" 2>/dev/null || kill -0 -- "-$pid" 2>/dev/null; then echo "$task"; fi
done
EOF
cat >bin/scancel <<'EOF'
#!/bin/bash
for task in queue/*; do kill -TERM "$(<"$task")"; done
EOF
chmod +x bin/*
PATH=$folder/bin:$PATH

wait_for() { while ! eval "$1"; do sleep 0.1; done; }
quick=("6-1 PID Controller" --vary KVP=0.2:2:12 --command vC --response vF --until 0.05)
torvane-cli study "${quick[@]}" --out alone.csv
sbatch --array=1-3 "$script" shared.csv "${quick[@]}"
wait_for '[[ -z $(squeue) ]]'
torvane-cli study --merge shared.csv.[0-9]* --out shared.csv
cmp alone.csv shared.csv

long=("6-1 PID Controller" --vary KVP=0.2:2:1200 --command vC --response vF --until 0.2)
export PROGRESS_EVERY=0.1
sbatch --array=1-2 "$script" ended.csv "${long[@]}"
wait_for 'grep -q "[1-9] runs are done" task-1.log && grep -q "[1-9] runs are done" task-2.log'
scancel
wait_for '[[ -z $(squeue) ]]'
if [[ -e ended.csv.1 || -e ended.csv.2 ]]; then echo "Nothing was left to cancel" && exit 1; fi
sbatch --array=1-2 "$script" ended.csv "${long[@]}"
wait_for '[[ -z $(squeue) ]]'
torvane-cli study --merge ended.csv.[0-9]* --out ended.csv
torvane-cli study "${long[@]}" --out alone.csv
cmp alone.csv ended.csv
