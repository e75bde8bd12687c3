#!/usr/bin/env bash
# Opens a raster with a sidecar and a PDF page in the host, on an X server of its own, saves
# other sidecars, and holds what the host shows and saves against the sources:
# smoke.sh <host> <world file> <PDF>
set -euo pipefail
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
host() { xvfb-run -a env QT_QPA_PLATFORM=xcb "$host_program" "$@"; }
host_program=$1

cp "$2" "$scratch/map.pgw"
cp "${2%.*}.prj" "$scratch/map.prj"
# A picture of 40 by 20 pixels in the simplest format that Qt reads; its name asks for map.pgw.
{ printf 'P5 40 20 255\n'; head -c 800 /dev/zero; } >"$scratch/map.png"

shown=$(host "$scratch/map.png" "$scratch/copy.tab")
wanted='System: WGS 84 / UTM zone 32N
Size: 40 x 20
Corners:
676000, 5242000
676020, 5242000
676020, 5241990
676000, 5241990'
diff <(echo "$wanted") <(sed '/^$/d' <<<"$shown")
grep -q 'File "map.png"' "$scratch/copy.tab"
[ "$(grep -c 'Label "' "$scratch/copy.tab")" -ge 3 ]

shown=$(host "$3" "$scratch/page.tab")
grep -q 'System: WGS 84 / UTM zone 33N' <<<"$shown"
[ "$(grep -c 'Label "' "$scratch/page.tab")" -ge 3 ]

! host "$scratch/none.png" "$scratch/none.tab" >/dev/null || { echo "a missing file was opened"; exit 1; }
echo "Qt host: opens, shows and saves"
