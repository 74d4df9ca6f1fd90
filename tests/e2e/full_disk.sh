#!/usr/bin/env bash
# A save onto a full disk: kelvar-cli saves a PWAD in place on a small tmpfs with too little
# room for the new file beside the .BAK. The save must stop with the I/O error, and the PWAD
# must be there as it was, with no .BAK left. Skipped (77) where a tmpfs can't be mounted.
# usage: full_disk.sh KELVAR_CLI
# SPDX-License-Identifier: GPL-3.0-or-later
set -uo pipefail
cli=$1
iwad=/usr/share/games/doom/freedoom2.wad
work=$(mktemp -d)
disk=$work/disk
mkdir -p "$disk"
cleanup() { umount "$disk" 2>/dev/null; rm -rf "$work"; }
trap cleanup EXIT
if ! mount -t tmpfs -o size=320k tmpfs "$disk" 2>/dev/null; then
    echo "no tmpfs can be mounted here"
    exit 77
fi
export XDG_CONFIG_HOME=$work/config
"$cli" save "$iwad" MAP01 -o "$work/map01.wad" >/dev/null 2>&1 || { echo "setup save failed"; exit 1; }
cp "$work/map01.wad" "$disk/map01.wad"
before=$(md5sum <"$disk/map01.wad")
# Leave less room than the new file needs.
free=$(df --output=avail -B1 "$disk" | tail -1)
size=$(stat -c %s "$disk/map01.wad")
head -c $((free - size / 2)) /dev/zero >"$disk/filler" 2>/dev/null

"$cli" save "$iwad" "$disk/map01.wad" MAP01 -o "$disk/map01.wad" >"$work/out" 2>"$work/err"
status=$?
fail=0
[ $status -eq 2 ] || { echo "exit status $status, expected 2"; fail=1; }
grep -q "I/O error" "$work/err" || { echo "no I/O error was reported"; fail=1; }
[ "$(md5sum <"$disk/map01.wad")" = "$before" ] || { echo "the PWAD changed"; fail=1; }
[ ! -e "$disk/map01.BAK" ] || { echo "a .BAK was left"; fail=1; }
[ $fail -eq 0 ] && echo "the full disk left the PWAD as it was"
[ $fail -eq 0 ] || cat "$work/err"
exit $fail
