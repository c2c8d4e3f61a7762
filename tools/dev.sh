#!/usr/bin/env bash
# Developer entry point.
#   bash tools/dev.sh run [tpendant options]   build, then start the pendant (embedded controller)
#   bash tools/dev.sh test                     build, then run every test with ctest
#   bash tools/dev.sh test-asan                the same in a separate AddressSanitizer/UBSan build
#   bash tools/dev.sh bench                    build, then run every benchmark
#   bash tools/dev.sh cross                    AArch64 build (build-aarch64/), its tests under qemu,
#                                              generated places compared with x86-64 byte for byte
#   bash tools/dev.sh package                  Debian packages of a /usr build into build-ship/packages/
#   bash tools/dev.sh fuzz [seconds]           clang libFuzzer build (build-fuzz/), each target run for
#                                              [seconds] (default 60) over its corpus in fuzz/corpus/
# Missing Debian packages (listed in .ci/packages.txt) are installed first.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cmd=${1:-help}
shift || true
jobs=${JOBS:-$(nproc)}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# Installs those of the given Debian packages that are not installed yet.
install_missing() {
    local missing=()
    for pkg in "$@"; do
        dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed" || missing+=("$pkg")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    as_root apt-get update -q
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

install_deps() {
    local packages=()
    while read -r pkg; do
        [ -n "$pkg" ] && packages+=("$pkg")
    done < "$root/.ci/packages.txt"
    install_missing "${packages[@]}"
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
    shift
    ctest --test-dir "$dir" --output-on-failure -j "$jobs" --timeout 600 "$@"
}

# The arm64 half of Debian multiarch: cross compiler, arm64 Qt and SQLite driver, user-mode qemu.
cross_packages=(crossbuild-essential-arm64 qtbase5-dev:arm64 libqt5sql5-sqlite:arm64 qemu-user-static)
install_cross_deps() {
    dpkg --print-foreign-architectures | grep -qx arm64 || as_root dpkg --add-architecture arm64
    install_missing "${cross_packages[@]}"
}

# Tests start other aarch64 programs (rcsim, the picture generator), so the kernel must hand
# aarch64 binaries to qemu. qemu-user-static's rule is registered at boot by systemd-binfmt; where
# nothing did (containers without systemd), it is registered here.
enable_binfmt() {
    local misc=/proc/sys/fs/binfmt_misc
    [ -e "$misc/qemu-aarch64" ] && return 0
    [ -e "$misc/register" ] || as_root mount -t binfmt_misc binfmt_misc "$misc" || {
        echo "cannot mount $misc: aarch64 programs started by the tests would not run" >&2
        return 1
    }
    as_root sh -c "cat /usr/lib/binfmt.d/qemu-aarch64.conf > $misc/register"
    echo "Registered qemu-aarch64 with binfmt_misc."
}

# clang with libFuzzer and the sanitizer runtimes (Debian 12 ships them in libclang-rt-14-dev),
# and llvm-symbolizer for readable stacks.
fuzz_packages=(clang-14 libclang-rt-14-dev llvm-14)
install_fuzz_deps() {
    install_missing "${fuzz_packages[@]}"
}

# Each target over a working copy of its corpus (new finds land there, fuzz/corpus/ stays as it is);
# a crash, a leak, a timeout or a failed check leaves its input in build-fuzz/fuzz/artifacts/.
run_fuzzers() {
    local out=$1 seconds=$2 failed=()
    export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:allocator_may_return_null=1
    export LSAN_OPTIONS=suppressions=$root/tools/lsan.supp:print_suppressions=0
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    [ -x /usr/lib/llvm-14/bin/llvm-symbolizer ] && export ASAN_SYMBOLIZER_PATH=/usr/lib/llvm-14/bin/llvm-symbolizer
    mkdir -p "$out/fuzz/artifacts"
    for target in xml json session; do
        local work=$out/fuzz/corpus-$target
        mkdir -p "$work"
        local dict=()
        [ -f "$root/fuzz/$target.dict" ] && dict=(-dict="$root/fuzz/$target.dict")
        local common=(-rss_limit_mb=2560 -timeout=60 -artifact_prefix="$out/fuzz/artifacts/$target-")
        echo "== fuzz_$target: every seed once, whole (the regression inputs go up to 1 MB)"
        if ! "$out/fuzz/fuzz_$target" -runs=0 -max_len=1200000 "${common[@]}" "$root/fuzz/corpus/$target"; then
            failed+=("fuzz_$target")
            continue
        fi
        # Mutating megabyte inputs would make a few runs a second: new inputs stay within 64 KB.
        echo "== fuzz_$target for $seconds s"
        if ! "$out/fuzz/fuzz_$target" -max_total_time="$seconds" -max_len=65536 -print_final_stats=1 "${dict[@]}" \
                "${common[@]}" "$work" "$root/fuzz/corpus/$target"; then
            failed+=("fuzz_$target")
        fi
    done
    if [ ${#failed[@]} -gt 0 ]; then
        echo "fuzzing found problems in: ${failed[*]} (inputs in $out/fuzz/artifacts/)" >&2
        return 1
    fi
}

case "$cmd" in
run)
    install_deps
    build "$root/build"
    args=("$@")
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [[ " ${args[*]} " != *" -platform "* ]]; then
        # tpendant keeps the VNC server on 127.0.0.1 unless --vnc-listen ADDR says otherwise.
        echo "No display: tpendant is served over VNC on 127.0.0.1:${VNC_PORT:-5900}, loopback only" \
             "(viewer on this machine, or an SSH tunnel: ssh -L 5900:127.0.0.1:${VNC_PORT:-5900} HOST)."
        args=(-platform "vnc:size=1280x800:port=${VNC_PORT:-5900}" "${args[@]}")
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
cross)
    install_deps
    install_cross_deps
    enable_binfmt
    out=$root/build-aarch64
    start=$SECONDS
    build "$out" -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-aarch64.cmake" -DTPALLET_BUILD_BENCH=OFF
    cmake --build "$out" -j "$jobs" --target dump_places
    echo "aarch64 build: $((SECONDS - start)) s"
    # The same pallets' places from the x86-64 build (the test build's directory by default).
    native=${NATIVE_BUILD_DIR:-$root/build}
    if [ ! -f "$native/build.ninja" ]; then
        launcher=()
        command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
        cmake -S "$root" -B "$native" -G Ninja "${launcher[@]}"
    fi
    cmake --build "$native" -j "$jobs" --target dump_places
    for arch in x86_64 aarch64; do
        bin=$native/bin/dump_places
        [ "$arch" = aarch64 ] && bin=$out/bin/dump_places
        "$bin" "$out/places-$arch.bin"
        "$bin" --frames "$out/frames-$arch.bin" > /dev/null
    done
    if ! cmp "$out/places-x86_64.bin" "$out/places-aarch64.bin"; then
        "$native/bin/dump_places" --text "$out/places-x86_64.txt"
        "$out/bin/dump_places" --text "$out/places-aarch64.txt"
        diff "$out/places-x86_64.txt" "$out/places-aarch64.txt" | head -20
        echo "generated places differ between x86-64 and aarch64" >&2
        exit 1
    fi
    echo "generated places: x86-64 and aarch64 identical ($(sha256sum < "$out/places-aarch64.bin" | cut -c1-16))"
    differing=$({ cmp -l "$out/frames-x86_64.bin" "$out/frames-aarch64.bin" || true; } |
                awk '{print int(($1 - 1) / 8)}' | uniq | wc -l)
    echo "frame arithmetic of the same places: $differing of $(($(stat -c %s "$out/frames-aarch64.bin") / 8)) numbers" \
         "differ in their last bits (the C library's trigonometry and Eigen round differently per CPU)"
    # Emulation runs 5 to 20 times slower than the CPU: a test that meets a controller deadline of a
    # few seconds natively can miss it on a loaded machine, so a failed test gets a second run.
    start=$SECONDS
    run_tests "$out" --repeat until-pass:2
    echo "aarch64 tests under qemu: $((SECONDS - start)) s"
    ;;
package)
    install_deps
    build "$root/build-ship" -DCMAKE_INSTALL_PREFIX=/usr -DTPALLET_BUILD_TESTS=OFF -DTPALLET_BUILD_BENCH=OFF
    rm -f "$root"/build-ship/packages/*.deb
    (cd "$root/build-ship" && cpack -G DEB)
    for deb in "$root"/build-ship/packages/*.deb; do
        echo "== $deb"
        dpkg-deb -f "$deb" Package Version Architecture Depends Recommends
    done
    ;;
fuzz)
    install_deps
    install_fuzz_deps
    seconds=${1:-60}
    out=${FUZZ_BUILD_DIR:-$root/build-fuzz}
    launcher=()
    command -v ccache >/dev/null 2>&1 && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    cmake -S "$root" -B "$out" -G Ninja "${launcher[@]}" -DCMAKE_CXX_COMPILER=clang++-14 \
          -DCMAKE_BUILD_TYPE=RelWithDebInfo -DTPALLET_BUILD_FUZZ=ON -DTPALLET_BUILD_TESTS=OFF \
          -DTPALLET_BUILD_BENCH=OFF
    cmake --build "$out" -j "$jobs" --target fuzz_xml fuzz_json fuzz_session
    run_fuzzers "$out" "$seconds"
    ;;
*)
    sed -n '2,12p' "${BASH_SOURCE[0]}"
    exit 2
    ;;
esac
