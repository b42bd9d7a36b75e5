# Sourced by the scripts beside it: strict mode, the project's root as working folder, one-line messages, timed stages.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Continuous integration may run as root in another user's checkout, which git does not read unless told.
export GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory GIT_CONFIG_VALUE_0=$PWD

say() { printf '==> %s\n' "$*"; }
die() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

# stage NAME COMMAND...: runs a command and prints how long it took. A failure ends the script and names the stage.
stage_name=
stage_began=0
stage() {
    stage_name=$1
    stage_began=$SECONDS
    shift
    say "$stage_name"
    "$@"
    say "$stage_name: $((SECONDS - stage_began)) s"
    stage_name=
}
report_failed_stage() {
    [ -z "$stage_name" ] || printf 'error: %s: failed after %d s\n' "$stage_name" $((SECONDS - stage_began)) >&2
}
trap report_failed_stage EXIT
