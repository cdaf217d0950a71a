#!/usr/bin/env bash
# Wall time of a command on an idle machine and beside one busy loop per
# core (another process that wants every core), with the default thread
# count and with OMP_NUM_THREADS=1. The command runs in the current folder.
#
#   bench/belastet.sh COMMAND [ARGS...]
#   e.g. (cd strom/beispiel && ../../bench/belastet.sh ../../build/akkstrom)
set -euo pipefail
kerne=$(nproc)
messe() { # label, then the environment for the run
    local was=$1
    shift
    local t0 t1
    t0=$(date +%s.%N)
    env "$@" "${befehl[@]}" > /dev/null 2>&1
    t1=$(date +%s.%N)
    awk -v w="$was" -v a="$t0" -v b="$t1" 'BEGIN { printf "%-40s %7.2f s\n", w, b - a }'
}
befehl=("$@")
messe "idle, default threads"
messe "idle, 1 thread" OMP_NUM_THREADS=1
schleifen=()
for _ in $(seq "$kerne"); do
    (while :; do :; done) &
    schleifen+=($!)
done
trap 'kill "${schleifen[@]}" 2> /dev/null || true' EXIT
messe "$kerne busy loops, default threads"
messe "$kerne busy loops, 1 thread" OMP_NUM_THREADS=1
