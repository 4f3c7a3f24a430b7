"""Disposables, iterators and iterables."""

import ctypes
import struct
import sys

from wrappers import INT, OBJECT, POINTER, handle_of, raised, scene, text_of, variant


def refusal(kind, method):
    names = {
        "Disposable": "Kelmor.WrpGen.Interop.SiApiDisposable",
        "Iter": "Kelmor.WrpGen.Interop.SiApiEnumerator",
        "Iterable": "Kelmor.WrpGen.Interop.SiApiEnumerable",
    }
    return (
        f"While initializing the host for the '{names[kind]} (Assembly=WrpInterop.Kelmor.PSD)'"
        f" type, an error occurred - Method '{method}' not found (error=77)"
    )


def kinds_of(s):
    return {
        "Disposable": s.interop._IDisposableWrapper,
        "Iter": s.interop._IterWrapper,
        "Iterable": s.interop._IterableWrapper,
    }


def converters():
    return {
        "Disposable": ("wrpPye_conv_py_to_clr_idisposable", "IDisposable"),
        "Iter": ("wrpPye_conv_py_to_clr_iter", "IEnumerator"),
        "Iterable": ("wrpPye_conv_py_to_clr_iterable", "IEnumerable"),
    }


@scene(
    "collections-iterators.types.published",
    "collections-iterators.types.record-size",
    "collections-iterators.types.dealloc",
    "collections-iterators.types.no-constructor",
    "collections-iterators.casts.names",
)
def test_the_types(s):
    for kind in kinds_of(s).values():
        assert kind.__basicsize__ == 24
        assert text_of(TypeError, kind) == "type has no available constructor"
        names = ["get_type", "_type_of", "_cast_to", "_cast_from", "_is_assignable"]
        names += ["_reinterpret_obj", "_cast_as"]
        assert [name for name in vars(kind) if name in names] == names
        s.clear()
        w = s.wrap(kind, 0x10)
        del w
        assert s.calls("FreeInstance") == [[0x10]]


@scene(
    "collections-iterators.host-disposable.delegates",
    "collections-iterators.host-iter.delegates",
    "collections-iterators.host-iterable.delegates",
    "collections-iterators.host.lazy-bind",
    "collections-iterators.host.singleton",
)
def test_the_hosts_bind_at_first_use(s):
    btp = ["btp_IsAssignable", "btp_TypeOf", "btp_CastTo", "btp_CastAs"]
    for name, head, module in [
        ("Disposable", [], "SiApiDisposable"),
        ("Iter", ["MoveNext"], "SiApiEnumerator"),
        ("Iterable", ["GetEnumerator", "CreateInstanceFromPyIterable"], "SiApiEnumerable"),
    ]:
        full = f"Kelmor.WrpGen.Interop.{module}"
        assert full not in [wanted for wanted, _ in s.requests_of_start]
        s.clear()
        for _ in range(2):
            s.wrap(kinds_of(s)[name], 1)
        assert s.script.requests == [(full, entry) for entry in head + btp]


@scene(
    "collections-iterators.host.soft-failure",
    "collections-iterators.host.stop-at-first",
    "collections-iterators.host.create-from-iterable",
    "collections-iterators.conv.invalid-host",
    "collections-iterators.conv.invalid-host-others",
    refuse=[
        ("Iter", "MoveNext"),
        ("Iterable", "CreateInstanceFromPyIterable"),
        ("Disposable", "btp_TypeOf"),
    ],
)
def test_a_missing_entry_makes_the_type_invalid(s):
    missing = {"Iter": "MoveNext", "Iterable": "CreateInstanceFromPyIterable"}
    missing["Disposable"] = "btp_TypeOf"
    w = s.wrap(s.Derived, 0x10)
    for name, kind in kinds_of(s).items():
        s.clear()
        text = refusal(name, missing[name])
        for _ in range(2):
            assert text_of(TypeError, kind.__new__, kind) == text
        asked = [method for _, method in s.script.requests]
        assert asked[-1] == missing[name] and asked.count(missing[name]) == 1
        converter, _ = converters()[name]
        assert text_of(TypeError, s.convert, converter, w) == text
        assert s.convert(converter, None) == (0, None) and s.calls() == []
    assert s.convert("wrpPye_conv_py_to_clr_iterable", [1])[0] == 2
    assert s.convert("wrpPye_conv_py_to_clr_iter", iter([1]))[0] == 2
    marked = s.wrap(s.interop._StreamWrapper, 0x30)
    assert s.convert("wrpPye_conv_py_to_clr_idisposable", marked) == (0, 0x30)


@scene("collections-iterators.casts.result-object")
def test_casts_give_results(s):
    for name, kind in kinds_of(s).items():
        for entry, operation in [("btp_CastTo", "_cast_to"), ("btp_CastAs", "_cast_as")]:
            s.method(name, entry).writes(1, ctypes.c_uint64(0x77)).returns(3)
            tag, status, value = getattr(kind, operation)(s.wrap(s.Sample, 1))
            assert (tag, status, type(value), handle_of(value)) == ("cast", 3, kind, 0x77)


