#!/usr/bin/env bash
# Developer entry point.
#   bash tools/dev.sh run [tpendant options]   build, then start the pendant (embedded controller)
#   bash tools/dev.sh test                     build, then run every test with ctest
#   bash tools/dev.sh test-asan                the same in a separate AddressSanitizer/UBSan build
#   bash tools/dev.sh bench                    build, then run every benchmark
# Missing Debian packages (listed in .ci/packages.txt) are installed first.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cmd=${1:-help}
shift || true
jobs=${JOBS:-$(nproc)}

install_deps() {
    local missing=()
    while read -r pkg; do
        [ -n "$pkg" ] || continue
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
    done < "$root/.ci/packages.txt"
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    local sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -q
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -q --no-install-recommends "${missing[@]}"
}

build() {
    local dir=$1; shift
    local launcher=()
    command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake -S "$root" -B "$dir" -G Ninja "${launcher[@]}" "$@"
    cmake --build "$dir" -j "$jobs"
}

run_tests() {
    local dir=$1
    ctest --test-dir "$dir" --output-on-failure -j "$jobs" --timeout 600
}

case "$cmd" in
run)
    install_deps
    build "$root/build"
    args=("$@")
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [[ " ${args[*]} " != *" -platform "* ]]; then
        echo "No display: tpendant is served over VNC on localhost:5900 (connect a VNC viewer)."
        args=(-platform "vnc:size=1280x800" "${args[@]}")
    fi
    exec "$root/build/bin/tpendant" "${args[@]}"
    ;;
test)
    install_deps
    build "$root/build"
    run_tests "$root/build"
    ;;
test-asan)
    install_deps
    build "$root/build-asan" -DTPALLET_SANITIZE=ON -DTPALLET_BUILD_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug
    export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
    export LSAN_OPTIONS=suppressions=$root/tools/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    run_tests "$root/build-asan"
    ;;
bench)
    install_deps
    build "$root/build" -DCMAKE_BUILD_TYPE=Release
    for b in "$root"/build/bench/*; do
        [ -x "$b" ] && "$b"
    done
    ;;
*)
    sed -n '2,7p' "${BASH_SOURCE[0]}"
    exit 2
    ;;
esac
