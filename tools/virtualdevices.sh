# Sourced by tools/orvix-dev and the package test: a virtual "Orvix Full HD
# Camera" and "Orvix High Definition Mic II" on a sound server of their own,
# so that the machine's sound set-up is never touched.
#   start_virtual_devices <private folder> <build folder>
# fills the array virtual_environment with the variables the program needs
# and sets virtual_pulse_pid; stop_virtual_devices ends the sound server.
start_virtual_devices() {
    local private=$1 build=$2
    printf '%s\n' "Orvix Full HD Camera|video/x-raw,format=YUY2,width=1920,height=1080,framerate=30/1; video/x-raw,format=YUY2,width=1280,height=720,framerate=30/1; video/x-raw,format=YUY2,width=640,height=480,framerate=30/1" \
        > "$private/cameras"
    virtual_environment=(GST_PLUGIN_PATH="$build/tests/gstplugins" ORVIX_VIRTUAL_CAMERAS="$private/cameras")

    mkdir -p "$private/pulse-home" "$private/pulse-run"
    chmod 700 "$private/pulse-run"
    env HOME="$private/pulse-home" XDG_RUNTIME_DIR="$private/pulse-run" \
        pulseaudio -n --daemonize=no --exit-idle-time=-1 --disallow-exit --use-pid-file=no --log-level=error \
        -L "module-native-protocol-unix auth-anonymous=1 socket=$private/pulse" \
        -L "module-null-sink sink_name=speakers" \
        -L "module-null-sink sink_name=feed sink_properties=device.description=feed" \
        -L "module-sine sink=feed frequency=440" &
    virtual_pulse_pid=$!
    for _ in $(seq 50); do [ -S "$private/pulse" ] && break; sleep 0.1; done
    env PULSE_SERVER="unix:$private/pulse" pactl load-module module-remap-source source_name=mic master=feed.monitor \
        "source_properties=\"device.description='Orvix High Definition Mic II'\"" >/dev/null
    virtual_environment+=(PULSE_SERVER="unix:$private/pulse")
}

stop_virtual_devices() {
    [ -n "${virtual_pulse_pid:-}" ] && kill "$virtual_pulse_pid" 2>/dev/null || true
}
