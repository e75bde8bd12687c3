#!/usr/bin/env bash
# Builds the wheel into build/wheel, installs it into a new virtual environment and runs the Python tests
# against it: wheel.sh
# numpy, rasterio and the other peers of the tests are those of the system. PYTHON names the interpreter.
set -euo pipefail
cd "$(dirname "$0")/.."
python=${PYTHON:-/usr/bin/python3}
out=build/wheel
if ! "$python" -c 'import build, pybind11, scikit_build_core'; then
    echo "wheel: install python3-build, python3-pybind11 and python3-scikit-build-core; Debian has them from 13 on" >&2
    exit 1
fi
rm -rf "$out"
"$python" -m build --no-isolation --wheel --outdir "$out" .
wheel=$(echo "$out"/mapanchor-*.whl)
echo "wheel: $wheel, $(stat -c %s "$wheel") bytes"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset PYTHONPATH LD_LIBRARY_PATH

# An environment that has nothing else.
"$python" -m venv "$scratch/empty"
"$scratch/empty/bin/pip" install --quiet --no-index --no-deps "$wheel"
cp examples/innsbruck.* "$scratch"
(cd "$scratch" && empty/bin/python - "$scratch" <<'PYTHON')
import sys
import mapanchor
assert mapanchor.__file__.startswith(sys.argv[1]), mapanchor.__file__
reference = mapanchor.read("innsbruck.tfw")
assert reference.crs.epsg == "EPSG:32632" and reference.footprint(width=10, height=10)["type"] == "Polygon"
print("wheel: reads and places a raster in an empty environment")
PYTHON

"$python" -m venv --system-site-packages "$scratch/tests"
"$scratch/tests/bin/pip" install --quiet --no-index --no-deps "$wheel"
# In an environment Debian's pyproj finds PROJ's data only where the program proj is installed.
[ ! -e /usr/share/proj/proj.db ] || export PROJ_DATA=${PROJ_DATA:-/usr/share/proj}
"$scratch/tests/bin/python" -m pytest -q -rs -p no:cacheprovider tests/python
