#!/usr/bin/env bash
# Sets up, builds and runs the whole test suite.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/scripts/setup.sh"
"$top/scripts/build.sh"
cd "${TOLV_BUILD_DIR:-$top/build}"
ctest --output-on-failure --parallel "$(nproc)" --timeout 300
