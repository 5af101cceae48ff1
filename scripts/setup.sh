# Functions that ./run, ./test and cmake/wine-run share: packages, build, Wine prefix, registration, display.
# Meant to be sourced by bash. Everything that is made lies below build/.

BRV_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
BRV_BUILD=$BRV_ROOT/build
BRV_LOGS=$BRV_BUILD/logs

# use_preset NAME: what is built and run from here on, win32 (32-bit) or win64. Programs that are started inherit it.
use_preset() {
    case $1 in
        win32*) BRV_WIDTH=32 ;;
        win64*) BRV_WIDTH=64 ;;
        *) die "there is no preset $1" ;;
    esac
    export BRV_PRESET=$1
    BRV_BIN=$BRV_BUILD/$1/bin
}

# What a build needs. Of the two compilers the one with Windows' own threads is enough: the component makes none.
BRV_BUILD_PACKAGES=(g++-mingw-w64-i686-win32 mingw-w64-tools cmake ninja-build googletest)
# What brings the standard type library, which a build needs too.
BRV_TYPE_LIBRARY_PACKAGES=(libwine:i386)
# What ./run needs; the other commands add theirs.
BRV_PACKAGES=("${BRV_BUILD_PACKAGES[@]}" "${BRV_TYPE_LIBRARY_PACKAGES[@]}" wine wine32:i386 xvfb openbox xdotool imagemagick x11-utils
    libodbc2:i386 libsqliteodbc:i386 odbc-postgresql:i386 sqlite3 fonts-liberation fonts-dejavu-core)
# What is installed where the distribution has it.
BRV_OPTIONAL_PACKAGES=()
# What cannot be installed for two architectures at once, NAME:ARCHITECTURE: it is unpacked below build/ unless it is installed.
BRV_UNPACKED_PACKAGES=()
BRV_WIN64_PACKAGES=(g++-mingw-w64-x86-64-win32 wine64 libodbc2 libsqliteodbc odbc-postgresql)

# The in-process servers that are registered, by file name.
BRV_SERVERS=(brvSQLEditor.dll brvError.dll brvADO.dll)

say() { printf '%s\n' "$*" >&2; }
die() {
    say "$(basename "$0"): $*"
    exit 1
}

use_preset "${BRV_PRESET:-win32}"

# log_tail FILE: what a failed step said last.
log_tail() {
    say "---- the end of $1:"
    tail -n 40 "$1" >&2
    say "----"
}

# --- packages ---------------------------------------------------------------------------------------------------------

# missing_packages: those of BRV_PACKAGES that are not installed. Of "one|other" either will do.
missing_packages() {
    local have package name there
    have=$(dpkg-query -W -f='${db:Status-Status} ${Package}:${Architecture}\n' \
        $(tr '|' ' ' <<<"${BRV_PACKAGES[*]}") 2>/dev/null | sed -n 's/^installed //p')
    for package in "${BRV_PACKAGES[@]}"; do
        there=
        for name in ${package//|/ }; do
            case $name in
                *:*) grep -qxF "$name" <<<"$have" && there=1 ;;
                *) grep -qE "^${name//+/\\+}:(all|$(dpkg --print-architecture))\$" <<<"$have" && there=1 ;;
            esac
        done
        [ -n "$there" ] || printf '%s\n' "$package"
    done
}

# installable NAME...: those that the package index has.
installable() {
    local name
    for name in "$@"; do
        ! LC_ALL=C apt-cache policy "$name" 2>/dev/null | grep -q '^  Candidate: [^(]' || printf '%s\n' "$name"
    done
}

# files_of PACKAGE: the files of an installed or an unpacked package.
files_of() { dpkg -L "$1" 2>/dev/null || find "$BRV_BUILD/packages/${1/:/_}" -type f 2>/dev/null; }

