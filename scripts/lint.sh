#!/usr/bin/env bash
# Runs clang-tidy over the sources of a build: scripts/lint.sh [PRESET [FILE...]]
# Without files, over all of them; that takes many minutes.
set -euo pipefail
. "$(dirname "$0")/common.sh"
preset=${1:-debug}
shift $(($# > 0 ? 1 : 0))
cd "$root"
[ -f "build/$preset/compile_commands.json" ] || die "build first: cmake --preset $preset"
if [ $# -gt 0 ]; then files=("$@"); else mapfile -t files < <(git ls-files '*.cpp'); fi
printf '%s\0' "${files[@]}" | xargs -0 -n 1 -P "$jobs" clang-tidy -p "build/$preset" --quiet \
    --extra-arg=-Wno-unknown-warning-option
