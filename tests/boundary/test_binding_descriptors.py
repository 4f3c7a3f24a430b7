"""The descriptors and the method object."""

import ctypes
import gc
import sys

from wrappers import INT, OBJECT, POINTER, TEXT, handle_of, i64, raised, scene, text_of


def definition(s, name):
    return s.native.address(name)


def make(s, kind, owner, *definitions):
    constructor = s.function(f"PyShDescr_New{kind}", OBJECT, OBJECT, *[POINTER] * len(definitions))
    return constructor(owner, *[definition(s, name) for name in definitions])


def method(s, owner, name, self_object=None):
    """A method object; without an object it is unbound, unless the definition is static."""
    address = POINTER(id(self_object)) if self_object is not None else None
    new = s.function("PyShCMethod_New", OBJECT, OBJECT, POINTER, POINTER)
    return new(owner, definition(s, name), address)


def all_kinds(s, owner):
    return [
        make(s, "StaticField", owner, "constant_record"),
        make(s, "InstanceMethod", owner, "plain_noargs"),
        make(s, "StaticMethod", owner, "static_noargs"),
        make(s, "MixedMethod", owner, "echo_static", "echo_instance"),
        method(s, owner, "plain_noargs", 5),
    ]


class Owner:
    pass


@scene(
    "binding-descriptors.types.names",
    "binding-descriptors.types.created-by",
    "binding-descriptors.types.gc",
    "binding-descriptors.types.no-subclass",
    "binding-descriptors.types.no-new",
    "binding-descriptors.types.no-set",
)
def test_five_types_of_our_own(s):
    names = ["_FieldDescrType", "_InstanceMethodDescrType", "_StaticMethodDescrType"]
    names += ["_MixMethodDescrType", "_MethodObjectType"]
    for thing, name in zip(all_kinds(s, s.Sample), names):
        kind = type(thing)
        assert f"{kind.__module__}.{kind.__name__}" == f"kelmor.psd.{name}"
        assert kind.__flags__ & (1 << 14) and gc.is_tracked(thing)
        assert kind.__base__ is object
        raised(TypeError, type, "X", (kind,), {})
        raised(TypeError, kind)
        assert not hasattr(kind, "__set__") and not hasattr(kind, "__delete__")
    field = make(s, "StaticField", s.Sample, "constant_record")
    assert sys.getrefcount(field) == 2
    assert type(vars(s.Sample)["CONSTANT"]).__name__ == "_FieldDescrType"
    assert type(vars(s.Sample)["echo"]).__name__ == "_MixMethodDescrType"
    assert type(s.wrap(s.Sample, 1).echo).__name__ == "_MethodObjectType"


@scene(
    "binding-descriptors.types.descr-not-callable",
    "binding-descriptors.types.method-weakref",
    "binding-descriptors.dealloc.weakrefs",
)
def test_a_method_object_alone_is_called_and_weakly_held(s):
    import weakref

    *descriptors, bound = all_kinds(s, s.Sample)
    for thing in descriptors:
        raised(TypeError, lambda: thing())
        raised(TypeError, weakref.ref, thing)
    gone = []
    held = weakref.ref(bound, gone.append)
    assert held() is bound
    del bound
    assert held() is None and gone == [held]


@scene(
    "binding-descriptors.record.layout",
    "binding-descriptors.record.static-prepared",
    "binding-descriptors.record.mixed-prepared",
    "binding-descriptors.cmethod.fields",
)
def test_the_records(s):
    def words(thing, count):
        return list((ctypes.c_uint64 * count).from_address(id(thing) + 16))

    field, instance, static, mixed, bound = all_kinds(s, s.Sample)
    owner = id(s.Sample)

    def at(name):
        return definition(s, name)

    assert words(field, 2) == [owner, at("constant_record")]
    assert words(instance, 2) == [owner, at("plain_noargs")]
    prepared = static.__get__(None, int)
    assert words(static, 3) == [owner, at("static_noargs"), id(prepared)]
    assert words(prepared, 4) == [at("static_noargs"), 0, 0, owner]
    prepared = mixed.__get__(None, int)
    assert words(mixed, 3) == [owner, id(prepared), at("echo_instance")]
    assert words(prepared, 4) == [at("echo_static"), 0, 0, owner]
    assert words(bound, 4) == [at("plain_noargs"), id(5), 0, owner]
    assert type(field).__basicsize__ == 32 and type(bound).__basicsize__ == 56


