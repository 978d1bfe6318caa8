#!/usr/bin/env bash
# Installs what is missing, builds the release preset and runs the whole test suite without a display.
# Arguments go to ctest (-R NAME …); VANTOR_PRESET chooses another preset (asan, tsan, debug).
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=${VANTOR_PRESET:-release}

"$top/scripts/install-deps.sh" test
"$top/scripts/build.sh" "$preset"
cd "$top"
exec env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=offscreen ctest --preset "$preset" "$@"
