"""The version object, the version rule, and the imports and errors around it."""
import ctypes
import gc
import re
import sys
import types

import pytest
from shell_probe import (
    INT,
    OBJECT,
    POINTER,
    TEXT,
    VERSION_TYPE,
    compare_version,
    import_ref_module,
    kelmor_probe,
    native,
    reference,
    version,
)

behaviour = pytest.mark.behaviour
# From 3.12 on the counts of immortal objects say nothing; all objects counted here are mortal.
SSIZE = ctypes.c_ssize_t


def raised(function, *arguments):
    """The exception that a function which gives nothing has raised."""
    with pytest.raises(Exception) as caught:
        function(*arguments)
    return caught.value


def fnv1a(numbers):
    state = 0x811C9DC5
    for byte in b"".join(number.to_bytes(4, "little", signed=True) for number in numbers):
        state = (state ^ byte) * 16777619 % 2**32
    return state - 2**32 if state >= 2**31 else state


# The version object.


@behaviour("shell-versions.type.name")
def test_the_type_has_its_full_name():
    assert (VERSION_TYPE.__module__, VERSION_TYPE.__name__) == ("kelmor.psd", "_ModuleVersionType")


@behaviour("shell-versions.type.no-subclass")
def test_no_class_derives_from_the_type():
    with pytest.raises(TypeError, match="not an acceptable base type"):
        type("Derived", (VERSION_TYPE,), {})
    assert not VERSION_TYPE.__flags__ & (1 << 10)


@behaviour("shell-versions.type.no-constructor")
def test_python_code_cannot_make_one():
    with pytest.raises(TypeError, match=r"cannot create '.*_ModuleVersionType' instances"):
        VERSION_TYPE()


@behaviour("shell-versions.record.layout", "shell-versions.native.create")
def test_the_record_lies_behind_the_head():
    made = version(1, -2, 3, 4, view="the view")
    assert VERSION_TYPE.__basicsize__ == 40
    assert list((ctypes.c_int * 4).from_address(id(made) + 16)) == [1, -2, 3, 4]
    assert OBJECT.from_address(id(made) + 32).value is made.view
    assert type(made) is VERSION_TYPE and made.view == "the view"


@behaviour("shell-versions.slot.dealloc")
def test_the_view_goes_with_the_version():
    made = version(1, 2, 3, 4, view="a view of its own")
    view = made.view
    before = sys.getrefcount(view)
    del made
    assert sys.getrefcount(view) == before - 1


@behaviour("shell-versions.slot.repr")
def test_repr_shows_type_and_view():
    assert (
        repr(version(24, 11, 0, 0, view="24.11.0.0"))
        == "<kelmor.psd._ModuleVersionType: 24.11.0.0>"
    )


@behaviour("shell-versions.slot.str")
def test_str_is_the_very_view():
    made = version(1, 2, 3, 4, view="another view")
    view = made.view
    before = sys.getrefcount(view)
    text = str(made)
    assert text is view
    assert sys.getrefcount(view) == before + 1


@behaviour("shell-versions.hash.algorithm")
@pytest.mark.parametrize(
    "numbers", [(24, 11, 0, 0), (0, 0, 0, 0), (-1, 2, -3, 4), (1 << 20, 255, 256, -(2**31))]
)
def test_the_hash_is_fnv1a_over_sixteen_bytes(numbers):
    assert hash(version(*numbers)) == fnv1a(numbers)


@behaviour("shell-versions.hash.values")
def test_the_hashes_of_the_two_attributes():
    assert hash(version(24, 11, 0, 0)) == -1993982522
    assert hash(version(22, 6, 0, 0)) == -310175499


@behaviour("shell-versions.hash.algorithm")
def test_a_hash_of_minus_one_is_minus_two():
    numbers = (3, 0, 0, 618139235)
    assert fnv1a(numbers) == -1
    assert hash(version(*numbers)) == -2


