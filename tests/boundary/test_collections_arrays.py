"""What is particular to arrays, array lists and collection bases: deletion, casts, converters."""

import ctypes
import sys

from managed_lists import WRAPPERS, indexes, ints, managed
from wrappers import CLASSES, OBJECT, POINTER, handle_of, raised, scene, text_of, variant


def converters():
    return {
        "Array": ("wrpPye_conv_py_to_clr_array", "Array"),
        "ArrList": ("wrpPye_conv_py_to_clr_arrlist", "ArrayList"),
        "ColBase": ("wrpPye_conv_py_to_clr_colbase", "CollectionBase"),
        "RoColBase": ("wrpPye_conv_py_to_clr_rocolbase", "ReadOnlyCollectionBase"),
    }


@scene(
    "collections-arrays.host.no-chek-spelling",
    "collections-arrays.validity.tp-new",
    "collections-arrays.host-arrlist.ensure-capacity",
    "collections-arrays.host.unused-creators",
    "collections-arrays.conv.invalid-host",
    refuse=[
        ("Array", "SqSetItemNoChek"),
        ("ArrList", "EnsureCapacity"),
        ("ColBase", "CreateInstanceFromPyList"),
        ("RoColBase", "CreateInstanceFromPySequence"),
    ],
)
def test_a_missing_entry_makes_the_type_invalid(s):
    missing = {"Array": "SqSetItemNoChek", "ArrList": "EnsureCapacity"}
    missing.update(ColBase="CreateInstanceFromPyList", RoColBase="CreateInstanceFromPySequence")
    w = s.wrap(s.Derived, 0x10)
    for kind, method in missing.items():
        wrapper = getattr(s.interop, WRAPPERS[kind])
        text = (
            f"While initializing the host for the '{CLASSES[kind]}"
            " (Assembly=WrpInterop.Kelmor.PSD)' type, an error occurred -"
            f" Method '{method}' not found (error=77)"
        )
        assert text_of(TypeError, wrapper.__new__, wrapper) == text
        name, _ = converters()[kind]
        assert text_of(TypeError, s.convert, name, w) == text
        assert s.convert(name, None) == (0, None) and s.convert(name, [1])[0] == 2
    assert s.calls("btp_IsAssignable") == []


@scene(
    "collections-arrays.array-delete.index",
    "collections-arrays.array-delete.before-range",
    "collections-arrays.array-delete.slice",
    "collections-arrays.array-delete.bad-slice",
    "collections-arrays.array-delete.bad-index",
    "collections-arrays.array-delete.sequence-slot",
)
def test_an_array_loses_nothing(s):
    a = managed(s, "Array", "abc")
    refused = "elements removing not supported"
    for key in (0, 100, 2147483648, -1, slice(0, 2), slice(3, 3)):
        s.clear()
        assert text_of(ValueError, a.__delitem__, key) == refused
        assert s.calls() == ["SqLength"]
    step = slice(None, None, 0)
    assert text_of(ValueError, a.__delitem__, step) == "slice step cannot be zero"
    raised(TypeError, a.__delitem__, slice("x", None))
    text = "list indices must be integers or slices, not str"
    assert text_of(TypeError, a.__delitem__, "x") == text
    raised(IndexError, a.__delitem__, 2**70)
    delete = ctypes.pythonapi.PySequence_DelItem
    delete.argtypes = [OBJECT, ctypes.c_ssize_t]
    for index in (0, 2147483648):
        s.clear()
        assert text_of(ValueError, delete, a, index) == refused
        assert s.calls() == []


