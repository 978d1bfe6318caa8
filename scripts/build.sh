#!/usr/bin/env bash
# build.sh PRESET [TARGET …]: configures and builds, quietly unless something fails or takes long.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
preset=$1
shift

# The presets name Clang 19; elsewhere any compiler will do that CMake accepts.
compilers=()
command -v clang++-19 >/dev/null || compilers=(-DCMAKE_C_COMPILER="${CC:-cc}" -DCMAKE_CXX_COMPILER="${CXX:-c++}")

cd "$top"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! cmake --preset "$preset" "${compilers[@]}" >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
targets=()
[ $# -eq 0 ] || targets=(--target "$@")
if [ -t 1 ] || [ -n "${CI:-}" ]; then
    cmake --build --preset "$preset" "${targets[@]}"
elif echo "Building the $preset preset …" && ! cmake --build --preset "$preset" "${targets[@]}" >"$log" 2>&1; then
    cat "$log" >&2
    exit 1
fi