@scene(
    "binding-descriptors.record.owner-strong",
    "binding-descriptors.dealloc.drops-fields",
    "binding-descriptors.traverse.fields",
)
def test_owners_are_held_and_given_back(s):
    target = Owner()

    def counts():
        return (sys.getrefcount(Owner), sys.getrefcount(target))

    before = counts()
    field, instance, static, mixed, _ = all_kinds(s, Owner)
    bound = method(s, Owner, "plain_noargs", target)
    unbound = method(s, Owner, "plain_noargs")
    for thing in (field, instance, unbound):
        assert gc.get_referents(thing) == [Owner]
    for thing in (static, mixed):
        assert gc.get_referents(thing) == [Owner, thing.__get__(None, int)]
    assert gc.get_referents(bound) == [target, Owner]
    assert counts() == (before[0] + 9, before[1] + 1)
    del field, instance, static, mixed, _, bound, unbound, thing
    assert counts() == before


@scene("binding-descriptors.install.extra-reference", "binding-descriptors.install.failure")
def test_an_installed_descriptor_lives_for_ever(s):
    assert sys.getrefcount(vars(s.Sample)["CONSTANT"]) == 3
    install = s.function("install_descriptor", INT, OBJECT, TEXT, POINTER)
    failed = raised(ImportError, install, Owner, b"member", None)
    assert str(failed) == "Type initialization internal error (-1020) <Owner,member>"
    descriptor = make(s, "StaticField", Owner, "constant_record")
    before = sys.getrefcount(descriptor)
    ctypes.pythonapi.Py_IncRef(OBJECT(descriptor))
    failed = raised(ImportError, install, Owner, b"\xff\xfe", id(descriptor))
    assert sys.getrefcount(descriptor) == before


@scene(
    "binding-descriptors.cmethod.linked-or-unbound",
    "binding-descriptors.cmethod.form-by-flags",
    "binding-descriptors.call.linked-noargs-positional",
    "binding-descriptors.call.linked-noargs-keywords",
    "binding-descriptors.call.linked-noargs-forward",
    "binding-descriptors.call.linked-oarg-count",
    "binding-descriptors.call.linked-oarg-keywords",
    "binding-descriptors.call.linked-oarg-forward",
    "binding-descriptors.call.linked-withargs-forward",
    "binding-descriptors.call.static-null-self",
)
def test_linked_calls(s):
    bound = method(s, Owner, "plain_noargs", 5)
    assert bound() == (5, (), None) and bound(**{})[:2] == (5, ())
    assert text_of(TypeError, bound, 1) == "plain_noargs() takes no arguments (1 given)"
    assert text_of(TypeError, bound, 1, 2, a=1) == "plain_noargs() takes no arguments (2 given)"
    assert text_of(TypeError, bound, a=1) == "plain_noargs() takes no keyword arguments"
    bound = method(s, Owner, "plain_oarg", 5)
    assert bound("x") == (5, "x")
    for arguments in ((), (1, 2)):
        text = f"plain_oarg() takes exactly one argument ({len(arguments)} given)"
        assert text_of(TypeError, bound, *arguments) == text
    assert text_of(TypeError, bound, 1, a=1) == "plain_oarg() takes no keyword arguments"
    bound = method(s, Owner, "echo_instance", 5)
    assert bound(1, 2, a=3) == (5, (1, 2), {"a": 3}) and bound() == (5, (), None)
    static = method(s, Owner, "static_noargs")
    assert static() == (None, (), None)
    assert text_of(TypeError, static, 1) == "static_noargs() takes no arguments (1 given)"
    unbound = method(s, Owner, "plain_noargs")
    assert "needs a 'self' argument" in text_of(TypeError, unbound)


