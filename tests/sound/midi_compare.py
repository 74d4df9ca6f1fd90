#!/usr/bin/python3
# Compares MIDI files with the same music after MIDI -> MUS -> MIDI, using mido as an independent
# reader. Usage: midi_compare.py SOURCE BACK [SOURCE BACK ...]. For every channel of the
# source there must be a channel of the copy with the same notes, velocities, program changes,
# controllers and pitch wheel (at MUS's 8-bit precision), each at the same time within one MUS
# tick of the rounding after the tempo change. Prints one line per pair; exits 1 on any difference.
import sys
import mido

MUS_TICK = 1 / 140.0                      # the tick rate kelvarmus writes by default
MIDI_TICK = 631578 / 89 / 1e6             # the tick of the MIDI it comes back as
KEPT_CONTROLLERS = {0, 1, 7, 10, 11, 91, 93, 64, 67, 120, 121, 123, 126, 127}


def events(path):
    """Per channel: the list of (seconds, what) in the order a merged track plays them."""
    song = mido.MidiFile(path)
    channels = {}
    now = 0.0
    for message in song:                  # merged, with delta times in seconds
        now += message.time
        if not hasattr(message, 'channel'):
            continue
        if message.type == 'note_on' and message.velocity > 0:
            what = ('on', message.note, message.velocity)
        elif message.type in ('note_off', 'note_on'):
            what = ('off', message.note)
        elif message.type == 'program_change':
            what = ('program', message.program)
        elif message.type == 'control_change' and message.control in KEPT_CONTROLLERS:
            value = message.value if message.control < 120 else None
            what = ('control', message.control, value)
        elif message.type == 'pitchwheel':
            if message.pitch == 0 and now == 0:
                continue                  # a centred wheel at the start changes nothing
            what = ('pitch', (message.pitch + 8192) >> 6)
        else:
            continue
        channels.setdefault(message.channel, []).append((now, what))
    return channels


def compare(source_path, back_path):
    source = events(source_path)
    back = events(back_path)
    unused = dict(back)
    worst = 0.0
    for channel, theirs in sorted(source.items()):
        wanted = [what for _, what in theirs]
        match = next((c for c, ours in unused.items() if [w for _, w in ours] == wanted), None)
        if match is None:
            return 'channel %d: no channel of the copy has the same %d events' % (channel, len(wanted))
        ours = unused.pop(match)
        for (t0, what), (t1, _) in zip(theirs, ours):
            expected = round(t0 / MUS_TICK) * MIDI_TICK
            worst = max(worst, abs(t1 - expected))
            # Python rounds halves to even and the converter away from zero: one tick either way.
            if abs(t1 - expected) > 1.5 * MIDI_TICK:
                return 'channel %d: %s at %.4f s comes at %.4f s' % (channel, what, t0, t1)
    if unused:
        return 'the copy has extra channels %s' % sorted(unused)
    return None, worst


def main():
    failed = False
    paths = sys.argv[1:]
    for source, back in zip(paths[0::2], paths[1::2]):
        result = compare(source, back)
        if isinstance(result, str):
            failed = True
            print('%s: %s' % (source, result))
        else:
            print('%s: same events, times within %.4f s' % (source, result[1]))
    sys.exit(1 if failed else 0)


main()