@behaviour("shell-versions.hash.view-ignored")
def test_the_view_counts_for_nothing():
    left, right = version(1, 2, 3, 4, view="one"), version(1, 2, 3, 4, view="other")
    assert hash(left) == hash(right)
    assert left == right


ASCENDING = [
    (-1, 0, 0, 0),
    (0, 0, 0, 0),
    (1, 2, 3, 4),
    (1, 2, 3, 5),
    (1, 2, 4, 0),
    (1, 3, 0, 0),
    (2, 0, 0, 0),
]


@behaviour("shell-versions.compare.operators")
def test_versions_are_in_the_order_of_their_numbers():
    for i, left in enumerate(ASCENDING):
        for j, right in enumerate(ASCENDING):
            a, b = version(*left), version(*right)
            found = (a < b, a <= b, a == b, a != b, a > b, a >= b)
            assert found == (i < j, i <= j, i == j, i != j, i > j, i >= j), (left, right)


@behaviour("shell-versions.compare.other-type")
def test_other_types_are_not_compared():
    made = version(24, 11, 0, 0)
    assert (made == "24.11.0.0") is False
    assert (made != None) is True  # noqa: E711
    with pytest.raises(TypeError):
        made < (24, 12)
    assert VERSION_TYPE.__lt__(made, (24, 12)) is NotImplemented


@behaviour("shell-versions.compare.unknown-operator")
@pytest.mark.parametrize("operation", [6, -1, 100])
def test_an_unknown_operator_is_not_implemented(operation):
    # tp_richcompare stands 200 bytes into the type object.
    slot = ctypes.c_void_p.from_address(id(VERSION_TYPE) + 200).value
    compare = ctypes.PYFUNCTYPE(OBJECT, OBJECT, OBJECT, INT)(slot)
    made = version(1, 2, 3, 4)
    assert compare(made, made, 2) is True
    assert compare(made, made, operation) is NotImplemented


@behaviour("shell-versions.attributes.kinds")
def test_the_attributes_are_numbers_and_a_text():
    made = version(1, 2, 3, 4)
    assert (made.major, made.minor, made.patch, made.sub) == (1, 2, 3, 4)
    assert {type(made.major), type(made.minor), type(made.patch), type(made.sub)} == {int}
    assert type(made.view) is str


@behaviour("shell-versions.attributes.read-only")
@pytest.mark.parametrize("name", ["major", "minor", "patch", "sub", "view"])
def test_the_attributes_are_read_only(name):
    made = version(1, 2, 3, 4)
    with pytest.raises(AttributeError):
        setattr(made, name, 5)
    with pytest.raises(AttributeError):
        delattr(made, name)


@behaviour("shell-versions.attributes.no-doc")
def test_the_attributes_have_no_documentation():
    descriptors = {
        name: value
        for name, value in vars(VERSION_TYPE).items()
        if isinstance(value, types.GetSetDescriptorType)
    }
    assert list(descriptors) == ["major", "minor", "patch", "sub", "view"]
    assert {value.__doc__ for value in descriptors.values()} == {None}
    assert not any(isinstance(v, types.MemberDescriptorType) for v in vars(VERSION_TYPE).values())


@behaviour("shell-versions.native.compare")
def test_the_native_comparison_gives_the_sign():
    for i, left in enumerate(ASCENDING):
        for j, right in enumerate(ASCENDING):
            assert compare_version(reference(*left), version(*right)) == (i > j) - (i < j)


def other_version(*numbers):
    class Other:
        __slots__ = ("first", "second", "view")

    made = Other()
    made.view = "other"
    (ctypes.c_int * 4).from_address(id(made) + 16)[:] = numbers
    return made


@behaviour("shell-versions.native.compare-no-type-check")
def test_the_native_comparison_reads_any_record_of_that_layout():
    made = other_version(1, 2, 3, 4)
    found = [compare_version(reference(1, 2, 3, sub), made) for sub in (3, 4, 5)]
    (ctypes.c_int * 4).from_address(id(made) + 16)[:] = (0, 0, 0, 0)  # empty slots again
    assert found == [-1, 0, 1]


