#!/usr/bin/env bash
# Fails when a folder includes from a folder it must not depend on. The core's dependencies
# run one way; a cycle means something is in the wrong room.
set -euo pipefail
root=${1:-.}
cd "$root"

# folder: the folders it may include from (besides itself). The level's records and object
# store (map/) sit below the WAD layer, whose level reader and writers fill and store them.
declare -A allowed=(
    [platform]=""
    [map]="platform"
    [wad]="platform map"
    [game]="platform wad map"
    [gfx]="platform wad"
    [sound]="platform wad"
    [view]="platform wad map game gfx"
    [check]="platform wad map game gfx view"
    [tools]="platform wad map game view"
    [lumps]="platform wad map game gfx sound"
    [run]="platform wad map game"
    [app]="platform wad map game gfx sound view check tools lumps run res"
    [cli]="platform wad map game gfx sound view check tools lumps run app res"
    [kelvarbsp]="platform wad map"
    [kelvarmus]="platform wad sound"
)

status=0
for folder in "${!allowed[@]}"; do
    [ -d "$folder" ] || continue
    while IFS= read -r line; do
        file=${line%%:*}
        target=$(echo "$line" | sed -E 's/.*#include "([^/"]+)\/.*/\1/')
        # res/ holds data tables that any folder compiles in.
        [ "$target" = "$folder" ] || [ "$target" = res ] && continue
        # Qt code of a folder may use platform/qt; the core may not.
        case " ${allowed[$folder]} " in
            *" $target "*) ;;
            *) echo "$file: $folder/ must not include from $target/"; status=1 ;;
        esac
    done < <(grep -rnE '^#include "[^/"]+/' "$folder" --include='*.h' --include='*.cpp' || true)
done
[ $status -eq 0 ] && echo "include directions are clean"
exit $status