@scene(
    "collections-arrays.features.items",
    "collections-lists.getitem.sq-item-raw",
    "collections-lists.slots.list",
)
def test_the_slots(s):
    get = ctypes.pythonapi.PySequence_GetItem
    get.argtypes, get.restype = [OBJECT, ctypes.c_ssize_t], OBJECT
    for kind in ("IList", "ColBase", "ArrList", "Array"):
        m = managed(s, kind, "abc")
        assert m[0] == "a" and m[0:2] == ["a", "b"] and "a" not in m and list(m[:]) == list("abc")
        m[0], m[0:1] = 1, [1]
        s.clear()
        # PySequence_GetItem adds the length to a negative index once; the slot adds nothing.
        assert text_of(IndexError, get, m, -4) == "list index out of range"
        assert indexes(s, "SqGetItem") == [-1]
    for kind in ("ICol", "RoColBase"):
        c = managed(s, kind, "abc")
        raised(TypeError, lambda: c[0])
        raised(TypeError, lambda: c[0:1])


@scene(
    "collections-arrays.bases.own-casts",
    "collections-arrays.casts.reinterpret",
    "collections-arrays.casts.bare-handle",
)
def test_casts_use_the_types_own_entries(s):
    s.method("Test", "ObjectFromPy").writes(1, ctypes.c_uint64(0x99)).returns(1)
    w = s.wrap(s.Sample, 0x20)
    for kind in ("Array", "ArrList", "ColBase", "RoColBase"):
        wrapper = getattr(s.interop, WRAPPERS[kind])
        s.method(kind, "btp_ReInterpretObj").writes(1, ctypes.c_uint64(0x77)).returns(1)
        s.method(kind, "btp_IsAssignable").returns(1)
        s.method(kind, "btp_CastAs").writes(1, ctypes.c_uint64(0x78)).returns(1)
        s.method(kind, "btp_CastTo").writes(1, ctypes.c_uint64(0x79)).returns(1)
        s.method(kind, "btp_TypeOf").writes(0, ctypes.c_uint64(0x7A)).returns(1)
        s.clear()
        made = wrapper._reinterpret_obj("object")
        assert (type(made), handle_of(made)) == (wrapper, 0x77)
        assert wrapper._is_assignable(w) is True
        assert handle_of(wrapper._cast_as(w)[2]) == 0x78
        assert handle_of(wrapper._cast_to(w)[2]) == 0x79
        assert wrapper._type_of() == ("Type", 0x7A)
        calls = [x for x in s.script.journal if x["call"] == "delegate"]
        called = {x["type"] for x in calls if x["method"].startswith("btp_")}
        assert called == {CLASSES[kind]}
        assert s.calls("btp_IsAssignable") == s.calls("btp_CastAs") == [[0x20]]


@scene(
    "collections-arrays.conv.none",
    "collections-arrays.conv.own-type",
    "collections-arrays.conv.other-wrapper",
    "collections-arrays.conv.no-mark-shortcut",
    "collections-arrays.conv.struct-wrapper",
)
def test_wrappers_are_converted(s):
    typed = s.wrap(s.generic._ArrayWrapper_A4A29720, 0x30)
    for kind, (name, shown) in converters().items():
        s.clear()
        assert s.convert(name, None) == (0, None)
        assert s.convert(name, s.wrap(getattr(s.interop, WRAPPERS[kind]), 0x20)) == (0, 0x20)
        if kind == "Array":
            assert s.convert(name, typed) == (0, 0x30)
        assert s.calls("btp_IsAssignable") == []
        s.method(kind, "btp_IsAssignable").reset().returns(1, 0)
        listed = s.wrap(s.interop._IListWrapper, 0x40)
        assert s.convert(name, listed) == (0, 0x40)
        text = f"can't build {shown} value from 'kelmor.psd._wrpgen._interop._IListWrapper'"
        assert text_of(TypeError, s.convert, name, listed) == text
        assert s.calls("btp_IsAssignable") == [[0x40]] * 2
        text = f"can't build {shown} value from 'kelmor.psd.Value'"
        assert text_of(TypeError, s.convert, name, s.wrap(s.Value, 0x50)) == text
        assert len(s.calls("btp_IsAssignable")) == 2


