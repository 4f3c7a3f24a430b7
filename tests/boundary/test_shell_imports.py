"""Types by name, types added to modules, and the test of an argument count."""

import ctypes
import re
import sys
import types

import pytest
from shell_probe import INT, OBJECT, POINTER, SSIZE, TEXT, native, raised

behaviour = pytest.mark.behaviour
# From 3.12 on the counts of immortal objects say nothing; all objects counted here are mortal.


@pytest.fixture
def sibling():
    module = types.ModuleType("sibling")
    sys.modules["sibling"] = module
    yield module
    sys.modules.pop("sibling", None)


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


@behaviour("shell-versions.import-type.found")
def test_a_module_that_is_still_being_filled_is_asked_once_more(sibling):
    def not_at_first(name):
        if not asked:
            asked.append(name)
            raise AttributeError(name)
        return thing

    asked, thing = [], object()
    sibling.__getattr__ = not_at_first
    assert import_type(b"sibling", "thing") is thing
    assert asked == ["thing"]


@pytest.mark.parametrize("kind", [KeyboardInterrupt, ValueError])
def test_what_a_module_raises_when_it_is_asked_is_not_lost(sibling, kind):
    def interrupted(name):
        asked.append(name)
        if len(asked) == 1:
            raise kind("while it was asked")
        return object()

    asked = []
    sibling.__getattr__ = interrupted
    error = raised(import_type, b"sibling", "thing")
    assert type(error) is ImportError and asked == ["thing"]
    assert type(error.__cause__) is kind and error.__context__ is error.__cause__


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


def test_a_module_without_a_name_is_shown_by_a_mark():
    made = static_type(b"home.Homeless")
    module = types.ModuleType("home")
    del module.__name__
    error = raised(add_type, module, ctypes.addressof(made), b"Homeless")
    assert type(error) is ImportError
    assert str(error) == "Type initialization internal error (-1014) <?,Homeless>"
    assert type(error.__cause__) is SystemError and error.__context__ is error.__cause__
    assert not hasattr(module, "Homeless")


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
