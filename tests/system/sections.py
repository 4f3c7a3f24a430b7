"""Takes a layered document apart for tests of damage: where its sections and lengths stand."""

import struct
from typing import NamedTuple


class Field(NamedTuple):
    name: str
    offset: int
    size: int


class Sections:
    """Walks over a whole document once; `fields` are its lengths and counts in file order."""

    def __init__(self, content):
        self._content = content
        self._at = 0
        self.fields = []
        self.boundaries = []  # offsets at which a section or a record begins
        self._is_big = content[4:6] == b"\x00\x02"
        self._walk()

    def _number(self, name, size):
        self.fields.append(Field(name, self._at, size))
        piece = self._content[self._at : self._at + size]
        self._at += size
        return int.from_bytes(piece, "big")

    def _length(self, name):
        return self._number(name, 8 if self._is_big else 4)

    def _mark(self):
        self.boundaries.append(self._at)

    def _walk(self):
        self._at = 12
        for name, size in (("channels", 2), ("height", 4), ("width", 4), ("depth", 2), ("mode", 2)):
            self._number(name, size)
        for name in ("colour mode data", "image resources"):
            self._mark()
            length = self._number(name, 4)
            self._mark()
            self._at += length
        self._mark()
        length = self._length("layer section")
        end = self._at + length
        if length:
            self._layer_info()
        self._at = end
        self._mark()
        self._number("compression", 2)
        self._mark()

    def _layer_info(self):
        self._mark()
        if not self._length("layer info"):
            return
        (count,) = struct.unpack_from(">h", self._content, self._at)
        self._number("layer count", 2)
        for index in range(abs(count)):
            self._record(index)
        self._mark()  # channel data

    def _record(self, index):
        self._mark()
        for side in ("top", "left", "bottom", "right"):
            self._number(f"{side} {index}", 4)
        channels = self._number(f"channels {index}", 2)
        for channel in range(channels):
            self._at += 2
            self._length(f"channel {index}.{channel}")
        self._at += 12  # signature, blend mode, opacity, clipping, flags, filler
        extra = self._number(f"extra data {index}", 4)
        end = self._at + extra
        for name in ("mask", "blending ranges"):
            self._mark()
            self._at += self._number(f"{name} {index}", 4)
        self._mark()
        self._number(f"name {index}", 1)
        self._at = end
