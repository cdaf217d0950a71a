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
quelle=$(cd "$(dirname "$0")/.." && pwd)
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
mkdir -p "$ordner/data"
h=$(awk -v n="$n" 'BEGIN { printf "%.17g", 0.03 * sqrt(3000 / n) }')
hoehe=$(awk -v h="$h" 'BEGIN { printf "%.17g", 0.01 * h }')
{ cat "$quelle/data/OYCar.parameter"
  printf '\nSmoothinglength %s\nAnfangsschrittweite 1\nMaxSchritte %s\n' "$h" "$schritte"
} > "$ordner/data/OYCar.parameter"
"$build/tools/scheibengenerator" --anzahl "$n" --hoehe "$hoehe" \
    -p "$ordner/data/OYCar.parameter" -o "$ordner/data/Akk-OYCar-0"
cd "$ordner"
/usr/bin/time -f '%e %M' -o zeit "$build/akkscheibe" > stdout
read -r sekunden kib < zeit
grep -m1 'Anzahl WWPartnern' stdout
grep '^step:' stdout
awk -v s="$sekunden" -v k="$kib" -v n="$n" -v t="${OMP_NUM_THREADS:-all}" 'BEGIN {
    printf "particles %d, threads %s: %.2f s wall, peak RSS %.0f MiB, %.2f KiB per particle\n",
           n, t, s, k / 1024, k / n }'
