#!/usr/bin/env bash
# screenshots.sh ORV FOLDER: exports two of the examples with the plug-in's own windows on a display
# of its own, and puts pictures of them into the folder.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
orv=$1 folder=$2
work=$(mktemp -d)
cleanup() { kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"; }
trap cleanup EXIT

mkfifo "$work/display"
Xvfb -displayfd 9 -screen 0 1024x768x24 -noreset -nolisten tcp 9>"$work/display" 2>/dev/null &
read -r number <"$work/display"
export DISPLAY=:$number HOME=$work XDG_CONFIG_HOME=$work
jwm -f "$root/tests/dialogs/jwmrc" 2>/dev/null &
cd "$work"
cp "$root/examples/railcar/railcar.evt" .

# The window of that title, once it is there and has the keyboard.
await() {
  local window tries
  for tries in {1..300}; do
    window=$(xdotool search --onlyvisible --name "^$1\$" 2>/dev/null | tail -n 1) || true
    if [ -n "$window" ]; then
      [ "$(xdotool getactivewindow 2>/dev/null)" = "$window" ] && return
      xdotool windowactivate "$window" 2>/dev/null || true
    fi
    sleep 0.1
  done
  echo "waited in vain for the window '$1'" >&2
  exit 1
}

# dismiss KEY TITLE: presses the key until the window, which is there, is gone.
dismiss() {
  while xdotool search --onlyvisible --name "^$2\$" >/dev/null 2>&1; do
    xdotool key "$1"
    sleep 0.5
  done
}

# All there is on the display but the desktop, once two looks at it are alike.
shoot() {
  until import -window root one.png && sleep 0.3 && import -window root two.png &&
      cmp -s <(convert one.png rgb:) <(convert two.png rgb:); do :; done
  convert one.png -trim +repage -strip -define png:exclude-chunks=date,time "$folder/$1.png"
}

"$orv" export "$root/examples/railcar/railcar.gltf" -o ./railcar --dialogs \
  --events railcar.evt >/dev/null 2>&1 &
await "Velmor Exporter Options"
shoot dialog-options
dismiss Return "Velmor Exporter Options"
await "Exporter Query"
shoot dialog-question
dismiss alt+t "Exporter Query"
await "Velmor Exporter Log"
dismiss Escape "Velmor Exporter Log"
wait $!

"$orv" export "$root/examples/mistakes/mistakes.gltf" -o ./mistakes --dialogs >/dev/null 2>&1 &
await "Velmor Exporter Options"
dismiss Return "Velmor Exporter Options"
await "Velmor Exporter Log"
shoot dialog-log
dismiss Escape "Velmor Exporter Log"
wait $! || [ $? -eq 1 ]  # it has mistakes

"$orv" about &
await "Dialog"
shoot dialog-about
dismiss Return "Dialog"
wait $!
