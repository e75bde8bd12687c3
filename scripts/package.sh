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
for package in build/package/*.deb; do dpkg-deb -x "$package" "$unpacked"; done
library_dir=$(dirname "$(find "$unpacked" -name 'libMapAnchor.so')")
LD_LIBRARY_PATH=$library_dir "$unpacked/usr/bin/mapanchor" info examples/innsbruck.tfw >/dev/null
tests/consumer/check.sh "$unpacked/usr"
for package in build/package/*.deb; do
    echo "$package: $(dpkg-deb -f "$package" Depends)"
done
