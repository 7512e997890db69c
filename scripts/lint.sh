#!/usr/bin/env bash
# Runs the linters over the sources. See --help.
set -euo pipefail
# shellcheck source=common.sh
. "$(dirname "$0")/common.sh"

usage() {
    cat <<'TEXT'
usage: scripts/lint.sh [--build PRESET] [--changed | FILE...]
       scripts/lint.sh --scripts

Runs clang-tidy over C and C++ sources; .clang-tidy holds the rules, docs/style.md what they
mean. Without files, over all of them: that takes many minutes. Ends with an error when there
is a finding.

  --build PRESET  the build whose compile commands are used (asan); it must have been built, since
                  clang-tidy reads the generated headers
  --changed       only the sources that differ from SAN_LINT_BASE; when that is not set, from
                  where this branch left origin/main; on main itself, from three commits ago.
                  Files that were only moved do not count. At most 20 of them, those of the
                  latest commits; what is left out is named.
  --scripts       shellcheck over the shell scripts and flake8 over the Python ones instead
  --help          this text
TEXT
}

# What the changes are counted from; empty where there is no history, such as in an archive.
lint_base() {
    if [ -n "${SAN_LINT_BASE:-}" ]; then
        printf '%s\n' "$SAN_LINT_BASE"
        return
    fi
    local head base
    head=$(git rev-parse -q --verify HEAD) || return 0
    base=$(git merge-base HEAD origin/main 2>/dev/null || true)
    if [ -n "$base" ] && [ "$base" != "$head" ]; then
        printf '%s\n' "$base"
    else
        git rev-list --first-parent -n 4 HEAD | tail -n 1
    fi
}

# Sources that changed. A header is looked at through the source of the same name.
changed_sources() {
    local base
    base=$(lint_base)
    [ -n "$base" ] || return 0
    { git ls-files --others --exclude-standard -- '*.c' '*.cpp' '*.h' | sed 's/^/A\t/'
      git diff --name-status -M --diff-filter=d HEAD -- '*.c' '*.cpp' '*.h'
      git log --format= --name-status -M --diff-filter=d "$base..HEAD" -- '*.c' '*.cpp' '*.h'; } |
        awk -F'\t' '$1 != "R100" { print $NF }' |
        while read -r file; do
            for source in "${file%.*}.c" "${file%.*}.cpp"; do
                [ -f "$source" ] && printf '%s\n' "$source"
            done
        done | awk '!seen[$0]++'
}

lint_scripts() {
    local shell=() python=()
    mapfile -t shell < <(find scripts packaging debian .ci -type f -exec grep -lIE '^#!.*(ba)?sh$' {} +)
    mapfile -t python < <(find apiMgmt bench scripts sim tests testbed -name '*.py' -not -path '*/node_modules/*')
    shellcheck "${shell[@]}"
    flake8 "${python[@]}"
    say "${#shell[@]} shell and ${#python[@]} Python scripts have no findings"
}

preset=asan
what=all
files=()
while [ $# -gt 0 ]; do
    case "$1" in
        --build) preset=${2:?--build needs the name of a preset}; shift ;;
        --changed) what=changed ;;
        --scripts) what=scripts ;;
        --help) usage; exit 0 ;;
        -*) usage >&2; die "unknown option: $1" ;;
        *) what=named; files+=("$1") ;;
    esac
    shift
done

max_changed=20  # a few minutes on two processors
cd "$root"
case "$what" in
    scripts) lint_scripts; exit ;;
    changed)
        mapfile -t files < <(changed_sources)
        for file in "${files[@]:max_changed}"; do say "left out: $file"; done
        files=("${files[@]:0:max_changed}")
        ;;
    all) mapfile -t files < <(git ls-files '*.c' '*.cpp') ;;
esac
commands="build/$preset/compile_commands.json"
[ -f "$commands" ] || die "build first: cmake --preset $preset && cmake --build build/$preset"

# What no target of the build compiles has no command to be read with.
known=()
for file in "${files[@]}"; do
    if grep -qF "/$file\"" "$commands"; then known+=("$file"); else say "not built: $file"; fi
done
[ ${#known[@]} -gt 0 ] || { say "no sources to look at"; exit 0; }
printf '%s\0' "${known[@]}" | xargs -0 -n 1 -P "$jobs" clang-tidy -p "build/$preset" --quiet \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-cast-align
say "${#known[@]} sources have no findings"
