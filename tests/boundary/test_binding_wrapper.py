"""Wrappers: the record, the slots, who releases a handle."""

import ctypes
import gc
import sys

from wrappers import (
    INT,
    OBJECT,
    POINTER,
    handle_of,
    raised,
    scene,
    sibling_wrapper,
    text_of,
    variant,
)


@scene("binding-wrapper.record.layout", "binding-wrapper.type.sizes")
def test_a_wrapper_is_a_header_and_a_handle(s):
    for kind in (s.Sample, s.Derived, s.Value, s.IShape):
        assert (kind.__basicsize__, kind.__itemsize__) == (24, 0), kind
    w = s.wrap(s.Sample, 0x1234)
    assert POINTER.from_address(id(w) + 16).value == 0x1234


@scene(
    "binding-wrapper.type.no-base-flag",
    "binding-wrapper.type.no-gc",
    "binding-wrapper.type.no-dict",
    "binding-wrapper.type.no-weakref",
)
def test_a_wrapper_type_has_no_flags(s):
    import weakref

    for kind in (s.Sample, s.Derived, s.Value, s.IShape):
        w = s.wrap(kind, 1)
        text = text_of(TypeError, type, "X", (kind,), {})
        assert text == f"type '{kind.__module__}.{kind.__name__}' is not an acceptable base type"
        assert not gc.is_tracked(w) and not kind.__flags__ & (1 << 14)
        assert not hasattr(w, "__dict__")
        raised(AttributeError, setattr, w, "unknown", 1)
        raised(TypeError, weakref.ref, w)


@scene("binding-wrapper.type.class-slots", "binding-wrapper.type.struct-slots")
def test_the_flavours_differ_in_their_slots(s):
    show = s.function("type_slots", None, POINTER, POINTER)
    for kind, flavour, slots in [
        ("sample_interface", "Object", [0, 1, 2, 3, 4, 5]),
        ("sample_derived", "Object", [0, 1, 2, 3, 4]),
        ("sample_struct", "Struct", [0, 1, 2, 3, 4]),
    ]:
        found = (ctypes.c_void_p * 6)()
        show(s.native.address(kind), found)
        names = ["tp_dealloc", "str", "hash", "tp_richcompare", "get_type", "tp_init_fault"]
        wanted = [s.native.address(f"wrapClr{flavour}_{names[i]}") for i in slots]
        assert [found[i] for i in slots] == wanted, kind


@scene("binding-wrapper.type.wrpgen-repr")
def test_interop_wrappers_print_with_pythons_text(s):
    for name in ("_ArrayWrapper", "_StreamWrapper", "_IterWrapper", "_IListWrapper"):
        w = s.wrap(getattr(s.interop, name), 5)
        wanted = f"<kelmor.psd._wrpgen._interop.{name} object at {hex(id(w))}>"
        assert repr(w) == wanted
    assert s.calls("ToStringOfObj") == []


@scene("binding-wrapper.flavour.is-object", "binding-wrapper.flavour.is-instance")
def test_the_flavour_is_told_by_the_deallocator(s):
    is_object = s.function("fn_is_this_module_clr_object", ctypes.c_bool, OBJECT)
    is_instance = s.function("fn_is_this_module_clr_instance", ctypes.c_bool, OBJECT, POINTER)
    kind = INT()
    for value, first, second in [
        (s.wrap(s.Sample, 1), True, (True, 0)),
        (s.wrap(s.IShape, 1), True, (True, 0)),
        (s.wrap(s.Value, 1), False, (True, 1)),
        (None, False, (False, 99)),
        (5, False, (False, 99)),
    ]:
        kind.value = 99
        assert is_object(value) is first
        assert (is_instance(value, ctypes.addressof(kind)), kind.value) == second


@scene("binding-wrapper.helper.unknown-to-clr", "binding-wrapper.helper.return-none")
def test_helpers(s):
    out = POINTER(7)
    copy = s.function("fn_py_unknown_to_clr_unknown", INT, OBJECT, POINTER)
    assert copy(s.wrap(s.Value, 0x77), ctypes.addressof(out)) == 1 and out.value == 0x77
    assert copy(s.Sample.__new__(s.Sample), ctypes.addressof(out)) == 1 and out.value is None
    assert s.function("fn_py_return_none", OBJECT)() is None


