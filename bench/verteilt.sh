#!/usr/bin/env bash
# A run of akkscheibe over NP MPI processes of THREADS threads each, on a
# disc of N particles built as bench/lauf.sh builds it (smoothing length
# scaled as N^-1/2, about 31 partners a particle). Prints the wall time of
# every step after the first (file reading and the first step's start are
# left out), each process's particles, ghosts and bytes sent per evaluation
# and peak resident memory, and the largest process's memory per particle.
#
#   bench/verteilt.sh N [STEPS] [NP] [THREADS] [BUILD_DIR]   e.g. bench/verteilt.sh 1000000 3 2 1
set -euo pipefail
n=${1:?number of particles}
schritte=${2:-3}
np=${3:-2}
faeden=${4:-1}
build=$(cd "${5:-build}" && pwd)
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
source "$(dirname "$0")/scheibe.sh"
bench_scheibe "$n" "$schritte" "$build" "$ordner"
cd "$ordner"
# Each step line stamped with the wall clock as it arrives.
# One process runs without a launcher (no MPI at all), under GNU time for its memory.
if [ "$np" = 1 ]; then
    starter=(/usr/bin/time -f "rang 0 von 1: peak_rss_kib %M" -o "$ordner/bericht")
else
    starter=(mpirun --allow-run-as-root --oversubscribe --bind-to none -np "$np")
fi
OMP_NUM_THREADS=$faeden AKK_VERTEILT_BERICHT="$ordner/bericht" OMPI_MCA_mpi_yield_when_idle=1 \
    "${starter[@]}" "$build/akkscheibe" |
    while IFS= read -r zeile; do
        case $zeile in step:*) echo "$(date +%s.%N) $zeile" ;; esac
    done > schritte
awk -v np="$np" -v t="$faeden" -v n="$n" 'NR > 1 { printf "step %s: %.2f s\n", $3, $1 - vor; s += $1 - vor; k++ }
    { vor = $1 } END { printf "particles %d, %d processes x %d threads: %.2f s a step (mean of %d)\n",
                           n, np, t, s / k, k }' schritte
if [ -f bericht ]; then
    sort -k2,2n bericht
    awk -v n="$n" '{ for (i = 1; i <= NF; ++i) if ($i == "peak_rss_kib") m = $(i + 1) > m ? $(i + 1) : m }
        END { printf "largest process: peak RSS %.0f MiB, %.2f KiB per particle of the disc\n", m / 1024, m / n }' bericht
fi
