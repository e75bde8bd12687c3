#!/usr/bin/env bash
# Builds and tests the committed tree in a clean root of another Debian, as root:
#
#   other-debian.sh [--keep] SUITE [TARGET...]
#   other-debian.sh --keep SUITE -- COMMAND...     runs a command in the tree there
#
# SUITE is 12, 13 or what a mirror calls it, such as testing; TARGET is one of make (run test).
# --keep works in the root that a run with --keep left, if there is one, and leaves it again.
#
# MIRROR       the mirror (the first one in this machine's apt sources)
# ROOTS        where roots, packages and logs are kept (build/other-debian)
# CCACHE_DIR   what earlier runs compiled (ROOTS/ccache)
# ARCH         the architecture (this machine's)
# MAKE_WORDS   further words for make, such as JOBS=1
set -euo pipefail

# Mounts are made in a namespace of this script, so that they go with it however it ends.
if [ -z "${OTHER_DEBIAN_INSIDE:-}" ]; then
    [ "$(id -u)" -eq 0 ] || { echo "other-debian: run this as root" >&2; exit 2; }
    for program in mmdebstrap unshare git; do
        command -v $program >/dev/null || { echo "other-debian: install $program" >&2; exit 2; }
    done
    OTHER_DEBIAN_INSIDE=1 exec unshare --mount --propagation private "$0" "$@"
fi
cd "$(dirname "$0")/.."

keep=
if [ "${1:-}" = --keep ]; then keep=1; shift; fi
[ $# -gt 0 ] || { sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2; exit 2; }
suite=$1
shift
case $suite in 12) suite=bookworm ;; 13) suite=trixie ;; esac
[ $# -gt 0 ] || set -- run test

first_mirror() {
    { cat /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources} 2>/dev/null || true; } |
        sed -nE 's/^(URIs: *|deb +(\[[^]]*\] +)?)(https?:[^ ]*\/debian\/?)( .*)?$/\3/p' | head -1
}
mirror=${MIRROR:-$(first_mirror)}
[ -n "$mirror" ] || { echo "other-debian: state a mirror, MIRROR=..." >&2; exit 2; }
arch=${ARCH:-$(dpkg --print-architecture)}
roots=$(realpath -m "${ROOTS:-build/other-debian}")
cache=$(realpath -m "${CCACHE_DIR:-$roots/ccache}")
root=$roots/$suite-$arch
packages=$roots/packages-$suite-$arch
logs=$roots/logs
mkdir -p "$packages/partial" "$cache" "$logs"

# step NAME COMMAND...: runs it into a log and prints the minutes, or where it failed.
step() {
    local name=$1 log=$logs/$suite-$arch-${1// /-}.log start=$SECONDS status=0
    shift
    "$@" >"$log" 2>&1 || status=$?
    printf 'other-debian: %s: %s, %d:%02d minutes, %s\n' "$suite" "$name" $(((SECONDS - start) / 60)) \
        $(((SECONDS - start) % 60)) "$([ $status = 0 ] && echo done || echo "FAILED ($status), see $log")"
    [ $status = 0 ] || grep -E 'error:|Error|FAILED|\*\*\*Failed|^E: ' "$log" | head -20 || tail -20 "$log"
    return $status
}

# Lists of testing that a mirror has not renewed in time are good enough here.
make_root() {
    rm -rf --one-file-system "$root.part"
    mmdebstrap --mode=root --variant=minbase --architectures="$arch" --include=ca-certificates,make \
        --aptopt='Acquire::Check-Valid-Until "false"' "$suite" "$root.part" "$mirror"
    mv "$root.part" "$root"
}
[ -n "$keep" ] || rm -rf --one-file-system "$root"
[ -d "$root" ] || step root make_root

mkdir -p "$root/ccache" "$root/tree" "$root/dev/pts"
mount --bind /dev "$root/dev"
mount --bind /dev/pts "$root/dev/pts"
mount -t proc proc "$root/proc"
mount -t tmpfs tmpfs "$root/dev/shm"
mount --rbind /sys "$root/sys"  # the slurmd of Debian 12 does not start without control groups
mount --bind "$cache" "$root/ccache"
mount --bind "$packages" "$root/var/cache/apt/archives"
inside() {
    chroot "$root" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
        CCACHE_DIR=/ccache TERM=dumb "$@"
}

# The committed tree; a kept root only gets the files that changed, and keeps its build.
[ -d "$root/tree/.git" ] || git init -q "$root/tree"
git -C "$root/tree" fetch -q "$PWD" HEAD
git -C "$root/tree" reset -q --hard FETCH_HEAD
echo "other-debian: $suite ($arch) with $(git log -1 --format='%h, %s')"

if [ "${1:-}" = -- ]; then
    shift
    inside env --chdir=/tree "$@"
    exit
fi
failed=0
for target in "$@"; do
    # shellcheck disable=SC2086
    step "make $target" inside make -C /tree "$target" ${MAKE_WORDS:-} || failed=1
done

version() { inside dpkg-query -W -f='${Version}' "$1" 2>/dev/null | sed 's/^[0-9]*://; s/[+~-].*//' || true; }
echo "other-debian: $suite: g++ $(version g++), CMake $(version cmake), GDAL $(version libgdal-dev), PROJ" \
    "$(version libproj-dev), Eigen $(version libeigen3-dev), PoDoFo $(version libpodofo-dev)," \
    "Qt $(version qtbase5-dev)"
log=$root/tree/build/release/test.log
if [ -e "$log" ]; then
    echo "other-debian: $suite: $(grep -cE ' Passed ' "$log") passed," \
        "$(grep -cE '\*\*\*(Failed|Exception|Timeout|Not Run)' "$log") failed, $(grep -cE '\*\*\*Skipped' "$log") skipped"
    sed -nE 's/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: (.*)\*\*\*.*$/\1/p' "$log" | sed 's/ \.\.*$//'
fi
[ -n "$keep" ] || rm -rf --one-file-system "$root/tree"
exit $failed
