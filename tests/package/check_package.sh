#!/usr/bin/env bash
# Builds the Debian package and meets it as an installation would: its
# contents and dependencies, the desktop entry and AppStream validators,
# apt's view of installing it, and the installed program started on a
# virtual X server with Help opened from its menu.
# Usage: check_package.sh <build folder> <source folder>
set -euo pipefail
build=$1
source=$2
work=$(mktemp -d)
program_pid=""
cleanup() {
    [ -n "$program_pid" ] && kill "$program_pid" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$work/out" >/dev/null)
deb=$(ls "$work"/out/orvix_*.deb)
echo "package: $(basename "$deb"), $(du -k "$deb" | cut -f1) kB"

dpkg-deb -c "$deb" | awk '{print $6}' > "$work/contents"
for file in ./usr/bin/orvix ./usr/lib/orvix/orvix ./usr/lib/orvix/Help/Orvix_Full_HD_Help.html \
            ./usr/share/applications/com.kelvane.Orvix.desktop ./usr/share/icons/hicolor/256x256/apps/orvix.png \
            ./usr/share/metainfo/com.kelvane.Orvix.metainfo.xml; do
    grep -qx "$file" "$work/contents" || fail "$file is not in the package"
done
for image in $(grep -o 'src="images/[^"]*"' "$source/docs/manual/Orvix_Full_HD_Help.html" | sed 's/src="//; s/"$//'); do
    grep -qx "./usr/lib/orvix/Help/$image" "$work/contents" || fail "the manual's $image is not in the package"
done
if grep -q -e gstplugins -e tst_ -e bench_ "$work/contents"; then fail "test files in the package"; fi

depends=$(dpkg-deb -f "$deb" Depends)
for needed in qt6-qpa-plugins libqt6multimedia6 libqt6multimediawidgets6 gstreamer1.0-plugins-good \
              gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly gstreamer1.0-libav libgstreamer1.0-0; do
    grep -q "$needed" <<<"$depends" || fail "the package does not depend on $needed"
done
echo "depends: $depends"

if [ "$(id -u)" -eq 0 ]; then
    apt-get install --simulate "$deb" > "$work/apt" 2>&1 || { cat "$work/apt"; fail "apt cannot install the package"; }
    grep -q "^Inst orvix" "$work/apt" || { cat "$work/apt"; fail "apt would not install orvix"; }
    echo "apt: the package installs with what the system has or can fetch"
fi

dpkg-deb -x "$deb" "$work/root"
desktop-file-validate "$work/root/usr/share/applications/com.kelvane.Orvix.desktop"
appstreamcli validate --no-net "$work/root/usr/share/metainfo/com.kelvane.Orvix.metainfo.xml" >/dev/null
[ "$(readlink -f "$work/root/usr/bin/orvix")" = "$work/root/usr/lib/orvix/orvix" ] || fail "usr/bin/orvix does not lead to the program"

# The installed program, with a home of its own and a stand-in for the
# desktop's viewer that writes down what it was asked to open.
mkdir -p "$work/home" "$work/run" "$work/bin"
chmod 700 "$work/run"
printf '#!/bin/sh\necho "$1" >> "%s/opened"\n' "$work" > "$work/bin/xdg-open"
chmod +x "$work/bin/xdg-open"
cat > "$work/session.sh" <<SESSION
set -e
env HOME="$work/home" XDG_RUNTIME_DIR="$work/run" PATH="$work/bin:\$PATH" QT_LOGGING_RULES="*.debug=false" \
    "$work/root/usr/bin/orvix" > "$work/program.log" 2>&1 &
echo \$! > "$work/pid"
# The splash screen is a window of the program's class too, and it closes as
# the main window comes up: the main window is the one named "Orvix".
window=""
for _ in \$(seq 150); do
    window=\$(xdotool search --onlyvisible --name '^Orvix\$' 2>/dev/null | head -1 || true)
    [ -n "\$window" ] && break
    sleep 0.2
done
[ -n "\$window" ] || { echo "the main window did not appear" >&2; exit 1; }
sleep 2
kill -0 \$(cat "$work/pid")
xdotool windowfocus --sync "\$window"
xdotool key --window "\$window" --delay 300 alt+h Return
for _ in \$(seq 50); do [ -s "$work/opened" ] && break; sleep 0.1; done
kill \$(cat "$work/pid")
SESSION
xvfb-run -a -s "-screen 0 1280x800x24" bash "$work/session.sh" || { cat "$work/program.log"; fail "the installed program did not run"; }
opened=$(cat "$work/opened" 2>/dev/null || true)
[ "$opened" = "file://$work/root/usr/lib/orvix/Help/Orvix_Full_HD_Help.html" ] || { cat "$work/program.log"; fail "Help opened '$opened'"; }
echo "installed program ran; Help opened $opened"
