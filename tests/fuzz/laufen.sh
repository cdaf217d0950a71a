#!/usr/bin/env bash
# Builds the fuzz targets with clang in build-fuzz and runs each one for the
# given number of seconds (default 60) on a scratch copy of its seed corpus,
# one after the other. Any crash, timeout, leak, excess memory or sanitizer
# report fails the script; the reproducer is kept in build-fuzz/fuzz-funde/.
set -euo pipefail
sekunden=${1:-60}
wurzel=$(cd "$(dirname "$0")/../.." && pwd)
bau=$wurzel/build-fuzz
CC=clang CXX=clang++ cmake -S "$wurzel" -B "$bau" -DAKK_FUZZ=ON -DAKK_TESTS=OFF -DAKK_BENCH=OFF >/dev/null
cmake --build "$bau" -j2 --target fuzz_parameter fuzz_snapshot
funde=$bau/fuzz-funde
mkdir -p "$funde"
# Scratch space in memory when possible. The targets put their files below
# TMPDIR; a crashed target cannot clean up, so TMPDIR is inside the scratch.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
arbeit=$(mktemp -d)
trap 'rm -rf "$arbeit"' EXIT
export TMPDIR=$arbeit
# A smaller quarantine than the default 256 MB keeps the memory of freed
# blocks warm and still spans many executions.
export ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:quarantine_size_mb=64
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
fehler=0
for ziel in fuzz_parameter fuzz_snapshot; do
  # New inputs go to the scratch directory; the seeds in the repository are only read.
  mkdir "$arbeit/$ziel"
  log=$arbeit/$ziel.log
  if "$bau/tests/fuzz/$ziel" -max_total_time="$sekunden" -timeout=5 -rss_limit_mb=2048 \
      -detect_leaks=1 -print_final_stats=1 -artifact_prefix="$funde/$ziel-" \
      "$arbeit/$ziel" "$wurzel/tests/fuzz/corpus/$ziel" >"$log" 2>&1 &&
    ! grep -qE 'runtime error|ERROR: [A-Za-z]*Sanitizer|WARNING: [A-Za-z]*Sanitizer' "$log"; then
    echo "$ziel: ok, $(grep -m1 -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$') executions in ${sekunden} s"
  else
    echo "$ziel: FAILED (reproducer in $funde)"
    tail -n 60 "$log"
    fehler=1
  fi
done
exit $fehler
