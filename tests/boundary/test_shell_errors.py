"""The chain of errors and the worded ones."""

import ctypes
import gc
import sys

import pytest
from shell_probe import POINTER, kelmor_probe, native, raised

behaviour = pytest.mark.behaviour
CALL = native("call_with_pending", None, *[POINTER] * 8)
KEPT = []  # what native code holds the address of


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


@behaviour("shell-versions.chain.links")
def test_an_exception_that_is_being_handled_stays_out_of_the_chain():
    cause = KeyError("first")
    try:
        raise LookupError("handled meanwhile")
    except LookupError:
        error = after(cause, "PyShlErr_ChainFormat", ValueError, b"text")
    assert error.__cause__ is cause and error.__context__ is cause
    assert cause.__context__ is None


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
    interrupt = KeyboardInterrupt()
    assert after(interrupt, "PyShlErr_ChainOrFormat", ValueError, b"text").__cause__ is interrupt


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
