"""Managed lists as Python lists: types, items, slices. Arrays and array lists too."""

import ctypes
import sys

from managed_lists import (
    SET_NOCHECK,
    WRAPPERS,
    all_lists,
    entries,
    growing,
    indexes,
    ints,
    length_class,
    managed,
    range_text,
    writes_of,
)
from wrappers import OBJECT, i32, raised, scene, text_of, variant


@scene(
    "collections-lists.types.published",
    "collections-lists.types.record-size",
    "collections-lists.types.no-constructor",
    "collections-lists.methods.collection-order",
    "collections-lists.methods.collection-absent",
    "collections-lists.methods.list-order",
    "collections-lists.marks.interfaces",
    "collections-arrays.types.published",
    "collections-arrays.marks.interfaces",
    "collections-arrays.features.common",
    "collections-arrays.features.index-sort-reverse",
    "collections-arrays.features.mutators",
)
def test_the_types(s):
    i = s.interop
    casts = ["get_type", "_type_of", "_cast_to", "_cast_from", "_is_assignable"]
    casts += ["_reinterpret_obj", "_cast_as"]
    mutators = ["append", "insert", "extend", "remove", "pop", "clear"]
    order = ["index", "count", "contains", "sort", "reverse", "copy"]
    assert [n for n in vars(i._IColWrapper) if not n.startswith("__")][:4] == [
        "count",
        "copy",
        "contains",
        "get_type",
    ]
    every = mutators + order + casts
    assert [n for n in vars(i._IListWrapper) if n in every] == every
    assert [n for n in vars(i._IColWrapper) if n in casts] == casts
    marks = {
        "ICol": {i._IterableWrapper},
        "RoColBase": {i._IterableWrapper, i._IColWrapper},
        "IList": {i._IterableWrapper, i._IColWrapper},
    }
    for kind in ("ColBase", "Array", "ArrList"):
        marks[kind] = {i._IterableWrapper, i._IColWrapper, i._IListWrapper}
    for kind, wanted in marks.items():
        wrapper = getattr(i, WRAPPERS[kind])
        assert wrapper._additional_interfaces == wrapper._implicit_interfaces == wanted
        assert wrapper.__basicsize__ == 24
        assert text_of(TypeError, wrapper) == "type has no available constructor"
        for name in ("length", "__len__", "__contains__", "count", "contains", "copy", "__add__"):
            assert hasattr(wrapper, name)
        assert hasattr(wrapper, "__mul__") and hasattr(wrapper, "__iter__")
        is_list = kind not in ("ICol", "RoColBase")
        for name in ("index", "sort", "reverse"):
            assert hasattr(wrapper, name) is is_list
        for name in mutators:
            assert hasattr(wrapper, name) is (is_list and kind != "Array")


@scene(
    "collections-lists.host-icol.delegates",
    "collections-lists.host-ilist.delegates",
    "collections-lists.host.lazy-bind",
    "collections-arrays.host-array.delegates",
    "collections-arrays.host-arrlist.delegates",
    "collections-arrays.host-bases.delegates",
)
def test_the_hosts(s):
    tail = ["btp_IsAssignable", "CreateInstanceFromPyList", "CreateInstanceFromPySequence"]
    tail += ["btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs"]
    array = "SqLength SqContains SqGetItem SqGetItemNoCheck SqSetItem SqSetItemNoChek MpSetItems"
    array += " Reverse Sort IndexBy CountOf"
    arrlist = "SqLength Add Remove Clear SqContains SqGetItem SqGetItemNoCheck SqSetItem"
    arrlist += " SqSetItemNoChek Insert RemoveAt Pop SqInplaceConcat SqInplaceRepeat MpSetItems"
    arrlist += " MpRemoveItems Reverse Sort IndexBy CountOf EnsureCapacity"
    icol = "SqLength SqContains CountOf CreateInstanceFromPyList CreateInstanceFromPyIterable"
    icol += " btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs"
    ilist = "SqGetItem SqGetItemNoCheck SqSetItem SqSetItemNoCheck Add Insert Remove RemoveAt Pop"
    ilist += " Clear SqInplaceConcat SqInplaceRepeat MpSetItems MpRemoveItems Reverse Sort IndexBy"
    ilist += " SqContains CountOf CreateInstanceFromPyList CreateInstanceFromPySequence"
    ilist += " btp_IsAssignable btp_TypeOf btp_CastTo btp_CastAs"
    wanted = {
        "SiApiCntCollection": icol.split(),
        "SiApiCntList": ilist.split(),
        "SiApiArray": array.split() + tail,
        "SiApiArrayList": arrlist.split() + tail,
        "SiApiCollectionBase": tail,
        "SiApiReadOnlyCollectionBase": tail,
    }
    asked_at_start = {kind for kind, _ in s.requests_of_start}
    for kind in WRAPPERS:
        for _ in range(2):
            s.wrap(getattr(s.interop, WRAPPERS[kind]), 1)
    for name, methods in wanted.items():
        full = f"Kelmor.WrpGen.Interop.{name}"
        assert full not in asked_at_start
        assert [method for kind, method in s.script.requests if kind == full] == methods


