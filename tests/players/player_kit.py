"""What the tests of players on a screen share: a film, a screen, and what is on it."""
import os
import struct
import subprocess
import time
import zlib

PATIENCE = 30  # seconds
WIDTH, HEIGHT = 800, 480

def wait_for(ask, wanted=True, equal=True):
    """The last answer, as soon as it is the wanted one, or no longer the unwanted one."""
    end = time.monotonic() + PATIENCE
    while True:
        answer = ask()
        if (answer == wanted) == equal or time.monotonic() > end:
            return answer
        time.sleep(0.05)


def write_png(path, pixels):
    """Blue, green and red of each pixel of a screen as a PNG file."""
    pixels = bytearray(pixels)
    pixels[0::3], pixels[2::3] = pixels[2::3], pixels[0::3]
    rows = b"".join(b"\0" + pixels[at:at + 3 * WIDTH] for at in range(0, len(pixels), 3 * WIDTH))

    def part(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))

    head = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + part(b"IHDR", head) + part(b"IDAT", zlib.compress(rows, 9)) +
                     part(b"IEND", b""))


class Screen:
    """An X server that keeps its screen in a file."""

    def __init__(self, folder):
        self.image = folder / "Xvfb_screen0"
        number, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{WIDTH}x{HEIGHT}x24", "-nolisten", "tcp",
             "-fbdir", str(folder)], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(number) as answer:
            self.display = ":" + answer.readline().strip()

    def read(self):
        """Blue, green and red of each pixel."""
        data = self.image.read_bytes()
        head = struct.unpack(">25I", data[:100])
        start = head[0] + head[19] * 12
        pixels = bytearray(data[start:start + WIDTH * HEIGHT * 4])
        del pixels[3::4]
        return bytes(pixels)

    def close(self):
        self.server.terminate()
        self.server.wait()


def make_film(path):
    """14 seconds of a moon that goes about the sky, with a hum."""
    subprocess.run(
        ["gst-launch-1.0", "-q", "videotestsrc", "num-buffers=140", "pattern=ball", "background-color=0xff0c1830",
         "foreground-color=0xffd0d4d8", "!", f"video/x-raw,width={WIDTH},height={HEIGHT},framerate=10/1", "!",
         "vp8enc", "deadline=1", "!", "matroskamux", "name=m", "!", "filesink", f"location={path}",
         "audiotestsrc", "num-buffers=603", "volume=0.01", "!", "audio/x-raw,rate=44100", "!", "vorbisenc", "!",
         "queue", "!", "m."], check=True)


def render(zyrsub, folder, movie, seconds, language):
    """Blue, green, red and alpha of the box's picture of a caption."""
    raw = folder / "expected.bgra"
    subprocess.run([zyrsub, "render", movie, "--at", f"{seconds}s", "--class", language, "--force", "-o", raw],
                   check=True, stdout=subprocess.DEVNULL)
    return raw.read_bytes()
