"""The cast built-ins."""

import ctypes

from wrappers import handle_of, i32, raised, scene, sibling_wrapper, text_of, variant


def fails(*statuses):
    return [("cast", status, "null") for status in statuses]


def writes_handle(s, kind, name, handle, status=1, argument=1):
    method = s.method(kind, name).reset()
    return method.writes(argument, ctypes.c_uint64(handle)).returns(status)


def accept_object(s, name, handle):
    """The sibling's converter takes anything and gives this handle."""
    s.method("Test", name).reset().writes(1, ctypes.c_uint64(handle)).returns(1)


@scene("binding-casts.names.static-or-instance", "binding-casts.names.uni-enum-only-enums")
def test_the_built_ins_have_their_forms(s):
    names = ["_type_of", "_cast_to", "_cast_as", "_cast_from", "_reinterpret_obj"]
    names += ["_is_assignable", "get_type"]
    for kind in (s.Sample, s.Value, s.IShape, s.root.Shade, s.interop._StreamWrapper):
        assert all(hasattr(kind, name) for name in names)
        assert hasattr(kind, "_as_uni_enum") == (kind is s.root.Shade)
        for name in ("_cast_to", "_cast_as", "_is_assignable"):
            raised(TypeError, getattr(kind, name))
            raised(TypeError, getattr(kind, name), None, None)
        raised(TypeError, kind._type_of, 1)
    w = s.wrap(s.Sample, 1)
    raised(TypeError, w.get_type, 1), raised(TypeError, w._cast_from)


@scene("binding-casts.result.factory", "binding-casts.result.ownership")
def test_the_result_is_what_the_factory_makes(s):
    answer = ["the very result"]
    s.method("Test", "Factory").reset().calls(lambda frame: s.give(frame, answer))
    writes_handle(s, "Sample", "btp_CastTo", 0x77)
    writes_handle(s, "Sample", "btp_CastAs", 0x78)
    w = s.wrap(s.Sample, 1)
    assert s.Sample._cast_to(w) is answer and s.Sample._cast_as(w) is answer
    assert w._cast_from(1) is answer
    assert s.calls("FreeInstance") == [[0x77], [0x78]]  # the recording factory kept neither


@scene(
    "binding-casts.type-of.call",
    "binding-casts.type-of.error",
    "binding-casts.type-of.zero-without-error",
)
def test_type_of(s):
    for name, kind in [("Sample", s.Sample), ("Value", s.Value), ("IShape", s.IShape)]:
        method = writes_handle(s, name, "btp_TypeOf", 0x77, argument=0)
        assert kind._type_of() == ("Type", 0x77)
        method.returns(0)
        assert kind._type_of() == ("Type", 0x77)
        method.reset().returns(0).raises(RuntimeError, "no type")
        assert text_of(RuntimeError, kind._type_of) == "no type"


@scene(
    "binding-casts.cast-to.record",
    "binding-casts.cast-to.none",
    "binding-casts.cast-to.sibling",
    "binding-casts.cast-to.wrong-argument",
)
def test_cast_to_takes_any_wrapper_and_none(s):
    sibling = sibling_wrapper(0x30)
    for name, kind in [("Sample", s.Sample), ("Value", s.Value), ("IShape", s.IShape)]:
        s.method(name, "btp_CastTo").shows(0, 16).returns(0)
        s.clear()
        for value in (s.wrap(s.Sample, 0x10), s.wrap(s.Value, 0x20), None, sibling):
            assert kind._cast_to(value) == ("cast", 0, "null")
        given = [variant(part[0]) for part in s.memory("btp_CastTo")]
        assert given == [(0, 0x10), (1, 0x20), (0, 0), (0, 0x30)]
        for value in (5, "x", object()):
            assert kind._cast_to(value) == ("cast", 0, "null")
        assert len(s.calls("btp_CastTo")) == 4


