#!/usr/bin/env bash
# Installs a build into a folder of its own, unless it is one where things are installed
# already, and builds a project outside the tree against it, by CMake and by pkg-config:
# check.sh <build folder or prefix>
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

if [ -f "$build/cmake_install.cmake" ]; then
    cmake --install "$build" --prefix "$scratch/prefix" >"$scratch/install.log"
else
    ln -s "$build" "$scratch/prefix"
fi
cp -r "$here" "$scratch/project"
printf '2\n0\n0\n-2\n11\n49\n' >"$scratch/map.tfw"
printf '%s' 'GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]' >"$scratch/map.prj"

cmake -S "$scratch/project" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$scratch/prefix" >"$scratch/cmake.log"
cmake --build "$scratch/cmake" >>"$scratch/cmake.log" || { cat "$scratch/cmake.log"; exit 1; }
echo "by CMake:      $("$scratch/cmake/consumer" "$scratch/map.tfw")"

library_dir=$(dirname "$(find "$scratch/prefix/" -name mapanchor.pc)")
export PKG_CONFIG_PATH="$library_dir"
flags=$(pkg-config --define-variable=prefix="$scratch/prefix" --cflags --libs mapanchor)
# shellcheck disable=SC2086
g++ -std=c++17 -Wall -Werror "$here/main.cpp" $flags -o "$scratch/by_pkg_config"
echo "by pkg-config: $(LD_LIBRARY_PATH="$library_dir/.." "$scratch/by_pkg_config" "$scratch/map.tfw")"
LD_LIBRARY_PATH="$library_dir/.." "$scratch/prefix/bin/mapanchor" info "$scratch/map.tfw" >/dev/null

# In plain C, with its leaks counted; the JSON is that of the tool.
mkdir "$scratch/c"
export LD_LIBRARY_PATH="$library_dir/.."  # where the linker, too, finds what the library needs
"$scratch/cmake/consumer_c" "$scratch/map.tfw" "$scratch/c" >"$scratch/by_cmake.json"
flags=$(pkg-config --define-variable=prefix="$scratch/prefix" --cflags --libs mapanchor-c)
# shellcheck disable=SC2086
gcc -std=c99 -pedantic -Wall -Wextra -Werror -fsanitize=address,undefined "$here/main.c" $flags -o "$scratch/c_by_pkg_config"
ASAN_OPTIONS=detect_leaks=1 "$scratch/c_by_pkg_config" "$scratch/map.tfw" "$scratch/c" >"$scratch/c.json"
for command in info sources; do
    "$scratch/prefix/bin/mapanchor" $command --json "$scratch/map.tfw"
done >"$scratch/tool.json"
diff "$scratch/tool.json" "$scratch/c.json"
diff "$scratch/tool.json" "$scratch/by_cmake.json"
echo "in C:          the same JSON as the tool's, no leak"
echo "consumer: the installed package works"
