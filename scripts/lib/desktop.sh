# A desktop of our own: X server, session bus, window manager and a panel with a tray; to be sourced after common.sh.
# Programs started with `start` end with the script, whatever ends it; each one's output is in $desktop_logs/NAME.log.
# shellcheck shell=bash

started=()

start() {
    local name=$1
    shift
    setpriv --pdeathsig KILL "$@" </dev/null >"$desktop_logs/$name.log" 2>&1 &
    started+=("$!")
}

# Ends a program by its process id: asked first, then forced. Returns its exit status.
end() {
    local pid=$1 status=0 tries
    kill -TERM "$pid" 2>/dev/null || true
    for ((tries = 0; tries < 50; tries++)); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -KILL "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || status=$?
    return "$status"
}

end_desktop() {
    local i
    for ((i = ${#started[@]} - 1; i >= 0; i--)); do
        end "${started[i]}" || true
    done
    started=()
    if [[ -n ${XDG_RUNTIME_DIR_OWN-} ]]; then
        rm -rf "$XDG_RUNTIME_DIR_OWN"
    fi
}

# wait_for SECONDS COMMAND...: whether the command succeeds within that time.
wait_for() {
    local until=$((SECONDS + $1))
    shift
    until "$@" &>/dev/null; do
        ((SECONDS < until)) || return 1
        sleep 0.2
    done
}

has_item() {
    dbus-send --session --print-reply --dest=org.kde.StatusNotifierWatcher /StatusNotifierWatcher \
        org.freedesktop.DBus.Properties.Get string:org.kde.StatusNotifierWatcher \
        string:RegisteredStatusNotifierItems | grep -q 'string "'
}

has_window_manager() {
    xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'
}

find_panel() {
    xdotool search --onlyvisible --class '^lxqt-panel$'
}

# Starts the desktop with its files under a home folder of its own; sets the environment for what runs in it.
start_desktop() {
    local home=$1
    desktop_logs=$home/logs
    mkdir -p "$home"/{config/lxqt,data,cache,state,logs}
    XDG_RUNTIME_DIR_OWN=$(mktemp -d -t orvello-run.XXXXXX)
    trap end_desktop EXIT
    trap 'exit 130' INT
    trap 'exit 143' TERM HUP

    unset WAYLAND_DISPLAY DESKTOP_SESSION XDG_CURRENT_DESKTOP SESSION_MANAGER DBUS_SESSION_BUS_ADDRESS XAUTHORITY
    export HOME=$home XDG_RUNTIME_DIR=$XDG_RUNTIME_DIR_OWN QT_QPA_PLATFORM=xcb NO_AT_BRIDGE=1
    export XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache XDG_STATE_HOME=$home/state
    export LANG=${LANG:-C.UTF-8}

    start xvfb Xvfb -displayfd 1 -screen 0 800x480x24 -nolisten tcp -noreset
    wait_for 20 grep -q '^[0-9]' "$desktop_logs/xvfb.log" || die "the X server did not start: $desktop_logs/xvfb.log"
    DISPLAY=:$(sed -n '/^[0-9]/{p;q}' "$desktop_logs/xvfb.log")
    export DISPLAY

    # A bus that starts no services: nothing comes to life that nobody would end.
    cat >"$XDG_RUNTIME_DIR/bus.conf" <<END
<busconfig>
  <type>session</type>
  <listen>unix:path=$XDG_RUNTIME_DIR/bus</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
END
    start bus dbus-daemon --config-file="$XDG_RUNTIME_DIR/bus.conf" --nofork --nopidfile
    export DBUS_SESSION_BUS_ADDRESS=unix:path=$XDG_RUNTIME_DIR/bus
    wait_for 10 test -S "$XDG_RUNTIME_DIR/bus" || die "the session bus did not start: $desktop_logs/bus.log"

    start openbox openbox --sm-disable
    wait_for 20 has_window_manager || die "the window manager did not start: $desktop_logs/openbox.log"
    display -window root "xc:#52606d" 2>/dev/null || true # it fails even when it has done it

    printf '[General]\ntheme=system\n' >"$XDG_CONFIG_HOME/lxqt/lxqt.conf"
    # Nothing stands before the tray, so that the only icon is in the panel's corner.
    cat >"$XDG_CONFIG_HOME/lxqt/panel.conf" <<'END'
[General]
__userfile__=true
panels=panel1

[panel1]
alignment=-1
desktop=0
hidable=false
iconSize=24
panelSize=32
plugins=statusnotifier, spacer, worldclock
position=Bottom
width=100
width-percent=true

[statusnotifier]
alignment=Left
type=statusnotifier

[spacer]
expandable=true
type=spacer

[worldclock]
type=worldclock
END
    start panel lxqt-panel
    wait_for 30 find_panel || die "the panel did not start: $desktop_logs/panel.log"
}

visible_windows() {
    xdotool search --onlyvisible --name '' 2>/dev/null | sort -u
}

more_windows_than() {
    (($(visible_windows | wc -l) > $1))
}

no_more_windows_than() {
    (($(visible_windows | wc -l) <= $1))
}

# Clicks the icon at the panel's left end and waits for the menu.
open_tray_menu() {
    local x y width height before
    read -r x y width height < <(xdotool getwindowgeometry --shell "$(find_panel | head -n 1)" |
        awk -F= '{ value[$1] = $2 } END { print value["X"], value["Y"], value["WIDTH"], value["HEIGHT"] }')
    before=$(visible_windows | wc -l)
    say "panel at $x,$y, $width by $height; clicking its left end"
    xdotool mousemove "$((x + height / 2))" "$((y + height / 2))" click 1
    wait_for 10 more_windows_than "$before" || return 1
    sleep 0.5 # the menu is drawn
}

close_tray_menu() {
    local open
    open=$(visible_windows | wc -l)
    xdotool key Escape
    wait_for 5 no_more_windows_than "$((open - 1))"
}

# What the menu of the tray item says: its titles, one a line.
tray_menu_titles() {
    dbus-send --session --print-reply --dest="org.kde.StatusNotifierItem-$1-1" /MenuBar \
        com.canonical.dbusmenu.GetLayout int32:0 int32:-1 array:string:label |
        sed -n '/string "label"/{n;s/.*string "\(.*\)"/\1/p}'
}