@scene(
    "binding-casts.cast-to.minus-one-error",
    "binding-casts.cast-to.minus-one-no-error",
    "binding-casts.cast-to.zero",
    "binding-casts.cast-to.success",
    "binding-casts.cast-to.success-null-handle",
    "binding-casts.cast-to.interface-result",
    "binding-casts.cast-as.statuses",
    "binding-casts.result.status-as-it-came",
)
def test_the_status_decides(s):
    for name, kind in [("Sample", s.Sample), ("Value", s.Value), ("IShape", s.IShape)]:
        for operation, entry in [(kind._cast_to, "btp_CastTo"), (kind._cast_as, "btp_CastAs")]:
            w = s.wrap(s.Sample, 0x10)
            for status in (1, 7, -1):
                writes_handle(s, name, entry, 0x77, status)
                tag, told, value = operation(w)
                assert (told, type(value), handle_of(value)) == (status, kind, 0x77)
            writes_handle(s, name, entry, 0x77, 0)
            assert operation(w) == ("cast", 0, "null")
            writes_handle(s, name, entry, 0, 3)
            assert operation(w) == ("cast", 3, None)
            s.method(name, entry).reset().returns(-1).raises(RuntimeError, "no cast")
            assert text_of(RuntimeError, operation, w) == "no cast"
    assert s.calls("GetTypeName") == []


@scene("binding-casts.cast-to.conversion-error", refuse=[("Sample", "ctor_000_Sample")])
def test_an_invalid_type_fails_its_casts(s):
    w = s.wrap(s.Value, 1)
    for operation in (s.Sample._cast_to, s.Sample._cast_as):
        assert "ctor_000_Sample" in text_of(TypeError, operation, w)
    writes_handle(s, "Shade", "btp_CastTo", 99)
    raised(ValueError, s.root.Shade._cast_to, w)
    assert s.method("Test", "Factory").received == []


@scene(
    "binding-casts.cast-as.class",
    "binding-casts.cast-as.class-refuses-struct",
    "binding-casts.cast-as.struct",
    "binding-casts.cast-as.interface",
    "binding-casts.cast-as.none",
    "binding-casts.cast-as.wrong-argument",
)
def test_cast_as_takes_what_its_family_takes(s):
    w, v = s.wrap(s.Sample, 0x10), s.wrap(s.Value, 0x20)
    for name, kind in [("Sample", s.Sample), ("Shade", s.root.Shade)]:
        s.clear()
        s.method(name, "btp_CastAs").returns(0)
        assert [kind._cast_as(value) for value in (w, v, None, 5)] == fails(0, 0, 0, 0)
        assert s.calls("btp_CastAs") == [[0x10]]
    for name, kind in [("Value", s.Value), ("IShape", s.IShape)]:
        s.clear()
        s.method(name, "btp_CastAs").shows(0, 16).returns(0)
        assert [kind._cast_as(value) for value in (w, v, None, 5)] == fails(0, 0, 0, 0)
        given = [variant(part[0]) for part in s.memory("btp_CastAs")]
        assert given == [(0, 0x10), (1, 0x20)]


@scene("binding-casts.cast-from.stub")
def test_cast_from_is_a_stub(s):
    for w in (s.wrap(s.Sample, 1), s.wrap(s.IShape, 1), s.root.Shade.DARK):
        for value in (None, 5, w):
            assert w._cast_from(value) == ("cast", 0, "null")
    assert set(s.calls()) <= {"FreeInstance"}


@scene(
    "binding-casts.cast-from.call",
    "binding-casts.cast-from.wrong-argument",
    "binding-casts.cast-from.result",
    "binding-casts.cast-from.statuses",
    "binding-casts.cast-from.null-conversion",
)
def test_a_real_cast_from(s):
    v = s.wrap(s.Value, 0x20)
    accept_object(s, "TypeFromPy", 0x99)
    writes_handle(s, "Value", "btp_CastFrom", 0x77, 4, argument=2)
    assert v._cast_from("type") == ("cast", 4, ("Object", 0x77))
    assert s.calls("btp_CastFrom", 2) == [[0x20, 0x99]]
    writes_handle(s, "Value", "btp_CastFrom", 0x77, 0, argument=2)
    assert v._cast_from("type") == ("cast", 0, "null")
    s.method("Value", "btp_CastFrom").reset().returns(-1).raises(RuntimeError, "no cast")
    assert text_of(RuntimeError, v._cast_from, "type") == "no cast"
    writes_handle(s, "Value", "btp_CastFrom", 0x77, 4, argument=2)
    s.method("Test", "ObjectToPy").reset().returns(0)
    assert v._cast_from("type") == ("cast", 4, "null")
    s.method("Test", "ObjectToPy").raises(ValueError, "no object")
    assert text_of(ValueError, v._cast_from, "type") == "no object"
    s.method("Test", "TypeFromPy").reset().returns(0).raises(ValueError, "its own words")
    wanted = "_cast_from() expects a .Net Type argument, got a int object"
    assert text_of(TypeError, v._cast_from, 5) == wanted


