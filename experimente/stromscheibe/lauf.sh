#!/bin/bash
# A disc built from nothing by the gas stream through L1, over many binary
# orbits: prepares a run folder with OY Car's parameters and stream keys
# (those of strom/beispiel/) and an empty initial disc, then runs akkstrom
# there on one thread at low priority.
#
#   experimente/stromscheibe/lauf.sh [FOLDER [RATE [ORBITS [PER_ORBIT]]]]
#
# FOLDER     run folder, made if missing (default experimente/stromscheibe/lauf);
#            an existing one must not hold snapshots already
# RATE       mass transfer rate through L1 in solar masses per second
#            (default 3.2e-17 = 1.0e-9 per year: a particle every 5.4 s, as in
#            strom/beispiel/)
# ORBITS     binary orbits to run (default 10)
# PER_ORBIT  snapshots per orbit (default 20)
#
# The build folder is taken from AKK_BUILD (default build), further options
# of akkstrom (e.g. --integrator leapfrog) from AKK_OPTIONEN. Afterwards FOLDER
# holds data/ (parameter file and snapshots), akkstrom.log (the driver's
# lines, with the removals, and one pair count a step), fortschritt.log (the
# progress lines after the wall-clock time), wandzeit.txt (the wall time in
# seconds) and rechenzeit.txt (the output of the shell's times: its own CPU
# time, then that of the programs it ran, user and system).
set -euo pipefail

quelle=$(cd "$(dirname "$0")/../.." && pwd)
ordner=${1:-$quelle/experimente/stromscheibe/lauf}
rate=${2:-3.2e-17}
bahnen=${3:-10}
pro_bahn=${4:-20}
bau=${AKK_BUILD:-build}
case $bau in /*) ;; *) bau=$quelle/$bau ;; esac
programm=$bau/akkstrom

fehler() { echo "lauf.sh: $*" >&2; exit 1; }
[ -x "$programm" ] || fehler "no $programm; build first (cmake --build $bau), or set AKK_BUILD"
zahl='^[0-9]+([.][0-9]*)?([eE][-+]?[0-9]+)?$'
[[ $rate =~ $zahl ]] || fehler "RATE '$rate' is not a number"
[[ $bahnen =~ ^[1-9][0-9]*$ ]] || fehler "ORBITS '$bahnen' is not a whole number above 0"
[[ $pro_bahn =~ ^[1-9][0-9]*$ ]] || fehler "PER_ORBIT '$pro_bahn' is not a whole number above 0"

mkdir -p "$ordner/data"
ordner=$(cd "$ordner" && pwd)
if compgen -G "$ordner/data/Akk-OYCar-[1-9]*" > /dev/null; then
    fehler "$ordner/data already holds snapshots; remove them or choose another folder"
fi

# OY Car's orbit: the period as in the parameter file.
periode=$(awk '$1 == "Bahnperiode" { print $2 }' "$quelle/strom/beispiel/data/OYCar.parameter")
dauer=$(awk -v p="$periode" -v n="$bahnen" 'BEGIN { printf "%.10g", p * n }')
# The steps of the one-orbit example (about 1200 an orbit) with room to spare.
schritte=$((bahnen * 20000))
{
# Note at the top; it must not contain a key's word, since every word counts.
echo "% Made by experimente/stromscheibe/lauf.sh from strom/beispiel/data: $bahnen orbits,"
echo "% $pro_bahn snapshots an orbit, mass transfer rate $rate solar masses a second;"
echo "% the notes below still describe the one-orbit example."
echo
sed -e "s/^Outputfiles .*/Outputfiles $((bahnen * pro_bahn))/" \
    -e "s/^Outputtime .*/Outputtime $dauer/" \
    -e "s/^MaxSchritte .*/MaxSchritte $schritte/" \
    -e "s/^Stromrate .*/Stromrate $rate/" \
    "$quelle/strom/beispiel/data/OYCar.parameter"
} > "$ordner/data/OYCar.parameter"
cp "$quelle/strom/beispiel/data/Akk-OYCar-0" "$ordner/data/Akk-OYCar-0"

echo "lauf.sh: $ordner: Stromrate $rate, $bahnen orbits ($dauer s), $((bahnen * pro_bahn)) snapshots"
cd "$ordner"
beginn=$(date +%s.%N)
# The pair count is printed at every evaluation of the forces, six or more
# times a step; the log keeps the first of each step. The progress lines get
# the wall-clock time in seconds in front, for the pace of the run.
# shellcheck disable=SC2086
OMP_NUM_THREADS=1 AKKSTROM_FORTSCHRITT=1 nice -n 10 "$programm" ${AKK_OPTIONEN:-} \
    2> >(while IFS= read -r zeile; do printf '%(%s)T %s\n' -1 "$zeile"; done > fortschritt.log) |
    awk '/^Anzahl WWPartnern/ { if (!gezeigt) print; gezeigt = 1; next } { gezeigt = 0; print }' \
    > akkstrom.log || true
ende=$(date +%s.%N)
awk -v a="$beginn" -v e="$ende" 'BEGIN { printf "%.0f\n", e - a }' > wandzeit.txt
# CPU time of the run (user and system, of the programs this script started).
times > rechenzeit.txt
grep -q '^remove_count' akkstrom.log || fehler "akkstrom did not reach Outputtime; see $ordner/akkstrom.log"
echo "lauf.sh: done in $(cat wandzeit.txt) s, CPU (user system) $(sed -n 2p rechenzeit.txt)"
