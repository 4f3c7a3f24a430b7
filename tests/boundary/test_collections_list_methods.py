"""Managed lists as Python lists: methods, concatenation, repetition. Arrays and array lists too."""

import ctypes
import sys

from managed_lists import (
    SET_NOCHECK,
    WRAPPERS,
    all_lists,
    element_class,
    entries,
    enumerated,
    growing,
    indexes,
    ints,
    length_class,
    managed,
    raised_any,
    range_text,
)
from wrappers import CLASSES, OBJECT, raised, scene, text_of, variant


@scene(
    "collections-lists.append.call",
    "collections-lists.append.unknown-value",
    "collections-lists.insert.call",
    "collections-lists.insert.index-unchanged",
    "collections-lists.insert.int32-range",
    "collections-lists.insert.value-before-range",
    "collections-lists.insert.argument-count",
    "collections-lists.remove.call",
    "collections-lists.remove.missing",
    "collections-lists.methods.calling-forms",
    "collections-arrays.arrlist.append",
    "collections-arrays.arrlist.insert",
    "collections-arrays.arrlist.remove",
)
def test_append_insert_remove(s):
    for kind in growing():
        m = managed(s, kind, "abc")
        e = entries(kind)
        s.clear()
        s.method(e, "Add").reset().shows(1, 16)
        assert m.append(5) is None and s.calls() == ["Add"]
        assert [variant(part[0]) for part in s.memory("Add")] == [(6, id(5))]
        assert text_of(TypeError, m.append, object()) == "unknown variant type"
        s.method(e, "Insert").reset().shows(2, 16)
        assert [m.insert(1, 5), m.insert(-1, 5), m.insert(1000, 5)] == [None] * 3
        assert indexes(s, "Insert") == [1, -1, 1000] and s.calls("SqLength") == []
        for index in (2147483648, -2147483649):
            assert text_of(OverflowError, m.insert, index, 5) == range_text(index)
        assert text_of(TypeError, m.insert, 2147483648, object()) == "unknown variant type"
        raised(TypeError, m.insert, 1), raised(TypeError, m.insert, 1, 2, 3)
        raised(TypeError, m.insert, index=1, value=2), raised(TypeError, m.append)
        assert len(s.calls("Insert")) == 3 and len(s.calls("Add")) == 1
        s.method(e, "Remove").reset().returns(1, 0)
        assert m.remove(5) is None
        assert text_of(ValueError, m.remove, 5) == "list.remove(x): x not in list"
        for name, arguments in [("Add", (5,)), ("Insert", (0, 5)), ("Remove", (5,))]:
            s.method(e, name).reset().raises(RuntimeError, "broken")
            use = {"Add": m.append, "Insert": m.insert, "Remove": m.remove}[name]
            assert text_of(RuntimeError, use, *arguments) == "broken"
            s.method(e, name).reset()


@scene(
    "collections-lists.pop.no-argument",
    "collections-lists.pop.with-index",
    "collections-lists.pop.none",
    "collections-lists.pop.argument-count",
    "collections-lists.pop.int32-range",
    "collections-lists.pop.wrong-type",
    "collections-lists.pop.empty",
    "collections-lists.pop.out-of-range",
    "collections-lists.pop.other-status",
    "collections-arrays.arrlist.pop",
)
def test_pop(s):
    for kind in growing():
        m = managed(s, kind, "abc")
        thing = ["popped"]
        s.clear()
        s.method(entries(kind), "Pop").reset()
        s.writes_object(entries(kind), "Pop", 3, thing)
        assert (
            m.pop() is thing and m.pop(0) is thing and m.pop(-2) is thing and m.pop(None) is thing
        )
        assert ints(s, "Pop", 2) == [[0, 0], [1, 0], [1, -2], [1, 0]]
        assert text_of(TypeError, m.pop, 1, 2) == "pop() takes at most 1 argument (2 given)"
        assert text_of(OverflowError, m.pop, 2147483648) == range_text(2147483648)
        assert text_of(TypeError, m.pop, "a") == "argument should be integer or None, not 'str'"
        assert len(s.calls("Pop")) == 4
        s.method(entries(kind), "Pop").reset().returns(1, 2)
        assert text_of(IndexError, m.pop) == "pop from empty list"
        assert text_of(IndexError, m.pop, 9) == "pop index out of range"
        s.method(entries(kind), "Pop").reset().returns(3).raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.pop) == "broken"


