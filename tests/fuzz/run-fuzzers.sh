#!/usr/bin/env bash
# The brief fuzzing run of the test suite: builds the fuzz tree in BUILD_DIR and fuzzes every
# target for SECONDS. Exits 77 (skipped) where clang or its libFuzzer is not installed.
set -euo pipefail
source=$1
build=$2
seconds=${3:-3}

if ! command -v clang++ >/dev/null; then
    echo "clang++ is not installed: the fuzzers are not run"
    exit 77
fi
mkdir -p "$build"
probe="$build/probe"
if ! echo 'extern "C" int LLVMFuzzerTestOneInput(const char*, unsigned long) { return 0; }' |
    clang++ -x c++ - -fsanitize=fuzzer,address,undefined -o "$probe" 2>/dev/null; then
    echo "clang++ links no libFuzzer here: the fuzzers are not run"
    exit 77
fi
rm -f "$probe"
exec "$source/scripts/fuzz" --build-dir "$build" --crash-dir "$build/crashes" --time "$seconds"