@scene(
    "collections-lists.length.delegate",
    "collections-lists.length.attribute",
    "collections-lists.length.negative-error",
    "collections-lists.length.negative-no-error",
)
def test_the_length(s):
    for kind in WRAPPERS:
        m = managed(s, kind, "abc", 0x10)
        assert len(m) == m.length == 3 and s.calls("SqLength") == [[0x10]] * 2
        raised(AttributeError, setattr, m, "length", 1)
        method = s.method(length_class(kind), "SqLength").reset().returns(-5)
        assert m.length == -5
        method.raises(RuntimeError, "Proxy error(X): no")
        assert text_of(RuntimeError, len, m) == "Proxy error(X): no"
        assert text_of(RuntimeError, lambda: m.length) == "Proxy error(X): no"
        s.clear()


@scene(
    "collections-lists.getitem.length-first",
    "collections-lists.getitem.positive",
    "collections-lists.getitem.negative",
    "collections-lists.getitem.negative-beyond",
    "collections-lists.getitem.beyond-end",
    "collections-lists.getitem.other-status",
    "collections-lists.getitem.index-object",
    "collections-lists.getitem.ssize-overflow",
    "collections-lists.getitem.int32-overflow",
    "collections-lists.getitem.int32-underflow",
    "collections-lists.getitem.wrong-type",
    "collections-arrays.array-item.get",
    "collections-arrays.array-item.int32-range",
    "collections-arrays.array-item.bad-subscript",
)
def test_items_are_read(s):
    for kind in all_lists():
        items = [["a"], ["b"], ["c"]]
        m = managed(s, kind, items)
        s.clear()
        assert m[1] is items[1] and s.calls() == ["SqLength", "SqGetItem"]
        assert m[-1] is items[2] and m[True] is items[1]
        for index in (-4, 7, 2147483647, -2147483651):
            assert text_of(IndexError, lambda: m[index]) == "list index out of range"
        wanted = [1, 2, 1, -1, 7, 2147483647, -2147483648]
        assert indexes(s, "SqGetItem") == wanted
        assert text_of(OverflowError, lambda: m[2147483648]) == range_text(2147483648)
        assert text_of(OverflowError, lambda: m[-2147483652]) == range_text(-2147483649)
        raised(IndexError, lambda: m[2**70])

        class Bad:
            def __index__(self):
                raise KeyError("no index")

        raised(KeyError, lambda: m[Bad()])
        for key, shown in [("a", "str"), (None, "NoneType"), (1.0, "float")]:
            text = f"list indices must be integers or slices, not {shown}"
            assert text_of(TypeError, lambda: m[key]) == text
        assert indexes(s, "SqGetItem") == wanted
        s.method(entries(kind), "SqGetItem").reset().returns(5).raises(RuntimeError, "broken")
        assert text_of(RuntimeError, lambda: m[0]) == "broken"
        s.method(length_class(kind), "SqLength").reset().returns(-1).raises(
            RuntimeError, "no length"
        )
        s.clear()
        assert text_of(RuntimeError, lambda: m["a"]) == "no length"
        assert s.calls() == ["SqLength"]


