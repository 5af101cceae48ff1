# Functions that scripts/pictures, scripts/appearances and ./run share: the editor's window over a database, worked by the pointer and the keyboard of the
# display, and pictures of it. Sourced after scripts/setup.sh. They leave the host's process in $host and write to $folder.
host=''

settle() { sleep "${1:-0.4}"; }
place() { # LEFT TOP WIDTH HEIGHT in twips, for the next window
    local pair
    {
        printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\brvSQLEditor\\Settings]\n'
        for pair in Left:$1 Top:$2 Width:$3 Height:$4; do printf '"Main%s"="%s"\n' "${pair%:*}" "${pair#*:}"; done
    } >"$BRV_BUILD/place.reg"
    run_wine regedit /S "$(windows_path "$BRV_BUILD/place.reg")" >/dev/null 2>&1
}
wait_for_window() {
    [ -n "$(drive wait 60)" ] || die "the window did not appear"
    settle 1
}
open_window() { # SQL [DATABASE]
    # By its name alone: the status bar shows the folder of a database otherwise.
    (cd "$BRV_BUILD" && exec timeout -k 5 120 wine "$BRV_BIN/kolvex-demo.exe" --connect "Driver=SQLite3;Database=${2:-shop.db}" --sql "$1" \
        </dev/null >/dev/null 2>&1 9>&-) &
    host=$!
    wait_for_window
}
close_window() {
    drive close
    wait "$host"
    host=''
}
# What the editor has of the screen, without the frame that the window manager puts around it: LEFT TOP WIDTH HEIGHT.
area() {
    local window
    for window in $(xdotool search --onlyvisible --name '^SQL Editor'); do
        LC_ALL=C xwininfo -id "$window" | awk '/Absolute upper-left X/ { x = $NF } /Absolute upper-left Y/ { y = $NF }
            /^ *Width:/ { w = $NF } /^ *Height:/ { h = $NF } END { print x, y, w, h }'
    done | sort -k 3 -n -r | head -n 1 # lists and tips bear its name too
}
# Lists, menus and tips that stand in front are in the picture. A line around it tells a white pane from a white page.
picture() { # NAME
    local left top width height
    settle
    read -r left top width height < <(area)
    timeout 30 import -silent -window root -crop "${width}x$height+$left+$top" +repage "png:$folder/$1.png" &&
        mogrify -bordercolor '#8A8A8A' -border 1 "$folder/$1.png" || die "no picture $1"
}
click() { # X Y [BUTTON]
    xdotool mousemove "$1" "$2"
    settle 0.2
    xdotool click "${3:-1}"
    settle
}
# Tips of long names take the activity from the window under some window managers: the pointer goes away from them.
rest() {
    local left top width height
    read -r left top width height < <(area)
    xdotool mousemove $((left + width - 8)) $((top + height + 60))
    xdotool search --onlyvisible --name '^SQL Editor' windowactivate
    settle
}
node() { # TEXT: clicks the node of the tree in front and opens it
    local at
    at=$(drive node 1 "$1")
    [ -n "$at" ] || die "no node $1"
    click $at
    xdotool key KP_Add
    settle
}
# wider PIXELS: drags the bar between the panes to the right. Its keys are ones by which window managers go to another desktop.
wider() {
    local left top width height x y
    read -r left top width height < <(area)
    read -r x y < <(drive tab 1)
    x=$((left + 2 * (x - left) - 2)) y=$((top + height / 2))
    xdotool mousemove "$x" "$y"
    settle 0.2
    xdotool mousedown 1
    settle 0.2
    xdotool mousemove $((x + $1 / 2)) "$y"
    settle 0.2
    xdotool mousemove $((x + $1)) "$y"
    settle 0.2
    xdotool mouseup 1
    settle
}
