"""Bound classes that are iterators or iterables themselves, and interfaces as elements."""

import ctypes
import json
import struct

import peer
from harness_scene import ASSEMBLY, OBJECT, POINTER, harness_scene, raised, variant_arg


@harness_scene("collections-iterators.iter.bound-classes")
def test_a_bound_enumerator_is_an_iterator(s):
    countdown = s.make("Countdown", 0x10)
    entry = "Kelmor.WrpGen.Interop.SiApiEnumerator"
    method = s.script.method(entry, "MoveNext", ASSEMBLY)
    things = [["two"], ["one"]]

    def move(frame):
        frame.result = 0 if things else 1
        if things:
            item = s.new_ref(things.pop(0))
            ctypes.c_uint64.from_address(frame.integers[1]).value = item

    method.calls(move)
    assert iter(countdown) is countdown and s.calls("MoveNext") == []
    assert next(countdown) == ["two"] and list(countdown) == [["one"]]
    assert [(e["type"], e["arguments"][0]) for e in s.calls("MoveNext")] == [(entry, 0x10)] * 3
    raised(StopIteration, next, countdown)


@harness_scene("collections-iterators.iterable.bound-classes")
def test_a_bound_enumerable_can_be_iterated(s):
    launch = s.make("Launch", 0x10)
    entry = "Kelmor.WrpGen.Interop.SiApiEnumerable"
    method = s.script.method(entry, "GetEnumerator", ASSEMBLY)
    method.writes(1, struct.pack("<Qq", 0x20, 5)).returns(0)
    unnamed = s.service("GetTypeName")
    unnamed.returns(0)
    iterator = iter(launch)
    assert type(iterator) is s.harness._wrpgen._interop._IterWrapper
    assert [(e["type"], e["arguments"][0]) for e in s.calls("GetEnumerator")] == [(entry, 0x10)]


@harness_scene("collections-generic.callbacks-list.interface")
def test_wrappers_are_read_from_a_list_as_an_interface(s):
    import native

    rows = json.loads((peer.ROOT / "api/generics.json").read_text())["harness"]
    place = [row[1] for row in rows if row[3]].index("kelmor.harness.IShape")
    table = POINTER.from_address(s.callbacks["SetPyGenericCallbacks"] + 8 * place)
    callback = POINTER.from_address(table.value).value
    status = native.function("status_and_error", OBJECT, *[POINTER] * 6)
    memory = (ctypes.c_ubyte * 24)(*[0xEE] * 24)

    def read(items):
        return status(callback, id(items), 0, ctypes.addressof(memory), 0, 0)

    assert read([s.make("Square", 0x44)]) == (0, None)
    assert variant_arg(ctypes.addressof(memory)) == (0, 0x44)
    assert bytes(memory)[16:] == b"\xee" * 8
    code, error = read([5])
    assert (code, type(error)) == (-1, TypeError)
    assert str(error) == "can't build IShape value from 'int'"
