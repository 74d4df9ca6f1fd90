#!/usr/bin/env bash
# Fails when a C++ file of the project differs from its clang-format form.
set -euo pipefail
root=${1:-.}
cd "$root"
if ! command -v clang-format >/dev/null; then
    echo "clang-format is missing: run scripts/setup"
    exit 1
fi
files=$(git ls-files --cached --others --exclude-standard '*.h' '*.cpp' 2>/dev/null || find . -name '*.h' -o -name '*.cpp' | grep -v '^./build')
[ -z "$files" ] && exit 0
# shellcheck disable=SC2086
clang-format --style=file --dry-run -Werror $files
echo "formatting is clean"
