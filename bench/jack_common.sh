# Shared by the benchmark scripts that talk to ferrule-device (sourced, not run): a JACK server
# of their own on the dummy driver, a private offscreen environment, and the programs.
# Expects `build` and `period` to be set.
root=$(mktemp -d)
export JACK_DEFAULT_SERVER="ferrule-bench-$$" JACK_NO_AUDIO_RESERVATION=1
export QT_QPA_PLATFORM=offscreen FERRULE_SETTINGS_ROOT="$root" XDG_RUNTIME_DIR="$root" \
    XDG_DATA_HOME="$root"
jackd -n "$JACK_DEFAULT_SERVER" --no-realtime --sync -d dummy -r 48000 -p "$period" >"$root/jackd.log" 2>&1 &
jack=$!
trap 'kill $jack 2>/dev/null; rm -rf "$root"' EXIT
jack_wait -w -t 10 >/dev/null
echo "JACK dummy driver, 48 kHz, $period frames a period"
host="$build/bin/ferrule-host"
device="$build/bin/ferrule-device"
