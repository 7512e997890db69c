#!/usr/bin/env bash
# Fails when a C or C++ source is not as clang-format would write it.
set -euo pipefail
cd "$(dirname "$0")/.."
# The contract's definitions are the generator's language, which only looks like C++.
find apiMgmt host sim client apiCheck examples tests testbed bench fuzz \
    \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) \
    \( -not -path 'apiMgmt/webservices/sanService/contract/*' -o -name 'sanContract.*' \) -print0 |
    xargs -0 -r clang-format --dry-run -Werror
