#!/usr/bin/env bash
# Lays out every C++ source, or with --check fails when one is not laid out.
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t sources < <(git ls-files --cached --others --exclude-standard '*.cpp' '*.h')
if [ "${1:-}" = --check ]; then
    clang-format --dry-run --Werror "${sources[@]}"
    echo "format: ${#sources[@]} files are laid out"
else
    clang-format -i "${sources[@]}"
fi
