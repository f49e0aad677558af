#!/usr/bin/env bash
# The two set-up commands of ORBIN, and what they share.
#
#   ./dev.sh run [quill options]   build, make the sample project when missing, open quill on it
#   ./dev.sh test [ctest options]  build, then run every test
#
# Both first install the Debian packages of .ci/packages.txt that are missing
# (through sudo when not root), then configure build/ with Ninja and build.
# ORBIN_BUILD_DIR and ORBIN_JOBS override the build folder and the job count.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build_dir="${ORBIN_BUILD_DIR:-$here/build}"
jobs="${ORBIN_JOBS:-2}"

say() { printf 'dev.sh: %s\n' "$*" >&2; }

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null 2>&1; then
        sudo "$@"
    else
        return 1
    fi
}

install_packages() {
    local wanted missing=() package
    wanted=$(grep -v -e '^[[:space:]]*#' -e '^[[:space:]]*$' "$here/.ci/packages.txt")
    for package in $wanted; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    say "installing missing packages: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    # A fresh machine may have no package lists yet: update once and retry.
    if ! as_root apt-get install -y --no-install-recommends "${missing[@]}"; then
        as_root apt-get update &&
            as_root apt-get install -y --no-install-recommends "${missing[@]}" || {
            say "could not install: ${missing[*]} (install them and run again)"
            exit 1
        }
    fi
}

configure() {
    cmake -S "$here" -B "$build_dir" -G Ninja
}

build() {
    cmake --build "$build_dir" -j "$jobs" "$@"
}

# The sample game project quill opens, made once by orbin-sample. Its project
# file is written last, so a folder without one is an interrupted attempt.
make_sample_project() {
    local project="$here/sample-project"
    [ -f "$project/quill-project.ini" ] && return 0
    if [ -e "$project" ]; then
        say "$project is incomplete (an earlier generation stopped); remove it and run again"
        exit 1
    fi
    say "generating the sample project into $project"
    "$build_dir/bin/orbin-sample" --tools "$build_dir/bin" "$project"
}

run() {
    install_packages
    configure
    build --target quill orbin_plugin orbin-sample
    make_sample_project
    local arguments=()
    if [ -f "$here/sample-project/quill-project.ini" ]; then
        arguments+=(--project "$here/sample-project")
    fi
    # ORBIN's window opens at once and connects by itself; options given
    # after run come later and win.
    arguments+=(--open "ORBIN - Database Visual Editor")
    arguments+=("$@")
    local quill="$build_dir/bin/quill"
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
        say "no display: running quill under xvfb-run, on a virtual screen nobody sees"
        exec xvfb-run -a -s "-screen 0 1600x1000x24" "$quill" "${arguments[@]}"
    fi
    exec "$quill" "${arguments[@]}"
}

test_all() {
    install_packages
    configure
    build
    ctest --test-dir "$build_dir" --output-on-failure -j "$jobs" "$@"
}

case "${1:-}" in
run)
    shift
    run "$@"
    ;;
test)
    shift
    test_all "$@"
    ;;
*)
    sed -n '2,9p' "$0" | sed 's/^# \{0,1\}//'
    exit 2
    ;;
esac
