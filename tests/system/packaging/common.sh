# What the tests of the installer share. Sourced by them; $here is their folder.
. "$here/../../../scripts/setup.sh"
package=$BRV_BUILD/package # made by the test package_made
setup=$(ls "$package"/*-setup.exe) portable=$(ls "$package"/*-portable.zip)
payload=${portable%-portable.zip}
uninstall_key='Software\Microsoft\Windows\CurrentVersion\Uninstall\brvSQLEditor'

use_preset win64
unset BRV_PREFIX
scratch=$(mktemp -d)
host=''
cleanup() {
    [ -z "$host" ] || kill "$host" 2>/dev/null
    leave_prefix
    rm -rf "$scratch"
}
trap cleanup EXIT

failures=0
fail() {
    printf '%s\n' "$*"
    failures=$((failures + 1))
}
expect() { [ "$2" = "$3" ] || fail "$1: expected \"$2\", found \"$3\""; } # WHAT EXPECTED ACTUAL
finish() {
    [ $failures -eq 0 ] && echo "as expected"
    exit $((failures > 0))
}

# Of the client's width: it reads the toolbar in the client's memory.
drive() { timeout -k 2 30 wine "$BRV_BUILD/win$client/bin/drive.exe" "$@" </dev/null 9>&- 2>/dev/null | tr -d '\r'; }
quietly() { timeout -k 2 60 wine "$@" </dev/null 9>&- >/dev/null 2>&1; }
engine() { [ "$1" = 32 ] && echo 'C:\windows\syswow64\cscript.exe' || echo 'C:\windows\system32\cscript.exe'; }

start_client() { # WIDTH
    client=$1
    timeout -k 2 60 wine "$(engine "$1")" //nologo "$(windows_path "$here/client.vbs")" >"$scratch/out" 2>/dev/null </dev/null 9>&- &
    host=$!
    drive wait 30 >/dev/null || { fail "$1-bit client: its window did not come"; cat "$scratch/out"; }
}
end_client() {
    printf 'select 2' >"$scratch/sql"
    drive settext "$(windows_path "$scratch/sql")"
    drive press 1
    wait "$host"
    expect "exit code of the client" 0 $?
    host=''
    expect "SQL that came back" "select 2" "$(tr -d '\r' <"$scratch/out")"
}

registry_value() { # KEY OPTIONS of reg query
    timeout -k 2 30 wine reg query "$@" </dev/null 2>/dev/null 9>&- | tr -d '\r' | sed -n 's/.*REG_[A-Z]* *//p'
}
server() { # WIDTH: the file that a program of that width would load
    local view=''
    [ "$1" = 64 ] || view=Wow6432Node\\
    registry_value "HKLM\\Software\\Classes\\${view}CLSID\\{23E4F85E-641E-4BBE-9AB0-B986E65922EA}\\InprocServer32" /ve
}
below_prefix() { # WINDOWS-PATH: the same below the prefix
    local path=${1#C:\\}
    printf '%s' "$WINEPREFIX/drive_c/${path//\\//}"
}
account() { ls "$WINEPREFIX/drive_c/users" | grep -v Public | head -n 1; }
