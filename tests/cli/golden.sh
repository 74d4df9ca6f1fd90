#!/usr/bin/env bash
# golden.sh EXPECTED STATUS COMMAND...: runs the command and compares its stdout and stderr,
# and its exit status, with the expected file. KELVAR_UPDATE_GOLDEN=1 rewrites the file.
set -uo pipefail
expected=$1; status=$2; shift 2
actual=$("$@" 2>&1); rc=$?
# Paths inside the source tree differ between checkouts.
if [ -n "${KELVAR_SOURCE_DIR:-}" ]; then
    actual=${actual//"$KELVAR_SOURCE_DIR"/<source>}
fi
if [ "${KELVAR_UPDATE_GOLDEN:-}" = 1 ]; then
    printf '%s\n' "$actual" > "$expected"
    echo "updated $expected"
    exit 0
fi
if [ "$rc" -ne "$status" ]; then
    echo "exit status $rc, expected $status"
    printf '%s\n' "$actual" | head -20
    exit 1
fi
diff -u "$expected" <(printf '%s\n' "$actual")