@behaviour("shell-versions.native.get-view")
def test_the_view_is_lent():
    made = version(1, 2, 3, 4, view="lent")
    view = made.view
    before = sys.getrefcount(view)
    assert native("PyShVersionAttr_GetView", POINTER, OBJECT)(made) == id(view)
    assert sys.getrefcount(view) == before


# The version rule.

FOREWORD = "Unable to import module dependencies. Cannot import the sibling module. "


@pytest.fixture
def sibling():
    module = types.ModuleType("sibling")
    sys.modules["sibling"] = module
    yield module
    sys.modules.pop("sibling", None)


def put(module, found=None, threshold=None):
    if found:
        module.VERSION = version(*found)
    if threshold:
        module._BACKWARD_COMPATIBILITY_THRESHOLD = version(*threshold)


def import_sibling(*numbers):
    return import_ref_module(b"the.importer", b"sibling", reference(*numbers or (24, 5, 3, 0)))


@behaviour("shell-versions.import-ref.accepts")
def test_a_version_between_threshold_and_found_is_accepted(sibling):
    put(sibling, (24, 11, 0, 0), (22, 6, 0, 0))
    before = sys.getrefcount(sibling)
    found = import_sibling()
    assert found is sibling
    assert sys.getrefcount(sibling) == before + 1


@behaviour("shell-versions.import-ref.equal")
@pytest.mark.parametrize("threshold", [(24, 5, 3, 0), (24, 5, 2, 9), (0, 0, 0, 0)])
def test_equal_versions_are_accepted(sibling, threshold):
    put(sibling, (24, 5, 3, 0), threshold)
    assert import_sibling() is sibling


@behaviour("shell-versions.import-ref.not-importable")
def test_a_module_that_cannot_be_imported_chains_the_reason():
    sys.modules["sibling"] = None
    try:
        error = raised(import_sibling)
    finally:
        del sys.modules["sibling"]
    assert type(error) is ImportError
    assert str(error) == (
        FOREWORD + "The module not found or errors occurred while initializing it."
    )
    assert type(error.__cause__) is ModuleNotFoundError
    assert error.__cause__ is error.__context__


def refused(text):
    error = raised(import_sibling)
    assert type(error) is ImportError
    assert str(error) == FOREWORD + text
    return error


NO_VERSION = (
    "The sibling module found does not have 'VERSION' attribute to check version compatibility."
)
NO_THRESHOLD = (
    "The sibling module found does not have 'BACKWARD_COMPATIBILITY_THRESHOLD' attribute to check "
    "version compatibility."
)
LOWER = (
    "The sibling module found has a version ('24.5.2.9') that is lower than the referenced version "
    "of that module ('24.5.3.0')."
)
NOT_COMPATIBLE = (
    "The installed version of the module ('24.11.0.0') is not compatible with the referenced "
    "vesion of the module ('24.5.3.0'). The installed version of the module is not compatible with "
    "the module versions < '24.6.0.0'. Update dendend module 'the.importer' to a latest version."
)


@behaviour("shell-versions.import-ref.no-version")
def test_a_module_without_version_is_refused(sibling):
    put(sibling, threshold=(22, 6, 0, 0))
    refused(NO_VERSION)


@behaviour("shell-versions.import-ref.lower")
def test_a_module_that_is_too_old_is_refused(sibling):
    put(sibling, (24, 5, 2, 9), (22, 6, 0, 0))
    refused(LOWER)


@behaviour("shell-versions.import-ref.no-threshold")
def test_a_module_without_threshold_is_refused(sibling):
    put(sibling, (24, 5, 3, 0))
    refused(NO_THRESHOLD)


@behaviour("shell-versions.import-ref.not-compatible")
def test_a_module_that_is_too_new_is_refused(sibling):
    put(sibling, (24, 11, 0, 0), (24, 6, 0, 0))
    refused(NOT_COMPATIBLE)