@scene(
    "collections-lists.getslice.plain-list",
    "collections-lists.getslice.no-check-calls",
    "collections-lists.getslice.reversed",
    "collections-lists.getslice.empty",
    "collections-lists.getslice.bad-slice",
    "collections-lists.getslice.element-error",
    "collections-arrays.array-slice.get",
)
def test_slices_are_read(s):
    for kind in all_lists():
        items = [[n] for n in range(5)]
        m = managed(s, kind, items)
        s.clear()
        got = m[1:3]
        assert type(got) is list and got[0] is items[1] and got == [[1], [2]]
        assert s.calls() == ["SqLength", "SqGetItemNoCheck", "SqGetItemNoCheck"]
        assert indexes(s, "SqGetItemNoCheck") == [1, 2]
        s.clear()
        assert m[::-2] == [[4], [2], [0]] and indexes(s, "SqGetItemNoCheck") == [4, 2, 0]
        s.clear()
        assert m[3:1] == m[10:] == [] and set(s.calls()) == {"SqLength"}
        assert text_of(ValueError, lambda: m[::0]) == "slice step cannot be zero"
        raised(TypeError, lambda: m["a":])
        before = sys.getrefcount(items[0])

        def fetch(frame):
            if i32(frame.integers[1]) == 2:
                s.method(entries(kind), "SqGetItemNoCheck").reset().raises(RuntimeError, "gone")
            ctypes.pythonapi.Py_IncRef(OBJECT(items[0]))
            frame.result = id(items[0])

        s.method(entries(kind), "SqGetItemNoCheck").reset().calls(fetch)
        s.clear()
        assert text_of(RuntimeError, lambda: m[:]) == "gone"
        assert indexes(s, "SqGetItemNoCheck") == [0, 1, 2, 3]
        assert sys.getrefcount(items[0]) == before


@scene(
    "collections-lists.setitem.call",
    "collections-lists.setitem.negative",
    "collections-lists.setitem.int32-range",
    "collections-lists.setitem.unknown-value",
    "collections-lists.setitem.status-2",
    "collections-lists.setitem.other-status",
    "collections-lists.append.variant-kinds",
    "collections-arrays.array-item.set",
)
def test_items_are_written(s):
    for kind in all_lists():
        m = managed(s, kind, "abc")
        w, v, plain = s.wrap(s.Sample, 0x50), s.wrap(s.Value, 0x60), [1]
        s.clear()
        m[1] = 5
        assert s.calls() == ["SqLength", "SqSetItem"]
        m[-1] = None
        m[-4] = w
        m[0] = v
        m[0] = plain
        m[0] = "x"
        assert writes_of(s, "SqSetItem") == [
            (1, 6, id(5)),
            (2, 0, id(None)),
            (-1, 1, 0x50),
            (0, 2, 0x60),
            (0, 15, id(plain)),
            (0, 3, id("x")),
        ]
        s.clear()
        assert text_of(TypeError, m.__setitem__, 0, object()) == "unknown variant type"
        text = range_text(2147483648)
        assert text_of(OverflowError, m.__setitem__, 2147483648, object()) == text
        assert s.calls("SqSetItem") == []
        method = s.method(entries(kind), "SqSetItem").reset().returns(2)
        assert text_of(IndexError, m.__setitem__, 0, 1) == "list index out of range"
        method.reset().returns(7).raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.__setitem__, 0, 1) == "broken"


@scene(
    "collections-lists.delitem.call",
    "collections-lists.delslice.turned-round",
    "collections-lists.delslice.step-one",
    "collections-lists.delslice.negative-step",
    "collections-lists.delslice.empty",
    "collections-lists.delslice.empty-list-negative-step",
    "collections-lists.delslice.error",
    "collections-arrays.arrlist.delete-index",
    "collections-arrays.arrlist.delete-slice",
)
def test_items_are_deleted(s):
    for kind in growing():
        m = managed(s, kind, "abc")
        s.method(entries(kind), "RemoveAt").reset()
        s.clear()
        del m[-1]
        assert s.calls() == ["SqLength", "RemoveAt"] and indexes(s, "RemoveAt") == [2]
        text = range_text(2147483648)
        assert text_of(OverflowError, m.__delitem__, 2147483648) == text
        s.method(entries(kind), "RemoveAt").reset().returns(2)
        assert text_of(IndexError, m.__delitem__, 0) == "list index out of range"
        s.method(entries(kind), "RemoveAt").reset().returns(9).raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.__delitem__, 0) == "broken"
        for count, key, wanted in [
            (5, slice(None, None, 2), [4, 3, -2]),
            (5, slice(1, 3), [2, 2, -1]),
            (3, slice(None, None, -1), [2, 3, -1]),
            (5, slice(0, 0), [0, 0, -1]),
            (5, slice(2, 2), [1, 0, -1]),
            (0, slice(None, None, -1), [0, 0, -1]),
        ]:
            m = managed(s, kind, range(count))
            s.clear()
            del m[key]
            assert ints(s, "MpRemoveItems", 3) == [wanted], (count, key)
        s.method(entries(kind), "MpRemoveItems").raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.__delitem__, slice(0, 1)) == "broken"
        s.method(entries(kind), "MpRemoveItems").reset()


