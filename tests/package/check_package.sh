#!/usr/bin/env bash
# Builds the Debian package and meets it as a packager and a user would: its
# contents and dependencies, lintian, the desktop entry and AppStream
# validators; then, as root, installs it with apt, starts the installed
# program on a virtual X server with the virtual camera and microphone,
# opens Help, records 5 s through the window, and purges the package.
# Usage: check_package.sh <build folder> <source folder>
set -euo pipefail
build=$(cd "$1" && pwd)
source=$(cd "$2" && pwd)
work=$(mktemp -d)
chmod 755 "$work"
installed_here=""
source "$source/tools/virtualdevices.sh"
cleanup() {
    stop_virtual_devices
    if [ -n "$installed_here" ]; then
        env DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq orvix >/dev/null 2>&1 || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

(cd "$build" && cpack -G DEB -B "$work/out" >/dev/null)
deb=$(ls "$work"/out/orvix_*.deb)
echo "package: $(basename "$deb"), $(du -k "$deb" | cut -f1) kB"

# What is in it, and where.
dpkg-deb -c "$deb" | awk '{print $6}' > "$work/contents"
for file in ./usr/bin/orvix ./usr/lib/orvix/orvix ./usr/lib/orvix/Help \
            ./usr/share/orvix/Help/Orvix_Full_HD_Help.html ./usr/share/man/man1/orvix.1.gz \
            ./usr/share/doc/orvix/copyright ./usr/share/doc/orvix/changelog.gz \
            ./usr/share/applications/com.kelvane.Orvix.desktop ./usr/share/metainfo/com.kelvane.Orvix.metainfo.xml \
            ./usr/share/icons/hicolor/scalable/apps/orvix.svg ./usr/lib/udev/rules.d/70-orvix-camera-button.rules; do
    grep -qx "$file" "$work/contents" || fail "$file is not in the package"
done
for size in 16 24 32 48 64 128 256; do
    grep -qx "./usr/share/icons/hicolor/${size}x${size}/apps/orvix.png" "$work/contents" || fail "no ${size}x${size} icon"
done
for image in $(grep -o 'src="images/[^"]*"' "$source/docs/manual/Orvix_Full_HD_Help.html" | sed 's/src="//; s/"$//'); do
    grep -qx "./usr/share/orvix/Help/$image" "$work/contents" || fail "the manual's $image is not in the package"
done
if grep -q -e gstplugins -e tst_ -e bench_ "$work/contents"; then fail "test files in the package"; fi

# Lintian's errors and warnings fail the test; an exception needs an
# override with its reason in the package.
lintian --fail-on error,warning "$deb" 2>&1 | grep -v "running with root privileges" || true
lintian --fail-on error,warning "$deb" >/dev/null 2>&1 || fail "lintian finds errors or warnings"
echo "lintian: no errors or warnings"

depends=$(dpkg-deb -f "$deb" Depends)
recommends=$(dpkg-deb -f "$deb" Recommends)
for needed in libqt6multimedia6 libqt6multimediawidgets6 libqt6gui6 gstreamer1.0-plugins-good \
              gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly gstreamer1.0-libav libgstreamer1.0-0; do
    grep -q "$needed" <<<"$depends" || fail "the package does not depend on $needed"
done
for unwanted in qt6-qpa-plugins pulseaudio pipewire; do
    if grep -q "$unwanted" <<<"$depends"; then fail "the package depends on $unwanted"; fi
done
for wanted in "pulseaudio | pipewire-pulse" qt6-wayland; do
    grep -qF "$wanted" <<<"$recommends" || fail "the package does not recommend $wanted"
done
echo "depends: $depends"
echo "recommends: $recommends"

dpkg-deb -x "$deb" "$work/root"
desktop="$work/root/usr/share/applications/com.kelvane.Orvix.desktop"
desktop-file-validate "$desktop"
appstreamcli validate --no-net "$work/root/usr/share/metainfo/com.kelvane.Orvix.metainfo.xml" >/dev/null
grep -q '<launchable type="desktop-id">com.kelvane.Orvix.desktop</launchable>' \
    "$work/root/usr/share/metainfo/com.kelvane.Orvix.metainfo.xml" || fail "AppStream names another desktop entry"
[ "$(readlink -f "$work/root/usr/bin/orvix")" = "$work/root/usr/lib/orvix/orvix" ] || fail "usr/bin/orvix does not lead to the program"
[ -f "$work/root/usr/lib/orvix/Help/Orvix_Full_HD_Help.html" ] || fail "the Help folder beside the program does not lead to the manual"

# The program as installed: by apt when this is root on a machine without
# Orvix installed, otherwise the unpacked copy.
prefix="$work/root"
if [ "$(id -u)" -eq 0 ] && ! dpkg-query -W -f='${Status}' orvix 2>/dev/null | grep -q installed; then
    installed_here=yes
    env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$deb" > "$work/apt" 2>&1 \
        || { cat "$work/apt"; fail "apt cannot install the package"; }
    dpkg -L orvix > "$work/installed-files"
    prefix=""
    echo "apt: installed $(wc -l < "$work/installed-files") paths"
else
    echo "not installed with apt (needs root and no Orvix on this machine): running the unpacked copy"
fi

# A home of its own, the virtual devices, and a stand-in for the desktop's
# viewer that writes down what it was asked to open.
mkdir -p "$work/home" "$work/run" "$work/bin" "$work/devices"
chmod 700 "$work/run" "$work/devices"
printf '#!/bin/sh\necho "$1" >> "%s/opened"\n' "$work" > "$work/bin/xdg-open"
chmod +x "$work/bin/xdg-open"
start_virtual_devices "$work/devices" "$build"
wm_class=$(sed -n 's/^StartupWMClass=//p' "$desktop")
cat > "$work/session.sh" <<SESSION
set -e
env HOME="$work/home" XDG_RUNTIME_DIR="$work/run" PATH="$work/bin:\$PATH" QT_LOGGING_RULES="*.debug=false" \
    ${virtual_environment[*]} "$prefix/usr/bin/orvix" > "$work/program.log" 2>&1 &
program=\$!
# The splash screen is a window of the program's class too, and it closes as
# the main window comes up: the main window is the one named "Orvix".
window=""
for _ in \$(seq 150); do
    window=\$(xdotool search --onlyvisible --name '^Orvix\$' 2>/dev/null | head -1 || true)
    [ -n "\$window" ] && break
    sleep 0.2
done
[ -n "\$window" ] || { echo "the main window did not appear" >&2; exit 1; }
xprop -id "\$window" WM_CLASS > "$work/wm_class"
sleep 3
xdotool windowfocus --sync "\$window"
xdotool key --window "\$window" --delay 300 alt+h Return
for _ in \$(seq 50); do [ -s "$work/opened" ] && break; sleep 0.1; done

# Record as a user does: F5 asks for a file name and puts the cursor in its
# field; type one, F5 again, 5 s later F4. There is no window manager to
# give the focus back when the question closes, so it is given here.
xdotool windowfocus --sync "\$window"
xdotool key F5
sleep 1
xdotool key Return
sleep 1
xdotool windowfocus --sync "\$window"
xdotool type --delay 50 'case 1'
xdotool key F5
sleep 5
xdotool key F4
sleep 3
kill -TERM \$program
for _ in \$(seq 100); do kill -0 \$program 2>/dev/null || break; sleep 0.1; done
if kill -0 \$program 2>/dev/null; then echo "the program did not end" >&2; exit 1; fi
SESSION
xvfb-run -a -s "-screen 0 1920x1080x24" bash "$work/session.sh" || { cat "$work/program.log"; fail "the installed program did not run"; }

grep -q "\"$wm_class\"\$" "$work/wm_class" || fail "the window's class $(cat "$work/wm_class") is not the desktop entry's $wm_class"
opened=$(cat "$work/opened" 2>/dev/null || true)
[ "$opened" = "file://$prefix/usr/lib/orvix/Help/Orvix_Full_HD_Help.html" ] || { cat "$work/program.log"; fail "Help opened '$opened'"; }
echo "installed program ran; Help opened $opened"

movies=("$work"/home/Documents/Orvix/Movie/case\ 1_*.mp4)
[ -f "${movies[0]}" ] || { cat "$work/program.log"; ls -R "$work/home/Documents" || true; fail "no recording in the storage folder"; }
[ "${#movies[@]}" -eq 1 ] || fail "${#movies[@]} recordings instead of one"
[ -f "${movies[0]%.mp4}.ini" ] || fail "no information file beside the recording"
streams=$(ffprobe -v error -show_entries stream=codec_type,codec_name,avg_frame_rate -of csv=p=0 "${movies[0]}")
duration=$(ffprobe -v error -show_entries format=duration -of csv=p=0 "${movies[0]}")
grep -q "^h264,video,30/1" <<<"$streams" || fail "the recording's picture: $streams"
grep -q ",audio," <<<"$streams" || fail "the recording has no sound: $streams"
awk -v d="$duration" 'BEGIN { exit !(d >= 4 && d <= 8) }' || fail "the recording lasts $duration s, not about 5"
echo "recorded $(basename "${movies[0]}"): $duration s, $(tr '\n' ' ' <<<"$streams")"

if [ -n "$installed_here" ]; then
    env DEBIAN_FRONTEND=noninteractive apt-get purge -y -qq orvix > "$work/apt" 2>&1 || { cat "$work/apt"; fail "apt cannot purge the package"; }
    installed_here=""
    # Folders shared with other packages stay; no file or link of ours may.
    left=$(while read -r path; do
               if [ -L "$path" ] || { [ -e "$path" ] && [ ! -d "$path" ]; }; then echo "$path"; fi
           done < "$work/installed-files")
    [ -z "$left" ] || fail "left behind after purge: $left"
    for folder in /usr/lib/orvix /usr/share/orvix /usr/share/doc/orvix; do
        [ ! -e "$folder" ] || fail "$folder is left after purge"
    done
    echo "purged: no file of the package is left"
fi