@behaviour("shell-versions.import-ref.order-of-checks")
def test_the_version_is_judged_before_the_threshold_is_asked_for(sibling):
    put(sibling, (24, 5, 2, 9))
    refused(LOWER)


@behaviour("shell-versions.import-ref.unchained")
@pytest.mark.parametrize(
    ("found", "threshold", "text"),
    [
        (None, None, NO_VERSION),
        ((24, 5, 2, 9), None, LOWER),
        ((24, 5, 3, 0), None, NO_THRESHOLD),
        ((24, 11, 0, 0), (24, 6, 0, 0), NOT_COMPATIBLE),
    ],
)
def test_a_verdict_on_a_version_stands_alone(sibling, found, threshold, text):
    put(sibling, found, threshold)
    error = refused(text)
    assert error.__cause__ is None and error.__context__ is None


@behaviour("shell-versions.import-ref.view-text")
def test_the_texts_show_the_views_of_what_was_found(sibling):
    sibling.VERSION = version(1, 0, 0, 0, view="first view")
    assert "('first view')" in str(raised(import_sibling))
    sibling.VERSION = version(25, 0, 0, 0, view="second view")
    sibling._BACKWARD_COMPATIBILITY_THRESHOLD = version(24, 9, 9, 9, view="third view")
    error = str(raised(import_sibling))
    assert "module ('second view') is not" in error
    assert "('24.5.3.0')" in error
    assert "< 'third view'" in error


@behaviour("shell-versions.import-ref.releases")
@pytest.mark.parametrize(
    ("found", "threshold"),
    [
        ((24, 11, 0, 0), (22, 6, 0, 0)),
        ((24, 5, 2, 9), (22, 6, 0, 0)),
        ((24, 11, 0, 0), None),
        ((24, 11, 0, 0), (24, 6, 0, 0)),
        (None, (22, 6, 0, 0)),
    ],
)
def test_nothing_of_a_check_is_kept(sibling, found, threshold):
    put(sibling, found, threshold)
    held = [sibling, *(vars(sibling)[n] for n in vars(sibling) if "VERSION" in n or "_BACK" in n)]
    before = [sys.getrefcount(item) for item in held]
    for _ in range(3):
        try:
            import_sibling()
        except ImportError:
            pass
    assert [sys.getrefcount(item) for item in held] == before


# Types by name.

import_type = native("PyShImport_ImportType", OBJECT, TEXT, OBJECT)
import_type_ex = native("PyShImport_ImportTypeEx", OBJECT, TEXT, OBJECT)


def import_nested(module, count, *names):
    function = native("PyShImport_ImportTypeExV", OBJECT, TEXT, INT, *[OBJECT] * len(names))
    return function(module.encode(), count, *names)


@behaviour("shell-versions.import-type.found")
@pytest.mark.parametrize("value", [object(), type("SomeType", (), {}), bytearray(b"x")])
def test_an_attribute_of_any_kind_is_imported(sibling, value):
    sibling.thing = value
    before = sys.getrefcount(value)
    found = import_type(b"sibling", "thing")
    assert found is value
    assert sys.getrefcount(value) == before + 1


ALL_FORMS = [
    pytest.param(import_type, id="any"),
    pytest.param(import_type_ex, id="type"),
    pytest.param(lambda module, name: import_nested(module.decode(), 2, name, "X"), id="nested"),
]


@behaviour("shell-versions.import-type.no-module")
@pytest.mark.parametrize("function", ALL_FORMS)
def test_a_type_of_no_module_chains_the_reason(function):
    error = raised(function, b"no_such_module", "thing")
    assert type(error) is ImportError
    assert str(error) == (
        "Unable to import the specified module no_such_module. The module not found or errors "
        "occurred while initializing it."
    )
    assert type(error.__cause__) is ModuleNotFoundError and error.__context__ is error.__cause__