@scene(
    "collections-lists.clear-reverse.call",
    "collections-lists.sort.reverse-flag",
    "collections-lists.sort.positional",
    "collections-lists.sort.key-refused",
    "collections-arrays.array-reverse.delegate",
    "collections-arrays.array-sort.flags",
    "collections-arrays.arrlist.clear",
)
def test_clear_reverse_sort(s):
    for kind in all_lists():
        m = managed(s, kind, "abc", 0x10)
        s.clear()
        assert m.reverse() is None and s.calls("Reverse") == [[0x10]]
        if kind != "Array":
            assert m.clear() is None and s.calls("Clear") == [[0x10]]
        for use in (
            lambda: m.sort(),
            lambda: m.sort(reverse=True),
            lambda: m.sort(reverse=[1]),
            lambda: m.sort(None, True),
            lambda: m.sort(key=None),
        ):
            assert use() is None
        assert ints(s, "Sort", 1) == [[0], [1], [1], [1], [0]]
        s.clear()
        assert text_of(ValueError, m.sort, key=len) == "custom sorting key is not supported"
        assert s.calls() == []
        for name, use in [("Reverse", m.reverse), ("Sort", m.sort)]:
            s.method(entries(kind), name).reset().raises(RuntimeError, "broken")
            assert text_of(RuntimeError, use) == "broken"
            s.method(entries(kind), name).reset()


@scene(
    "collections-lists.index.call-flags",
    "collections-lists.index.unchanged-bounds",
    "collections-lists.index.missing",
    "collections-lists.index.int32-range",
    "collections-lists.index.bad-bound-type",
    "collections-arrays.array-index.flags",
    "collections-arrays.array-index.int32-range",
)
def test_index(s):
    for kind in all_lists():
        m = managed(s, kind, "abc", 0x10)
        s.clear()
        s.method(entries(kind), "IndexBy").reset().shows(5, 16).returns(2)
        assert [m.index(5), m.index(5, 1), m.index(5, 1, 5), m.index(5, -2, -1)] == [2] * 4
        wanted = [[0, 0, 0, 0], [1, 1, 0, 0], [1, 1, 1, 5], [1, -2, 1, -1]]
        assert ints(s, "IndexBy", 4) == wanted
        assert [variant(part[0]) for part in s.memory("IndexBy")] == [(6, id(5))] * 4
        big = 2147483648
        assert text_of(OverflowError, m.index, 5, big, big + 1) == range_text(big)
        assert text_of(OverflowError, m.index, 5, 0, big + 1) == range_text(big + 1)
        raised(TypeError, m.index, 5, None), raised(TypeError, m.index, 5, "a")
        assert len(s.calls("IndexBy")) == 4
        s.method(entries(kind), "IndexBy").reset().returns(-1)
        assert text_of(ValueError, m.index, 5) == "value is not in list"
        s.method(entries(kind), "IndexBy").raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.index, 5) == "broken"


@scene(
    "collections-lists.count.delegate",
    "collections-lists.contains.delegate",
    "collections-lists.contains.unknown-value",
    "collections-lists.contains.managed-error",
    "collections-arrays.array-contains.delegates",
    "collections-arrays.bases.interface-hosts",
    "collections-arrays.bases.read-only-hosts",
    "collections-arrays.host.own-delegates",
)
def test_count_and_contains(s):
    for kind in WRAPPERS:
        m = managed(s, kind, "abc", 0x10)
        e = element_class(kind)
        full = CLASSES[e]
        s.clear()
        s.method(e, "CountOf").reset().shows(1, 16).returns(4)
        s.method(e, "SqContains").reset().shows(1, 16).returns(1, 0, 1, 0)
        assert m.count(5) == 4
        assert [m.contains(5), m.contains(5), 5 in m, 5 in m] == [True, False, True, False]
        called = {(x["type"], x["method"]) for x in s.script.journal if x["call"] == "delegate"}
        assert called == {(full, "CountOf"), (full, "SqContains")}
        assert s.calls("CountOf") == [[0x10]]
        for use in (lambda: object() in m, lambda: m.contains(object()), lambda: m.count(object())):
            assert text_of(TypeError, use) == "unknown variant type"
        for name, use in [
            ("CountOf", m.count),
            ("SqContains", m.contains),
            ("SqContains", m.__contains__),
        ]:
            s.method(e, name).reset().returns(1).raises(RuntimeError, "broken")
            assert text_of(RuntimeError, use, 5) == "broken"


