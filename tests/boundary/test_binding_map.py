"""The three maps of the registry: their buckets, several threads at once, no memory."""

import ctypes

import pytest
from wrappers import INT, POINTER, scene


@scene("binding-registry.map.initial-buckets", "binding-registry.map.reserve")
def test_buckets_follow_the_hint_and_what_is_reserved(s):
    measure = s.function("map_measure", None, INT, INT, POINTER)

    def maps(before, reserved):
        out = (ctypes.c_int64 * 9)()
        measure(before, reserved, ctypes.addressof(out))
        assert list(out[6:]) == [1000] * 3
        assert list(out[3:6]) == [before] * 3  # nothing is lost
        return list(out[:3])

    assert maps(0, -1) == [11] * 3  # the next prime above the hint of 10
    assert maps(0, 100) == [103, 103, 11]
    assert maps(5, 20) == [23, 23, 11]
    # Entries count too, and one more; without a reserve they have doubled the buckets.
    assert maps(12, -1) == [23] * 3 and maps(12, 2) == [13, 13, 23]
    assert maps(7, 11) == [11] * 3  # as it is: nothing is moved


@scene("binding-registry.map.threads")
def test_threads_share_the_maps(s):
    assert s.function("map_from_threads", INT, INT, INT)(4, 3000) == 0
    assert s.function("map_mutexes_are_apart", INT)() == 1


@scene("binding-registry.map.fields")
def test_the_maps_stand_before_their_mutexes(s):
    # Their types are asserted where the probe is compiled.
    out = (ctypes.c_int64 * 6)()
    s.function("map_places", None, POINTER)(ctypes.addressof(out))
    assert list(out) == [0, 56, 112, 168, 208, 248]


@pytest.mark.behaviour("binding-registry.map.allocation-failure")
@pytest.mark.parametrize("weak", [0, 1], ids=["strong", "weak"])
def test_a_map_without_memory_stays_usable(in_process, weak):
    def program(weak):
        import native

        return native.function("map_without_memory", ctypes.c_int, ctypes.c_int)(weak)

    seen = in_process(program, weak).value
    if seen == -1:
        pytest.skip("the sanitizer's allocator ends the process where memory ends")
    assert seen == 1 | 2 | 4
