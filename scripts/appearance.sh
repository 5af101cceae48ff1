# Functions that scripts/appearances and tests/window/appearance share: how the screen looks to the programs of a Wine prefix. Sourced after
# scripts/setup.sh. Programs that start later see a change.

# The prefix has these settings for itself: nothing else may run in it.
BRV_APPEARANCE_PREFIX=wine$BRV_WIDTH-appearance

# Lines of a .reg file.
appearance_fonts() { # HEIGHT in pixels at 96 dots per inch
    local name height face='' at text="MS Shell Dlg"
    height=$(printf '%08x' $(((1 << 32) - $1)))
    height=${height:6:2},${height:4:2},${height:2:2},${height:0:2}
    for ((at = 0; at < 32; ++at)); do
        if [ $at -lt ${#text} ]; then
            face+=$(printf ',%02x,00' "'${text:at:1}")
        else
            face+=',00,00'
        fi
    done
    printf '[HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics]\n'
    for name in CaptionFont SmCaptionFont IconFont MenuFont MessageFont StatusFont; do
        printf '"%s"=hex:%s,00,00,00,00,00,00,00,00,00,00,00,00,90,01,00,00,00,00,00,00,00,00,00,00%s\n' "$name" "$height" "$face"
    done
    for name in CaptionHeight CaptionWidth SmCaptionHeight SmCaptionWidth MenuHeight MenuWidth; do
        printf '"%s"="%d"\n' "$name" $(($1 * 3 / 2))
    done
}

appearance_colours() { # NAME=VALUE...
    local pair
    printf '[HKEY_CURRENT_USER\\Control Panel\\Colors]\n'
    for pair in "$@"; do printf '"%s"="%s"\n' "${pair%%=*}" "${pair#*=}"; done
}

# White on black, as the scheme "High Contrast Black" of Windows.
appearance_black() {
    local name pairs=()
    for name in Window ButtonFace Menu MenuBar Scrollbar Background InfoWindow ActiveTitle InactiveTitle AppWorkspace ButtonAlternateFace \
        GradientActiveTitle GradientInactiveTitle InactiveBorder; do
        pairs+=("$name=0 0 0")
    done
    for name in WindowText ButtonText MenuText WindowFrame TitleText InactiveTitleText InfoText ButtonHilight ButtonDkShadow ActiveBorder; do
        pairs+=("$name=255 255 255")
    done
    appearance_colours "${pairs[@]}" "Hilight=26 235 255" "HilightText=0 0 0" "MenuHilight=26 235 255" "HotTrackingColor=255 255 0" \
        "GrayText=63 242 63" "ButtonShadow=128 128 128" "ButtonLight=192 192 192"
}

# Black on white, as the scheme "High Contrast White" of Windows.
appearance_white() {
    local name pairs=()
    for name in Window ButtonFace Menu MenuBar Scrollbar Background InfoWindow ActiveTitle InactiveTitle AppWorkspace ButtonAlternateFace \
        GradientActiveTitle GradientInactiveTitle InactiveBorder; do
        pairs+=("$name=255 255 255")
    done
    for name in WindowText ButtonText MenuText WindowFrame TitleText InactiveTitleText InfoText ButtonHilight ButtonDkShadow ActiveBorder; do
        pairs+=("$name=0 0 0")
    done
    appearance_colours "${pairs[@]}" "Hilight=55 0 110" "HilightText=255 255 255" "MenuHilight=55 0 110" "HotTrackingColor=0 0 159" \
        "GrayText=96 0 0" "ButtonShadow=128 128 128" "ButtonLight=64 64 64"
}

# A scheme that somebody made: what stands on buttons and in windows has colours of its own, each readable on its own ground only.
appearance_odd() {
    appearance_colours "Window=0 0 64" "WindowText=255 255 0" "ButtonFace=255 255 192" "ButtonText=64 0 0" "Hilight=64 192 64" \
        "HilightText=0 0 0" "Menu=0 64 0" "MenuBar=0 64 0" "MenuText=255 255 255" "InfoWindow=64 0 64" "InfoText=192 255 192" \
        "GrayText=128 128 128" "ButtonShadow=128 64 64" "ButtonHilight=255 255 255" "ButtonLight=224 224 192" "ButtonDkShadow=0 0 0" \
        "WindowFrame=0 0 0" "Scrollbar=192 192 255" "MenuHilight=0 128 0"
}

# set_appearance DPI [FONT-HEIGHT [SCHEME]]: the scheme is "theme", "black", "white" or "odd".
set_appearance() {
    local file=$WINEPREFIX/.appearance.reg colours=$WINEPREFIX/.colours.reg files=()
    # The theme's colours, as the prefix was made with them.
    [ -f "$colours" ] || run_wine regedit /E "$(windows_path "$colours")" 'HKEY_CURRENT_USER\Control Panel\Colors' >/dev/null 2>&1
    {
        printf 'REGEDIT4\n\n'
        # Where Wine keeps what a program has changed for the time being, which counts for more.
        printf '[-HKEY_CURRENT_USER\\Software\\Wine\\Temporary System Parameters\\Control Panel]\n'
        printf '[-HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n'
        printf '[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:%08x\n' "$1"
        appearance_fonts "${2:-11}"
        printf '[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\ThemeManager]\n"ThemeActive"="%d"\n' \
            "$([ "${3:-theme}" = theme ] && echo 1 || echo 0)"
        case ${3:-theme} in
            black) appearance_black ;;
            white) appearance_white ;;
            odd) appearance_odd ;;
        esac
    } >"$file"
    files=("$(windows_path "$file")")
    [ "${3:-theme}" != theme ] || files=("$(windows_path "$colours")" "${files[@]}")
    run_wine regedit /S "${files[@]}" >/dev/null 2>&1 || die "the appearance $* could not be set"
    # Wine 10 keeps the dots per inch that its desktop has begun with.
    timeout 30 wineserver -k 9>&- >/dev/null 2>&1
    timeout 30 wineserver -w 9>&- >/dev/null 2>&1
    timeout 30 wineserver -p300 9>&- >/dev/null 2>&1
}
