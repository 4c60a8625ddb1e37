#!/usr/bin/python3
"""Prints the image of the display's pointer, so that one can be told from another: WIDTH-HEIGHT-SUM.
Usage: pointer.py            prints it
       pointer.py IMAGE      waits until it is that one
       pointer.py --not IMAGE...  waits until it is none of them, and prints it
Waits at most WAIT_SECONDS, then ends with status 1."""

import ctypes
import ctypes.util
import hashlib
import os
import select
import sys
import time

POLL = 0.01  # seconds between two looks


class Image(ctypes.Structure):  # XFixesCursorImage, to the field that is needed
    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short), ("width", ctypes.c_ushort),
                ("height", ctypes.c_ushort), ("xhot", ctypes.c_ushort), ("yhot", ctypes.c_ushort),
                ("serial", ctypes.c_ulong), ("pixels", ctypes.POINTER(ctypes.c_ulong))]


def reader():
    """A function that gives the image, None without a display."""
    x11 = ctypes.CDLL(ctypes.util.find_library("X11") or "libX11.so.6")
    fixes = ctypes.CDLL(ctypes.util.find_library("Xfixes") or "libXfixes.so.3")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    fixes.XFixesGetCursorImage.restype = ctypes.POINTER(Image)
    fixes.XFixesGetCursorImage.argtypes = [ctypes.c_void_p]
    x11.XFree.argtypes = [ctypes.c_void_p]
    display = x11.XOpenDisplay(None)

    def read():
        pointer = fixes.XFixesGetCursorImage(display)
        image = pointer.contents
        pixels = image.pixels[:image.width * image.height]
        text = f"{image.width}-{image.height}-{hashlib.md5(repr(pixels).encode()).hexdigest()}"
        x11.XFree(pointer)
        return text

    return read if display else None


def main():
    read = reader()
    if read is None:
        return 1
    image = read()
    if len(sys.argv) > 1:
        others = sys.argv[1] == "--not"
        images = sys.argv[2:] if others else sys.argv[1:]
        end = time.monotonic() + float(os.environ.get("WAIT_SECONDS", "60"))
        while (image in images) == others:
            if time.monotonic() > end:
                return 1
            select.select([], [], [], POLL)
            image = read()
    print(image)
    return 0


if __name__ == "__main__":
    sys.exit(main())
