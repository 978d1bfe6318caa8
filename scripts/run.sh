#!/usr/bin/env bash
# Installs what is missing, builds Vantor and starts it with the arguments given (--help lists them).
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

"$top/scripts/install-deps.sh" build
"$top/scripts/build.sh" release vantor skintool
exec "$top/build/release/bin/vantor" "$@"