@scene(
    "collections-arrays.conv.list-kind-2",
    "collections-arrays.conv.sequence-kind-3",
    "collections-arrays.conv.no-length",
    "collections-arrays.conv.no-element-check",
    "collections-arrays.conv.text-array",
    "collections-arrays.conv.text-others",
)
def test_python_sequences_are_converted(s):
    class Items:
        def __getitem__(self, index):
            raise IndexError

    class Sized(Items):
        def __len__(self):
            return 0

    for name, shown in converters().values():
        for value in ([1], type("L", (list,), {})([1]), [object()]):
            before = sys.getrefcount(value)
            assert s.convert(name, value) == (2, id(value)) and sys.getrefcount(value) == before
        for value in ((1,), "x", range(3), Sized()):
            assert s.convert(name, value) == (3, id(value))
        for value, kind in [
            (Items(), "Items"),
            ((x for x in ()), "generator"),
            ({1}, "set"),
            ({}, "dict"),
            (5, "int"),
        ]:
            text = f"can't build {shown} value from '{kind}'"
            assert text_of(TypeError, s.convert, name, value) == text


@scene(
    "collections-arrays.conv-ilist.exact",
    "collections-arrays.conv-ilist.mark",
    "collections-arrays.conv-ilist.assignable",
    "collections-arrays.conv-ilist.python-forms",
    "collections-arrays.conv-icol.python-forms",
    "collections-arrays.conv-ilist.text",
)
def test_list_and_collection_interfaces(s):
    for kind, name, marked in [
        ("IList", "wrpPye_conv_py_to_clr_ilist", "_ArrayWrapper"),
        ("ICol", "wrpPye_conv_py_to_clr_icollection", "_IListWrapper"),
    ]:
        s.clear()
        assert s.convert(name, None) == (0, None)
        assert s.convert(name, s.wrap(getattr(s.interop, WRAPPERS[kind]), 0x20)) == (0, 0x20)
        assert s.convert(name, s.wrap(getattr(s.interop, marked), 0x30)) == (0, 0x30)
        assert s.calls("btp_IsAssignable") == []
        s.method(kind, "btp_IsAssignable").reset().shows(0, 16).returns(1, 1, 0)
        w, v = s.wrap(s.Sample, 0x40), s.wrap(s.Value, 0x50)
        assert s.convert(name, w) == (0, 0x40) and s.convert(name, v) == (1, 0x50)
        text = "can't build List value from 'kelmor.psd.Sample'"
        assert text_of(TypeError, s.convert, name, w) == text
        given = [variant(part[0]) for part in s.memory("btp_IsAssignable")]
        assert given == [(0, 0x40), (1, 0x50), (0, 0x40)]
        for value in ([1], type("L", (list,), {})([1])):
            assert s.convert(name, value) == (2, id(value))
        for value in ((1,), "x"):
            assert s.convert(name, value) == (3 if kind == "IList" else 2, id(value))
        assert text_of(TypeError, s.convert, name, 5) == "can't build List value from 'int'"
    for value in ({1}, {}):
        assert s.convert("wrpPye_conv_py_to_clr_icollection", value) == (2, id(value))
        raised(TypeError, s.convert, "wrpPye_conv_py_to_clr_ilist", value)
    text = "can't build List value from 'generator'"
    assert text_of(TypeError, s.convert, name, (x for x in ())) == text


@scene("collections-arrays.conv-ilist.invalid-host", refuse=[("ICol", "SqLength")])
def test_an_invalid_interface_is_told(s):
    w = s.wrap(s.Derived, 0x10)
    own = text_of(TypeError, s.convert, "wrpPye_conv_py_to_clr_icollection", w)
    assert "SiApiCntCollection" in own and "'SqLength' not found" in own
    assert s.calls("btp_IsAssignable") == []


