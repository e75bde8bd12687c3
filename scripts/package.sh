#!/usr/bin/env bash
# Builds the Debian packages into build/package from a copy of the sources, looks them over with
# lintian, and runs what is in them: package.sh <jobs>
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/packaging.py
version=$(dpkg-parsechangelog -S Version)
output=$PWD/build/package
copy=$output/mapanchor-$version  # one folder for all builds, so that the compiler's cache knows it
rm -rf "$copy" "$output"/*.deb
mkdir -p "$copy"
if git rev-parse --git-dir >/dev/null 2>&1; then
    git ls-files -z --cached --others --exclude-standard
else
    find . -path ./build -prune -o -type f -print0
fi | xargs -0 sh -c 'ls -d -- "$@" 2>/dev/null || :' sh | tar -cf - --files-from - | tar -xf - -C "$copy"
(
    cd "$copy"
    # The build has a home folder of its own.
    if command -v ccache >/dev/null; then export CCACHE_DIR=${CCACHE_DIR:-$(ccache -k cache_dir)}; fi
    CCACHE_BASEDIR=$PWD DEB_BUILD_OPTIONS="parallel=$1 ${DEB_BUILD_OPTIONS:-}" \
        dpkg-buildpackage -us -uc >"$output/build.log" 2>&1
) || { tail -n 40 "$output/build.log"; exit 1; }

as_user=()
[ "$(id -u)" -ne 0 ] || as_user=(--allow-root)
# The project has no address for maintainers, and an invented one would be worse: whoever publishes the packages
# enters their own. The packages of debug symbols, which have the address too, take no overrides.
no_address=malformed-contact,bogus-mail-host-in-debian-changelog
lintian "${as_user[@]}" --pedantic --suppress-tags "$no_address" --fail-on error,warning,pedantic "$output"/mapanchor_"$version"_*.changes
echo "package: lintian accepts; overlooked on purpose:"
echo "$no_address"
grep -hv '^#' debian/*.lintian-overrides

unpacked=$(mktemp -d)
trap 'rm -rf "$unpacked"' EXIT
core=$unpacked/core  # what needs neither GDAL nor PoDoFo nor Qt
for package in "$output"/{libmapanchor0,mapanchor,python3-mapanchor}_*.deb; do
    dpkg-deb -x "$package" "$core"
    if dpkg-deb -f "$package" Depends | grep -iE 'gdal|podofo|qt'; then
        echo "package: $package depends on what belongs to a module" >&2
        exit 1
    fi
done
core_libraries=$(dirname "$(find "$core" -name 'libMapAnchor.so.0')")
export LD_LIBRARY_PATH=$core_libraries
"$core/usr/bin/mapanchor" info examples/innsbruck.tfw >/dev/null
PYTHONPATH=$core/usr/lib/python3/dist-packages /usr/bin/python3 -c \
    'import mapanchor; assert mapanchor.read("examples/innsbruck.tfw").crs'
for package in "$output"/*.deb; do dpkg-deb -x "$package" "$unpacked"; done
unset LD_LIBRARY_PATH
tests/consumer/check.sh "$unpacked/usr"
for package in "$output"/*.deb; do
    echo "$(basename "$package"): $(dpkg-deb -f "$package" Installed-Size) KiB: $(dpkg-deb -f "$package" Depends)"
done
