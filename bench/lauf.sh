#!/usr/bin/env bash
# A run of akkscheibe on a disc of N particles from the disc generator, for
# the figures of the README: the shipped parameter file with the smoothing
# length scaled as N^-1/2 from 0.03 at 3000 particles (about 31 partners per
# particle, as in the benchmarks), a first step of 1 s and STEPS steps.
# Prints the wall time, the peak resident memory (GNU time's %M) and the
# memory per particle. The thread count comes from OMP_NUM_THREADS.
#
#   bench/lauf.sh N [STEPS] [BUILD_DIR]     e.g. bench/lauf.sh 1000000 2
set -euo pipefail
n=${1:?number of particles}
schritte=${2:-2}
build=$(cd "${3:-build}" && pwd)
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
source "$(dirname "$0")/scheibe.sh"
bench_scheibe "$n" "$schritte" "$build" "$ordner"
cd "$ordner"
/usr/bin/time -f '%e %M' -o zeit "$build/akkscheibe" > stdout
read -r sekunden kib < zeit
grep -m1 'Anzahl WWPartnern' stdout
grep '^step:' stdout
awk -v s="$sekunden" -v k="$kib" -v n="$n" -v t="${OMP_NUM_THREADS:-all}" 'BEGIN {
    printf "particles %d, threads %s: %.2f s wall, peak RSS %.0f MiB, %.2f KiB per particle\n",
           n, t, s, k / 1024, k / n }'
