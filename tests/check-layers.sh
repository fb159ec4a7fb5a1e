#!/usr/bin/env bash
# Fails when an include points up the layers, or sideways between folders that do not know each other.
# Usage: check-layers.sh SOURCE_DIRECTORY
set -euo pipefail
cd "$1"

# Folder -> the folders whose headers it may include besides its own.
declare -A allowed=(
    [dataviews/platform/signals]=""
    [dataviews/platform/vtk]=""
    [dataviews/platform/serialize]=""
    [dataviews/platform/widgets]=""
    [dataviews/platform/property]="dataviews/platform/signals"
    [dataviews/platform/undo]="dataviews/platform/signals"
    [dataviews/platform/selection]="dataviews/platform/signals"
    [dataviews/platform/data]="dataviews/platform/property dataviews/platform/signals"
    [dataviews/platform/pipeline]="dataviews/platform/data dataviews/platform/property dataviews/platform/signals"
    [dataviews/common/views]="dataviews/platform"
    [dataviews/common/models]="dataviews/platform/signals"
    [dataviews/common/export]=""
    [dataviews/common/selection]="dataviews/common/views dataviews/platform"
    [dataviews/common/serializers]="dataviews/common/views dataviews/platform"
    [dataviews/common/charts]="dataviews/common/views dataviews/common/serializers dataviews/platform"
    [dataviews/common/resources]=""
    [dataviews/common/images]="dataviews/common/views dataviews/common/selection dataviews/common/resources dataviews/platform"
    [analyzer/study]="dataviews"
    [analyzer/selection]="dataviews/platform"
    [analyzer/views]="dataviews analyzer/study"
    [analyzer/filters]="dataviews"
    [analyzer/export]="dataviews analyzer/study analyzer/views analyzer/filters"
    [analyzer/tags]="dataviews analyzer/filters"
    [analyzer/panels]="dataviews analyzer/study analyzer/views analyzer/filters analyzer/tags"
    [analyzer/session]="dataviews analyzer/study analyzer/views analyzer/filters analyzer/panels analyzer/tags"
    [analyzer]="dataviews analyzer"
    [samples]=""
    [examples]="dataviews"
)

failed=0
while IFS=: read -r file target; do
    folder=$(dirname "$file")
    included=$(dirname "$target")
    if [ -z "${allowed[$folder]+known}" ]; then
        echo "$file: its folder is unknown to $0"
        failed=1
        continue
    fi
    [ "$included" = "$folder" ] && continue
    for permitted in ${allowed[$folder]}; do
        case "$included/" in
        "$permitted"/*) continue 2 ;;
        esac
    done
    echo "$file includes <$target>, but $folder may not use $included"
    failed=1
done < <(grep -rnoE --include='*.h' --include='*.cpp' '^#include <(dataviews|analyzer|samples)/[^>]+' dataviews analyzer samples examples |
    sed -E 's/^([^:]+):[0-9]+:#include </\1:/')

if [ "$failed" -eq 0 ]; then
    echo "All includes point down the layers."
fi
exit "$failed"
