#!/usr/bin/env bash
# Takes docs/file-manager.png: Xfce's file manager with the examples, on a virtual screen. Needs a
# release build and the packages thunar tumbler xvfb dbus imagemagick adwaita-icon-theme.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ "${1:-}" != staged ]; then
  cmake --install build/release --prefix build/release/stage >/dev/null
  exec tests/desktop/with_stage.sh build/release/stage docs/make_screenshot.sh staged
fi

# This mount is private to the script as well.
mount -t tmpfs none /home
folder=/home/anna
mkdir $folder
trap 'kill "${screen:-}" 2>/dev/null || true' EXIT
export HOME=$folder XDG_CONFIG_HOME=$folder/config XDG_CACHE_HOME=$folder/cache
export XDG_DATA_HOME=$folder/data XDG_RUNTIME_DIR=$folder/runtime
export XDG_DATA_DIRS=/usr/local/share:/usr/share DISPLAY=:77 GDK_BACKEND=x11 NO_AT_BRIDGE=1
settings=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
mkdir -p "$settings" "$XDG_CONFIG_HOME/gtk-3.0" "$folder/Drawings"
mkdir -m 700 "$XDG_RUNTIME_DIR"
cp examples/*.paintdoc "$folder/Drawings"
cat >"$XDG_CONFIG_HOME/gtk-3.0/settings.ini" <<'TEXT'
[Settings]
gtk-icon-theme-name=Adwaita
gtk-font-name=Liberation Sans 10
TEXT
cat >"$settings/thunar.xml" <<'TEXT'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="thunar" version="1.0">
  <property name="last-view" type="string" value="ThunarIconView"/>
  <property name="last-icon-view-zoom-level" type="string" value="THUNAR_ZOOM_LEVEL_250_PERCENT"/>
  <property name="misc-thumbnail-mode" type="string" value="THUNAR_THUMBNAIL_MODE_ALWAYS"/>
  <property name="last-window-width" type="int" value="960"/>
  <property name="last-window-height" type="int" value="600"/>
  <property name="last-show-hidden" type="bool" value="false"/>
</channel>
TEXT
update-mime-database /usr/local/share/mime
Xvfb "$DISPLAY" -screen 0 960x600x24 2>/dev/null &
screen=$!
sleep 1
# The file manager warns of running as root.
chown -R 1000:1000 $folder
setpriv --reuid=1000 --regid=1000 --clear-groups dbus-run-session -- bash -c '
  # It asks for each thumbnail twice at once and may miss both answers; the second time all are there.
  thunar "$HOME/Drawings" 2>/dev/null &
  sleep 4
  thunar --quit 2>/dev/null
  sleep 1
  thunar "$HOME/Drawings" 2>/dev/null &
  sleep 4
  import -window root "$HOME/screen.png"
  thunar --quit 2>/dev/null || true' 2>/dev/null
cp $folder/screen.png docs/file-manager.png
