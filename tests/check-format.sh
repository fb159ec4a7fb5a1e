#!/usr/bin/env bash
# Fails when a source is not laid out as clang-format does it.
# Usage: check-format.sh SOURCE_DIRECTORY CLANG_FORMAT
set -euo pipefail
cd "$1"
find analyzer benchmarks dataviews examples fuzz samples tests \( -name '*.h' -o -name '*.cpp' \) -print0 |
    xargs -0 "$2" --dry-run -Werror