@scene(
    "collections-lists.concat-list.result",
    "collections-lists.concat-list.length-first",
    "collections-lists.concat-list.list-or-tuple",
    "collections-lists.concat-list.sequence",
    "collections-lists.concat-list.iterable",
    "collections-lists.concat-list.no-iterator",
    "collections-lists.concat-list.refused",
    "collections-lists.concat-list.element-error",
    "collections-arrays.array-concat.result",
    "collections-lists.length.asked-once",
)
def test_concatenation(s):
    class Items:
        def __getitem__(self, index):
            return ["x", "y"][index]

    for kind in all_lists():
        m = managed(s, kind, "ab")
        marker = ["m"]
        for other, more in [
            ([marker], [marker]),
            ((marker,), [marker]),
            ("xy", ["x", "y"]),
            (range(2), [0, 1]),
            ((c for c in "xy"), ["x", "y"]),
            ({7: 8}, [7]),
            (Items(), ["x", "y"]),
        ]:
            s.clear()
            got = m + other
            assert type(got) is list and got == ["a", "b"] + more
            assert s.calls() == ["SqLength", "SqGetItemNoCheck", "SqGetItemNoCheck"]
            assert indexes(s, "SqGetItemNoCheck") == [0, 1]
        before = sys.getrefcount(marker)
        got = m + [marker]
        assert got[2] is marker and sys.getrefcount(marker) == before + 1
        other = managed(s, "Array" if kind != "Array" else "ArrList", "pq", 0x77)
        assert m + other == ["a", "b", "p", "q"]
        text = "argument must be iterable or sequence"
        assert text_of(ValueError, lambda: m + 5) == text
        lazy = s.wrap(s.interop._IterableWrapper, 0x88)
        s.method("Iterable", "GetEnumerator").reset().returns(-1)
        assert text_of(ValueError, lambda: m + lazy) == "argument must be iterable"
        s.method(entries(kind), "SqGetItemNoCheck").reset().raises(RuntimeError, "broken")
        for use in (lambda: m + [1], lambda: m * 2, m.copy):
            assert text_of(RuntimeError, use) == "broken"
        s.method(length_class(kind), "SqLength").reset().returns(-1).raises(
            RuntimeError, "no length"
        )
        assert text_of(RuntimeError, lambda: m + 5) == "no length"


@scene(
    "collections-lists.repeat-list.result",
    "collections-lists.repeat-list.fetch-once",
    "collections-lists.repeat-list.zero",
    "collections-lists.copy.list",
    "collections-arrays.array-repeat.fetch-once",
)
def test_repetition(s):
    for kind in all_lists():
        items = [["a"], ["b"]]
        m = managed(s, kind, items)
        s.clear()
        got = m * 3
        assert type(got) is list and got == items * 3 and got[4] is items[0]
        assert indexes(s, "SqGetItemNoCheck") == [0, 1] and len(s.calls("SqLength")) == 1
        assert 3 * m == items * 3 and m * 0 == m * -1 == []
        s.clear()
        copied = m.copy()
        assert type(copied) is list and copied == items
        assert s.calls() == ["SqLength", "SqGetItemNoCheck", "SqGetItemNoCheck"]


