#!/usr/bin/env bash
# Shows the main jobs on real input: run.sh <path of the tool>
set -euo pipefail
tool=$(realpath "$1")
cd "$(dirname "$0")"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp innsbruck.* sheet.* yosemite.* "$scratch"
cd "$scratch"

say() { printf '\n# %s\n' "$*"; }
# A job may end with status 3, which stands for warnings; an expected failure says so.
show() {
    local status=0
    printf '$ mapanchor %s\n' "$*"
    "$tool" "$@" || status=$?
    [ "$status" = 0 ] || [ "$status" = 3 ] || { echo "exit status $status" >&2; exit "$status"; }
}

say 'A sidecar: its numbers, and the same as another kind'
show info innsbruck.tfw
show convert --size 3000x2000 innsbruck.tfw innsbruck.rsf

say 'A scan of 1897 with points of today: the report names the one that does not fit'
scan=(georeference yosemite.png --gcps yosemite.csv --crs EPSG:26911)
show "${scan[@]}"

say 'Without it the fit is good, and is saved; a picture of where the scan is'
show "${scan[@]}" --drop 'Yosemite Creek' -o yosemite.pgw
show preview yosemite.png -o yosemite.svg

say 'The same scan, whose bounds are known'
show georeference yosemite.png --crs EPSG:3857 -o yosemite.png.aux.xml \
    --bounds=-13315941.823503986,4539747.983913189,-13306157.883883484,4549531.923533691

say 'A raster with two sources that disagree: which one wins'
show sources yosemite.png
show info yosemite.png

say 'A PDF, georeferenced in place and read back'
"$tool" georeference -q sheet.png --gcps sheet.csv --crs EPSG:25832 --drop P7 -o sheet.pgw >report.txt || [ $? = 3 ]
show convert --overwrite --verify --dpi 144 sheet.pgw sheet.pdf
show info --print crs,affine sheet.pdf

say 'An archive with one broken file, which fails only its own row'
mkdir archive
mv innsbruck.* sheet.pdf archive
printf '1\n0\n0\n' >archive/broken.tfw
show batch --to csv archive