@scene("binding-wrapper.new.wraps", "binding-wrapper.new.skips-init")
def test_wrapping_runs_no_constructor(s):
    for kind in (s.Sample, s.IShape):
        w = s.wrap(kind, 0x40)
        assert type(w) is kind and handle_of(w) == 0x40 and sys.getrefcount(w) == 2
        assert s.calls() == []
        del w
        s.clear()


@scene("binding-wrapper.new.wraps")
def test_wrapping_calls_tp_new_without_arguments(s):
    given = []

    def create(kind, args, kwds):
        given.append((kind, args, kwds))
        return own(kind, args, kwds)

    # tp_new stands 312 bytes into a type object.
    slot = POINTER.from_address(s.native.address("sample_class") + 312)
    form = ctypes.PYFUNCTYPE(POINTER, POINTER, POINTER, POINTER)
    address, own, watched = slot.value, form(slot.value), form(create)
    slot.value = ctypes.cast(watched, POINTER).value
    w = s.wrap(s.Sample, 0x40)
    slot.value = address
    assert given == [(id(s.Sample), None, None)] and handle_of(w) == 0x40


@scene("binding-wrapper.new.failure-releases", refuse=[("Sample", "btp_TypeOf")])
def test_a_handle_that_cannot_be_wrapped_is_released(s):
    assert "WrpCs_S" in text_of(TypeError, s.wrap, s.Sample, 0x99)
    assert s.calls("FreeInstance") == [[0x99]]


@scene("binding-wrapper.new.failure-struct-free-instance", refuse=[("Value", "btp_TypeOf")])
def test_also_a_struct_handle_goes_through_free_instance(s):
    # Both delegates are bound by one name, so the second is replaced by its slot.
    slots = s.function("exchange_slots", POINTER)()
    POINTER.from_address(slots + 8 * 12).value = s.method("Test", "FreeStruct").address
    raised(TypeError, s.wrap, s.Value, 0x99)
    assert s.calls("FreeInstance") == [[0x99]]
    assert s.method("Test", "FreeStruct").received == []


@scene(
    "binding-wrapper.init.fresh-handle-null",
    "binding-wrapper.init.new-without-init",
)
def test_new_without_init_has_a_null_handle_and_passes_it(s):
    w = s.Sample.__new__(s.Sample)
    assert handle_of(w) is None and s.calls() == []
    s.method("Sample", "call_000_Self").returns(0)
    assert w.self() is None
    assert s.calls("call_000_Self") == [[0]]


@scene("binding-wrapper.init.stores-constructor-result")
def test_the_constructors_handle_is_stored(s):
    s.method("Sample", "ctor_000_Sample").returns(0xABC)
    assert handle_of(s.Sample()) == 0xABC


@scene(
    "binding-wrapper.init.fault",
    "binding-wrapper.init.fault-return",
    "binding-wrapper.init.fault-no-release",
    "binding-wrapper.init.second-init-fault",
)
def test_a_type_without_constructor_refuses(s):
    for arguments in ((), (1,), (1, 2)):
        assert text_of(TypeError, s.IShape, *arguments) == "type has no available constructor"
    assert s.calls("FreeInstance") == []
    w = s.wrap(s.IShape, 0x31)
    assert text_of(TypeError, w.__init__) == "type has no available constructor"
    assert handle_of(w) == 0x31
    init = s.function("wrapClrObject_tp_init_fault", INT, OBJECT, POINTER, POINTER)
    assert text_of(TypeError, init, w, None, None) == "type has no available constructor"


@scene("binding-wrapper.init.second-init")
def test_a_second_init_loses_the_first_handle(s):
    s.method("Sample", "ctor_000_Sample").returns(0x1, 0x2)
    w = s.Sample()
    w.__init__()
    assert handle_of(w) == 2
    del w
    assert s.calls("FreeInstance") == [[2]]


