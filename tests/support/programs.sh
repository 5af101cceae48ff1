# What the tests of whole programs share. Sourced by them; it brings scripts/setup.sh. $host is the process whose window is worked, while there is
# one, and $scratch a folder for the test alone.
support=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$support/../../scripts/setup.sh"
scratch=$(mktemp -d)
drive_errors=$scratch/drive.err
host=''
cleanup() {
    [ -z "$host" ] || kill "$host" 2>/dev/null
    leave_prefix
    rm -rf "$scratch"
}
trap cleanup EXIT
export BRVERROR_ALERTS=0 BRVERROR_LOG
BRVERROR_LOG=$(windows_path "$scratch/events.log")

failures=0
fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}
expect() { [ "$2" = "$3" ] || fail "$1: expected"$'\n'"$2"$'\n'"but found"$'\n'"$3"; } # WHAT EXPECTED ACTUAL
# expect_soon WHAT EXPECTED COMMAND...: that the command comes to print it, however busy the machine is.
expect_soon() {
    local try
    for ((try = 0; try < 100; ++try)); do
        [ "$("${@:3}")" != "$2" ] || return 0
        sleep 0.1
    done
    expect "$1" "$2" "$("${@:3}")"
}
finish() {
    [ $failures -eq 0 ] && echo "as expected"
    exit $((failures > 0))
}

# start PROGRAM ARGUMENTS...: as $host, which lives for $limit seconds at the most, and waits for its window.
limit=80
start() {
    timeout -k 2 "$limit" wine "$@" >"$scratch/out" 2>"$scratch/err" </dev/null 9>&- &
    host=$!
    drive wait 40 >/dev/null && return
    echo "the window did not come"
    cat "$scratch/out" "$scratch/err" "$scratch/events.log" 2>/dev/null
    exit 1
}
# end EXPECTED: waits for the end of the host, which has to be without an error, and looks at what it has printed and reported.
end() {
    wait "$host"
    expect "exit code" 0 $?
    host=''
    expect "output" "$1" "$(tr -d '\r' <"$scratch/out")"
    expect "reports" "" "$(cat "$scratch/events.log" 2>/dev/null)"
}
# start_host [ARGUMENTS]: the host in VBScript.
start_host() { start cscript.exe //nologo "$(windows_path "$support/host.vbs")" "$@"; }
set_text() { # TEXT: in the editor
    printf '%s' "$1" >"$scratch/text.sql"
    drive settext "$(windows_path "$scratch/text.sql")" >/dev/null
}
