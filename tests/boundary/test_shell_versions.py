"""The version object, and the rule that a sibling's version has to keep."""

import ctypes
import sys
import types

import pytest
from shell_probe import (
    INT,
    OBJECT,
    POINTER,
    VERSION_TYPE,
    compare_version,
    import_ref_module,
    native,
    raised,
    reference,
    version,
)

behaviour = pytest.mark.behaviour
# From 3.12 on the counts of immortal objects say nothing; all objects counted here are mortal.


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
    # The collector would take the numbers for objects, and so would the end of the object.
    ctypes.pythonapi.PyObject_GC_UnTrack(ctypes.py_object(made))
    ctypes.pythonapi.Py_IncRef(ctypes.py_object(made))
    (ctypes.c_int * 4).from_address(id(made) + 16)[:] = numbers
    return made


@behaviour("shell-versions.native.compare-no-type-check")
def test_the_native_comparison_reads_any_record_of_that_layout():
    made = other_version(1, 2, 3, 4)
    found = [compare_version(reference(1, 2, 3, sub), made) for sub in (3, 4, 5)]
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