@behaviour("shell-versions.import-type.no-attribute")
@pytest.mark.parametrize("function", ALL_FORMS)
def test_a_missing_type_chains_the_reason(sibling, function):
    error = raised(function, b"sibling", "thing")
    assert type(error) is ImportError
    assert str(error) == (
        "Unable to import the specified type thing from the module sibling. The type not found or "
        "errors occurred while initializing it."
    )
    assert type(error.__cause__) is AttributeError and error.__context__ is error.__cause__


@behaviour("shell-versions.import-type-ex.type")
def test_a_type_may_be_an_instance_of_any_metaclass(sibling):
    made = sibling.thing = type("Meta", (type,), {})("Made", (), {})
    before = sys.getrefcount(made)
    found = import_type_ex(b"sibling", "thing")
    assert found is made
    assert sys.getrefcount(made) == before + 1


@behaviour("shell-versions.import-type-ex.not-a-type")
def test_what_is_no_type_is_refused(sibling):
    class Thing:
        pass

    thing = sibling.thing = Thing()
    before = sys.getrefcount(thing)
    error = raised(import_type_ex, b"sibling", "thing")
    assert type(error) is TypeError
    assert str(error) == "Attribute must be type object, not 'Thing'"
    assert sys.getrefcount(thing) == before


@pytest.fixture
def nested(sibling):
    class Outer:
        class Middle:
            class Inner:
                pass

            number = 5

    sibling.Outer = Outer
    return Outer


@behaviour("shell-versions.import-type-exv.nested")
def test_nested_types_are_followed(nested):
    inner = nested.Middle.Inner
    before = sys.getrefcount(inner)
    found = import_nested("sibling", 3, "Outer", "Middle", "Inner")
    assert found is inner
    assert sys.getrefcount(inner) == before + 1
    assert import_nested("sibling", 2, "Outer", "Middle", "Inner") is nested.Middle


@behaviour("shell-versions.import-type-exv.short")
@pytest.mark.parametrize("count", [1, 0, -1, -5])
def test_a_short_count_stops_at_the_first_name(nested, count):
    assert import_nested("sibling", count, "Outer", "Middle") is nested


@behaviour("shell-versions.import-type-exv.missing")
def test_a_missing_nested_type_chains_the_reason(nested):
    error = raised(import_nested, "sibling", 3, "Outer", "Middle", "Nobody")
    assert type(error) is ImportError
    assert str(error) == "Middle does not contain nested type Nobody"
    assert type(error.__cause__) is AttributeError and error.__context__ is error.__cause__


@behaviour("shell-versions.import-type-exv.not-a-type")
def test_a_nested_attribute_must_be_a_type(nested):
    error = raised(import_nested, "sibling", 3, "Outer", "Middle", "number")
    assert type(error) is TypeError
    assert str(error) == "Attribute must be type object, not 'int'"


# Adding a type.

add_type = native("PyShModule_AddType", INT, OBJECT, POINTER, TEXT)


class StaticType(ctypes.Structure):
    """The head of a PyTypeObject, in memory of its own; what is not named is zero."""

    _fields_ = [
        ("count", ctypes.c_ssize_t),
        ("type", ctypes.c_void_p),
        ("size", ctypes.c_ssize_t),
        ("name", ctypes.c_char_p),
        ("basicsize", ctypes.c_ssize_t),
        ("until_doc", ctypes.c_char * (176 - 40)),
        ("doc", ctypes.c_char_p),
        ("rest", ctypes.c_char * 512),
    ]


KEPT = []  # static types live as long as the process


def static_type(name, doc=None):
    made = StaticType(count=1, name=name, basicsize=16, doc=doc)
    KEPT.append(made)
    return made


