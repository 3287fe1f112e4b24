#!/usr/bin/env python3
"""Draws Resources/sounds/snap_sound.wav, the sound of a capture: two short clicks of a shutter, made of filtered noise
and a low knock. The same bytes whenever it runs.

usage: draw_snap_sound.py [FILE]"""

import math
import pathlib
import struct
import sys
import wave

RATE = 22050
LENGTH = 0.19  # seconds
# start in seconds, loudness, pitch of the knock in hertz, how fast it dies away in 1/s
CLICKS = [(0.004, 0.75, 190.0, 120.0), (0.082, 0.55, 260.0, 95.0)]


def noise(seed=12345):
    while True:
        seed = (1103515245 * seed + 12345) & 0x7FFFFFFF
        yield seed / 0x3FFFFFFF - 1.0


def samples():
    source = noise()
    smooth = 0.0
    for index in range(int(RATE * LENGTH)):
        time = index / RATE
        smooth += 0.55 * (next(source) - smooth)
        value = 0.0
        for start, loudness, pitch, fall in CLICKS:
            age = time - start
            if age >= 0:
                attack = min(1.0, age / 0.0008)
                crack = smooth * math.exp(-age * fall * 2.2)
                knock = 0.5 * math.sin(2 * math.pi * pitch * age) * math.exp(-age * fall)
                value += loudness * attack * (crack + knock)
        fade = min(1.0, (LENGTH - time) / 0.02)
        yield max(-1.0, min(1.0, value * fade * 0.8))


def main():
    place = pathlib.Path(__file__).resolve().parent.parent / "Resources/sounds/snap_sound.wav"
    path = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else place
    path.parent.mkdir(parents=True, exist_ok=True)
    with wave.open(str(path), "wb") as sound:
        sound.setnchannels(1)
        sound.setsampwidth(2)
        sound.setframerate(RATE)
        sound.writeframes(b"".join(struct.pack("<h", round(value * 32767)) for value in samples()))


if __name__ == "__main__":
    main()
