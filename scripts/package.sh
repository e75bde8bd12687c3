#!/usr/bin/env bash
# Builds the Debian packages into build/package, looks them over with lintian, and runs
# what is in them: package.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset package >/dev/null
cmake --build --preset package -j "$1"
rm -f build/package/*.deb
(cd build/package && cpack >cpack.log) || { cat build/package/cpack.log; exit 1; }

as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(--allow-root)
lintian "${as_user[@]}" --fail-on error,warning build/package/*.deb
echo "package: lintian accepts; overlooked on purpose:"
grep -hv "^#" packaging/lintian/*

unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
core=$unpacked/core  # what needs neither GDAL nor PoDoFo nor Qt
for package in build/package/{libmapanchor0,mapanchor}_*.deb; do dpkg-deb -x "$package" "$core"; done
for package in build/package/{libmapanchor0,mapanchor}_*.deb; do
    if dpkg-deb -f "$package" Depends | grep -iE 'gdal|podofo|qt'; then
        echo "package: $package depends on what belongs to a module" >&2
        exit 1
    fi
done
core_libraries=$(dirname "$(find "$core" -name 'libMapAnchor.so.0')")
LD_LIBRARY_PATH=$core_libraries "$core/usr/bin/mapanchor" info examples/innsbruck.tfw >/dev/null
for package in build/package/*.deb; do dpkg-deb -x "$package" "$unpacked"; done
library_dir=$(dirname "$(find "$unpacked" -name 'libMapAnchor.so')")
LD_LIBRARY_PATH=$library_dir "$unpacked/usr/bin/mapanchor" info examples/innsbruck.tfw >/dev/null
tests/consumer/check.sh "$unpacked/usr"
for package in build/package/*.deb; do
    echo "$package: $(dpkg-deb -f "$package" Depends)"
done
