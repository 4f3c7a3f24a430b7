"""PNG writing alone, through the flat interface, beside Pillow: milliseconds and megabytes.

Run it as `build/python bench/png.py`. The picture is a slope with noise, 3000 x 2000 RGBA.
"""

import ctypes
import io
import pathlib
import time

import kelmor
from PIL import Image, ImageChops

WIDTH, HEIGHT = 3000, 2000
ROUNDS = 3
LIBRARY = pathlib.Path(kelmor.__file__).parent / "assemblies/psd/libkelmor.imaging.so"
WRITE = ctypes.CFUNCTYPE(
    ctypes.c_int64, ctypes.c_void_p, ctypes.POINTER(ctypes.c_uint8), ctypes.c_int64
)


class Stream(ctypes.Structure):
    _fields_ = [("read", ctypes.c_void_p), ("write", WRITE), ("seek", ctypes.c_void_p)]
    _fields_ += [("size", ctypes.c_void_p), ("user", ctypes.c_void_p)]


class Picture(ctypes.Structure):
    _fields_ = [
        (name, ctypes.c_int32)
        for name in """width height bit_depth color_type interlaced level filter palette_count
            palette_alpha_count has_transparent""".split()
    ]
    _fields_ += [("transparent", ctypes.c_uint16 * 4)]
    _fields_ += [("pixels_per_meter_x", ctypes.c_int32), ("pixels_per_meter_y", ctypes.c_int32)]
    _fields_ += [(name, ctypes.c_void_p) for name in ("palette", "palette_alpha", "icc_name")]
    _fields_ += [("icc", ctypes.c_void_p), ("icc_length", ctypes.c_int64)]
    _fields_ += [("xmp", ctypes.c_void_p), ("xmp_length", ctypes.c_int64)]
    _fields_ += [("texts", ctypes.c_void_p), ("text_count", ctypes.c_int64)]


def sample():
    slope = Image.linear_gradient("L").resize((WIDTH, HEIGHT))
    planes = []
    for seed in range(3):
        noise = Image.effect_noise((WIDTH, HEIGHT), 12 + seed)
        planes.append(ImageChops.add(slope, noise, scale=1.5, offset=-20 * seed))
    return Image.merge("RGBA", [*planes, slope.rotate(180)])


def write(library, pixels, level, filter_):
    chunks = []

    def take(user, block, length):
        chunks.append(ctypes.string_at(block, length))
        return length

    picture = Picture(WIDTH, HEIGHT, 8, 6, 0, level, filter_)
    stream = Stream(None, WRITE(take), None, None, None)
    writer = ctypes.c_void_p()
    status = library.kelmor_png_begin(
        ctypes.byref(picture), ctypes.byref(stream), ctypes.byref(writer)
    )
    status = status or library.kelmor_png_rows(
        writer, pixels, ctypes.c_int64(WIDTH * 4), ctypes.c_int32(HEIGHT)
    )
    status = status or library.kelmor_png_end(writer)
    library.kelmor_png_release(writer)
    assert status == 0, status
    return sum(map(len, chunks)), chunks


def best(work):
    fastest = float("inf")
    for _ in range(ROUNDS):
        start = time.perf_counter()
        result = work()
        fastest = min(fastest, time.perf_counter() - start)
    return fastest * 1000, result


def main():
    library = ctypes.CDLL(str(LIBRARY))
    picture = sample()
    pixels = picture.tobytes()
    _, (_, chunks) = best(lambda: write(library, pixels, 1, 5))
    assert Image.open(io.BytesIO(b"".join(chunks))).tobytes() == pixels
    for level in (0, 1, 3, 6, 9):
        for name, filter_ in (("Paeth", 4), ("best", 5)):
            spent, (size, _) = best(lambda: write(library, pixels, level, filter_))
            print(f"level {level}, filter {name:6}{spent:9.0f} ms{size / 1e6:9.2f} MB")
    for level in (1, 6):
        target = io.BytesIO()

        def save():
            target.seek(0)
            target.truncate()
            picture.save(target, "PNG", compress_level=level)

        spent, _ = best(save)
        print(f"Pillow, level {level}      {spent:9.0f} ms{len(target.getvalue()) / 1e6:9.2f} MB")


if __name__ == "__main__":
    main()
