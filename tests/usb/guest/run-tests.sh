#!/bin/bash
# In the guest: runs all tests on its USB bus. BUILD is the build tree with the tests, PROGRAM the updater to be
# tested, FLAVOUR the one of the HID library that PROGRAM uses. Each test's results become a file in
# /run/guest-out/results. Returns 0 once all have run, whatever they found.
set -euo pipefail

build=$1
export TALVEX_TEST_PROGRAM=$2 TALVEX_TEST_FLAVOUR=$3
here=$(dirname "$(realpath "$0")")
# shellcheck source-path=SCRIPTDIR
source "$here/machine.sh"
source "$here/access.sh"

results=/run/guest-out/results
export TALVEX_TEST_RATES=$results/rates TALVEX_TEST_ARTIFACTS=$results/pictures

# runTest NAME [FUNCTION [COMMAND...]]: one test, or one function of it, by COMMAND.
runTest() {
    local name=$1 function=${2:-} started=$SECONDS
    "${@:3}" "$build/bin/$name" ${function:+"$function"} -o -,txt > "$results/$name$function.txt" || true
    echo "$name $function: $((SECONDS - started)) s"
}

cd /run
rm -rf "$results"
mkdir "$results"
prepareMachine
PATH=$build/bin:$PATH
startScreen
for name in tst_usbmodels tst_usblog tst_usbunplug tst_usbupdate; do
    runTest "$name"
done
letIn "$build/bin" "$TALVEX_TEST_PROGRAM" "$here/../../../server"
testAccess "$here/../../../packaging/linux/70-talvex-updater.rules" runTest
