"""How the pictures of scripts/screenshots are kept."""

import subprocess

DESKTOP_COLOUR = 0x54687E
# A corner where the pointer lights up nothing.
NOWHERE = 1279, 0
# Around what is shown of the desktop.
MARGIN = 8
LARGEST_FILE = 120_000


def write(path, *source, pixels):
    """Writes a picture with as few colours as look the same."""
    subprocess.run(["convert", *source, "+dither", "-colors", "256", "-strip", "-define", "png:exclude-chunks=date,time",
                    f"PNG8:{path}"], check=True, input=pixels)
    assert path.stat().st_size < LARGEST_FILE, f"{path} is too large"
    print(f"{path.name}: {path.stat().st_size} bytes", flush=True)


def keep(path, place):
    """Writes a picture of a part of the screen: x, y, width and height."""
    x, y, width, height = place
    screen = subprocess.run(["import", "-silent", "-window", "root", "miff:-"], check=True, stdout=subprocess.PIPE)
    write(path, "miff:-", "-crop", f"{width}x{height}+{x}+{y}", "+repage", pixels=screen.stdout)
