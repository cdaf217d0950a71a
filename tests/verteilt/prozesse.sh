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
    mkdir -p "$arbeit/ganz/data"
    cp "$beispiel"/data/* "$arbeit/ganz/data/"
    printf '\nMaxSchritte 240\n' >> "$arbeit/ganz/data/OYCar.parameter"
    (cd "$arbeit/ganz" && OMP_NUM_THREADS=1 "$prog" > stdout 2> stderr)
    for np in 2 3 4; do
        rm -rf "$arbeit/n"; cp -r "$arbeit/ganz" "$arbeit/n"; rm -f "$arbeit/n/data/Akk-OYCar-"[1-9]*
        (cd "$arbeit/n" && mpi $np 1 "$prog" > stdout 2> stderr)
        vergleiche "$arbeit/n" "$arbeit/ganz" "Strom np=$np"
    done
    # Stopped on a process count, resumed on another: the same run; the
    # checkpoints are the same file whatever the count that wrote them.
    for paar in "3 1" "1 4" "2 3" "4 2"; do
        set -- $paar
        h="$arbeit/halt$1$2"
        cp -r "$arbeit/ganz" "$h"; rm -f "$h"/data/Akk-OYCar-[1-9]* "$h"/std*
        (cd "$h" && mpi $1 2 "$prog" --halt-nach 101 > stdout 2> /dev/null)
        cp "$h/data/akkstrom.sicherung" "$arbeit/sicherung$1"
        (cd "$h" && mpi $2 1 "$prog" --weiter >> stdout 2> /dev/null)
        cmp -s "$h/stdout" "$arbeit/ganz/stdout" || falsch "stdout angehalten auf $1, weiter auf $2"
        diff -r -x akkstrom.sicherung "$h/data" "$arbeit/ganz/data" > /dev/null ||
            falsch "data/ angehalten auf $1, weiter auf $2"
    done
    for np in 3 4 2; do
        cmp -s "$arbeit/sicherung1" "$arbeit/sicherung$np" || falsch "Sicherung von $np Prozessen"
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
    # The options that keep per-particle state refuse several processes.
    mkdir -p "$arbeit/opt/data"
    cp "$beispiel"/data/* "$arbeit/opt/data/"
    (cd "$arbeit/opt" && mpi 2 1 "$akkstrom" --integrator leapfrog > stdout 2> stderr)
    [ $? -eq 2 ] || falsch "--integrator leapfrog auf 2 Prozessen: Status"
    grep -q "nur in einem Prozess" "$arbeit/opt/stderr" || falsch "Meldung leapfrog"
    ;;
*)
    echo "unbekannt: $art"; exit 2 ;;
esac
[ $fehler = 0 ] && echo "gleich"
exit $fehler