@scene(
    "collections-iterators.disposable.enter-self",
    "collections-iterators.disposable.exit-calls-dispose",
    "collections-iterators.disposable.exit-args-ignored",
    "collections-iterators.disposable.exit-managed-error",
    "collections-iterators.disposable.exit-no-suppress",
    "collections-iterators.disposable.exit-twice",
)
def test_a_disposable_is_a_context_manager(s):
    w = s.wrap(s.interop._IDisposableWrapper, 0x10)
    before = sys.getrefcount(w)
    entered = w.__enter__()
    assert entered is w and sys.getrefcount(w) == before + 1 and s.calls() == []
    raised(TypeError, w.__enter__, 1)
    for arguments in ((), (None, None, None), (1, "x", [], 4, 5)):
        s.clear()
        assert w.__exit__(*arguments) is None and s.calls("Dispose") == [[0x10]]
    s.clear()

    def body():
        with w as same:
            assert same is w
            raise KeyError("inside")

    raised(KeyError, body)
    assert s.calls() == ["Dispose"]
    s.method("Object", "Dispose").raises(RuntimeError, "Proxy error(X): stuck")
    assert text_of(RuntimeError, w.__exit__) == "Proxy error(X): stuck"


@scene(
    "collections-iterators.iter.self",
    "collections-iterators.iter.next-item",
    "collections-iterators.iter.next-end",
    "collections-iterators.iter.next-failure",
    "collections-iterators.iter.next-after-end",
    "collections-iterators.iter.for-loop",
)
def test_an_enumerator_is_an_iterator(s):
    it = s.wrap(s.interop._IterWrapper, 0x10)
    assert iter(it) is it and s.calls() == []
    things = [["a"], ["b"]]
    left = list(things)

    def move_next(frame):
        frame.result = 1
        if left:
            POINTER.from_address(frame.integers[1]).value = s.new_ref(left.pop(0))
            frame.result = 0

    s.method("Iter", "MoveNext").calls(move_next)
    before = sys.getrefcount(things[0])
    first = next(it)
    assert first is things[0] and s.calls("MoveNext") == [[0x10]]
    assert sys.getrefcount(first) == before + 1  # what is kept took the place of `left`
    assert [thing for thing in it] == [["b"]]
    failed = raised(StopIteration, next, it)
    assert failed.value is None
    raised(StopIteration, next, it)
    left.append(["again"])
    assert next(it) == ["again"]
    for status in (2, -1):
        s.method("Iter", "MoveNext").reset().returns(status).raises(
            RuntimeError, "Proxy error(X): y"
        )
        assert text_of(RuntimeError, next, it) == "Proxy error(X): y"


@scene(
    "collections-iterators.iterable.get-enumerator",
    "collections-iterators.iterable.negative",
    "collections-iterators.iterable.static-type",
    "collections-iterators.iterable.null-handle",
    "collections-iterators.iterable.independent",
    "collections-iterators.iter.no-python-state",
)
def test_an_enumerable_gives_enumerators(s):
    x = s.wrap(s.interop._IterableWrapper, 0x10)
    s.type_name("Sample.Unknown")
    method = s.method("Iterable", "GetEnumerator")
    method.writes(1, struct.pack("<Qq", 0x20, 5)).returns(0)
    it = iter(x)
    assert type(it) is s.interop._IterWrapper and handle_of(it) == 0x20
    assert s.calls("GetEnumerator") == [[0x10]]
    method.writes(1, struct.pack("<Qq", 0x21, 5))
    other = iter(x)
    assert other is not it and handle_of(other) == 0x21
    s.clear()
    del x, other
    assert s.calls("FreeInstance") == [[0x10], [0x21]]
    s.method("Iter", "MoveNext").returns(1)
    assert list(it) == [] and s.calls("MoveNext") == [[0x20]]
    x = s.wrap(s.interop._IterableWrapper, 0x10)
    method.reset().returns(-1).raises(RuntimeError, "Proxy error(X): y")
    assert text_of(RuntimeError, iter, x) == "Proxy error(X): y"
    method.reset().writes(1, struct.pack("<Qq", 0, 5)).returns(0)
    assert text_of(TypeError, iter, x) == "iter() returned non-iterator of type 'NoneType'"


@scene("collections-iterators.iterable.implicit-type")
def test_an_enumerator_shows_its_bound_class(s):
    s.type_name("Sample.Sample")
    s.Sample._implicit_interfaces.add(s.interop._IterWrapper)
    s.method("Iterable", "GetEnumerator").writes(1, struct.pack("<Qq", 0x20, 5)).returns(1)
    slot = s.function("wrpPye_bltp_iterable_iter", OBJECT, OBJECT)
    shown = slot(s.wrap(s.interop._IterableWrapper, 0x10))
    assert type(shown) is s.Sample and handle_of(shown) == 0x20


