#!/usr/bin/env bash
# Turns CHANGELOG.md into the changelog of the Debian packages: changelog.sh <CHANGELOG.md> <maintainer>
set -euo pipefail
cd "$(dirname "$1")"
epoch=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)}
awk -v maintainer="$2" -v date="$(LC_ALL=C date -Ru -d "@$epoch")" '
    function wrap(text,    words, n, i, line) {
        n = split(text, words, " ")
        line = "  *"
        for (i = 1; i <= n; i++) {
            if (length(line " " words[i]) > 78) { print line; line = "   " }
            line = line " " words[i]
        }
        print line
    }
    function close_item() { if (item != "") wrap(item); item = "" }
    function close_entry() { close_item(); if (open) printf "\n -- %s  %s\n\n", maintainer, date }
    /^## / {
        close_entry()
        match($0, /[0-9]+\.[0-9]+\.[0-9]+/)
        printf "mapanchor (%s) unstable; urgency=medium\n\n", substr($0, RSTART, RLENGTH)
        open = 1
        next
    }
    open && /^- / { close_item(); item = substr($0, 3); next }
    open && /^  / { item = item $0; next }
    END { close_entry() }' CHANGELOG.md
