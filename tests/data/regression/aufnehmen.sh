#!/usr/bin/env bash
# Records the expected output of a regression run: runs PROGRAM in a scratch
# copy of FOLDER/data and stores its exit status, standard output, standard
# error and every snapshot it writes in FOLDER/expected. Record with a build
# from before a change that must not alter results; the tests
# (tests/simulation/BeispieleTest.cpp) then compare every later build with it.
# Not run by the tests.
#
#   tests/data/regression/aufnehmen.sh FOLDER PROGRAM
set -euo pipefail
ordner=$(cd "${1:?folder with data/}" && pwd)
programm=$(cd "$(dirname "${2:?program}")" && pwd)/$(basename "$2")
arbeit=$(mktemp -d)
trap 'rm -rf "$arbeit"' EXIT
cp -r "$ordner/data" "$arbeit/"
set +e
(cd "$arbeit" && "$programm" > stdout 2> stderr < /dev/null)
status=$?
set -e
rm -rf "$ordner/expected"
mkdir -p "$ordner/expected/data"
echo "$status" > "$ordner/expected/exit"
mv "$arbeit/stdout" "$arbeit/stderr" "$ordner/expected/"
for f in "$arbeit/data"/*; do
    name=$(basename "$f")
    [ -e "$ordner/data/$name" ] || cp "$f" "$ordner/expected/data/"
done
echo "$(basename "$ordner"): exit $status, $(ls "$ordner/expected/data" | wc -l) snapshots"
