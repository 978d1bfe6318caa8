#!/usr/bin/env bash
# Fails when a source file is not laid out as .clang-format says; --fix lays it out.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mode=(--dry-run --Werror)
[ "${1:-}" = --fix ] && mode=(-i)
git ls-files -z '*.cpp' '*.h' | xargs -0 clang-format-19 --style=file "${mode[@]}"
