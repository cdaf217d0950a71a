#!/usr/bin/env bash
# akkstrom on a SLURM cluster, in checkpointed slices: submit from the run's
# folder (the one holding data/), e.g.
#
#   cd lauf && sbatch --nodes=4 /path/to/akkscheibe/bench/slurm.sh --sicherung-minuten 30
#
# Each job runs one process a socket with its cores as threads. SLURM sends
# SIGTERM 15 minutes before the job's time limit; akkstrom then finishes the
# step in progress on all processes, writes its checkpoint (process 0, the
# same file whatever the process count) and ends with 143. The script then
# submits the next slice, which goes on with --weiter, on as many nodes as
# the cluster gives it. A run that ended (status 0) or failed (any other
# status) submits nothing.
#
#SBATCH --job-name=akkstrom
#SBATCH --ntasks-per-node=2
#SBATCH --cpus-per-task=16
#SBATCH --time=24:00:00
#SBATCH --signal=TERM@900
#SBATCH --output=akkstrom-%j.out
set -uo pipefail
cd "${SLURM_SUBMIT_DIR:-.}"
akkstrom=${AKKSTROM:-$(dirname "$(readlink -f "$0")")/../build/akkstrom}
export OMP_NUM_THREADS=${SLURM_CPUS_PER_TASK:-1}
export OMP_PLACES=cores OMP_PROC_BIND=close
# The checkpoint of the last slice, if any, is where this one goes on.
optionen=("$@")
if [ -f data/akkstrom.sicherung ]; then
    optionen+=(--weiter)
fi
start=$(date +%s)
srun --mpi=pmix --cpu-bind=cores "$akkstrom" "${optionen[@]}" >> stdout
status=$?
echo "slice $SLURM_JOB_ID: $SLURM_NTASKS processes x $OMP_NUM_THREADS threads, $(( $(date +%s) - start )) s, status $status" >> slices.log
# 143: stopped by the signal with a checkpoint written; 3: stopped by --halt-nach.
if [ $status -eq 143 ] || [ $status -eq 3 ]; then
    sbatch --nodes="$SLURM_JOB_NUM_NODES" "$(readlink -f "$0")" "$@"
fi
exit $status
