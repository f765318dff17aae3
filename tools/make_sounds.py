#!/usr/bin/env python3
"""Makes the event sounds shipped in data/: short sine chimes, one pattern per event.

Run from the project root: python3 tools/make_sounds.py
The output is deterministic, so the committed files only change when this script does.
"""
import math
import struct
import wave
from pathlib import Path

RATE = 22050

# Each event: a list of (frequency in Hz, duration in seconds) notes.
EVENTS = {
    "join": [(660, 0.07), (880, 0.09)],
    "part": [(880, 0.07), (660, 0.09)],
    "query": [(740, 0.06), (740, 0.06), (988, 0.08)],
    "invite": [(587, 0.07), (784, 0.07), (988, 0.09)],
    "notice": [(523, 0.12)],
    "highlight": [(1047, 0.06), (1319, 0.06), (1047, 0.06), (1319, 0.08)],
    "quit": [(494, 0.08), (392, 0.12)],
    "ping": [(1568, 0.05)],
    "kick": [(330, 0.06), (262, 0.14)],
    "op": [(784, 0.06), (1047, 0.10)],
    "deop": [(1047, 0.06), (784, 0.10)],
    "voice": [(698, 0.06), (880, 0.08)],
    "devoice": [(880, 0.06), (698, 0.08)],
}


def note(freq, seconds):
    count = int(RATE * seconds)
    fade = max(1, int(RATE * 0.01))
    for i in range(count):
        envelope = min(1.0, i / fade, (count - i) / fade)
        yield 0.45 * envelope * math.sin(2 * math.pi * freq * i / RATE)


def main():
    out = Path(__file__).resolve().parent.parent / "data"
    for name, notes in EVENTS.items():
        samples = [s for f, d in notes for s in note(f, d)]
        with wave.open(str(out / f"{name}.wav"), "wb") as w:
            w.setnchannels(1)
            w.setsampwidth(2)
            w.setframerate(RATE)
            w.writeframes(b"".join(struct.pack("<h", int(s * 32767)) for s in samples))


if __name__ == "__main__":
    main()
