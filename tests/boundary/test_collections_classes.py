"""Bound classes that are themselves iterators or iterables of the managed side."""

from harness_scene import harness_scene


@harness_scene("collections-iterators.iter.bound-classes")
def test_a_bound_enumerator_is_an_iterator(s):
    countdown = s.make("Countdown", 0x10)
    entry = "Kelmor.WrpGen.Interop.SiApiEnumerator"
    method = s.script.method(entry, "MoveNext", ASSEMBLY)  # noqa: F821
    things = [["two"], ["one"]]

    def move(frame):
        frame.result = 0 if things else 1
        if things:
            item = s.new_ref(things.pop(0))
            ctypes.c_uint64.from_address(frame.integers[1]).value = item  # noqa: F821

    method.calls(move)
    assert iter(countdown) is countdown and s.calls("MoveNext") == []
    assert next(countdown) == ["two"] and list(countdown) == [["one"]]
    assert [(e["type"], e["arguments"][0]) for e in s.calls("MoveNext")] == [(entry, 0x10)] * 3
    raised(StopIteration, next, countdown)  # noqa: F821


@harness_scene("collections-iterators.iterable.bound-classes")
def test_a_bound_enumerable_can_be_iterated(s):
    launch = s.make("Launch", 0x10)
    entry = "Kelmor.WrpGen.Interop.SiApiEnumerable"
    method = s.script.method(entry, "GetEnumerator", ASSEMBLY)  # noqa: F821
    method.writes(1, struct.pack("<Qq", 0x20, 5)).returns(0)  # noqa: F821
    unnamed = s.service("GetTypeName")
    unnamed.returns(0)
    iterator = iter(launch)
    assert type(iterator) is s.harness._wrpgen._interop._IterWrapper
    assert [(e["type"], e["arguments"][0]) for e in s.calls("GetEnumerator")] == [(entry, 0x10)]