@behaviour("shell-versions.add-type.success")
def test_a_type_is_readied_and_added():
    module = types.ModuleType("home")
    made = static_type(b"home.Plain")
    assert add_type(module, ctypes.addressof(made), b"Plain") == 0
    assert module.Plain.__name__ == "Plain" and id(module.Plain) == ctypes.addressof(made)
    assert made.count >= 2
    assert module.Plain.__mro__ == (module.Plain, object)


@behaviour("shell-versions.add-type.not-ready")
def test_a_type_that_cannot_be_readied_is_told_by_its_name():
    module = types.ModuleType("home")
    made = static_type(b"home.Broken", doc=b"\xff")  # no text
    error = raised(add_type, module, ctypes.addressof(made), b"Broken")
    assert type(error) is ImportError
    assert str(error) == "Type initialization internal error (-1015) <home.Broken>"
    assert type(error.__cause__) is UnicodeDecodeError and error.__context__ is error.__cause__
    assert not hasattr(module, "Broken")


@behaviour("shell-versions.add-type.not-added")
def test_a_type_that_cannot_be_added_is_released():
    made = static_type(b"home.Unwanted")
    module = types.ModuleType("home")
    add_type(module, ctypes.addressof(made), b"Unwanted")
    unwanted = module.Unwanted
    before = sys.getrefcount(unwanted)
    # Bytes that are no text cannot be a name.
    error = raised(add_type, module, ctypes.addressof(made), b"\xff")
    assert type(error) is ImportError
    assert str(error) == "Type initialization internal error (-1014) <home,\ufffd>"
    assert type(error.__cause__) is UnicodeDecodeError and error.__context__ is error.__cause__
    assert sys.getrefcount(unwanted) == before


# The count of positional arguments.

check_count = native("fn_check_args_count_out_of_range", ctypes.c_bool, SSIZE, TEXT, SSIZE, SSIZE)


@behaviour("shell-versions.args-count.inside")
@pytest.mark.parametrize(("count", "low", "high"), [(0, 0, 1), (1, 0, 1), (2, 2, 2), (3, 2, 9)])
def test_a_count_within_the_bounds_passes(count, low, high):
    assert check_count(count, b"f", low, high) is False


@pytest.mark.parametrize(
    ("count", "function", "low", "high", "text"),
    [
        pytest.param(
            3,
            b"pop",
            0,
            1,
            "pop() takes at most 1 argument (3 given)",
            marks=behaviour("shell-versions.args-count.at-most"),
        ),
        pytest.param(
            4,
            b"f",
            2,
            3,
            "f() takes at most 3 arguments (4 given)",
            marks=behaviour("shell-versions.args-count.plural"),
        ),
        pytest.param(
            1,
            b"f",
            2,
            3,
            "f() takes at least 2 arguments (1 given)",
            marks=behaviour("shell-versions.args-count.at-least"),
        ),
        pytest.param(
            0,
            b"f",
            1,
            3,
            "f() takes at least 1 argument (0 given)",
            marks=behaviour("shell-versions.args-count.plural"),
        ),
        pytest.param(
            0,
            b"f",
            1,
            1,
            "f() takes exactly 1 argument (0 given)",
            marks=behaviour("shell-versions.args-count.exactly"),
        ),
        pytest.param(
            2,
            b"f",
            1,
            1,
            "f() takes exactly 1 argument (2 given)",
            marks=behaviour("shell-versions.args-count.exactly"),
        ),
        pytest.param(
            2,
            b"f",
            0,
            0,
            "f() takes exactly 0 arguments (2 given)",
            marks=behaviour(
                "shell-versions.args-count.exactly", "shell-versions.args-count.plural"
            ),
        ),
        pytest.param(
            3,
            None,
            0,
            1,
            "function takes at most 1 argument (3 given)",
            marks=behaviour("shell-versions.args-count.no-function"),
        ),
        pytest.param(
            3,
            b"n" * 151,
            0,
            1,
            "n" * 150 + "() takes at most 1 argument (3 given)",
            marks=behaviour("shell-versions.args-count.long-name"),
        ),
    ],
)
def test_a_count_outside_is_told(count, function, low, high, text):
    with pytest.raises(TypeError, match="^" + re.escape(text) + "$"):
        check_count(count, function, low, high)