@scene(
    "binding-wrapper.dealloc.class",
    "binding-wrapper.dealloc.struct",
    "binding-wrapper.dealloc.null-handle",
    "binding-wrapper.ownership.two-wrappers",
)
def test_death_gives_the_handle_back_once(s):
    slots = s.function("exchange_slots", POINTER)()
    POINTER.from_address(slots + 8 * 12).value = s.method("Test", "FreeStruct").address
    struct_releases = s.method("Test", "FreeStruct")
    a, b = s.wrap(s.Sample, 0x50), s.wrap(s.Sample, 0x50)
    assert a is not b
    del a
    assert s.calls("FreeInstance") == [[0x50]]
    del b
    assert s.calls("FreeInstance") == [[0x50], [0x50]] and struct_releases.received == []
    v = s.wrap(s.Value, 0x60)
    del v
    assert [entry["arguments"][0] for entry in struct_releases.received] == [0x60]
    s.Sample.__new__(s.Sample), s.Value.__new__(s.Value)
    assert len(s.calls("FreeInstance")) == 2 and len(struct_releases.received) == 1


@scene("binding-wrapper.dealloc.order")
def test_death_releases_then_clears_then_frees(s):
    seen = []
    form = ctypes.PYFUNCTYPE(None, POINTER)
    for name, kind, handle in [("sample_class", s.Sample, 1), ("sample_struct", s.Value, 2)]:
        # tp_free stands 320 bytes into a type object. Both releases have one name.
        slot = POINTER.from_address(s.native.address(name) + 320)
        address, own = slot.value, form(slot.value)

        def free(wrapper, own=own):
            seen.append((POINTER.from_address(wrapper + 16).value, s.calls("FreeInstance")))
            own(wrapper)

        watched = form(free)
        w = s.wrap(kind, handle)
        slot.value = ctypes.cast(watched, POINTER).value
        del w
        slot.value = address
    assert seen == [(None, [[1]]), (None, [[1], [2]])]


@scene("binding-wrapper.dealloc.other-thread")
def test_a_wrapper_may_die_on_another_thread(s):
    import threading

    box = [s.wrap(s.Sample, 0x70)]
    thread = threading.Thread(target=box.clear)
    thread.start()
    thread.join()
    assert s.calls("FreeInstance") == [[0x70]]


@scene(
    "binding-wrapper.hash.value",
    "binding-wrapper.hash.sign-extended",
    "binding-wrapper.hash.minus-one",
)
def test_the_hash_is_the_managed_one(s):
    for kind, name in [(s.Sample, "GetHashOfObj"), (s.Value, "GetHashOfStc")]:
        w = s.wrap(kind, 0x33)
        numbers = [12345, 0x80000000, 0xFFFFFFFF]
        s.method("Object", name).reset().returns(*numbers)
        assert [hash(w) for _ in numbers] == [12345, -2147483648, -2]
        assert s.calls(name) == [[0x33]] * 3


@scene("binding-wrapper.hash.error")
def test_a_failing_hash_raises(s):
    s.method("Object", "GetHashOfObj").returns(5).raises(RuntimeError, "no hash")
    assert text_of(RuntimeError, hash, s.wrap(s.Sample, 1)) == "no hash"


@scene("binding-wrapper.repr.text", "binding-wrapper.type.str-is-repr")
def test_the_text_is_the_managed_one(s):
    for kind, name in [(s.Sample, "ToStringOfObj"), (s.Value, "ToStringOfStc")]:
        told = "a text of its own"
        s.writes_object("Object", name, 1, told, status=1)
        w = s.wrap(kind, 0x44)
        before = sys.getrefcount(told)
        shown = repr(w)
        assert shown is told and sys.getrefcount(told) == before + 2  # `shown`, and what is kept
        assert str(w) is told
        assert s.calls(name) == [[0x44]] * 2
        del shown


@scene("binding-wrapper.repr.fallback", "binding-wrapper.repr.error")
def test_without_a_text_the_address_is_shown(s):
    w = s.wrap(s.Sample, 1)
    method = s.method("Object", "ToStringOfObj").returns(0, 2, 0xFFFFFFFF)
    for _ in range(3):
        assert repr(w) == f"<kelmor.psd.Sample object at {hex(id(w))}>"
    method.reset().returns(0).raises(ValueError, "no text")
    assert text_of(ValueError, repr, w) == "no text"