@scene(
    "collections-lists.setslice.elements",
    "collections-lists.setslice.step",
    "collections-lists.setslice.size-differs",
    "collections-lists.setslice.empty",
    "collections-lists.setslice.element-failure",
    "collections-lists.setslice.sequence",
    "collections-lists.setslice.sequence-size-fails",
    "collections-lists.setslice.non-sequence",
    "collections-arrays.array-slice.set",
)
def test_slices_are_written(s):
    for kind in all_lists():
        nocheck = SET_NOCHECK[entries(kind)]
        m = managed(s, kind, range(5))
        s.clear()
        m[1:3] = [7, 8]
        assert s.calls() == ["SqLength", nocheck, nocheck]
        assert writes_of(s, nocheck) == [(1, 6, id(7)), (2, 6, id(8))]
        s.clear()
        m[::-2] = ("a", "b", "c")
        assert [place for place, *_ in writes_of(s, nocheck)] == [4, 2, 0]
        s.clear()
        text = "attempt to assign sequence of size {} to extended slice of size {}"
        for key, value, sizes in [
            (slice(1, 3), [1, 2, 3], (3, 2)),
            (slice(0, 0), [1], (1, 0)),
            (slice(1, 3), "abc", (3, 2)),
            (slice(1, 3), range(4), (4, 2)),
        ]:
            assert text_of(ValueError, m.__setitem__, key, value) == text.format(*sizes)
        m[0:0] = []
        assert s.calls(nocheck) == []
        for value in ("xy", range(7, 9), type("L", (list,), {})([7, 8]), b"xy"):
            s.clear()
            m[1:3] = value
            assert indexes(s, nocheck) == [1, 2]

        class Broken(list):
            def __len__(self):
                raise KeyError("no length")

        s.clear()
        raised(KeyError, m.__setitem__, slice(0, 2), Broken())
        assert s.calls(nocheck) == []
        assert text_of(TypeError, m.__setitem__, slice(0, 3), [1, object(), 3]) == (
            "unknown variant type"
        )
        assert indexes(s, nocheck) == [0]
        for value in ((x for x in (1, 2)), {1, 2}, {1: 2, 3: 4}, 5):
            text = "must assign iterable to extended slice"
            assert text_of(TypeError, m.__setitem__, slice(0, 2), value) == text
        s.method(entries(kind), nocheck).reset().raises(RuntimeError, "broken")
        s.clear()
        assert text_of(RuntimeError, m.__setitem__, slice(0, 2), [1, 2]) == "broken"
        assert indexes(s, nocheck) == [0]
        s.method(entries(kind), nocheck).reset()


@scene(
    "collections-lists.setslice.managed-bulk",
    "collections-lists.setslice.managed-fallback",
    "collections-lists.setslice.managed-size-first",
    "collections-arrays.array-slice.set-managed",
)
def test_a_managed_list_is_assigned_at_once(s):
    for kind in all_lists():
        nocheck = SET_NOCHECK[entries(kind)]
        other_kind = "ArrList" if kind != "ArrList" else "Array"
        other = managed(s, other_kind, "xy", 0x77)
        m = managed(s, kind, range(5))
        method = s.method(entries(kind), "MpSetItems").reset().shows(1, 16).returns(1)
        s.clear()
        m[1:3] = other
        assert [variant(part[0]) for part in s.memory("MpSetItems")] == [(0, 0x77)]
        assert [i32(w) for w in s.calls("MpSetItems", 5)[0][2:]] == [1, 2, 1]
        assert s.calls(nocheck) == []
        text = "attempt to assign sequence of size 2 to extended slice of size 3"
        assert text_of(ValueError, m.__setitem__, slice(0, 3), other) == text
        assert len(s.calls("MpSetItems")) == 1
        method.reset().returns(0)
        s.clear()
        m[1:3] = other
        assert s.calls(nocheck, 1) == [[0x10]] * 2 and indexes(s, nocheck) == [1, 2]
        method.reset().returns(0).raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.__setitem__, slice(1, 3), other) == "broken"
        method.reset()
