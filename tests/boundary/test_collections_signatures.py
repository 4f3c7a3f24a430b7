"""What the delegates of untyped collections are given, argument by argument."""

from wrappers import handle_of, i32, scene, variant

INTEGER = 6  # the kind of an int that is borrowed for the call
RANGE = [1, -4, 1, 9]
# Python's call, the entry, its numbers behind the handle, the place of the record, the result.
COMMON = [
    (lambda x, v: v in x, "SqContains", [], 1, 1),
    (lambda x, v: x.count(v), "CountOf", [], 1, 7),
]
LISTS = [
    (lambda x, v: x.__setitem__(0, v), "SqSetItem", [0], 2, 0),
    (lambda x, v: x.__setitem__(slice(0, 1), [v]), "SqSetItemNoCheck", [0], 2, 0),
    (lambda x, v: x.append(v), "Add", [], 1, 0),
    (lambda x, v: x.insert(-3, v), "Insert", [-3], 2, 0),
    (lambda x, v: x.remove(v), "Remove", [], 1, 1),
    (lambda x, v: x.index(v, -4, 9), "IndexBy", RANGE, 5, 2),
    (lambda x, v: x.__delitem__(2), "RemoveAt", [2], 0, 0),
    (lambda x, v: x.clear(), "Clear", [], 0, 0),
    (lambda x, v: x.reverse(), "Reverse", [], 0, 0),
    (lambda x, v: x.sort(reverse=True), "Sort", [1], 0, 0),
    (lambda x, v: x.__imul__(3), "SqInplaceRepeat", [3], 0, 0),
    (lambda x, v: x.__delitem__(slice(0, 3, 2)), "MpRemoveItems", [2, 2, -2], 0, 0),
]
ARRAYS = [row for row in LISTS if row[1] in ("SqSetItem", "IndexBy", "Reverse", "Sort")]


def hold(s, kind, rows):
    x, value = s.wrap(getattr(s.interop, f"_{kind}Wrapper"), 0x10), 258
    s.method("ICol" if kind == "IList" else kind, "SqLength").returns(5)
    for call, entry, numbers, place, result in rows:
        if kind in ("Array", "ArrList") and entry == "SqSetItemNoCheck":
            entry = "SqSetItemNoChek"
        method = s.method(kind, entry).takes(6).returns(result)
        if place:
            method.shows(place, 16)
        s.clear()
        call(x, value)
        ((handle, *words),) = s.calls(entry, 6)
        given = [i32(word) for word in words[: len(numbers)]]
        assert (handle, given) == (0x10, numbers), entry
        if place:
            ((record,),) = s.memory(entry)
            assert variant(record) == (INTEGER, id(value)), entry


@scene("collections-lists.host-icol.signatures")
def test_a_collection(s):
    hold(s, "ICol", COMMON)
    assert len(s.wrap(s.interop._IColWrapper, 0x11)) == 5
    assert s.calls("SqLength")[-1] == [0x11]


@scene("collections-lists.host-ilist.signatures")
def test_a_list(s):
    hold(s, "IList", COMMON + LISTS)
    hold_items(s, "IList")


@scene("collections-arrays.host.signatures")
def test_an_array_list_and_an_array(s):
    hold(s, "ArrList", COMMON + LISTS)
    hold_items(s, "ArrList")
    hold(s, "Array", COMMON + ARRAYS)


def hold_items(s, kind):
    """The entries that give objects, and those that take another managed list."""
    x = s.wrap(getattr(s.interop, f"_{kind}Wrapper"), 0x10)
    s.method("ICol" if kind == "IList" else kind, "SqLength").returns(5)
    s.writes_object(kind, "SqGetItem", 2, "item")
    s.writes_object(kind, "Pop", 3, "popped")
    s.returns_object(kind, "SqGetItemNoCheck", "fast")
    s.clear()
    assert (x[3], x.pop(-2), x[1:2]) == ("item", "popped", ["fast"])
    assert [i32(w) for w in s.calls("SqGetItem", 2)[0]] == [0x10, 3]
    assert [i32(w) for w in s.calls("Pop", 3)[0]] == [0x10, 1, -2]
    assert [i32(w) for w in s.calls("SqGetItemNoCheck", 2)[0]] == [0x10, 1]
    other = s.wrap(s.interop._ArrListWrapper, 0x20)
    s.method("ArrList", "SqLength").returns(5)
    s.method(kind, "SqInplaceConcat").shows(1, 16).returns(1)
    s.method(kind, "MpSetItems").takes(5).shows(1, 16).returns(1)
    s.clear()
    x.extend(other)
    x[::-1] = other
    for entry in ("SqInplaceConcat", "MpSetItems"):
        assert [variant(part) for (part,) in s.memory(entry)] == [(0, 0x20)]
    ((handle, _, *numbers),) = s.calls("MpSetItems", 5)
    assert (handle, [i32(w) for w in numbers]) == (0x10, [4, 5, -1])


@scene("collections-lists.slots.iterate-managed")
def test_iteration_asks_for_an_enumerator(s):
    import struct

    record = struct.pack("<Qq", 0x30, 5)
    s.type_name("No.Such.Type")
    s.method("Iterable", "GetEnumerator").writes(1, record).returns(0)
    for name in ("_IColWrapper", "_IListWrapper"):
        x = s.wrap(getattr(s.interop, name), 0x10)
        s.clear()
        iterator = iter(x)
        assert type(iterator) is s.interop._IterWrapper and handle_of(iterator) == 0x30
        assert s.calls("GetEnumerator") == [[0x10]]
        assert not [call for call in s.calls() if call.startswith("Sq")]
