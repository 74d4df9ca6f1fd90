#!/usr/bin/env bash
# Fails when Qt appears in the core: anywhere outside */ui/ and platform/qt/.
set -euo pipefail
root=${1:-.}
cd "$root"
core="platform wad map tools game check view gfx lumps run sound app cli"
hits=$(for folder in $core; do
    [ -d "$folder" ] || continue
    grep -rnE '#include <Q|Q_OBJECT|QString|QPainter' "$folder" \
        --include='*.h' --include='*.cpp' | grep -vE '(^|/)ui/|^platform/qt/' || true
done)
if [ -n "$hits" ]; then
    echo "Qt used outside the ui/ folders and platform/qt/:"
    echo "$hits"
    exit 1
fi
echo "core is free of Qt"