@scene("collections-iterators.iterable.shared-slot")
def test_all_collections_are_iterated_by_the_same_entry(s):
    s.type_name("Sample.Unknown")
    s.method("Iterable", "GetEnumerator").writes(1, struct.pack("<Qq", 0x20, 5)).returns(0)
    names = ["_IColWrapper", "_IListWrapper", "_ColBaseWrapper", "_RoColBaseWrapper"]
    for name in names + ["_ArrayWrapper", "_ArrListWrapper"]:
        s.clear()
        assert type(iter(s.wrap(getattr(s.interop, name), 0x10))) is s.interop._IterWrapper
        assert s.calls("GetEnumerator") == [[0x10]]


@scene(
    "collections-iterators.conv.none",
    "collections-iterators.conv.exact-type",
    "collections-iterators.conv.marked-type",
    "collections-iterators.conv.marked-list-wrapper",
    "collections-iterators.conv.assignable-true",
    "collections-iterators.conv.assignable-false",
)
def test_wrappers_are_converted(s):
    for name, kind in kinds_of(s).items():
        converter, shown = converters()[name]
        s.clear()
        assert s.convert(converter, None) == (0, None)
        assert s.convert(converter, s.wrap(kind, 0x10)) == (0, 0x10)
        w, v = s.wrap(s.Sample, 0x20), s.wrap(s.Value, 0x30)
        s.Sample._additional_interfaces.add(kind)
        assert s.convert(converter, w) == (0, 0x20)
        put = s.function("fn_set_additional_ifcs_markattr", ctypes.c_bool, OBJECT, INT, OBJECT)
        assert put(s.Value, 1, kind)
        assert s.convert(converter, v) == (1, 0x30)
        assert s.calls("btp_IsAssignable") == []
        s.Sample._additional_interfaces.remove(kind)
        s.Value._additional_interfaces.remove(kind)
        s.method(name, "btp_IsAssignable").shows(0, 16).returns(1, 1, 0)
        assert s.convert(converter, w) == (0, 0x20) and s.convert(converter, v) == (1, 0x30)
        text = f"can't build {shown} value from 'kelmor.psd.Sample'"
        assert text_of(TypeError, s.convert, converter, w) == text
        given = [variant(part[0]) for part in s.memory("btp_IsAssignable")]
        assert given == [(0, 0x20), (1, 0x30), (0, 0x20)]
    s.clear()
    for wrapper in ("_IListWrapper", "_IColWrapper"):
        w = s.wrap(getattr(s.interop, wrapper), 0x40)
        assert s.convert("wrpPye_conv_py_to_clr_iterable", w) == (0, 0x40)
    assert s.calls("btp_IsAssignable") == []


@scene(
    "collections-iterators.conv-iterable.python-list",
    "collections-iterators.conv-iterable.has-iter",
    "collections-iterators.conv-iterable.error-text",
    "collections-iterators.conv-iter.python-iterator",
    "collections-iterators.conv-iter.not-iterator",
    "collections-iterators.conv-iter.error-text",
    "collections-iterators.conv-disposable.no-python-form",
)
def test_python_objects_are_converted(s):
    class Items:
        def __getitem__(self, index):
            raise IndexError

    class Manager:
        def __enter__(self):
            pass

        def __exit__(self, *_):
            pass

    iterable, iterator = "wrpPye_conv_py_to_clr_iterable", "wrpPye_conv_py_to_clr_iter"
    for value in ([1], (1,), "x", {}, {1}, (x for x in ()), Items()):
        before = sys.getrefcount(value)
        assert s.convert(iterable, value) == (2, id(value)) and sys.getrefcount(value) == before
    for value in ((x for x in ()), iter([1])):
        assert s.convert(iterator, value) == (2, id(value))
    for name, value, text in [
        (iterable, 5, "IEnumerable value from 'int'"),
        (iterator, [1], "IEnumerator value from 'list'"),
        (iterator, 5, "IEnumerator value from 'int'"),
        ("wrpPye_conv_py_to_clr_idisposable", Manager(), "IDisposable value from 'Manager'"),
    ]:
        assert text_of(TypeError, s.convert, name, value) == f"can't build {text}"


@scene("collections-iterators.conv-iter.generator-read")
def test_a_generator_is_drained_by_the_callback(s):
    step = s.function("fn_clbk_iter_next", INT, POINTER, POINTER, POINTER)
    generator = (x for x in (7, "a"))
    kind, address = s.convert("wrpPye_conv_py_to_clr_iter", generator)
    assert (kind, address) == (2, id(generator))
    out, record = POINTER(), s.native.VariantArg()
    seen = []
    while step(address, ctypes.addressof(out), ctypes.addressof(record)) == 0:
        seen.append((record.kind, ctypes.cast(out.value, OBJECT).value))
    assert seen == [(6, 7), (3, "a")]