@scene(
    "collections-generic.array.getitem-int32",
    "collections-generic.array.getitem-statuses",
    "collections-generic.array.getitem-range",
    "collections-generic.array.slice",
    "collections-generic.array.setitem-scalar",
    "collections-generic.array.search",
    "collections-generic.array.delete-refused",
    "collections-generic.host-array.delegates",
    "collections-generic.types.array-base",
)
def test_an_array_of_int32_carries_bare_numbers(s):
    wrapper = s.generic._ArrayWrapper_A4A29720
    assert wrapper.__base__ is s.interop._ArrayWrapper
    s.clear()
    a = s.wrap(wrapper, 0x10)
    methods = "SqLength SqContains SqGetItem SqGetItemNoCheck SqSetItem SqSetItemNoChek MpSetItems"
    methods += " Reverse Sort IndexBy CountOf btp_TypeOf btp_CastTo btp_ReInterpretObj btp_CastAs"
    methods += " btp_IsAssignable"
    asked = [m for kind, m in s.script.requests if kind == CLASSES["IntArray"]]
    assert asked == methods.split()
    s.method("IntArray", "SqLength").returns(3)
    s.method("IntArray", "SqGetItem").writes(2, ctypes.c_int32(-7)).returns(0, 2, 5)
    s.clear()
    assert a[1] == -7 and s.calls() == ["SqLength", "SqGetItem"]
    assert text_of(IndexError, lambda: a[9]) == "list index out of range"
    s.method("IntArray", "SqGetItem").raises(RuntimeError, "broken")
    assert text_of(RuntimeError, lambda: a[0]) == "broken"
    text = "the index (2147483648) is out of the INT32 range"
    assert text_of(OverflowError, lambda: a[2147483648]) == text
    s.method("IntArray", "SqGetItemNoCheck").returns(5, -6, 7)
    assert a[::-1] == [5, -6, 7] and indexes(s, "SqGetItemNoCheck") == [2, 1, 0]
    a[0] = 5
    assert ints(s, "SqSetItem", 2) == [[0, 5]]
    s.clear()
    assert text_of(TypeError, a.__setitem__, 0, "x") == "integer argument expected, got 'str'"
    text = "value '2147483648' is out of the INT32 range"
    assert text_of(OverflowError, a.__setitem__, 0, 2147483648) == text
    a[0:2] = [8, 9]
    assert s.calls("SqSetItem") == [] and ints(s, "SqSetItemNoChek", 2) == [[0, 8], [1, 9]]
    s.method("IntArray", "SqContains").returns(1)
    s.method("IntArray", "IndexBy").returns(2)
    s.method("IntArray", "CountOf").returns(1)
    assert 5 in a and a.index(5, 1) == 2
    assert ints(s, "SqContains", 1) == [[5]] and ints(s, "IndexBy", 5) == [[1, 1, 0, 0, 5]]
    assert text_of(TypeError, lambda: "x" in a) == "integer argument expected, got 'str'"
    for key in (0, slice(0, 1)):
        text = "elements removing not supported"
        assert text_of(ValueError, a.__delitem__, key) == text


@scene(
    "collections-generic.iter.next-scalar",
    "collections-generic.iter.end-and-failure",
    "collections-generic.iter.self",
    "collections-generic.iter.context-manager",
    "collections-generic.host-iter.delegates",
)
def test_an_iterator_of_int32(s):
    s.clear()
    it = s.wrap(s.generic._IterWrapper_A4A29720, 0x10)
    assert [m for _, m in s.script.requests] == [
        "MoveNext",
        "btp_TypeOf",
        "btp_CastTo",
        "btp_CastAs",
        "btp_IsAssignable",
    ]
    s.method("IntIter", "MoveNext").writes(1, ctypes.c_int32(-9)).returns(0, 1, 1, 2)
    assert iter(it) is it and next(it) == -9
    raised(StopIteration, next, it), raised(StopIteration, next, it)
    s.method("IntIter", "MoveNext").raises(RuntimeError, "broken")
    assert text_of(RuntimeError, next, it) == "broken"
    assert it.__enter__() is it and it.__exit__() is None and s.calls("Dispose") == [[0x10]]
    assert not hasattr(s.interop._IterWrapper, "__enter__")


