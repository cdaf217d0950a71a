#!/usr/bin/env bash
# One disc over several MPI processes gives the bytes of one process.
#   prozesse.sh beispiele AKKSCHEIBE TESTDATEN   every reference and regression run
#                                                at 1 to 4 processes x 1 and 2 threads
#   prozesse.sh zufall AKKSCHEIBE GENERATOR TESTDATEN [ANZAHL]
#                                                random discs against one process
#   prozesse.sh strom AKKSTROM BEISPIEL          the stream example, stopped and resumed
#                                                at other process counts, and a killed process
#   prozesse.sh fehler AKKSCHEIBE AKKSTROM TESTDATEN BEISPIEL   bad use gets its message
set -uo pipefail
art=$1
shift
# Under the sanitizers (CI's build-asan), the MPI library's own allocations
# kept to the end are no leak of the program: its components stay loaded,
# so that the suppressions can name them.
export OMPI_MCA_mca_base_component_disable_dlclose=1
export LSAN_OPTIONS="suppressions=$(dirname "$0")/lsan.supp:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}fast_unwind_on_malloc=0"
mpi() { # mpi NP THREADS PROGRAM [ARGS...]: in the working directory
    local np=$1 faeden=$2
    shift 2
    OMP_NUM_THREADS=$faeden OMPI_MCA_mpi_yield_when_idle=1 \
        mpirun --allow-run-as-root --oversubscribe -np "$np" "$@"
}
arbeit=$(mktemp -d)
trap 'rm -rf "$arbeit"' EXIT
fehler=0
falsch() { echo "FALSCH: $*"; fehler=1; }

# vergleiche DIR ERWARTET: stdout, stderr and every file of data/ the same.
vergleiche() {
    cmp -s "$1/stdout" "$2/stdout" || falsch "stdout $3"
    if [ -f "$2/stderr" ]; then cmp -s "$1/stderr" "$2/stderr" || falsch "stderr $3"; fi
    diff -r "$1/data" "$2/data" > /dev/null || falsch "data/ $3"
}

