#!/usr/bin/env bash
# The README's film: scheibenbild --film draws three snapshots, given out of
# order, as frames of one size, odd views made even; ffmpeg makes them an MP4
# of three frames in H.264, which needs even sizes.
#   film.sh SCHEIBENBILD DATA_FOLDER
# Exit 77 (skipped) without ffmpeg (Debian package ffmpeg); under CI, whose
# .ci/deps installs it, 1.
set -euo pipefail
werkzeug=$1
daten=$2
if ! command -v ffmpeg > /dev/null || ! command -v ffprobe > /dev/null; then
    echo "SKIPPED: ffmpeg is not installed (Debian package ffmpeg)"
    [ "${CI:-}" = true ] && exit 1
    exit 77
fi
ordner=$(mktemp -d)
trap 'rm -rf "$ordner"' EXIT
for t in 0 100 20; do
    sed "s/^Zeit 0$/Zeit $t/" "$daten/Akk-OYCar-0" > "$ordner/Akk-OYCar-$t"
done
cd "$ordner"
"$werkzeug" -p "$daten/OYCar.parameter" --pixel 151 --ansicht oben --film -o film \
    Akk-OYCar-100 Akk-OYCar-0 Akk-OYCar-20 > bilder.txt
printf 'film/bild-%04d.png\n' 0 1 2 | cmp - bilder.txt
ffmpeg -loglevel error -framerate 2 -i film/bild-%04d.png -pix_fmt yuv420p film.mp4 < /dev/null
strom=$(ffprobe -v error -select_streams v:0 -count_frames \
    -show_entries stream=codec_name,pix_fmt,nb_read_frames -of csv=p=0 film.mp4)
if [ "$strom" != "h264,yuv420p,3" ]; then
    echo "FAILED: film.mp4 holds '$strom', not 'h264,yuv420p,3'"
    exit 1
fi
echo "film.mp4: 3 frames, $strom"
