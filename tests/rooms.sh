#!/usr/bin/env bash
# Includes point one way: what lies in a room uses that room and those that stand behind it here.
# Each include says which room it means.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

library="
colour:
image: colour
superpixels: colour image
regiongrowing: colour image superpixels
graphcut: colour image
segmentation: colour image superpixels regiongrowing graphcut
scissors: colour image
settings:
"
studio="
background:
widgets:
settings: background
document: background
tools: background widgets settings document
files: background document
canvas: background document tools
window: background widgets settings document tools files canvas
"

failures=0
complain() {
    printf '%s\n' "$1" >&2
    failures=$((failures + 1))
}

check_room() {
    local base=$1 room=$2 mayUse=$3 file line include header
    while IFS=: read -r file line include; do
        header=${include#*\"}
        header=${header%\"}
        if [ -e "$base/$room/$header" ]; then
            complain "$file:$line: \"$header\" does not say that it is in $room/"
        elif [ -e "$base/$header" ] && [[ " $room $mayUse " != *" ${header%%/*} "* ]]; then
            complain "$file:$line: $room/ must not use ${header%%/*}/"
        fi
    done < <(grep -rnoE '^#include "[^"]+"' "$base/$room")
}

check() {
    local base=$1 rooms=$2 room
    for room in "$base"/*/; do
        room=$(basename "$room")
        grep -q "^$room:" <<<"$rooms" || complain "$base/$room/ has no place among the rooms"
        check_room "$base" "$room" "$(sed -n "s/^$room: *//p" <<<"$rooms")"
    done
}

check src "$library"
check apps/studio "$studio"
[ "$failures" -eq 0 ]