@scene(
    "collections-lists.concat-col.elements",
    "collections-lists.concat-col.refused",
    "collections-lists.concat-col.no-iterator",
    "collections-lists.concat-col.count-differs",
    "collections-lists.concat-col.iterator-error",
    "collections-lists.repeat-col.result",
    "collections-lists.repeat-col.too-many",
    "collections-lists.repeat-col.too-few",
    "collections-lists.slots.collection",
)
def test_a_collection_draws_from_its_iterator(s):
    for kind in ("ICol", "RoColBase"):
        c = managed(s, kind, "ab")
        enumerated(s, "ab")
        s.clear()
        for other, more in [(["x"], ["x"]), ("xy", ["x", "y"]), ((t for t in "z"), ["z"])]:
            got = c + other
            assert type(got) is list and got == ["a", "b"] + more
        assert s.calls("GetEnumerator") == [[0x10]] * 3 and len(s.calls("SqLength")) == 3
        assert c * 2 == ["a", "b"] * 2 and c * 0 == c * -1 == [] and c.copy() == ["a", "b"]
        assert text_of(ValueError, lambda: c + 5) == "argument must be iterable or sequence"
        for items in ("a", "abc"):
            enumerated(s, items)
            for use in (lambda: c + [1], lambda: c * 2, c.copy):
                assert text_of(ValueError, use) == "argument must be iterable or sequence"
        s.method("Iterable", "GetEnumerator").reset().returns(-1)
        for use in (lambda: c + [1], lambda: c * 2):
            text = "the collection was modified during the operation"
            assert text_of(ValueError, use) == text
        s.method("Iterable", "GetEnumerator").raises(RuntimeError, "broken")
        for use in (lambda: c + [1], lambda: c * 2):
            assert text_of(RuntimeError, use) == "broken"
        for use in (lambda: c[0], lambda: c[0:1], lambda: c.__setitem__(0, 1)):
            assert type(raised_any(use)) in (TypeError, AttributeError)


@scene(
    "collections-lists.extend.managed-bulk",
    "collections-lists.extend.managed-error",
    "collections-lists.extend.managed-fallback",
    "collections-lists.extend.list-or-tuple",
    "collections-lists.extend.sequence",
    "collections-lists.extend.iterable",
    "collections-lists.extend.no-iterator",
    "collections-lists.extend.refused",
    "collections-lists.extend.first-failure",
    "collections-lists.inplace-concat.same-object",
    "collections-arrays.arrlist.extend",
    "collections-lists.errors.no-undo",
)
def test_extension(s):
    for kind in growing():
        m = managed(s, kind, "abc")
        e = entries(kind)
        s.method(e, "Add").reset().shows(1, 16)
        other = managed(s, "Array", ["p", "q"], 0x77)
        bulk = s.method(e, "SqInplaceConcat").reset().shows(1, 16).returns(1)
        s.clear()
        assert m.extend(other) is None and s.calls() == ["SqInplaceConcat"]
        assert [variant(part[0]) for part in s.memory("SqInplaceConcat")] == [(0, 0x77)]
        bulk.reset().returns(0)
        m.extend(other)
        assert [variant(part[0])[0] for part in s.memory("Add")] == [3, 3]
        bulk.reset().raises(RuntimeError, "broken")
        s.clear()
        assert text_of(RuntimeError, m.extend, other) == "broken" and s.calls("Add") == []
        for values in ([1, 2], (1, 2), range(1, 3), (n for n in (1, 2)), {1, 2}):
            s.clear()
            assert m.extend(values) is None
            assert [variant(part[0]) for part in s.memory("Add")] == [(6, id(1)), (6, id(2))]
        same = m
        m += [5]
        assert m is same
        for use in (lambda: m.extend(5), lambda: m.__iadd__(5)):
            assert text_of(ValueError, use) == "argument must be iterable or sequence"
        s.clear()
        assert text_of(TypeError, m.extend, [1, object(), 2]) == "unknown variant type"
        assert len(s.calls("Add")) == 1

        def failing():
            yield 1
            raise KeyError("end")

        s.clear()
        raised(KeyError, m.extend, failing())
        assert len(s.calls("Add")) == 1
        bulk.reset().returns(0)
        s.method("Iterable", "GetEnumerator").reset().returns(-1)
        lazy = s.wrap(s.interop._IterableWrapper, 0x88)
        assert text_of(ValueError, m.extend, lazy) == "argument must be iterable"


@scene("collections-lists.extend.managed-bulk", "collections-lists.setslice.managed-bulk")
def test_a_wrapper_of_a_sibling_is_taken_at_once_too(s):
    members = {"__slots__": ("handle",), "_kelmor_clr_host": None, "__len__": lambda self: 2}
    other = type("Foreign", (), {**members, "__getitem__": lambda self, i: "pq"[i]})()
    other.handle = None  # the address of None stands where a wrapper has its handle
    for kind in growing():
        m = managed(s, kind, "abc")
        for entry in ("SqInplaceConcat", "MpSetItems"):
            s.method(entries(kind), entry).reset().shows(1, 16).returns(1)
        s.clear()
        m.extend(other)
        m[0:2] = other
        for entry in ("SqInplaceConcat", "MpSetItems"):
            assert [variant(part[0]) for part in s.memory(entry)] == [(0, id(None))]
        assert s.calls() == ["SqInplaceConcat", "SqLength", "MpSetItems"]