@scene(
    "binding-casts.reinterpret.call",
    "binding-casts.reinterpret.wrong-argument",
    "binding-casts.reinterpret.error",
    "binding-casts.reinterpret.zero-without-error",
)
def test_reinterpret_obj(s):
    for name, kind in [("Sample", s.Sample), ("Value", s.Value)]:
        s.clear()
        accept_object(s, "ObjectFromPy", 0x99)
        writes_handle(s, name, "btp_ReInterpretObj", 0x77)
        w = kind._reinterpret_obj("object")
        assert (type(w), handle_of(w)) == (kind, 0x77)
        assert s.calls("btp_ReInterpretObj") == [[0x99]]
        writes_handle(s, name, "btp_ReInterpretObj", 0, 0)
        assert kind._reinterpret_obj("object") is None
        s.method(name, "btp_ReInterpretObj").reset().returns(0).raises(RuntimeError, "no object")
        assert text_of(RuntimeError, kind._reinterpret_obj, "object") == "no object"
        s.method("Test", "ObjectFromPy").reset().returns(0).raises(ValueError, "its own words")
        wanted = "_reinterpret_obj() expects a .Net Object argument, got a int object"
        assert text_of(TypeError, kind._reinterpret_obj, 5) == wanted


@scene("binding-casts.reinterpret.interface", "collections-iterators.casts.reinterpret-refused")
def test_an_interface_is_never_reinterpreted(s):
    names = ["_IDisposableWrapper", "_IterWrapper", "_IterableWrapper"]
    kinds = {name: getattr(s.interop, name) for name in names}
    for name, kind in [("IShape", s.IShape), *kinds.items()]:
        full = f"{kind.__module__}.{kind.__name__}"
        for value, shown in [(5, "int"), (s.wrap(s.IShape, 1), "kelmor.psd.IShape")]:
            text = text_of(TypeError, kind._reinterpret_obj, value)
            assert text == f"cannot convert from  '{shown}' to '{full}'"
    assert s.calls("btp_ReInterpretObj") == []


@scene(
    "binding-casts.is-assignable.class",
    "binding-casts.is-assignable.struct-interface",
    "binding-casts.is-assignable.wrong-argument",
)
def test_is_assignable(s):
    w, v = s.wrap(s.Sample, 0x10), s.wrap(s.Value, 0x20)
    for name, kind in [("Sample", s.Sample), ("Shade", s.root.Shade)]:
        s.clear()
        s.method(name, "btp_IsAssignable").returns(1, 0)
        assert [kind._is_assignable(w), kind._is_assignable(w)] == [True, False]
        assert [kind._is_assignable(value) for value in (5, None, v)] == [False] * 3
        assert s.calls("btp_IsAssignable") == [[0x10]] * 2
    for name, kind in [("Value", s.Value), ("IShape", s.IShape)]:
        s.clear()
        s.method(name, "btp_IsAssignable").shows(0, 16).returns(1, 0)
        assert [kind._is_assignable(value) for value in (w, v, 5, None)] == [True] + [False] * 3
        given = [variant(part[0]) for part in s.memory("btp_IsAssignable")]
        assert given == [(0, 0x10), (1, 0x20)]