case $art in
beispiele)
    prog=$1 daten=$2
    for d in "$daten"/beispiele/*/ "$daten"/regression/*/; do
        for np in 1 2 3 4; do
            for faeden in 1 2; do
                l="$arbeit/lauf"
                rm -rf "$l"; mkdir -p "$l"; cp -r "$d/data" "$l/"
                (cd "$l" && mpi $np $faeden "$prog" > stdout 2> stderr)
                cmp -s "$l/stdout" "$d/expected/stdout" || falsch "stdout $d np=$np faeden=$faeden"
                cmp -s "$l/stderr" "$d/expected/stderr" || falsch "stderr $d np=$np faeden=$faeden"
                for f in "$d"/expected/data/*; do
                    cmp -s "$f" "$l/data/$(basename "$f")" || falsch "$f np=$np faeden=$faeden"
                done
            done
        done
    done
    ;;
zufall)
    prog=$1 generator=$2 daten=$3 anzahl=${4:-100}
    parameter=("$daten"/beispiele/*/data/OYCar.parameter "$daten"/regression/*/data/OYCar.parameter)
    RANDOM=20261123
    for ((k = 0; k < anzahl; ++k)); do
        p=${parameter[RANDOM % ${#parameter[@]}]}
        n=$((50 + RANDOM % 400)) np=$((2 + k % 3)) faeden=$((1 + (k / 3) % 2))
        innen=0.0$((6 + RANDOM % 4)) aussen=0.$((20 + RANDOM % 15)) hoehe=0.00$((RANDOM % 5))
        rm -rf "$arbeit/eins" "$arbeit/viele"; mkdir -p "$arbeit/eins/data"
        cp "$p" "$arbeit/eins/data/OYCar.parameter"
        printf '\nMaxSchritte %d\n' $((3 + RANDOM % 12)) >> "$arbeit/eins/data/OYCar.parameter"
        "$generator" --anzahl $n --innen $innen --aussen $aussen --hoehe $hoehe --seed $((k + 1)) \
            -p "$arbeit/eins/data/OYCar.parameter" -o "$arbeit/eins/data/Akk-OYCar-0" || falsch "generator $k"
        cp -r "$arbeit/eins" "$arbeit/viele"
        (cd "$arbeit/eins" && OMP_NUM_THREADS=1 "$prog" > stdout 2> stderr)
        (cd "$arbeit/viele" && mpi $np $faeden "$prog" > stdout 2> stderr)
        vergleiche "$arbeit/viele" "$arbeit/eins" "Scheibe $k ($n Teilchen, $p, np=$np faeden=$faeden)"
    done
    ;;
strom)
    prog=$1 beispiel=$2
    # The Cash-Karp run, and the leapfrog with the light curve (its
    # accelerations go with the particles and into the checkpoint).
    for art in cashkarp leapfrog; do
        optionen=()
        [ $art = leapfrog ] && optionen=(--integrator leapfrog --lichtkurve lk.tsv)
        ganz="$arbeit/ganz-$art"
        mkdir -p "$ganz/data"
        cp "$beispiel"/data/* "$ganz/data/"
        printf '\nMaxSchritte 240\n' >> "$ganz/data/OYCar.parameter"
        (cd "$ganz" && OMP_NUM_THREADS=1 "$prog" "${optionen[@]}" > stdout 2> stderr)
        for np in 2 3 4; do
            n="$arbeit/n-$art"
            rm -rf "$n"; cp -r "$ganz" "$n"; rm -f "$n"/data/Akk-OYCar-[1-9]* "$n"/lk.tsv
            (cd "$n" && mpi $np 1 "$prog" "${optionen[@]}" > stdout 2> stderr)
            vergleiche "$n" "$ganz" "$art np=$np"
            [ $art = cashkarp ] || cmp -s "$n/lk.tsv" "$ganz/lk.tsv" || falsch "Lichtkurve np=$np"
        done
        # Stopped on a process count, resumed on another: the same run; the
        # checkpoints are the same file whatever the count that wrote them.
        for paar in "3 1" "1 4" "2 3" "4 2"; do
            set -- $paar
            h="$arbeit/halt-$art$1$2"
            cp -r "$ganz" "$h"; rm -f "$h"/data/Akk-OYCar-[1-9]* "$h"/std* "$h"/lk.tsv
            (cd "$h" && mpi $1 2 "$prog" "${optionen[@]}" --halt-nach 101 > stdout 2> /dev/null)
            cp "$h/data/akkstrom.sicherung" "$arbeit/sicherung-$art$1"
            (cd "$h" && mpi $2 1 "$prog" "${optionen[@]}" --weiter >> stdout 2> /dev/null)
            cmp -s "$h/stdout" "$ganz/stdout" || falsch "$art stdout angehalten auf $1, weiter auf $2"
            diff -r -x akkstrom.sicherung "$h/data" "$ganz/data" > /dev/null ||
                falsch "$art data/ angehalten auf $1, weiter auf $2"
            [ $art = cashkarp ] || cmp -s "$h/lk.tsv" "$ganz/lk.tsv" ||
                falsch "$art Lichtkurve angehalten auf $1, weiter auf $2"
        done
        for np in 3 4 2; do
            cmp -s "$arbeit/sicherung-${art}1" "$arbeit/sicherung-$art$np" ||
                falsch "$art: Sicherung von $np Prozessen"
        done
    done
    # A process killed mid-run ends the job; --weiter from the last
    # checkpoint gives the bytes of the uninterrupted run.
    k="$arbeit/getoetet" g="$arbeit/lang"
    mkdir -p "$g/data"
    cp "$beispiel"/data/* "$g/data/"
    printf '\nMaxSchritte 700\n' >> "$g/data/OYCar.parameter"
    cp -r "$g" "$k"
    (cd "$g" && OMP_NUM_THREADS=1 "$prog" > stdout 2> /dev/null)
    (cd "$k" && mpi 3 1 "$prog" --sicherung-schritte 40 > stdout 2> /dev/null) &
    job=$!
    for ((w = 0; w < 600; ++w)); do
        [ -f "$k/data/akkstrom.sicherung" ] && break
        sleep 0.05
    done
    opfer=$(pgrep -f "^$prog --sicherung-schritte 40" | tail -1)
    [ -n "$opfer" ] && kill -9 "$opfer"
    wait $job && falsch "der Lauf mit einem getoeteten Prozess endete mit 0"
    grep -q "^step: 700 " "$k/stdout" && falsch "der Prozess wurde erst nach dem Lauf getoetet"
    (cd "$k" && mpi 2 1 "$prog" --weiter > weiter 2> /dev/null) || falsch "weiter nach dem Abbruch"
    n=$(wc -l < "$k/weiter")
    { [ "$n" -gt 0 ] && tail -n "$n" "$g/stdout" | cmp -s - "$k/weiter"; } ||
        falsch "stdout nach dem Abbruch"
    diff -r -x akkstrom.sicherung "$k/data" "$g/data" > /dev/null || falsch "data/ nach dem Abbruch"
    ;;
fehler)
    akkscheibe=$1 akkstrom=$2 daten=$3 beispiel=$4
    # A grid of three cell planes: at most three processes.
    mkdir -p "$arbeit/eng/data"
    cp "$daten"/regression/g01_gas_disc_802/data/* "$arbeit/eng/data/"
    printf '\nSmoothinglength 0.5\n' >> "$arbeit/eng/data/OYCar.parameter"
    (cd "$arbeit/eng" && mpi 4 1 "$akkscheibe" > stdout 2> stderr)
    status=$?
    [ $status -ne 0 ] || falsch "4 Prozesse auf 3 Ebenen: Status 0"
    grep -q "^Fehler: 4 Prozesse, aber nur 3 Zellebenen" "$arbeit/eng/stdout" || falsch "Meldung zu vielen Prozessen"
    [ "$(grep -c Zellebenen "$arbeit/eng/stdout")" = 1 ] || falsch "Meldung nicht einmal"
    ls "$arbeit/eng/data" | grep -q 'Akk-OYCar-[1-9]' && falsch "Schnappschuss trotz Fehler"
    # A checkpoint of another run is refused on every process count.
    mkdir -p "$arbeit/fremd/data"
    cp "$beispiel"/data/* "$arbeit/fremd/data/"
    (cd "$arbeit/fremd" && mpi 2 1 "$akkstrom" --halt-nach 3 > /dev/null 2>&1)
    printf '\n%% anders\n' >> "$arbeit/fremd/data/OYCar.parameter"
    (cd "$arbeit/fremd" && mpi 3 1 "$akkstrom" --weiter > stdout 2> stderr)
    [ $? -eq 1 ] || falsch "fremde Sicherung auf 3 Prozessen: Status"
    [ "$(LC_ALL=C grep -c "geh.rt zu einem anderen Lauf" "$arbeit/fremd/stderr")" = 1 ] ||
        falsch "Meldung fremde Sicherung"
    ;;
*)
    echo "unbekannt: $art"; exit 2 ;;
esac
[ $fehler = 0 ] && echo "gleich"
exit $fehler
