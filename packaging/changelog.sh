#!/usr/bin/env bash
# Turns CHANGELOG.md into the changelog of the Debian packages: changelog.sh <CHANGELOG.md> <maintainer>
set -euo pipefail
cd "$(dirname "$1")"
epoch=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)}
awk -v maintainer="$2" -v date="$(LC_ALL=C date -Ru -d "@$epoch")" '
    function close_entry() { if (open) printf "\n -- %s  %s\n\n", maintainer, date }
    /^## / {
        close_entry()
        match($0, /[0-9]+\.[0-9]+\.[0-9]+/)
        printf "mapanchor (%s) unstable; urgency=medium\n\n", substr($0, RSTART, RLENGTH)
        open = 1
    }
    open && /^- / { sub(/^- /, "  * "); print; next }
    open && /^  / { print "  " $0 }
    END { close_entry() }' CHANGELOG.md
