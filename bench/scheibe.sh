# The benchmark disc, sourced by bench/lauf.sh and bench/verteilt.sh:
#   bench_scheibe N STEPS BUILD_DIR ORDNER
# writes ORDNER/data/ with the shipped parameter file, the smoothing length
# scaled as N^-1/2 from 0.03 at 3000 particles (about 31 partners a
# particle), a first step of 1 s and STEPS steps, and a generated disc of N
# particles with a scale height of h/100.
bench_scheibe() {
    local n=$1 schritte=$2 build=$3 ordner=$4 quelle h hoehe
    quelle=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
    mkdir -p "$ordner/data"
    h=$(awk -v n="$n" 'BEGIN { printf "%.17g", 0.03 * sqrt(3000 / n) }')
    hoehe=$(awk -v h="$h" 'BEGIN { printf "%.17g", 0.01 * h }')
    { cat "$quelle/data/OYCar.parameter"
      printf '\nSmoothinglength %s\nAnfangsschrittweite 1\nMaxSchritte %s\n' "$h" "$schritte"
    } > "$ordner/data/OYCar.parameter"
    "$build/tools/scheibengenerator" --anzahl "$n" --hoehe "$hoehe" \
        -p "$ordner/data/OYCar.parameter" -o "$ordner/data/Akk-OYCar-0"
}