@scene(
    "collections-generic.conv.order",
    "collections-generic.conv.untyped-array",
    "collections-generic.conv.text",
    "collections-generic.conv.no-element-check",
)
def test_the_converter_of_a_typed_array(s):
    def convert(value):
        return s.convert("int_array_conversion", value)

    assert convert(None) == (0, None)
    assert convert(s.wrap(s.generic._ArrayWrapper_A4A29720, 0x20)) == (0, 0x20)
    assert s.calls("btp_IsAssignable") == []
    s.method("IntArray", "btp_IsAssignable").returns(1, 0)
    untyped = s.wrap(s.interop._ArrayWrapper, 0x30)
    assert convert(untyped) == (0, 0x30)
    text = "can't build Array value from 'kelmor.psd._wrpgen._interop._ArrayWrapper'"
    assert text_of(TypeError, convert, untyped) == text
    assert s.calls("btp_IsAssignable") == [[0x30]] * 2
    for value, kind in [([object()], 2), (("x",), 3)]:
        assert convert(value) == (kind, id(value))
    assert text_of(TypeError, convert, 5) == "can't build Array value from 'int'"


@scene("collections-generic.array.typed-validity", refuse=[("Array", "SqLength")])
def test_a_typed_array_needs_the_untyped_one(s):
    failed = raised(TypeError, s.wrap, s.generic._ArrayWrapper_A4A29720, 1)
    assert str(failed) == "one or more refereced type is not initialized"
    assert "'SqLength' not found" in str(failed.__cause__)


@scene(
    "collections-generic.callbacks-list.success",
    "collections-generic.callbacks-list.index-error",
    "collections-generic.callbacks-list.refused",
    "collections-generic.callbacks-list.object",
    "collections-generic.callbacks-seq.success",
    "collections-generic.callbacks-seq.index-error",
    "collections-generic.callbacks-seq.refused",
    "collections-generic.callbacks-seq.negative",
)
def test_typed_elements_are_read_from_python(s):
    lister, sequencer = "fn_clbk_pylist_A4A29720_get_item", "fn_clbk_pyseq_A4A29720_get_item"
    out = (ctypes.c_int32 * 2)(-1, -1)
    place = ctypes.addressof(out)
    numbers = [10, 2000]
    before = sys.getrefcount(numbers[1])
    assert s.status(lister, numbers, 1, place) == (0, None) and list(out) == [2000, -1]
    assert sys.getrefcount(numbers[1]) == before
    for index in (2, -1):
        code, error = s.status(lister, numbers, index, place)
        assert code == -2 and type(error) is IndexError
    code, error = s.status(lister, ["x"], 0, place)
    assert (code, str(error)) == (-1, "integer argument expected, got 'str'")
    keep = POINTER()
    pair = (10, 3000)
    assert s.status(sequencer, pair, 1, ctypes.addressof(keep), place) == (0, None)
    assert out[0] == 3000 and keep.value == id(pair[1])
    assert s.status(sequencer, pair, -1 & 0xFFFFFFFF, ctypes.addressof(keep), place) == (0, None)
    code, error = s.status(sequencer, pair, 5, ctypes.addressof(keep), place)
    assert code == -2 and type(error) is IndexError

    class Odd(tuple):
        def __getitem__(self, index):
            raise KeyError(index)

    odd = Odd([1])
    code, error = s.status(sequencer, odd, 0, ctypes.addressof(keep), place)
    assert code == 0 or type(error) is KeyError
    code, error = s.status(sequencer, ("x",), 0, ctypes.addressof(keep), place)
    assert (code, str(error)) == (-1, "integer argument expected, got 'str'")
    out = POINTER(0x99)
    place = ctypes.addressof(out)
    w = s.wrap(s.Sample, 0x70)
    assert s.status("fn_clbk_pylist_0D30925B_get_item", [w], 0, place) == (0, None)
    assert out.value == 0x70
    assert s.status("fn_clbk_pylist_0D30925B_get_item", [None], 0, place) == (0, None)
    assert out.value is None
    code, error = s.status("fn_clbk_pylist_0D30925B_get_item", [5], 0, place)
    assert (code, str(error)) == (-1, "can't build Sample value from 'int'")
