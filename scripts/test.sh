#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite: once as built for users (and the Debian
# package made from that build, unpacked and started), then a short,
# repeatable run of every fuzz target, then the suite once more under AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer, where any report fails its test.
# TOLV_SKIP_SANITIZERS=1 skips the last two (for quick local checks).
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/scripts/setup.sh"

"$top/scripts/build.sh"
(cd "${TOLV_BUILD_DIR:-$top/build}" && ctest --output-on-failure --parallel "$(nproc)" --timeout 300)
"$top/scripts/check-package.sh"

[[ ${TOLV_SKIP_SANITIZERS:-0} == 1 ]] && exit 0
# 20,000 inputs per target with a fixed seed; the time limit only guards against a stall.
TOLV_FUZZ_SEED=1 TOLV_FUZZ_RUNS=20000 "$top/scripts/fuzz.sh" 90

TOLV_BUILD_DIR="$top/build-asan" "$top/scripts/build.sh" -DTOLV_SANITIZE=ON -DTOLV_BUILD_BENCH=OFF
cd "$top/build-asan"
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export LSAN_OPTIONS=suppressions=$top/tests/lsan.supp
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
ctest --output-on-failure --parallel "$(nproc)" --timeout 300