# unpack_package NAME:ARCHITECTURE: fetches the package, and unpacks it below build/.
unpack_package() {
    local folder=$BRV_BUILD/packages/${1/:/_} new code
    mkdir -p "$BRV_BUILD/packages" && new=$(mktemp -d "$BRV_BUILD/packages/new.XXXXXX") || return 1
    (cd "$new" && timeout 300 apt-get -o Acquire::Retries=2 download "$1" && dpkg-deb -x ./*.deb . && rm ./*.deb) </dev/null &&
        { mv -T "$new" "$folder" || [ -d "$folder" ]; } # another command may have been first
    code=$?
    rm -rf "$new"
    return $code
}

# Installs what is missing from the distribution's packages, as root or through sudo. BRV_LATER_PACKAGES: what later calls will install, whose
# architecture is enabled by the first. BRV_INDEX_READ: an earlier call has read the index of packages.
install_missing() {
    if ! command -v dpkg-query >/dev/null; then
        local command absent=()
        for command in i686-w64-mingw32-g++ i686-w64-mingw32-widl cmake ninja wine Xvfb openbox xdotool import xdpyinfo sqlite3; do
            command -v "$command" >/dev/null || absent+=("$command")
        done
        [ ${#absent[@]} -eq 0 ] || die "this is no Debian system, so nothing can be installed here; missing: ${absent[*]}"
        return 0
    fi
    local missing optional=() unpacked=() wanted package name as_root=() log=$BRV_LOGS/packages.log codename apt
    mapfile -t missing < <(missing_packages)
    [ ${#BRV_OPTIONAL_PACKAGES[@]} = 0 ] || mapfile -t optional < <(BRV_PACKAGES=("${BRV_OPTIONAL_PACKAGES[@]}")
        installable $(missing_packages))
    mkdir -p "$BRV_LOGS"
    for package in "${BRV_UNPACKED_PACKAGES[@]}"; do
        [ -z "$(files_of "$package")" ] || continue
        # With an index of packages that is there already this needs neither root nor another index.
        if [ ${#missing[@]} = 0 ]; then
            say "Fetching the package $package"
            unpack_package "$package" >"$log" 2>&1 && continue
        fi
        unpacked+=("$package")
    done
    [ $((${#missing[@]} + ${#optional[@]} + ${#unpacked[@]})) -gt 0 ] || return 0

    say "Installing packages: ${missing[*]} ${optional[*]} ${unpacked[*]}"
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || die "these packages are missing, and installing them needs root or sudo: ${missing[*]} ${unpacked[*]}"
        as_root=(sudo)
        [ -t 0 ] || as_root+=(-n)
    fi
    apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive timeout 1200 apt-get -o DPkg::Lock::Timeout=120 -o Acquire::Retries=2)
    : >"$log"
    if [[ "${missing[*]} ${BRV_LATER_PACKAGES:-}" == *:i386* ]] && ! dpkg --print-foreign-architectures | grep -qx i386; then
        "${as_root[@]}" dpkg --add-architecture i386 >>"$log" 2>&1 ||
            die "could not enable the i386 architecture (dpkg --add-architecture i386)"
    fi
    # One index of several may be unreachable while the others are enough: what counts is whether the installation succeeds.
    [ -n "${BRV_INDEX_READ:-}" ] || "${apt[@]}" update >>"$log" 2>&1 </dev/null || say "(apt-get update reported problems; going on)"
    mapfile -t wanted < <(for package in "${missing[@]}"; do
        name=$(installable ${package//|/ } | head -n 1)
        printf '%s\n' "${name:-${package%%|*}}"
    done
        installable "${BRV_OPTIONAL_PACKAGES[@]}")
    if [ ${#wanted[@]} -gt 0 ] && ! "${apt[@]}" install -y --no-install-recommends "${wanted[@]}" >>"$log" 2>&1 </dev/null; then
        # An index of one architecture may lag behind the other's, and libraries of both must have one version.
        codename=$(. /etc/os-release && printf '%s' "${VERSION_CODENAME:-}")
        if [ -z "$codename" ] || ! "${apt[@]}" install -y --no-install-recommends -t "$codename" --allow-downgrades \
            "${wanted[@]}" >>"$log" 2>&1 </dev/null; then
            log_tail "$log"
            die "could not install the packages ${wanted[*]} (network? package index? see above)"
        fi
    fi
    mapfile -t missing < <(missing_packages)
    [ ${#missing[@]} -eq 0 ] || die "still missing after the installation: ${missing[*]}"
    for package in "${unpacked[@]}"; do
        unpack_package "$package" >>"$log" 2>&1 && continue
        log_tail "$log"
        die "could not fetch and unpack the package $package (network? package index? see above)"
    done
}

# --- build ------------------------------------------------------------------------------------------------------------

# build_project [TARGET]: configures (once) and builds. Quiet while it goes well.
build_project() {
    local target=${1:-all} folder=$BRV_BUILD/$BRV_PRESET log=$BRV_LOGS/build-$BRV_PRESET.log started=$SECONDS
    mkdir -p "$BRV_LOGS"
    exec 8>"$BRV_BUILD/.build-lock"
    flock -n 8 || { say "Waiting for another build in this folder ..." && flock -w 900 8; } || die "another build has kept this folder for 15 minutes"
    # A folder that was moved or copied keeps the old place in its cache.
    if [ -f "$folder/CMakeCache.txt" ] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$BRV_ROOT" "$folder/CMakeCache.txt"; then
        rm -rf "$folder"
    fi
    if [ ! -f "$folder/build.ninja" ]; then
        say "Configuring (preset $BRV_PRESET) ..."
        if ! (cd "$BRV_ROOT" && timeout 300 cmake --preset "$BRV_PRESET") >"$log" 2>&1 </dev/null 8>&-; then
            rm -f "$folder/build.ninja"
            log_tail "$log"
            die "CMake could not configure the project; whole log: $log"
        fi
    fi
    say "Building ..."
    # In this group, so that whoever ends it ends the compilers too.
    if ! timeout --foreground 1800 cmake --build "$folder" --target "$target" -j "$(nproc)" >"$log" 2>&1 </dev/null 8>&-; then
        log_tail "$log"
        die "the build failed; whole log: $log"
    fi
    [ $((SECONDS - started)) -lt 5 ] || say "Built in $((SECONDS - started)) s."
    exec 8>&-
}

# build_while_installing [TARGET]: installs what a compilation needs first, and everything else while the project is built, beginning with what
# needs no type library. Afterwards the prefix that others are copied from is made in the background.
build_while_installing() {
    local installer compilers library BRV_LATER_PACKAGES='' BRV_INDEX_READ=''
    if ! command -v dpkg-query >/dev/null; then
        install_missing
        build_project "$@"
        return
    fi
    BRV_LATER_PACKAGES=$(missing_packages)
    compilers=$(BRV_PACKAGES=("${BRV_BUILD_PACKAGES[@]}") && missing_packages)
    library=$(BRV_PACKAGES=("${BRV_TYPE_LIBRARY_PACKAGES[@]}") && missing_packages)
    install_only "${BRV_BUILD_PACKAGES[@]}" || exit 1
    [ -z "$compilers" ] || BRV_INDEX_READ=1
    if [ -n "$library" ]; then
        install_only "${BRV_TYPE_LIBRARY_PACKAGES[@]}" &
        installer=$!
        BRV_INSTALLING=1 build_project groundwork
        wait "$installer" || exit 1
    fi
    # Whoever needs the prefix waits for it.
    (install_missing || exit 1; make_own_template &) &
    installer=$!
    build_project "$@"
    wait "$installer" || exit 1
}

install_only() ( # PACKAGE...
    BRV_PACKAGES=("$@") BRV_OPTIONAL_PACKAGES=() BRV_UNPACKED_PACKAGES=()
    install_missing
)

# --- Wine -------------------------------------------------------------------------------------------------------------

# Environment for every Windows program: a prefix of this project, quiet, with ODBC of this project. WINEPREFIX of the
# user is not looked at: that is where the user's own programs live.
wine_environment() {
    export WINEPREFIX=${BRV_PREFIX:-$BRV_BUILD/wine$BRV_WIDTH-test}
    export WINEARCH=win$BRV_WIDTH
    # Where both are installed "wine" is the 32-bit loader, which takes a program without a path from the 32-bit system folder.
    local folder=$BRV_BUILD/wine64-loader
    PATH=${PATH//"$folder:"/}
    unset WINELOADER
    if [ "$BRV_WIDTH" = 64 ] && [ -x /usr/lib/wine/wine64 ]; then
        export WINELOADER=/usr/lib/wine/wine64
        if [ ! -x "$folder/wine" ]; then
            mkdir -p "$folder"
            printf '#!/bin/sh\nexec "$WINELOADER" "$@"\n' >"$folder/wine.$$" && chmod +x "$folder/wine.$$" && mv "$folder/wine.$$" "$folder/wine"
        fi
        PATH=$folder:$PATH
    fi
    # No questions about Mono and Gecko, no entries in the desktop's menus.
    export WINEDLLOVERRIDES=${WINEDLLOVERRIDES:-mscoree,mshtml=;winemenubuilder.exe=d}
    export ODBCSYSINI=$BRV_BUILD/odbc$BRV_WIDTH ODBCINI=$BRV_BUILD/odbc$BRV_WIDTH/odbc.ini
    export BRV_SHOP_DB=${BRV_PLAIN:-$BRV_BUILD}/shop.db # for tests that read the sample database
    # Arguments and file names are UTF-8, also where the locale is "C".
    [ "$(locale charmap 2>/dev/null)" = UTF-8 ] || export LC_ALL=C.UTF-8
}

# windows_path PATH: the same file as a Windows program under Wine names it.
windows_path() {
    local path
    path=$(realpath -m -- "$1") || return 1
    printf 'Z:%s' "${path//\//\\}"
}

# plain_build FOLDER: names build/ in ASCII alone, as BRV_PLAIN: by a link in FOLDER, which is the caller's to remove, where its path has other
# letters. The driver manager of Debian 12 spoils those on their way to a driver that knows bytes alone, as that for SQLite does.
plain_build() {
    export BRV_PLAIN=$BRV_BUILD
    ! LC_ALL=C grep -q '[^ -~]' <<<"$BRV_BUILD" || { ln -s "$BRV_BUILD" "$1/build" && BRV_PLAIN=$1/build; }
}

# The drivers that a program under Wine finds: it sees the driver manager and drivers of its own width on this machine.
make_odbc() {
    local folder=$BRV_BUILD/odbc$BRV_WIDTH architecture=i386 sqlite postgresql
    [ "$BRV_WIDTH" = 32 ] || architecture=$(dpkg --print-architecture)
    [ -f "$folder/odbcinst.ini" ] && [ -f "$folder/odbc.ini" ] && return 0
    sqlite=$(dpkg -L "libsqliteodbc:$architecture" 2>/dev/null | grep '/libsqlite3odbc\.so$')
    postgresql=$(dpkg -L "odbc-postgresql:$architecture" 2>/dev/null | grep '/psqlodbcw\.so$')
    mkdir -p "$folder"
    : >"$folder/odbc.ini"
    {
        [ -z "$sqlite" ] || printf '[SQLite3]\nDescription = SQLite 3\nDriver = %s\n\n' "$sqlite"
        [ -z "$postgresql" ] || printf '[PostgreSQL Unicode]\nDescription = PostgreSQL\nDriver = %s\n\n' "$postgresql"
    } >"$folder/odbcinst.ini.new"
    mv "$folder/odbcinst.ini.new" "$folder/odbcinst.ini"
}

# add_odbc_driver WIDTH NAME FILE: one more of these drivers, if that width does not have it yet.
add_odbc_driver() (
    BRV_WIDTH=$1
    make_odbc
    file=$BRV_BUILD/odbc$1/odbcinst.ini
    ! grep -qxF "Driver = $3" "$file" || exit 0
    { cat "$file" && printf '[%s]\nDriver = %s\n\n' "$2" "$3"; } >"$file.$BASHPID" && mv "$file.$BASHPID" "$file"
)

# make_template FOLDER: a Wine prefix that nothing has run in yet, for others to be copied from. Its folders for documents are its own, not
# links into the user's.
make_template() {
    [ ! -f "$1/.made" ] || return 0
    mkdir -p "$BRV_LOGS"
    (
        export WINEPREFIX=$1
        flock -w 300 6 || exit 1
        [ ! -f "$WINEPREFIX/.made" ] || exit 0
        log=$BRV_LOGS/wine-prefix-$BRV_WIDTH.log
        say "Making a Wine prefix ($BRV_WIDTH-bit) ..."
        # Twice: on a machine that has much to do the first attempt was seen to fail in Wine's own start.
        for attempt in 1 2; do
            rm -rf "$WINEPREFIX"
            # Without a display: setting up a prefix draws nothing, and a window that asks something would never be answered.
            env -u DISPLAY timeout 240 wine wineboot -i >"$log" 2>&1 </dev/null 6>&- 7>&- 9>&- && break
            timeout 20 wineserver -k 6>&- 7>&- 9>&-
            if [ $attempt = 2 ]; then
                log_tail "$log"
                say "Wine could not make its prefix $WINEPREFIX"
                exit 1
            fi
        done
        timeout 60 wineserver -w 6>&- 7>&- 9>&- || timeout 20 wineserver -k 6>&- 7>&- 9>&-
        find "$WINEPREFIX/drive_c/users" -type l | while IFS= read -r link; do
            rm "$link" && mkdir "$link"
        done
        touch "$WINEPREFIX/.made"
    ) 6>"$1.lock"
}

# make_own_template: the template for programs of this width.
make_own_template() {
    wine_environment
    make_template "$BRV_BUILD/wine$BRV_WIDTH-template"
}

# Makes the Wine prefix unless it is there, as a copy of the one that is kept for that. With BRV_SCREENLESS its windows are drawn nowhere, which
# takes half as much of the processor's time: messages, focus, clipboard and controls are Wine's own, and only what would reach a display is left out.
make_prefix() {
    local template=$BRV_BUILD/wine$BRV_WIDTH-template
    make_odbc
    [ ! -f "$WINEPREFIX/.made" ] || return 0
    case $WINEPREFIX/ in
        "$BRV_BUILD"/*) ;;
        *) [ ! -e "$WINEPREFIX" ] || die "$WINEPREFIX exists and was not made by this project" ;;
    esac
    mkdir -p "$(dirname "$WINEPREFIX")" "$BRV_LOGS"
    (
        flock -w 300 7 || exit 1
        [ ! -f "$WINEPREFIX/.made" ] || exit 0
        make_template "$template" || exit 1
        rm -rf "$WINEPREFIX"
        # Wine's libraries and programs, nearly all of its size, are shared: nobody writes them. What may be written is copied.
        if cp -al "$template" "$WINEPREFIX" 2>/dev/null; then
            cd "$template" && find . -type f ! -iname '*.dll' ! -iname '*.exe' -print0 |
                xargs -0 cp -a --parents --remove-destination -t "$WINEPREFIX"
        else
            rm -rf "$WINEPREFIX"
            cp -a "$template" "$WINEPREFIX"
        fi || { rm -rf "$WINEPREFIX"; say "the Wine prefix $WINEPREFIX could not be copied"; exit 1; }
        [ -z "${BRV_SCREENLESS:-}" ] || printf '\n[Software\\\\Wine\\\\Drivers]\n"Graphics"="null"\n' >>"$WINEPREFIX/user.reg"
    ) 7>"$WINEPREFIX.lock"
}

# enter_prefix NAME [NAME...]: takes the first of these prefixes below build/ that no other command uses, by a lock on file
# descriptor 9, makes it if need be, and starts its server. Descriptor 9 must not reach Wine, whose server would keep the lock. The display
# must be there before: Wine's desktop keeps the one that it was started with.
enter_prefix() {
    local name
    mkdir -p "$BRV_BUILD"
    for name in "$@"; do
        exec 9>"$BRV_BUILD/$name.used"
        flock -n 9 && break
        exec 9>&-
        name=
    done
    [ -n "$name" ] || die "other commands use the Wine prefixes of this folder: $*"
    BRV_PREFIX=$BRV_BUILD/$name
    wine_environment
    [ -z "${BRV_FRESH:-}" ] || { timeout 30 wineserver -k 9>&- >/dev/null 2>&1; rm -rf "$WINEPREFIX"; }
    make_prefix || exit 1
    start_server
    BRV_ENTERED=1
}

# One server for all programs of the prefix to come: each start from nothing costs seconds.
start_server() {
    # Left over by a command that was killed.
    timeout 30 wineserver -k 9>&- >/dev/null 2>&1
    timeout 30 wineserver -p300 9>&- >/dev/null 2>&1
}

stop_server() {
    timeout 30 wineserver -k 9>&- >/dev/null 2>&1
    timeout 30 wineserver -w 9>&- >/dev/null 2>&1
}

# enter_fresh_prefix NAME [NAME...]: the same, and the prefix is as new.
enter_fresh_prefix() {
    BRV_FRESH=1 enter_prefix "$@"
}

# Ends the programs and the server of the prefix.
leave_prefix() {
    [ -n "${BRV_ENTERED:-}" ] || return 0
    BRV_ENTERED=
    stop_server
    exec 9>&-
}

# smooth_fonts: text with smooth edges, for programs that start later in the prefix. Windows' own settings are not enough: at the sizes of
# dialogs the fonts switch the smoothing off, and Wine asks the font configuration of this machine about each of them. Tests go without: they
# look at single pixels.
smooth_fonts() {
    local file=$BRV_BUILD/fonts.conf
    [ -f "$file" ] || cat >"$file" <<'XML'
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <include ignore_missing="yes">/etc/fonts/fonts.conf</include>
  <match target="pattern">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="rgba" mode="assign"><const>rgb</const></edit>
  </match>
</fontconfig>
XML
    export FONTCONFIG_FILE=$file
    [ ! -f "$WINEPREFIX/.smooth" ] || return 0
    printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"FontSmoothing"="2"\n%s\n%s\n%s\n' \
        '"FontSmoothingType"=dword:00000002' '"FontSmoothingGamma"=dword:00000578' '"FontSmoothingOrientation"=dword:00000001' \
        >"$WINEPREFIX/.smooth.reg"
    run_wine regedit /S "$(windows_path "$WINEPREFIX/.smooth.reg")" >/dev/null 2>&1 && touch "$WINEPREFIX/.smooth"
}

# check_heaps: from here on the heaps of all programs of the prefix fill what is freed and what lies behind a block (FLG_HEAP_ENABLE_TAIL_CHECK,
# FLG_HEAP_ENABLE_FREE_CHECK, FLG_HEAP_VALIDATE_PARAMETERS, as gflags sets them for the whole system). Windows looks at it when a block is
# freed, Wine only when HeapValidate asks: the tests do so after each of them (tests/unit/traps/HeapSweep.cpp).
check_heaps() {
    run_wine reg add 'HKLM\System\CurrentControlSet\Control\Session Manager' /v GlobalFlag /t REG_DWORD /d 0x70 /f >/dev/null 2>&1 ||
        die "the checking of the heap could not be set"
}

# run_wine PROGRAM ARGUMENTS...: a Windows program that gets neither our locks nor a terminal, which would make Wine draw
# a console of its own on it.
run_wine() { wine "$@" </dev/null 9>&-; }

# drive COMMAND...: works the editor's window from another process (tools/drive): prints what that tool says and returns its exit code. What
# it complains of goes to the file $drive_errors.
drive_window() (
    set -o pipefail # tr never fails
    timeout -k 2 30 wine "$BRV_BIN/drive.exe" "$@" </dev/null 9>&- 2>>"${drive_errors:-/dev/null}" | tr -d '\r'
)
drive() { drive_window "$@"; }

# Registers the in-process servers for the prefix when one of them is newer than the last time.
register_servers() {
    local stamp=$WINEPREFIX/.registered server file due=
    [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$BRV_BIN" ] || due=1
    for server in "${BRV_SERVERS[@]}"; do
        file=$BRV_BIN/$server
        [ "$stamp" -nt "$file" ] || due=1
    done
    [ -n "$due" ] || return 0
    for server in "${BRV_SERVERS[@]}"; do
        file=$BRV_BIN/$server
        [ -f "$file" ] || die "the build made no $server"
        timeout -k 5 60 wine regsvr32 /s "$(windows_path "$file")" </dev/null >/dev/null 2>&1 9>&- ||
            die "regsvr32 could not register $server (result $?)"
    done
    printf '%s' "$BRV_BIN" >"$stamp"
}

# The sample database, made again when its script is newer.
make_sample() {
    local script=$BRV_ROOT/host/demo/shop.sql file=$BRV_BUILD/shop.db log=$BRV_LOGS/shop.log
    [ "$file" -nt "$script" ] && return 0
    mkdir -p "$BRV_LOGS"
    rm -f "$file.new"
    if ! timeout 120 sqlite3 -bail "$file.new" <"$script" >"$log" 2>&1; then
        log_tail "$log"
        say "the sample database could not be made from host/demo/shop.sql"
        return 1
    fi
    mv "$file.new" "$file"
}

# --- slots ------------------------------------------------------------------------------------------------------------

# Tests move the pointer, and change the clipboard, settings and registrations: while one runs it has a display and a prefix for itself.
# ./test keeps a few of them, each named by a file in the folder BRV_SLOTS; whoever has a lock on the file uses them. The lines of
# the file are a processor, the display, the prefix, and a second prefix without a screen.

# Allowed processors of this process, one number a line.
processors() {
    local range
    for range in $(taskset -cp "$BASHPID" 2>/dev/null | sed 's/.*: //; s/,/ /g'); do seq "${range%-*}" "${range#*-}"; done
}

# stay_on PROCESSOR: keeps this process, and what it starts from now on, to one processor. A program, its Wine server and its display ask one
# another all the time: on one processor that is a switch, between two an interrupt wakes the other one, which takes a quarter longer where
# the machine is a virtual one.
stay_on() { taskset -cp "$1" "$BASHPID" >/dev/null 2>&1; }

# take_slot: waits for a slot, points DISPLAY and BRV_PREFIX at it, and stays on its processor. The lock is on file descriptor 6, which must
# not reach Wine. Where BRV_SCREENLESS is set, the prefix is the slot's other one, and no DISPLAY is left. Without ./test there are no slots,
# and what the environment says is taken.
take_slot() {
    local slot processor screenless
    [ -n "${BRV_SLOTS:-}" ] || { unset BRV_SCREENLESS; return 0; }
    while :; do
        for slot in "$BRV_SLOTS"/slot-*; do
            exec 6<"$slot" || continue
            if flock -n 6; then
                { read -r processor && read -r DISPLAY && read -r BRV_PREFIX && read -r screenless; } <&6
                export DISPLAY BRV_PREFIX
                [ -z "${BRV_SCREENLESS:-}" ] || { BRV_PREFIX=$screenless; unset DISPLAY; }
                stay_on "$processor"
                return 0
            fi
            exec 6<&-
        done
        sleep 0.1
    done
}

# --- display ----------------------------------------------------------------------------------------------------------

display_usable() { [ -n "${DISPLAY:-}" ] && timeout 5 xdpyinfo >/dev/null 2>&1; }

# start_display [bare]: starts a virtual display with a window manager on a free number and points DISPLAY at it. A bare one draws no frames
# around the windows.
start_display() {
    local number="" file tries=0 manager=(openbox --sm-disable)
    [ "${1:-}" != bare ] || manager+=(--config-file "$BRV_ROOT/scripts/bare-windows.xml")
    mkdir -p "$BRV_LOGS"
    file=$(mktemp "$BRV_LOGS/display.XXXXXX")
    Xvfb -displayfd 3 -screen 0 "${BRV_SCREEN:-1280x1024}x24" -nolisten tcp -noreset 3>"$file" >"$BRV_LOGS/xvfb.log" 2>&1 </dev/null 9>&- &
    BRV_XVFB=$!
    while [ -z "$number" ] && [ $tries -lt 100 ] && kill -0 "$BRV_XVFB" 2>/dev/null; do
        sleep 0.1
        number=$(cat "$file")
        tries=$((tries + 1))
    done
    rm -f "$file"
    if [ -z "$number" ]; then
        log_tail "$BRV_LOGS/xvfb.log"
        die "the virtual display (Xvfb) did not start"
    fi
    export DISPLAY=:$number
    unset XAUTHORITY WAYLAND_DISPLAY
    XDG_CONFIG_HOME=$BRV_BUILD/xdg XDG_CACHE_HOME=$BRV_BUILD/xdg "${manager[@]}" >"$BRV_LOGS/openbox.log" 2>&1 </dev/null 9>&- &
    BRV_OPENBOX=$!
    # Windows placed before the manager runs would be moved by it.
    for tries in $(seq 50); do
        timeout 5 xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && return 0
        kill -0 "$BRV_OPENBOX" 2>/dev/null || break
        sleep 0.1
    done
    die "the window manager (openbox) did not start on the virtual display"
}

stop_display() {
    [ -z "${BRV_OPENBOX:-}" ] || kill "$BRV_OPENBOX" 2>/dev/null
    [ -z "${BRV_XVFB:-}" ] || kill "$BRV_XVFB" 2>/dev/null
    [ -z "${BRV_XVFB:-}" ] || wait "$BRV_XVFB" "$BRV_OPENBOX" 2>/dev/null
    BRV_OPENBOX='' BRV_XVFB=''
}
