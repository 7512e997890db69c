#!/usr/bin/env bash
# Installs what is missing, builds, and runs the tests. See --help.
set -euo pipefail
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

usage() {
    cat <<'TEXT'
usage: scripts/test.sh [--all] [CTEST OPTION...]

Builds with AddressSanitizer and UndefinedBehaviorSanitizer and runs every test, then builds
the threaded tests with ThreadSanitizer and runs them. Ends with the test runner's summary.

  --all     also the tests that need heavy packages: the matrix of independent SOAP clients,
            the simulator's page in a real browser, Prometheus' reading of the metrics,
            clang-tidy over the sources that changed, in an optimised build the instructions that
            requests cost and each call of a request made to fail, and the Debian packages and the
            container image in a bare system
  --help    this text

Other options go to ctest as they are, for example: scripts/test.sh -R stringUtil
TEXT
}

heavy='clients|browser|lint|monitoring|packages'
kinds=(build run test)
all=
select=(-LE "$heavy")
passed=()
while [ $# -gt 0 ]; do
    case "$1" in
        --all) kinds+=(all package); select=(); all=yes ;;
        --help) usage; exit 0 ;;
        *) passed+=("$1") ;;
    esac
    shift
done

install_packages "${kinds[@]}"
build tsan threaded_tests
build asan
[ -z "$all" ] || build release mod_gsoap sanService serviceShim failingCalls sanSim simctl logSink \
    exchangePeer

run_tests() {
    ctest --test-dir "$root/build/$1" --output-on-failure -j "$jobs" "${@:2}"
}

result=0
say "Threaded tests under ThreadSanitizer"
run_tests tsan -L threaded "${passed[@]}" || result=1
say "All tests under AddressSanitizer and UndefinedBehaviorSanitizer"
run_tests asan --no-tests=error "${select[@]}" "${passed[@]}" || result=1
if [ -n "$all" ]; then
    say "What requests cost, and calls that fail"
    run_tests release -L 'count|failing' "${passed[@]}" || result=1
fi
[ "$result" -eq 0 ] || say "Some tests failed; see above"
exit "$result"
