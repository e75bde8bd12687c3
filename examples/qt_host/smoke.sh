#!/usr/bin/env bash
# Georeferences a sheet in the host as a person does, on an X server of its own: opens it, clicks
# points, pastes coordinates, watches the residuals, saves, and looks at the window.
# smoke.sh <host> <raster> <points>
set -euo pipefail
command -v xvfb-run >/dev/null || { echo "xvfb-run is not installed" >&2; exit 77; }
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
host() { xvfb-run -a env QT_QPA_PLATFORM=xcb "$host_program" "$@"; }
fail() { echo "$*" >&2; exit 1; }
host_program=$1
cp "$2" "$scratch/sheet.png"
cd "$scratch"

# Clicks are to about a pixel of the screen, and so are the residuals.
cat >clicks.txt <<EOF
open sheet.png
system EPSG:25832
click 120 40
paste 676000 5240000
click 1120 66
paste 681000, 5240000
click 99 840
paste 676000 5236000
click 1099 866
paste 681000;5236000
report
save sheet.pgw
picture clicks.png
EOF
host --script clicks.txt >clicks.out
grep -q 'through 4 points' clicks.out || fail "no fit through the points: $(cat clicks.out)"
awk 'NR == 1 { exit !($1 > 4.9 && $1 < 5.1) }' sheet.pgw || fail "a pixel is not 5 m: $(cat sheet.pgw)"
grep -q 'UTM' sheet.prj || fail "the system was not saved"

# Without the point that is wrong the fit is good.
cat >points.txt <<EOF
open sheet.png
points $3
residual 6
report
unuse 6
report
picture points.png
EOF
host --script points.txt >points.out
grep -q 'Suspect: P7' points.out || fail "the wrong point was not found: $(cat points.out)"
awk 'NR == 1 { exit !($1 > 10) }' points.out || fail "the residual of P7 is not shown: $(cat points.out)"
grep -q 'through 11 points, RMSE 0' points.out || fail "the fit did not change: $(cat points.out)"

# A window that was drawn has many colours, and the two differ.
[ "$(stat -c %s points.png)" -gt 20000 ] || fail "the window is blank"
! cmp -s clicks.png points.png || fail "the windows are the same"
if [ -n "${QT_HOST_PICTURES:-}" ]; then cp clicks.png points.png "$QT_HOST_PICTURES"; fi

echo "open missing.png" >missing.txt
! host --script missing.txt 2>missing.out || fail "a missing file was opened"
grep -q 'missing.png cannot be opened' missing.out || fail "no reason: $(cat missing.out)"
echo "Qt host: opens, fits, saves and shows"
