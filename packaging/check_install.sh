#!/usr/bin/env bash
# tst_install: installs the build tree into a staging directory (DESTDIR) and checks the installed
# tree as a user would get it:
#  - every file where the layout puts it, and nothing that points back into the build tree;
#  - the installed tpendant, started without options, finds libtpallet.so.1 in its module
#    directory and opens the module's page;
#  - a module built against the installed SDK only (packaging/sdkcheck, find_package(TpalletHost))
#    loads into the installed tpendant beside it.
# Arguments come from packaging/CMakeLists.txt.
set -euo pipefail

declare -A opt
while [ $# -gt 0 ]; do
    opt[${1#--}]=$2
    shift 2
done
for key in build work prefix bindir libdir moduledir includedir system-libdir cmake cxx sdkcheck; do
    [ -n "${opt[$key]+x}" ] || { echo "check_install.sh: --$key missing" >&2; exit 2; }
done

build=${opt[build]}
work=${opt[work]}
failures=0
fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}
pass() {
    echo "PASS: $*"
}

rm -rf "$work"
mkdir -p "$work/home" "$work/run" "$work/cwd"
chmod 700 "$work/run"
stage=$work/stage
DESTDIR=$stage "${opt[cmake]}" --install "$build" > "$work/install.log"
root=$stage${opt[prefix]}
bin=$root/${opt[bindir]}
lib=$root/${opt[libdir]}
modules=$root/${opt[moduledir]}

# Layout.
for f in "$bin/tpendant" "$bin/rcsim"; do
    [ -x "$f" ] && pass "installed ${f#$stage}" || fail "missing ${f#$stage}"
done
for name in orbaCore orbaDwel orbat tcore; do
    for f in "$lib/lib$name.so.1" "$lib/lib$name.so"; do
        [ -e "$f" ] && pass "installed ${f#$stage}" || fail "missing ${f#$stage}"
    done
done
[ -e "$modules/libtpallet.so.1" ] && pass "installed ${modules#$stage}/libtpallet.so.1" \
    || fail "missing ${modules#$stage}/libtpallet.so.1"
[ ! -e "$modules/libtpallet.so" ] && pass "no development link for the module" || fail "libtpallet.so installed"
for f in TpalletHostConfig.cmake TpalletHostConfigVersion.cmake TpalletHostTargets.cmake; do
    [ -f "$lib/cmake/TpalletHost/$f" ] && pass "installed $f" || fail "missing $f"
done
for f in orba/moduleobject.h dwel/bmodule.h orbat/tservice.h tcore/managerhelper.h kx/calc.h; do
    [ -f "$root/${opt[includedir]}/$f" ] && pass "installed header $f" || fail "missing header $f"
done
# Only the module is installed from the module directory of the build tree.
extra=$(find "$modules" -mindepth 1 ! -name 'libtpallet.so.1*' -printf '%f ')
[ -z "$extra" ] && pass "module directory holds the module only" || fail "module directory also holds: $extra"

# Nothing installed refers to the build tree: CMake files, RPATHs.
if grep -rlF "$build" "$lib/cmake" "$root/${opt[includedir]}" > "$work/buildrefs" 2>/dev/null; then
    fail "installed files name the build tree: $(tr '\n' ' ' < "$work/buildrefs")"
else
    pass "no installed file names the build tree"
fi
for f in "$bin/tpendant" "$bin/rcsim" "$modules/libtpallet.so.1" "$lib/libtcore.so.1"; do
    rpath=$(readelf -d "$f" | sed -n 's/.*(R\(UN\)\?PATH).*\[\(.*\)\]/\2/p')
    if [ "${opt[system-libdir]}" = 1 ]; then
        [ -z "$rpath" ] && pass "${f##*/} has no RPATH" || fail "${f##*/} has RPATH $rpath"
    else
        case "$rpath" in
        *"$build"*) fail "${f##*/} has the build tree in its RPATH: $rpath" ;;
        '$ORIGIN'*) pass "${f##*/} RPATH $rpath" ;;
        *) fail "${f##*/} has RPATH '$rpath', expected one relative to \$ORIGIN" ;;
        esac
    fi
done

# The installed tpendant, started without --modules. A system library directory is searched by
# the loader only when installed for real, so the staged one is named for it; any other prefix
# runs on the RPATH alone.
run_env=(env -u LD_LIBRARY_PATH HOME="$work/home" XDG_RUNTIME_DIR="$work/run" QT_QPA_PLATFORM=offscreen)
[ "${opt[system-libdir]}" = 1 ] && run_env+=(LD_LIBRARY_PATH="$lib")
run_pendant() {
    local page=$1 shot=$2
    (cd "$work/cwd" && "${run_env[@]}" "$bin/tpendant" --page "$page" --data "$work/data" \
        --settings "$work/tpendant.ini" --screenshot "$shot") > "$work/tpendant-$page.log" 2>&1
}
check_run() {
    local page=$1 shot=$2 status=$3
    local log=$work/tpendant-$page.log
    if [ "$status" -ne 0 ]; then
        fail "installed tpendant --page $page exited with $status"
        cat "$log"
    elif grep -q "tpendant: " "$log"; then
        fail "installed tpendant --page $page reported problems:"
        grep "tpendant: " "$log"
    elif [ ! -s "$shot" ]; then
        fail "installed tpendant --page $page wrote no screenshot"
    else
        pass "installed tpendant shows the page of \"$page\" without options"
    fi
}
status=0
run_pendant tpallet "$work/tpallet.png" || status=$?
check_run tpallet "$work/tpallet.png" "$status"

# A module built against the installed SDK alone.
sdk=$work/sdkcheck
if "${opt[cmake]}" -S "${opt[sdkcheck]}" -B "$sdk" -DCMAKE_CXX_COMPILER="${opt[cxx]}" \
        -DCMAKE_PREFIX_PATH="$root" -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF > "$work/sdkcheck-configure.log" 2>&1 \
   && "${opt[cmake]}" --build "$sdk" > "$work/sdkcheck-build.log" 2>&1; then
    pass "a module builds against the installed SDK"
    found=$(sed -n 's/^TpalletHost_DIR:PATH=//p' "$sdk/CMakeCache.txt")
    [ "$found" = "$lib/cmake/TpalletHost" ] && pass "find_package(TpalletHost) took the installed package" \
        || fail "find_package(TpalletHost) found $found"
    cp -P "$sdk"/libsdkcheck.so* "$modules/"
    status=0
    run_pendant sdkcheck "$work/sdkcheck.png" || status=$?
    check_run sdkcheck "$work/sdkcheck.png" "$status"
else
    fail "a module does not build against the installed SDK"
    cat "$work/sdkcheck-configure.log" "$work/sdkcheck-build.log" 2>/dev/null | tail -40
fi

if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed"
    exit 1
fi
echo "all install checks passed"
