#!/usr/bin/env bash
# splash renders a snapshot that scheibensplash wrote, headless: the column
# density of the shipped initial disc at a time of 1234.5 s, as the README
# shows it. Passes when splash found the columns by their labels, read the
# time, rendered the density and wrote a picture of that.
#   splash_bild.sh SCHEIBENSPLASH DATA_FOLDER
# Exit 77 (skipped) without splash; under CI, whose .ci/deps installs it, 1.
set -euo pipefail
werkzeug=$1
daten=$2
if ! command -v splash > /dev/null; then
    if [ "${CI:-}" = true ]; then
        echo "FAILED: splash is not installed, though .ci/deps installs it (Debian package splash)"
        exit 1
    fi
    echo "SKIPPED: splash is not installed (Debian package splash; .ci/deps installs it)"
    exit 77
fi
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
sed 's/^Zeit 0$/Zeit 1234.5/' "$daten/Akk-OYCar-0" > "$ordner/Akk-OYCar-1234"
"$werkzeug" -p "$daten/OYCar.parameter" -o "$ordner/splash" "$ordner/Akk-OYCar-1234"
cd "$ordner/splash"
timeout 300 splash -r density -dev /png Akk-OYCar-1234.dat < /dev/null > splash.log 2>&1 || {
    cat splash.log
    echo "FAILED: splash ended with an error"
    exit 1
}
fehler=0
erwarte() { # a line splash printed
    grep -q -- "$1" splash.log || { echo "FAILED: splash did not print '$1'"; fehler=1; }
}
erwarte "npts = 3000, ncols = 9, skipped 3 header lines"
erwarte "setting time = *1234.5"
erwarte "Assuming density in column  9, mass in  8, h in  7"
erwarte "Assuming velocity in cols  4 to  6"
erwarte "column density min, max"
erwarte "read splash.defaults"
if [ "$(head -c 4 splash.png 2>/dev/null | od -An -c | tr -d ' ')" != '211PNG' ]; then
    echo "FAILED: no picture splash.png"
    fehler=1
elif [ "$(stat -c %s splash.png)" -lt 50000 ]; then
    echo "FAILED: splash.png has only $(stat -c %s splash.png) bytes: no rendered disc"
    fehler=1
fi
if [ $fehler -ne 0 ]; then
    cat splash.log
    exit 1
fi
echo "splash rendered the column density at t = 1234.5 s into a picture of $(stat -c %s splash.png) bytes"
