#!/bin/bash
# The resolved ring: makes its initial disc with scheibengenerator and runs
# akkscheibe on it in experimente/aufgeloest/, on one thread at low priority.
#
#   experimente/aufgeloest/lauf.sh
#
# The build folder is taken from AKK_BUILD (default build). Afterwards the
# folder holds the snapshots in data/, akkscheibe.log (the driver's lines
# with one pair count a step), wandzeit.txt (the wall time in seconds) and
# rechenzeit.txt (the shell's times: its own CPU time, then that of the
# programs it ran, user and system).
set -euo pipefail

quelle=$(cd "$(dirname "$0")/../.." && pwd)
bau=${AKK_BUILD:-build}
case $bau in /*) ;; *) bau=$quelle/$bau ;; esac
ordner=$quelle/experimente/aufgeloest

for p in akkscheibe tools/scheibengenerator; do
    [ -x "$bau/$p" ] || { echo "lauf.sh: no $bau/$p; build first, or set AKK_BUILD" >&2; exit 1; }
done
if compgen -G "$ordner/data/Akk-OYCar-[1-9]*" > /dev/null; then
    echo "lauf.sh: $ordner/data already holds snapshots; remove them first" >&2
    exit 1
fi

"$bau/tools/scheibengenerator" --anzahl 50000 --innen 0.14 --aussen 0.2 --hoehe 0.0053 \
    --steigung 0 --seed 1 --parameter "$ordner/data/OYCar.parameter" \
    --ausgabe "$ordner/data/Akk-OYCar-0"

cd "$ordner"
beginn=$(date +%s.%N)
OMP_NUM_THREADS=1 nice -n 10 "$bau/akkscheibe" |
    awk '/^Anzahl WWPartnern/ { if (!gezeigt) print; gezeigt = 1; next } { gezeigt = 0; print }' \
    > akkscheibe.log
ende=$(date +%s.%N)
awk -v a="$beginn" -v e="$ende" 'BEGIN { printf "%.0f\n", e - a }' > wandzeit.txt
# CPU time of the run (user and system, of the programs this script started).
times > rechenzeit.txt
echo "lauf.sh: done in $(cat wandzeit.txt) s, CPU (user system) $(sed -n 2p rechenzeit.txt)"
