#!/bin/bash
# A disc that reaches the 3:1 resonance, fed by the stream through L1 and run
# for many binary orbits: the superhump experiment. Prepares a run folder
# with OY Car's parameters and stream keys (those of strom/beispiel/, the
# secondary's mass replaced for the control at a larger mass ratio), an
# initial disc from scheibengenerator, and runs akkstrom there on one thread
# at low priority, in slices with checkpoints: a stopped run is taken up
# again by calling the script once more with the same arguments.
#
#   experimente/superhump/lauf.sh FOLDER [key=value ...]
#
# keys (defaults in brackets):
#   m2=M        secondary's mass, solar masses [0.07: OY Car, q = 0.102]
#   bahnen=N    binary orbits [100]
#   pro_bahn=K  snapshots an orbit [20]
#   rate=R      mass transfer rate through L1, solar masses a second
#               [1.6e-17 = 5e-10 a year: a particle every 10.8 s]
#   n=N         particles of the initial disc [6000]
#   innen=R     inner radius of the initial disc [0.08]
#   aussen=R    outer radius of the initial disc [0.3]
#   alpha=A     ArtVisk_alpha [1, as strom/beispiel/]
#   beta=B      ArtVisk_beta [2, as strom/beispiel/]
#   optionen=.. further options of akkstrom, e.g. "--integrator leapfrog
#               --lichtkurve lichtkurve.tsv" [none]
#   faeden=T    OMP_NUM_THREADS [1]
#
# Afterwards FOLDER holds data/ (parameter file, initial disc, snapshots,
# checkpoint), akkstrom.log (the driver's lines with one pair count a step),
# fortschritt.log (progress lines after the wall-clock time) and
# wandzeit.txt (wall time of each slice, s).
set -euo pipefail

quelle=$(cd "$(dirname "$0")/../.." && pwd)
[ $# -ge 1 ] || { sed -n 2,28p "$0"; exit 2; }
ordner=$1; shift
m2=0.07 bahnen=100 pro_bahn=20 rate=1.6e-17 n=6000 innen=0.08 aussen=0.3 alpha=1 beta=2
optionen= faeden=1
for a in "$@"; do
    case $a in
    m2=*|bahnen=*|pro_bahn=*|rate=*|n=*|innen=*|aussen=*|alpha=*|beta=*|optionen=*|faeden=*)
        declare "$a" ;;
    *) echo "lauf.sh: unknown argument '$a'" >&2; exit 2 ;;
    esac
done
bau=${AKK_BUILD:-build}
case $bau in /*) ;; *) bau=$quelle/$bau ;; esac
for p in akkstrom tools/scheibengenerator; do
    [ -x "$bau/$p" ] || { echo "lauf.sh: no $bau/$p; build first" >&2; exit 1; }
done

mkdir -p "$ordner/data"
ordner=$(cd "$ordner" && pwd)
cd "$ordner"
if [ ! -f data/akkstrom.sicherung ]; then
    compgen -G "data/Akk-OYCar-[1-9]*" > /dev/null &&
        { echo "lauf.sh: $ordner/data holds snapshots but no checkpoint" >&2; exit 1; }
    periode=$(awk '$1 == "Bahnperiode" { print $2 }' "$quelle/strom/beispiel/data/OYCar.parameter")
    dauer=$(awk -v p="$periode" -v n="$bahnen" 'BEGIN { printf "%.10g", p * n }')
    {
    # The note must not contain a key's word: every word of the file counts.
    echo "% Made by experimente/superhump/lauf.sh from strom/beispiel/data: $bahnen orbits,"
    echo "% $pro_bahn snapshots an orbit, transfer $rate solar masses a second, secondary $m2,"
    echo "% artificial viscosity $alpha and $beta;"
    echo "% initial disc of $n particles from $innen to $aussen."
    echo
    sed -e "s/^Outputfiles .*/Outputfiles $((bahnen * pro_bahn))/" \
        -e "s/^Outputtime .*/Outputtime $dauer/" \
        -e "s/^MaxSchritte .*/MaxSchritte $((bahnen * 50000))/" \
        -e "s/^Stromrate .*/Stromrate $rate/" \
        -e "s/^Sekundaersternmasse .*/Sekundaersternmasse $m2/" \
        -e "s/^ArtVisk_alpha .*/ArtVisk_alpha $alpha/" \
        -e "s/^ArtVisk_beta .*/ArtVisk_beta $beta/" \
        "$quelle/strom/beispiel/data/OYCar.parameter"
    } > data/OYCar.parameter
    "$bau/tools/scheibengenerator" -n "$n" --innen "$innen" --aussen "$aussen" \
        -p data/OYCar.parameter -o data/Akk-OYCar-0
    weiter=
    echo "lauf.sh: $ordner: m2 $m2, $bahnen orbits, rate $rate, $n particles $innen..$aussen"
else
    weiter=--weiter
    echo "lauf.sh: $ordner: going on from the checkpoint"
fi
beginn=$(date +%s.%N)
# A checkpoint every ten minutes; the pair count is kept once a step.
# shellcheck disable=SC2086
OMP_NUM_THREADS=$faeden AKKSTROM_FORTSCHRITT=1 nice -n 10 "$bau/akkstrom" $weiter \
    --sicherung-minuten 10 $optionen \
    2> >(while IFS= read -r zeile; do printf '%(%s)T %s\n' -1 "$zeile"; done >> fortschritt.log) |
    awk '/^Anzahl WWPartnern/ { if (!gezeigt) print; gezeigt = 1; next } { gezeigt = 0; print }' \
    >> akkstrom.log || true
ende=$(date +%s.%N)
awk -v a="$beginn" -v e="$ende" 'BEGIN { printf "%.0f\n", e - a }' >> wandzeit.txt
grep -q '^remove_count' akkstrom.log && echo "lauf.sh: done" ||
    echo "lauf.sh: stopped before the end; call again to go on"
