# What the tests of the installer share. Sourced by them; $here is their folder.
. "$here/../../support/programs.sh"
package=$BRV_BUILD/package # made by the test package_made
setup=$(ls "$package"/*-setup.exe) portable=$(ls "$package"/*-portable.zip)
payload=${portable%-portable.zip}
uninstall_key='Software\Microsoft\Windows\CurrentVersion\Uninstall\brvSQLEditor'

use_preset win64
unset BRV_PREFIX
unset BRVERROR_ALERTS BRVERROR_LOG

# Of the client's width: it reads the toolbar in the client's memory.
drive() { BRV_BIN=$BRV_BUILD/win$client/bin drive_window "$@"; }
quietly() { timeout -k 2 60 wine "$@" </dev/null 9>&- >/dev/null 2>&1; }
engine() { [ "$1" = 32 ] && echo 'C:\windows\syswow64\cscript.exe' || echo 'C:\windows\system32\cscript.exe'; }

start_client() { # WIDTH
    client=$1
    timeout -k 2 60 wine "$(engine "$1")" //nologo "$(windows_path "$support/client.vbs")" >"$scratch/out" 2>/dev/null </dev/null 9>&- &
    host=$!
    drive wait 30 >/dev/null || { fail "$1-bit client: its window did not come"; cat "$scratch/out"; }
}
end_client() {
    set_text 'select 2'
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

# ---- versions made of a few files

# Makes $scratch/setup-VERSION.exe. 1.2.0 cannot be registered for 64-bit programs.
version_of() { # VERSION FILE...
    local folder=$scratch/$1 file
    mkdir -p "$folder"/{x86,x64,docs,examples}
    cp "$payload"/x86/* "$folder/x86/"
    cp "$payload"/x64/* "$folder/x64/"
    [ "$1" != 1.2.0 ] || echo damaged >"$folder/x64/brvSQLEditor.dll"
    for file in LICENSE.txt README.txt docs/guide.md examples/one.txt "${@:2}"; do
        mkdir -p "$(dirname "$folder/$file")"
        echo "$1 $file" >"$folder/$file"
    done
    "$BRV_ROOT/packaging/compile" "$1" "$folder" "$scratch/setup-$1.exe" >"$scratch/compile" 2>&1 || { cat "$scratch/compile"; exit 1; }
}
# The installer knows /D= and _?= only without quotation marks, which an argument with a blank would get: it is given as several.
install() { quietly "$scratch/setup-$1.exe" /S ${*:2}; } # VERSION OPTIONS
remove() { # FOLDER
    quietly "$(below_prefix "$1")/uninstall.exe" /S _?=$1
    expect "exit code of the removal" 0 $?
    rm -f "$(below_prefix "$1")/uninstall.exe"
    rmdir "$(below_prefix "$1")" 2>/dev/null
}
files_in() { [ ! -d "$1" ] || (cd "$1" && find . -type f | LC_ALL=C sort); }
entry() { timeout -k 2 30 wine reg query "$1\\$uninstall_key" </dev/null 2>/dev/null 9>&- | tr -d '\r' | grep -a REG_ | sort; }
version_in() { registry_value "$1\\$uninstall_key" /v DisplayVersion; } # HKCU or HKLM
log_of() { iconv -f UTF-16 -t UTF-8 "$1" | tr -d '\r'; }