@scene("binding-wrapper.repr.saved-error-kept")
def test_repr_keeps_a_pending_error(s):
    seen = []

    def answer(frame):
        seen.append(bool(pending()))
        POINTER.from_address(frame.integers[1]).value = s.new_ref("text")
        frame.result = 1

    pending = ctypes.PYFUNCTYPE(POINTER)(("PyErr_Occurred", ctypes.pythonapi))
    s.method("Object", "ToStringOfObj").calls(answer)
    with_pending = s.function("repr_with_pending", OBJECT, OBJECT, OBJECT, OBJECT)
    text, kind, value = with_pending(s.wrap(s.Sample, 1), KeyError, "earlier")
    assert (text, kind, seen) == ("text", KeyError, [False])
    assert str(value).strip("'") == "earlier"


@scene("binding-wrapper.repr.saved-error-kept")
def test_repr_puts_back_the_very_error_with_its_traceback(s):
    def thrown():
        try:
            raise KeyError("earlier")
        except KeyError as error:
            return error

    s.writes_object("Object", "ToStringOfObj", 1, "text", status=1)
    call = s.function("call_with_pending", None, *[POINTER] * 8)
    show, earlier, w = s.native.address("wrapClrObject_str"), thrown(), s.wrap(s.Sample, 1)
    traceback = earlier.__traceback__
    pending = [id(KeyError), id(earlier), id(traceback)]
    error = raised(KeyError, call, *pending, show, id(w), 0, 0, 0)
    assert error is earlier and s.calls("ToStringOfObj") == [[1]]
    # The frames that it has passed since stand before its own.
    found = error.__traceback__
    while found.tb_next is not None:
        found = found.tb_next
    assert found is traceback


@scene("binding-wrapper.repr.saved-error-new-error")
def test_a_new_error_in_repr_is_unraisable(s):
    reports = []
    sys.unraisablehook = lambda report: reports.append((report.object, str(report.exc_value)))
    s.method("Object", "ToStringOfObj").returns(0).raises(ValueError, "new")
    with_pending = s.function("repr_with_pending", OBJECT, OBJECT, OBJECT, OBJECT)
    text, kind, value = with_pending(s.wrap(s.Sample, 1), KeyError, "earlier")
    assert (text, kind) == (None, KeyError)
    assert reports == [("FormatCallbackException", "new")]


@scene("binding-wrapper.compare.other-operators", "binding-wrapper.compare.identity")
def test_order_is_refused_and_identity_is_not_asked(s):
    import operator

    w = s.wrap(s.Sample, 1)
    for compare in (operator.lt, operator.le, operator.gt, operator.ge):
        raised(TypeError, compare, w, s.wrap(s.Sample, 2))
    s.method("Object", "IsEqualsOfObj").returns(0)
    assert (w == w) is True and (w != w) is False
    assert s.calls("IsEqualsOfObj") == []


@scene("binding-wrapper.compare.not-a-wrapper")
def test_what_is_no_wrapper_is_not_equal(s):
    w = s.wrap(s.Sample, 1)
    assert (w == 5, w != 5, w == "x") == (False, True, False)
    assert w.__eq__(5) is NotImplemented
    assert s.calls() == []


@scene(
    "binding-wrapper.compare.call",
    "binding-wrapper.compare.record-kind",
    "binding-wrapper.compare.low-byte",
    "binding-wrapper.compare.ne",
)
def test_equality_is_managed(s):
    for kind, name in [(s.Sample, "IsEqualsOfObj"), (s.Value, "IsEqualsOfStc")]:
        w = s.wrap(kind, 0x10)
        for other, record in [
            (s.wrap(s.Sample, 0x20), (0, 0x20)),
            (s.wrap(s.Value, 0x21), (1, 0x21)),
        ]:
            s.clear()
            s.method("Object", name).reset().shows(1, 16).returns(0x101, 0x100, 1, 0)
            assert (w == other, w == other, w != other, w != other) == (True, False, False, True)
            assert s.calls(name) == [[0x10]] * 4
            assert [variant(part[0]) for part in s.memory(name)] == [record] * 4


