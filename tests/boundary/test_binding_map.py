"""The three maps of the registry: their buckets, and several threads at once."""

from wrappers import INT, POINTER, scene


@scene("binding-registry.map.initial-buckets", "binding-registry.map.reserve")
def test_buckets_follow_the_hint_and_what_is_reserved(s):
    import ctypes

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
