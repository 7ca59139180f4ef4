"""still.py OUT.png: a lighthouse at dusk, as a film might show it: what the captions of README's picture stand on."""
import struct
import sys
import zlib

WIDTH, HEIGHT, HORIZON = 800, 480, 330
SKY = [(0, (18, 24, 52)), (200, (74, 58, 98)), (290, (176, 96, 84)), (HORIZON, (226, 150, 96))]
SEA = [(HORIZON, (96, 74, 92)), (360, (38, 44, 72)), (HEIGHT, (10, 16, 34))]
ROCK = (14, 15, 24)
TOWER, BAND = (206, 196, 190), (142, 52, 48)
LAMP_X, LAMP_Y = 610, 142


def shade(stops, y):
    """The colour between two stops, in steps of four rows, which packs well."""
    y -= y % 4
    for (above, a), (below, b) in zip(stops, stops[1:]):
        if y <= below:
            part = max(y - above, 0) / (below - above)
            return tuple(round(x + (z - x) * part) for x, z in zip(a, b))
    return stops[-1][1]


def tower(x, y):
    """The colour of the lighthouse there, or None."""
    off, down = abs(x - LAMP_X), y - LAMP_Y
    if -30 <= down < -14 and off <= (down + 30) * 1.4:
        return ROCK
    if -14 <= down < 10 and off <= 14:
        return (255, 240, 190) if off <= 10 else ROCK
    if 10 <= down < 16 and off <= 26:
        return ROCK
    if 16 <= down < 170 and off <= 16 + down * 0.09:
        lit = BAND if (down - 16) // 31 % 2 else TOWER
        return tuple(round(part * (0.62 if x > LAMP_X else 1)) for part in lit)
    return None


def rock(x, y):
    return y > 300 + abs(x - 625) ** 1.5 * 0.028 and y < 372 + (x % 37) * 0.2 - abs(x - 625) * 0.06


def beam(x, y, colour):
    """Light to the left of the lamp, fainter with its distance."""
    far = LAMP_X - x
    if far <= 10 or abs(y - LAMP_Y + far * 0.05) > far * 0.085:
        return colour
    part = 0.45 * (1 - far / LAMP_X) + 0.05
    return tuple(round(own + (light - own) * part) for own, light in zip(colour, (255, 226, 160)))


def pixel(x, y):
    if y < HORIZON:
        return tower(x, y) or (ROCK if rock(x, y) else beam(x, y, shade(SKY, y)))
    if rock(x, y):
        return ROCK
    glint = y < 408 and (x * 7 + y * 131) % 97 < 3 and abs(x - 330) < (y - HORIZON) * 2 + 60 and y % 6 < 2
    return (214, 150, 112) if glint else shade(SEA, y)


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def main(path):
    rows = b"".join(b"\0" + bytes(part for x in range(WIDTH) for part in pixel(x, y)) for y in range(HEIGHT))
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0)))
        file.write(chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


if __name__ == "__main__":
    main(sys.argv[1])
