#!/usr/bin/env bash
# Runs chocolate-doom on MAP01 of IWAD with PWAD for a few seconds, music on, inside an X
# display (xvfb-run). Usage: play_music.sh IWAD PWAD. Prints the engine's exit code and output.
home=$(mktemp -d)
printf 'show_endoom 0\n' > "$home/x.cfg"
HOME=$home SDL_AUDIODRIVER=dummy timeout -k 2 6 /usr/games/chocolate-doom -iwad "$1" -file "$2" \
    -warp 1 -nogui -window -nosfx -extraconfig "$home/x.cfg" >"$home/out" 2>&1
echo "engine rc=$?"
cat "$home/out"
rm -rf "$home"