@scene(
    "collections-lists.inplace-repeat.call",
    "collections-lists.inplace-repeat.negative",
    "collections-lists.inplace-repeat.int32-range",
    "collections-arrays.arrlist.inplace-repeat",
    "collections-arrays.features.inplace-absent",
)
def test_repetition_in_place(s):
    for kind in growing():
        s.method(entries(kind), "SqInplaceRepeat").reset()
        m = same = managed(s, kind, "abc")
        s.clear()
        m *= 3
        m *= -1
        assert m is same and ints(s, "SqInplaceRepeat", 1) == [[3], [-1]]
        text = "the value of 'count' (2147483648) is out of the INT32 range"
        assert text_of(OverflowError, m.__imul__, 2147483648) == text
        s.method(entries(kind), "SqInplaceRepeat").reset().raises(RuntimeError, "broken")
        assert text_of(RuntimeError, m.__imul__, 2) == "broken"
    a = managed(s, "Array", "ab")
    a *= 2
    assert type(a) is list and a == ["a", "b"] * 2
    a = managed(s, "Array", "ab")
    a += ["c"]
    assert type(a) is list and a == ["a", "b", "c"]


@scene("collections-lists.errors.standing-after-delegate")
def test_a_standing_exception_fails_the_operation(s):
    for kind in growing():
        e = entries(kind)
        for name, use in [
            ("Add", lambda m: m.append(1)),
            ("Insert", lambda m: m.insert(0, 1)),
            ("Clear", lambda m: m.clear()),
            ("Reverse", lambda m: m.reverse()),
            ("Sort", lambda m: m.sort()),
            ("SqInplaceRepeat", lambda m: m.__imul__(2)),
            ("MpRemoveItems", lambda m: m.__delitem__(slice(0, 1))),
            (SET_NOCHECK[e], lambda m: m.__setitem__(slice(0, 1), [1])),
        ]:
            m = managed(s, kind, "abc")
            s.method(e, name).reset().returns(1).raises(RuntimeError, "Proxy error(X): no")
            assert text_of(RuntimeError, use, m) == "Proxy error(X): no", name
            s.method(e, name).reset()


@scene("collections-lists.has-length.test", "collections-lists.has-iter.test")
def test_type_tests(s):
    class Items:
        def __getitem__(self, index):
            raise IndexError

    has_length = s.function("PyShlObject_HasLength", ctypes.c_bool, OBJECT)
    has_iter = s.function("PyShlObject_HasIter", ctypes.c_bool, OBJECT)
    generator = (x for x in ())
    for value, length, iterable in [
        ([], True, True),
        ({}, True, True),
        (set(), True, True),
        ("x", True, True),
        (5, False, False),
        (generator, False, True),
        (Items(), False, True),
    ]:
        assert (has_length(value), has_iter(value)) == (length, iterable)


@scene(
    "collections-lists.validity.list-own",
    "collections-lists.host.unused-creators",
    refuse=[("IList", "CreateInstanceFromPySequence")],
)
def test_a_list_without_an_entry_is_invalid(s):
    failed = raised(TypeError, s.wrap, s.interop._IListWrapper, 1)
    assert "'CreateInstanceFromPySequence' not found" in str(failed) and failed.__cause__ is None
    assert s.wrap(s.interop._IColWrapper, 1).length == 0


@scene(
    "collections-lists.validity.list-referenced",
    "collections-lists.validity.collection-referenced",
    refuse=[("Iterable", "GetEnumerator")],
)
def test_a_list_needs_its_interfaces(s):
    for name in ("_IListWrapper", "_IColWrapper"):
        failed = raised(TypeError, s.wrap, getattr(s.interop, name), 1)
        assert str(failed) == "one or more refereced type is not initialized"
        assert "'GetEnumerator' not found" in str(failed.__cause__)
        assert type(failed.__cause__) is TypeError
