#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes themes/loading.gif: the loading animation the tiles show until the first frame.

A ring track with a bright arc that fades towards its tail and turns once a second, drawn on the
tile's picture background (#2b2f36) so that it needs no transparency. Plain Python 3, no extra
modules: the pixels are computed with 4 x 4 supersampling, mapped to a fixed 256-colour palette
and written as an animated GIF89a with our own LZW encoder.

Usage: scripts/make-loading-gif.py [output]   (default: themes/loading.gif next to this script)
"""

import math
import os
import struct
import sys

SIZE = 64
FRAMES = 24
DELAY_CS = 4  # hundredths of a second per frame: 24 frames make one turn in 0.96 s
SUPERSAMPLE = 4

BACKGROUND = (0x2B, 0x2F, 0x36)
TRACK = (0x3A, 0x3F, 0x48)
ARC = (0x2D, 0x7F, 0xF9)
HEAD = (0x9C, 0xC3, 0xFF)

RADIUS = 21.0
THICKNESS = 5.0
ARC_SPAN = math.radians(270.0)


def mix(a, b, t):
    return tuple(a[i] + (b[i] - a[i]) * t for i in range(3))


def arc_colour(t):
    """Colour of the arc at t in [0, 1], tail to head."""
    if t < 0.8:
        return mix(TRACK, ARC, t / 0.8)
    return mix(ARC, HEAD, (t - 0.8) / 0.2)


def build_palette():
    """Background to track, background to every arc colour, so that every edge has its blend."""
    palette = []
    for level in range(16):
        palette.append(mix(BACKGROUND, TRACK, level / 15.0))
    arc_steps = 30
    blend_steps = 8
    for step in range(arc_steps):
        colour = arc_colour(step / (arc_steps - 1))
        for level in range(1, blend_steps + 1):
            palette.append(mix(BACKGROUND, colour, level / blend_steps))
    palette = [tuple(int(round(c)) for c in colour) for colour in palette]
    while len(palette) < 256:
        palette.append(BACKGROUND)
    return palette[:256]


def nearest(palette, colour, cache):
    key = tuple(int(round(c)) for c in colour)
    found = cache.get(key)
    if found is None:
        found = min(range(len(palette)),
                    key=lambda i: sum((palette[i][c] - key[c]) ** 2 for c in range(3)))
        cache[key] = found
    return found


def render(frame, palette, cache):
    rotation = 2.0 * math.pi * frame / FRAMES
    centre = SIZE / 2.0
    pixels = bytearray()
    for y in range(SIZE):
        for x in range(SIZE):
            total = [0.0, 0.0, 0.0]
            for sy in range(SUPERSAMPLE):
                for sx in range(SUPERSAMPLE):
                    px = x + (sx + 0.5) / SUPERSAMPLE - centre
                    py = y + (sy + 0.5) / SUPERSAMPLE - centre
                    colour = BACKGROUND
                    if abs(math.hypot(px, py) - RADIUS) <= THICKNESS / 2.0:
                        # Angle behind the head, clockwise on screen.
                        behind = (rotation - math.atan2(py, px)) % (2.0 * math.pi)
                        if behind <= ARC_SPAN:
                            colour = arc_colour(1.0 - behind / ARC_SPAN)
                        else:
                            colour = TRACK
                    for c in range(3):
                        total[c] += colour[c]
            samples = SUPERSAMPLE * SUPERSAMPLE
            pixels.append(nearest(palette, [t / samples for t in total], cache))
    return bytes(pixels)


def lzw(indices, min_code_size=8):
    """GIF's variable-length LZW, codes packed least significant bit first."""
    clear = 1 << min_code_size
    end = clear + 1
    out = bytearray()
    state = {"bits": 0, "count": 0}

    def emit(code, next_code):
        # The decoder lags one entry behind, so its code size follows next_code - 1.
        size = max(min_code_size + 1, (next_code - 1).bit_length())
        state["bits"] |= code << state["count"]
        state["count"] += size
        while state["count"] >= 8:
            out.append(state["bits"] & 0xFF)
            state["bits"] >>= 8
            state["count"] -= 8

    def fresh():
        return {bytes([i]): i for i in range(clear)}, end + 1

    table, next_code = fresh()
    emit(clear, next_code)
    word = b""
    for index in indices:
        candidate = word + bytes([index])
        if candidate in table:
            word = candidate
            continue
        emit(table[word], next_code)
        if next_code < 4096:
            table[candidate] = next_code
            next_code += 1
        else:
            emit(clear, next_code)
            table, next_code = fresh()
        word = bytes([index])
    emit(table[word], next_code)
    emit(end, next_code)
    if state["count"] > 0:
        out.append(state["bits"] & 0xFF)
    return bytes(out)


def sub_blocks(data):
    blocks = bytearray()
    for start in range(0, len(data), 255):
        chunk = data[start:start + 255]
        blocks.append(len(chunk))
        blocks += chunk
    blocks.append(0)
    return bytes(blocks)


def write_gif(path, palette, frames):
    gif = bytearray(b"GIF89a")
    gif += struct.pack("<HHBBB", SIZE, SIZE, 0xF7, 0, 0)
    for colour in palette:
        gif += bytes(colour)
    gif += b"\x21\xFF\x0BNETSCAPE2.0\x03\x01\x00\x00\x00"
    for pixels in frames:
        gif += struct.pack("<BBBBHBB", 0x21, 0xF9, 4, 0x04, DELAY_CS, 0, 0)
        gif += struct.pack("<BHHHHB", 0x2C, 0, 0, SIZE, SIZE, 0)
        gif.append(8)
        gif += sub_blocks(lzw(pixels))
    gif.append(0x3B)
    with open(path, "wb") as output:
        output.write(gif)


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    path = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "themes", "loading.gif")
    palette = build_palette()
    cache = {}
    frames = [render(frame, palette, cache) for frame in range(FRAMES)]
    write_gif(path, palette, frames)
    print(f"wrote {os.path.normpath(path)}: {SIZE}x{SIZE}, {FRAMES} frames")


if __name__ == "__main__":
    main()