@scene(
    "binding-descriptors.call.unbound-no-self",
    "binding-descriptors.call.unbound-wrong-self",
    "binding-descriptors.call.unbound-subtype-self",
    "binding-descriptors.call.unbound-noargs-count",
    "binding-descriptors.call.unbound-oarg-count",
    "binding-descriptors.call.unbound-withargs-drops-last",
    "binding-descriptors.call.unbound-withargs-keywords",
    "binding-descriptors.call.unbound-keywords-refused",
)
def test_unbound_calls(s):
    heir = type("Heir", (Owner,), {})()
    me = Owner()
    noargs, oarg, with_args = [
        method(s, Owner, name) for name in ("plain_noargs", "plain_oarg", "echo_instance")
    ]
    for unbound, name in [(noargs, "plain_noargs"), (oarg, "plain_oarg"), (with_args, "echo")]:
        text = f"unbound method {name}() needs a 'self' argument"
        assert text_of(TypeError, unbound) == text
        text = f"descriptor '{name}' for 'Owner' objects doesn't apply to a 'int' object"
        assert text_of(TypeError, unbound, 5) == text
    assert noargs(heir) == (heir, (heir,), None) and oarg(heir, 1) == (heir, 1)
    text = "plain_noargs() takes no arguments ({} given)"
    assert text_of(TypeError, noargs, me, 1) == text.format(1)
    assert text_of(TypeError, noargs, me, 1, 2) == text.format(2)
    text = "plain_oarg() takes exactly one argument ({} given)"
    assert text_of(TypeError, oarg, me) == text.format(0)
    assert text_of(TypeError, oarg, me, 1, 2) == text.format(2)
    assert text_of(TypeError, noargs, me, a=1) == "plain_noargs() takes no keyword arguments"
    assert text_of(TypeError, oarg, me, 1, a=1) == "plain_oarg() takes no keyword arguments"
    assert with_args(me, 1, 2) == (me, (1,), None) and with_args(me) == (me, (), None)
    assert with_args(me, 1, a=3) == (me, (), {"a": 3})


@scene(
    "binding-descriptors.get.field-type",
    "binding-descriptors.get.field-instance",
    "binding-descriptors.get.field-needs-type",
)
def test_a_field_runs_its_getter_without_an_object(s):
    s.method("Sample", "getsa_Constant").returns(0x51, 0x52)
    assert handle_of(s.Sample.CONSTANT) == 0x51
    assert handle_of(s.wrap(s.Sample, 1).CONSTANT) == 0x52
    field = vars(s.Sample)["CONSTANT"]
    text = "descriptor 'CONSTANT' needs a type, not 'int', as arg 2"
    assert text_of(TypeError, field.__get__, None, 5) == text
    assert text_of(TypeError, field.__get__, s.wrap(s.Sample, 1), 5) == text


@scene(
    "binding-descriptors.get.static-same-object",
    "binding-descriptors.get.static-needs-type",
    "binding-descriptors.get.instance-new-object",
    "binding-descriptors.get.instance-wrong-object",
    "binding-descriptors.get.instance-unbound",
    "binding-descriptors.get.instance-needs-type",
)
def test_methods_of_an_enumeration(s):
    shade = s.root.Shade
    assert shade._type_of is shade._type_of and shade.DARK._type_of is shade._type_of
    assert shade.DARK.get_type is not shade.DARK.get_type
    static, instance = vars(shade)["_type_of"], vars(shade)["get_type"]
    text = "descriptor '{}' needs a type, not 'int', as arg 2"
    assert text_of(TypeError, static.__get__, None, 5) == text.format("_type_of")
    assert text_of(TypeError, static.__get__, shade.DARK, 5) == text.format("_type_of")
    assert text_of(TypeError, instance.__get__, None, 5) == text.format("get_type")
    text = "descriptor 'get_type' for 'Shade' objects doesn't apply to a 'int' object"
    assert text_of(TypeError, instance.__get__, 5, int) == text
    unbound = shade.get_type
    assert repr(unbound) == "<extension method get_type of Shade objects>"
    assert text_of(TypeError, shade._cast_from) == (
        "unbound method _cast_from() needs a 'self' argument"
    )


