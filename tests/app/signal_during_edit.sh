#!/usr/bin/env bash
# A logout (SIGTERM, SIGHUP) or Ctrl+C (SIGINT) while a cell is being edited:
# the real quillet, in a real window under Xvfb, saves what was typed,
# releases its lock and exits 0.
set -euo pipefail
quillet=$1
for tool in Xvfb xdotool python3; do
    if ! command -v "$tool" >/dev/null; then
        echo "SKIP: $tool is not installed"
        exit 77
    fi
done

work=$(mktemp -d)
xvfb_pid=
quillet_pid=
cleanup() {
    [ -n "$quillet_pid" ] && kill -KILL "$quillet_pid" 2>/dev/null || true
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

# A display of our own, numbered by the X server itself.
exec 3<> "$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
xvfb_pid=$!
for _ in $(seq 100); do
    [ -s "$work/display" ] && break
    sleep 0.1
done
export DISPLAY=":$(head -n 1 "$work/display")"
unset QT_QPA_PLATFORM

# One investment: 1000 at 12 % for 10 years, 100 paid 12 times a year.
write_list() {
    python3 - "$1" <<'PY'
import struct, sys
blank = -987456321.0
record = struct.pack('<h50sddddhd', 0, b'Retirement'.ljust(50), 1000.0, 0.12, 10.0, 100.0, 12, blank)
open(sys.argv[1], 'wb').write(record + bytes(148 - len(record)))
PY
}

payment_on_disk() {
    python3 -c 'import struct,sys; print(struct.unpack_from("<d", open(sys.argv[1],"rb").read(), 76)[0])' "$1"
}

# The centre of the Payment cell of grid row 1, from its twips (15 a pixel).
x=$(((7020 + 1530 / 2) / 15))
y=$(((1530 + 285 / 2) / 15))

status=0
for signal in TERM HUP INT; do
    mkdir "$work/$signal"
    cd "$work/$signal"
    write_list In.dat
    "$quillet" >"$work/$signal.log" 2>&1 &
    quillet_pid=$!
    window=$(xdotool search --sync --onlyvisible --name '^Fennrow$' | head -n 1)
    xdotool mousemove --window "$window" "$x" "$y" click 1
    xdotool key --window "$window" ctrl+a
    xdotool type --window "$window" 250
    kill -"$signal" "$quillet_pid"
    code=0
    wait "$quillet_pid" || code=$?
    quillet_pid=
    payment=$(payment_on_disk In.dat)
    if [ "$code" -ne 0 ] || [ "$payment" != "250.0" ] || [ -e .quillet.lock ]; then
        echo "FAIL SIG$signal: exit $code, payment on disk $payment, lock $(ls -A | grep -c quillet.lock)"
        cat "$work/$signal.log"
        status=1
    else
        echo "PASS SIG$signal: the typed payment was saved, the lock released, exit 0"
    fi
done
exit $status
