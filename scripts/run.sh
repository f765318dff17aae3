#!/usr/bin/env bash
# Sets up, builds and starts the client.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
"$top/scripts/setup.sh"
"$top/scripts/build.sh"
exec "${TOLV_BUILD_DIR:-$top/build}/tolv" "$@"
