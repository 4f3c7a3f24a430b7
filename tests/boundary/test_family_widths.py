"""Enumerations whose width the imaging library shows nowhere, or shows by one member alone."""

from harness_scene import harness_scene
from psd_scene import psd_scene
from wrappers import i32, text_of


@psd_scene("family-enums.width.int")
def test_a_signed_32_bit_number(s):
    cache, kind = s.type_of("Cache"), s.type_of("CacheType")
    member = list(kind)[-1]
    s.method("Cache", "getsa_CacheType").returns(0x7700000000 | int(member), 0xFFFFFFFF)
    assert cache.CACHE_TYPE is member
    assert text_of(ValueError, lambda: cache.CACHE_TYPE) == "-1 is not a valid CacheType"
    lowest = int.__new__(kind, -(2**31))
    lowest._value_ = -(2**31)
    s.clear()
    cache.set_cache_type(member), cache.set_cache_type(lowest)
    given = [i32(row[0]) for row in s.calls("setsa_CacheType")]
    assert given == [int(member), -(2**31)]


@harness_scene("family-enums.width.ushort-uint")
def test_unsigned_numbers_of_16_and_32_bits(s):
    for name, bits in (("UInt16", 16), ("UInt32", 32)):
        kind = getattr(s.harness, f"Width{name}")
        holder = s.make("Enumerations", 0x10)
        highest = max(kind)
        assert int(highest) == 2**bits - 1
        entry = f"call_000_Echo{name}"
        s.method("Enumerations", entry).takes(2).returns(0x55 << bits | int(highest))
        assert getattr(holder, f"echo_u_int{bits}")(highest) is highest
        (call,) = s.calls(entry)
        assert call["arguments"][1] & (2**bits - 1) == int(highest)