# The chain of errors.

CALL = native("call_with_pending", None, *[POINTER] * 8)


def address(value):
    """What a native function is given for a Python value; a tuple of ints is such an array."""
    if isinstance(value, (int, type(None))):
        return value
    if isinstance(value, bytes):
        KEPT.append(ctypes.create_string_buffer(value))
        return ctypes.addressof(KEPT[-1])
    return id(value)


def after(pending, function, *arguments):
    """What is pending after a call during which `pending` was: an exception, or (type, value)."""
    kind, value = pending if isinstance(pending, tuple) else (type(pending), pending)
    traceback = getattr(value, "__traceback__", None)
    parts = (None, None, None) if pending is None else (kind, value, traceback)
    numbers = [None if part is None else id(part) for part in parts]
    words = [address(argument) for argument in arguments] + [0] * (4 - len(arguments))
    return raised(CALL, *numbers, kelmor_probe.address(function), *words)


def thrown(error):
    """The exception with a traceback of its own."""
    try:
        raise error
    except type(error) as caught:
        return caught


@behaviour("shell-versions.chain.links")
def test_the_pending_exception_becomes_cause_and_context():
    cause = KeyError("first")
    error = after(cause, "PyShlErr_ChainFormat", ValueError, b"text %s and %i", b"words", 7)
    assert type(error) is ValueError and str(error) == "text words and 7"
    assert error.__cause__ is cause and error.__context__ is cause


@behaviour("shell-versions.chain.traceback")
def test_the_traceback_of_the_cause_is_kept():
    cause = thrown(KeyError("first"))
    traceback = cause.__traceback__
    number = id(traceback)
    # The pending traceback is set apart from the value, as native code leaves it.
    cause.__traceback__ = None
    with pytest.raises(ValueError) as caught:
        CALL(
            id(KeyError),
            id(cause),
            number,
            kelmor_probe.address("PyShlErr_ChainFormat"),
            id(ValueError),
            address(b"text"),
            0,
            0,
        )
    assert caught.value.__cause__ is cause
    assert cause.__traceback__ is traceback
    without = after(KeyError("first"), "PyShlErr_ChainFormat", ValueError, b"text")
    assert without.__cause__.__traceback__ is None


@behaviour("shell-versions.chain.normalised")
def test_a_pending_type_and_text_become_an_instance():
    error = after((KeyError, "a text"), "PyShlErr_ChainFormat", ValueError, b"text")
    assert type(error.__cause__) is KeyError and error.__cause__.args == ("a text",)


@behaviour("shell-versions.chain.one-pending")
def test_chaining_leaks_nothing():
    class Cause(Exception):
        pass

    cause = thrown(Cause("first"))
    traceback = cause.__traceback__
    held = [cause, traceback, Cause]
    after(cause, "PyShlErr_ChainFormat", ValueError, b"text")
    gc.collect()
    before = [sys.getrefcount(item) for item in held]
    for _ in range(5):
        after(cause, "PyShlErr_ChainFormat", ValueError, b"text")
    gc.collect()
    assert [sys.getrefcount(item) for item in held] == before


@behaviour("shell-versions.chain.repeated")
def test_chains_grow_by_one_each_time():
    first = KeyError("first")
    second = after(first, "PyShlErr_ChainFormat", ValueError, b"second")
    third = after(second, "PyShlErr_ChainFormat", TypeError, b"third")
    assert third.__cause__ is second and second.__cause__ is first
    assert third.__context__ is second and second.__context__ is first


@behaviour("shell-versions.chain.or-format")
def test_without_a_pending_exception_the_text_stands_alone():
    alone = after(None, "PyShlErr_ChainOrFormat", ValueError, b"text %i", 5)
    assert (type(alone), str(alone)) == (ValueError, "text 5")
    assert alone.__cause__ is None and alone.__context__ is None
    cause = KeyError("first")
    chained = after(cause, "PyShlErr_ChainOrFormat", ValueError, b"text %i", 5)
    assert str(chained) == "text 5"
    assert chained.__cause__ is cause and chained.__context__ is cause


