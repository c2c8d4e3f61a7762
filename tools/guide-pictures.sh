#!/usr/bin/env bash
# Redraws the pictures of the operator's guide (README.md) from the running pendant: the
# walk-through test drives the real shell and module and saves each screen it passes.
#   bash tools/guide-pictures.sh [build dir]
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=${1:-$root/build}
cmake --build "$build" --target tst_e2e_walkthrough tpallet rcsim
out=$root/docs/guide
rm -rf "$out"
mkdir -p "$out"
cd "$(mktemp -d)"
QT_QPA_PLATFORM=offscreen TPALLET_WALKTHROUGH_SHOTS="$out" "$build/tests/tst_e2e_walkthrough" \
    configureCheckExchange:"embedded controller"
ls "$out"