@scene()
def test_an_error_decides_whatever_the_answer_is(s):
    w = s.wrap(s.Sample, 0x10)
    accept_object(s, "ObjectFromPy", 0x99)
    for name, kind in [("Sample", s.Sample), ("Value", s.Value), ("Shade", s.root.Shade)]:
        for status in (0, 1):
            for operation, entry in [
                (kind._is_assignable, "btp_IsAssignable"),
                (kind._cast_to, "btp_CastTo"),
                (kind._cast_as, "btp_CastAs"),
                (kind._reinterpret_obj, "btp_ReInterpretObj"),
            ]:
                s.method(name, entry).reset().returns(status).raises(RuntimeError, entry)
                assert text_of(RuntimeError, operation, w) == entry
    assert s.method("Test", "Factory").received == []


@scene()
def test_a_number_that_cannot_be_read_is_not_asked_about(s):
    for kind, number in [(s.root.Shade, 1 << 63), (s.root.Flags, -1)]:
        member = int.__new__(kind, number)
        member._value_ = number
        for operation in (member.get_type, member._as_uni_enum):
            raised(OverflowError, operation)
    assert s.calls() == []


@scene(
    "binding-casts.enum.cast-value",
    "binding-casts.enum.cast-unknown-value",
    "binding-casts.enum.reinterpret",
)
def test_casts_of_an_enumeration_give_members(s):
    w = s.wrap(s.Sample, 0x10)
    accept_object(s, "ObjectFromPy", 0x99)
    for operation, entry, argument in [
        ("_cast_to", "btp_CastTo", w),
        ("_cast_as", "btp_CastAs", w),
    ]:
        for name, kind, number, member in [
            ("Shade", s.root.Shade, ctypes.c_int32(-5), s.root.Shade.BELOW),
            ("Flags", s.root.Flags, ctypes.c_uint8(128), s.root.Flags.TOP),
            ("Flags", s.root.Flags, ctypes.c_uint8(129), s.root.Flags.TOP | s.root.Flags.A),
        ]:
            s.method(name, entry).reset().writes(1, number).returns(1)
            assert getattr(kind, operation)(argument) == ("cast", 1, member)
        s.method("Shade", entry).reset().writes(1, ctypes.c_int32(77)).returns(1)
        raised(ValueError, getattr(s.root.Shade, operation), argument)
    s.method("Shade", "btp_ReInterpretObj").writes(1, ctypes.c_int32(2)).returns(1)
    assert s.root.Shade._reinterpret_obj("object") is s.root.Shade.LIGHT
    assert s.calls("btp_ReInterpretObj") == [[0x99]]


@scene(
    "binding-casts.enum.as-uni-enum",
    "binding-casts.enum.get-type",
    "binding-casts.enum.value-errors",
)
def test_a_member_asks_by_its_number(s):
    for name, member, number in [
        ("Shade", s.root.Shade.BELOW, -5),
        ("Flags", s.root.Flags.TOP, 128),
    ]:
        for operation, entry, tag in [
            ("get_type", "btp_GetType", "Type"),
            ("_as_uni_enum", "btp_AsUniEnum", "Enum"),
        ]:
            s.clear()
            writes_handle(s, name, entry, 0x77)
            assert getattr(member, operation)() == (tag, 0x77)
            assert [i32(word) for (word,) in s.calls(entry)] == [number]
            s.method(name, entry).reset().returns(0).raises(RuntimeError, "no answer")
            assert text_of(RuntimeError, getattr(member, operation)) == "no answer"


@scene(
    "binding-casts.invalid.raises",
    "binding-casts.cast-from.stub-no-validity",
    refuse=[("Sample", "btp_CastAs"), ("Shade", "btp_GetType"), ("Value", "btp_TypeOf")],
)
def test_an_invalid_type_is_told_before_the_argument(s):
    for name, kind in [("S", s.Sample), ("V", s.Value), ("E", s.root.Shade)]:
        for operation in ("_cast_to", "_cast_as", "_is_assignable", "_reinterpret_obj"):
            assert f"WrpCs_{name}" in text_of(TypeError, getattr(kind, operation), object())
        assert f"WrpCs_{name}" in text_of(TypeError, kind._type_of)
    member = s.root.Shade.DARK
    for operation in (member._as_uni_enum, member.get_type):
        assert "'btp_GetType' not found" in text_of(TypeError, operation)
    assert member._cast_from(5) == ("cast", 0, "null")
    assert text_of(TypeError, s.Derived._type_of) == (
        "one or more refereced type is not initialized"
    )