@scene("binding-wrapper.compare.none", "binding-wrapper.compare.error")
def test_none_is_compared_as_a_null_handle(s):
    w = s.wrap(s.Sample, 0x10)
    method = s.method("Object", "IsEqualsOfObj").shows(1, 16).returns(1, 0)
    assert (w == None, w == None) == (True, False)  # noqa: E711
    assert [variant(part[0])[1] for part in s.memory("IsEqualsOfObj")] == [0, 0]
    method.reset().returns(1).raises(RuntimeError, "cannot compare")
    assert text_of(RuntimeError, lambda: w == None) == "cannot compare"  # noqa: E711


@scene("binding-wrapper.compare.sibling")
def test_a_siblings_wrapper_is_known_by_its_marker(s):
    other = sibling_wrapper(0x88)
    s.method("Object", "IsEqualsOfObj").shows(1, 16).returns(1)
    assert s.wrap(s.Sample, 1) == other
    assert [variant(part[0]) for part in s.memory("IsEqualsOfObj")] == [(0, 0x88)]


@scene(
    "binding-wrapper.get-type.call",
    "binding-wrapper.get-type.status-zero-without-error",
    "binding-wrapper.get-type.no-arguments",
)
def test_the_type_is_asked_of_the_object_service(s):
    for kind, name in [(s.Sample, "GetObjType"), (s.Value, "GetStcType")]:
        w = s.wrap(kind, 0x11)
        s.method("Object", name).writes(1, ctypes.c_uint64(0x222)).returns(1, 0)
        assert [w.get_type(), w.get_type()] == [("Type", 0x222)] * 2
        assert s.calls(name) == [[0x11]] * 2
        raised(TypeError, w.get_type, 1)


@scene("binding-wrapper.get-type.error")
def test_a_failing_get_type_raises(s):
    for kind, name in [(s.Sample, "GetObjType"), (s.Value, "GetStcType")]:
        s.method("Object", name).returns(0).raises(RuntimeError, "no type")
        assert text_of(RuntimeError, s.wrap(kind, 1).get_type) == "no type"


@scene("binding-wrapper.ownership.lent", "binding-wrapper.ownership.result")
def test_an_argument_is_lent_and_a_result_owned(s):
    w = s.wrap(s.Sample, 0x10)
    s.method("Sample", "call_000_Self").returns(0x20)
    result = w.self()
    assert handle_of(result) == 0x20 and s.calls("FreeInstance") == []
    del result
    assert s.calls("FreeInstance") == [[0x20]]
    del w
    assert s.calls("FreeInstance") == [[0x20], [0x10]]


@scene(
    "binding-wrapper.ownership.disposed-still-released",
    "collections-iterators.disposable.handle-stays",
)
def test_disposal_leaves_the_handle(s):
    w = s.wrap(s.interop._IDisposableWrapper, 0x10)
    with w:
        pass
    assert s.calls() == ["Dispose"] and handle_of(w) == 0x10
    s.method("Object", "GetHashOfObj").returns(1)
    hash(w)
    assert s.calls("GetHashOfObj") == [[0x10]]
    del w
    assert s.calls("FreeInstance") == [[0x10]]


@scene()
def test_in_a_forked_child_nothing_is_called(s):
    import os

    w, v, t = s.wrap(s.Sample, 1), s.wrap(s.Value, 2), s.wrap(s.interop._StreamWrapper, 3)
    s.method("Sample", "call_000_Self").returns(0x20)
    w.self(), t.tell()
    before = s.calls()
    child = os.fork()
    if child == 0:
        code = 1
        try:
            message = "managed code cannot be called in a forked child process"
            for use in (w.self, t.tell, t.read, t.__exit__, lambda: hash(w), lambda: repr(v)):
                assert text_of(RuntimeError, use) == message, use
            assert text_of(RuntimeError, lambda: w == v) == message
            assert text_of(RuntimeError, w.get_type) == message
            assert text_of(RuntimeError, s.interop._ArrayWrapper._type_of) == message
            a = s.interop._ArrayWrapper.__new__(s.interop._ArrayWrapper)
            assert text_of(RuntimeError, lambda: len(a)) == message
            del w, v, t, a
            assert s.calls() == before, s.calls()
            code = 0
        finally:
            os._exit(code)
    assert os.waitpid(child, 0)[1] == 0
    assert w.self() is not None