WORDED = [
    pytest.param(
        "PyShlErr_ModulePyInitError",
        (b"a.module", -1009),
        "One or more errors occurred while loading the module 'a.module' (-1009)",
        marks=behaviour("shell-versions.text.module-pyinit"),
    ),
    pytest.param(
        "PyShlErr_DependencyImportError",
        (b"a.module",),
        "Unable to import module dependencies. Cannot import the a.module module. The module not "
        "found or errors occurred while initializing it.",
        marks=behaviour("shell-versions.text.dependency"),
    ),
    pytest.param(
        "PyShlErr_UnableToImportModule",
        (b"a.module",),
        "Unable to import the specified module a.module. The module not found or errors occurred "
        "while initializing it.",
        marks=behaviour("shell-versions.text.unable-module"),
    ),
    pytest.param(
        "PyShlErr_UnableToImportType",
        ("AType", b"a.module"),
        "Unable to import the specified type AType from the module a.module. The type not found or "
        "errors occurred while initializing it.",
        marks=behaviour("shell-versions.text.unable-type"),
    ),
    pytest.param(
        "PyShlErr_UnableToImportNestedType",
        (b"Outer", "Inner"),
        "Outer does not contain nested type Inner",
        marks=behaviour("shell-versions.text.nested-type"),
    ),
    pytest.param(
        "PyShlErr_CapsuleImportError",
        (b"a.capsule",),
        "can't import capsule 'a.capsule'",
        marks=behaviour("shell-versions.text.capsule"),
    ),
    pytest.param(
        "module_internal_error_0",
        (-1010,),
        "Module initialization internal error (-1010)",
        marks=behaviour("shell-versions.text.module-internal"),
    ),
    pytest.param(
        "module_internal_error_1",
        (-1003, b"a.module"),
        "Module initialization internal error (-1003) <a.module>",
        marks=behaviour("shell-versions.text.module-internal"),
    ),
    pytest.param(
        "module_internal_error_2",
        (-1002, b"a.module", b"child"),
        "Module initialization internal error (-1002) <a.module,child>",
        marks=behaviour("shell-versions.text.module-internal"),
    ),
    pytest.param(
        "type_internal_error_1",
        (-1015, b"a.module.Type"),
        "Type initialization internal error (-1015) <a.module.Type>",
        marks=behaviour("shell-versions.text.type-internal"),
    ),
    pytest.param(
        "type_internal_error_2",
        (-1014, b"a.module", b"Type"),
        "Type initialization internal error (-1014) <a.module,Type>",
        marks=behaviour("shell-versions.text.type-internal"),
    ),
]


@behaviour("shell-versions.worded.form")
@pytest.mark.parametrize(("function", "arguments", "text"), WORDED)
def test_a_worded_error_chains_when_there_is_something_to_chain_on(function, arguments, text):
    alone = after(None, function, *arguments)
    assert (type(alone), str(alone)) == (ImportError, text)
    assert alone.__cause__ is None and alone.__context__ is None
    cause = KeyError("first")
    chained = after(cause, function, *arguments)
    assert (type(chained), str(chained)) == (ImportError, text)
    assert chained.__cause__ is cause and chained.__context__ is cause


@behaviour("shell-versions.text.enum-type")
def test_an_enumeration_that_is_not_initialised_is_told_on_its_reason():
    error = after(None, "PyShlErr_EnumTypeInitialization", b"the reason", b"AnEnum")
    assert (type(error), str(error)) == (ImportError, "enum type 'AnEnum' is not initialized")
    assert type(error.__cause__) is TypeError and str(error.__cause__) == "the reason"
    assert error.__context__ is error.__cause__
