#!/bin/bash
# run-tests.sh BUILD PROGRAM GUEST HANG_LIMIT [TEST...]
# In the guest: runs tests on its USB bus, then those of access. BUILD is the build tree with the tests, PROGRAM the
# updater to be tested, GUEST the flavour of the HID library that PROGRAM uses, HANG_LIMIT how long a wait may take on a
# real processor, in s. The GUEST "installation" runs those of the bundle's scripts instead. Each test's results become a
# file in /run/guest-out/results. Returns 0 once all have run, whatever they found.
set -euo pipefail

build=$1
export TALVEX_TEST_PROGRAM=$2 TALVEX_TEST_FLAVOUR=$3
# An emulated processor takes ten times as long for all it does, and its host may be busy.
export TALVEX_TEST_PATIENCE=4
hangLimit=$(($4 * TALVEX_TEST_PATIENCE))
shift 4
here=$(dirname "$(realpath "$0")")
# shellcheck source-path=SCRIPTDIR
source "$here/machine.sh"
# shellcheck source-path=SCRIPTDIR
source "$here/access.sh"
# shellcheck source-path=SCRIPTDIR
source "$here/installation.sh"

results=/run/guest-out/results
export TALVEX_TEST_PAUSE_MS=20
export TALVEX_TEST_RATES=$results/rates TALVEX_TEST_ARTIFACTS=$results/pictures

# runTest NAME [FUNCTION [COMMAND...]]: one test, or one function of it, by COMMAND.
runTest() {
    local name=$1 function=${2:-} started=$SECONDS
    "${@:3}" "$name" ${function:+"$function"} -o -,txt > "$results/$name$function.txt" || true
    echo "$name $function: $((SECONDS - started)) s"
}

cd /run
rm -rf "$results"
mkdir "$results"
prepareMachine
PATH=$build/bin:$build/tests/packaging/tst_installrule.dir:$PATH
startScreen
letIn "$build/bin" "$TALVEX_TEST_PROGRAM" "$here/../../../server"
if [ "$TALVEX_TEST_FLAVOUR" = installation ]; then
    testInstallation "$build" runTest
    exit
fi
for name in "$@"; do
    runTest "$name"
done
testAccess "$here/../../../packaging/linux/70-talvex-updater.rules" runTest