@scene(
    "binding-descriptors.get.mixed-instance",
    "binding-descriptors.get.mixed-type",
    "binding-descriptors.get.mixed-needs-type",
    "binding-descriptors.get.mixed-two-defs",
)
def test_a_mixed_method_has_two_faces(s):
    w = s.wrap(s.Sample, 1)
    assert s.Sample.echo is s.Sample.echo and s.Sample.echo(1) == (None, (1,), None)
    assert w.echo is not w.echo and w.echo(1) == (w, (1,), None)
    assert w.echo.__doc__ == "of an instance" and s.Sample.echo.__doc__ == "of the type"
    assert w.echo != s.Sample.echo
    mixed = vars(s.Sample)["echo"]
    text = "descriptor 'echo' for 'kelmor.psd.Sample' objects doesn't apply to a 'int' object"
    assert text_of(TypeError, mixed.__get__, 5, int) == text
    text = "descriptor 'echo' needs a type, not 'int', as arg 2"
    assert text_of(TypeError, mixed.__get__, None, 5) == text


@scene()
def test_without_a_type_the_object_alone_decides(s):
    w, shade = s.wrap(s.Sample, 1), s.root.Shade
    text = "descriptor '{}' needs a type, not 'NoneType', as arg 2"
    field, static = vars(s.Sample)["CONSTANT"], vars(shade)["_type_of"]
    assert text_of(TypeError, field.__get__, w) == text.format("CONSTANT")
    assert text_of(TypeError, static.__get__, shade.DARK) == text.format("_type_of")
    assert s.calls() == []
    # What binds an object needs no type, and with an object looks at none.
    for descriptor, thing in [(vars(s.Sample)["echo"], w), (vars(shade)["get_type"], shade.DARK)]:
        for more in ((), (5,)):
            assert descriptor.__get__(thing, *more) == descriptor.__get__(thing, type(thing))


@scene(
    "binding-descriptors.repr.field",
    "binding-descriptors.repr.method-descr",
    "binding-descriptors.repr.method-object-self",
    "binding-descriptors.repr.method-object-no-self",
    "binding-descriptors.doc.present",
    "binding-descriptors.doc.absent",
)
def test_texts(s):
    field, instance, static, mixed, bound = all_kinds(s, s.Sample)
    assert repr(field) == "<attribute 'CONSTANT' of 'kelmor.psd.Sample' objects>"
    for descriptor, name in [
        (instance, "plain_noargs"),
        (static, "static_noargs"),
        (mixed, "echo"),
    ]:
        assert repr(descriptor) == f"<method '{name}' of 'kelmor.psd.Sample' objects>"
    assert repr(bound) == f"<extension method plain_noargs of int object at {hex(id(5))}>"
    unbound = method(s, s.Sample, "plain_oarg")
    assert repr(unbound) == "<extension method plain_oarg of kelmor.psd.Sample objects>"
    docs = [thing.__doc__ for thing in (field, instance, static, mixed, bound, unbound)]
    assert docs == [None, None, None, "of an instance", None, None]


@scene(
    "binding-descriptors.hash.formula",
    "binding-descriptors.hash.equal-objects",
    "binding-descriptors.compare.identity",
    "binding-descriptors.compare.ne",
    "binding-descriptors.compare.not-implemented",
)
def test_method_objects_are_equal_by_self_and_function(s):
    def rotated(word):
        turned = (word >> 4 | word << 60) & 0xFFFFFFFFFFFFFFFF
        return -2 if turned == 0xFFFFFFFFFFFFFFFF else i64(turned)

    me, other = [], []
    a, b, c = [method(s, list, "plain_noargs", me) for _ in range(2)] + [
        method(s, list, "plain_noargs", other)
    ]
    meth = ctypes.c_uint64.from_address(definition(s, "plain_noargs") + 8).value
    assert hash(a) == hash(b) == rotated(id(me)) ^ rotated(meth)
    assert a == b and not a != b and a is not b
    assert me == other and a != c and not a == c
    assert a != method(s, list, "plain_oarg", me)
    raised(TypeError, lambda: a < b)
    assert (a == 5) is False and a.__eq__(5) is NotImplemented
