"""The bridge of exceptions: managed ones to Python, Python's as text to managed code."""

import contextlib
import ctypes
import gc
import pathlib
import sys
import traceback
import types
import weakref

import pytest
from marshal_probe import (
    INT,
    OBJECT,
    POINTER,
    PyStringArg,
    address,
    identity,
    native,
    said,
    text_of,
    units,
)

behaviour = pytest.mark.behaviour

# Managed to Python.

_on_clr_exception = native("on_clr_exception", None, POINTER, POINTER)


def owned(value):
    """The address of an object with a reference of its own; null for None."""
    if value is None:
        return None
    ctypes.pythonapi.Py_IncRef(OBJECT(value))
    return identity(value)


def raised_by(type_name, message):
    with pytest.raises(Exception) as caught:
        _on_clr_exception(owned(type_name), owned(message))
    return caught.value


@pytest.mark.parametrize(
    ("type_name", "message", "text"),
    [
        pytest.param(
            "System.IO.IOException",
            "disk full",
            "Proxy error(System.IO.IOException): disk full",
            marks=behaviour("marshal-exceptions.to-python.text"),
        ),
        pytest.param(
            "X€",
            "\U0001f600 %s",
            "Proxy error(X€): \U0001f600 %s",
            marks=behaviour("marshal-exceptions.to-python.text"),
        ),
        pytest.param(
            "X",
            None,
            "Proxy error(X): <unknown>",
            marks=behaviour("marshal-exceptions.to-python.null-message"),
        ),
        pytest.param(
            None,
            "m",
            "Proxy error(<unknown>): m",
            marks=behaviour("marshal-exceptions.to-python.null-type"),
        ),
        pytest.param(
            None,
            None,
            "Proxy error(<unknown>): <unknown>",
            marks=behaviour("marshal-exceptions.to-python.null-type"),
        ),
    ],
)
@behaviour("marshal-exceptions.to-python.one-class")
def test_a_managed_exception_is_a_runtime_error(type_name, message, text):
    error = raised_by(type_name, message)
    assert type(error) is RuntimeError
    assert str(error) == text


@behaviour("marshal-exceptions.to-python.drops-references")
def test_the_texts_of_a_managed_exception_are_given_back():
    type_name, message = "".join(["System", ".Exception"]), "".join(["a ", "message"])
    before = sys.getrefcount(type_name), sys.getrefcount(message)
    for _ in range(1000):
        raised_by(type_name, message)
        raised_by(type_name, None)
        raised_by(None, message)
    gc.collect()
    assert (sys.getrefcount(type_name), sys.getrefcount(message)) == before


# Python to managed.

_raise_and_catch = native("raise_and_catch", OBJECT, POINTER, POINTER, POINTER, POINTER, POINTER)
drop = ctypes.PYFUNCTYPE(None, POINTER)(("Py_DecRef", ctypes.pythonapi))
UNTOUCHED = 0x5555


class Caught:
    """What the bridge made of a raised error."""

    def __init__(self, kind, value=None, trace=None):
        owner, record = ctypes.c_void_p(UNTOUCHED), PyStringArg(7, 7, UNTOUCHED)
        parts = [None if part is None else identity(part) for part in (kind, value, trace)]
        with reporting():
            self.result, self.pending = _raise_and_catch(
                *parts, ctypes.addressof(owner), ctypes.addressof(record)
            )
        self.char_size = record.char_size
        self.text = None
        self.state = owner.value, record.length, record.char_size, record.data
        if self.result == 0:
            self.text = text_of(record)
            self.owner_references = ctypes.c_ssize_t.from_address(owner.value).value
            drop(owner.value)


def caught_from(error, with_traceback=True):
    """The bridge over an exception object, raised in Python."""
    try:
        raise error
    except BaseException as raised:
        trace = raised.__traceback__ if with_traceback else None
        raised.__traceback__ = trace
        return Caught(type(raised), raised, trace)


REPORTS = []


@contextlib.contextmanager
def reporting():
    """Collects what is reported as unraisable. pytest has a hook of its own during each test."""
    before = sys.unraisablehook
    sys.unraisablehook = lambda report: REPORTS.append((report.object, report.exc_value))
    try:
        yield
    finally:
        sys.unraisablehook = before


@pytest.fixture
def reports():
    """What is reported as unraisable: (object, exception)."""
    REPORTS.clear()
    yield REPORTS
    REPORTS.clear()


@pytest.fixture
def no_traceback_module(monkeypatch):
    monkeypatch.setitem(sys.modules, "traceback", None)


@pytest.fixture
def stub_traceback(monkeypatch):
    def install(**functions):
        stub = types.ModuleType("traceback")
        vars(stub).update(functions)
        monkeypatch.setitem(sys.modules, "traceback", stub)

    return install


LABEL = "FormatCallbackException"


@behaviour("marshal-exceptions.to-clr.nothing-pending")
def test_nothing_pending_is_nothing_to_tell():
    caught = Caught(None)
    assert caught.result == -1
    assert caught.state == (UNTOUCHED, 7, 7, UNTOUCHED)


@behaviour("marshal-exceptions.to-clr.full-with-traceback")
def test_an_error_with_a_traceback_is_told_in_full(reports):
    error = ValueError("boom")
    caught = caught_from(error)
    assert caught.result == 0
    expected = traceback.format_exception(type(error), error, error.__traceback__)
    assert caught.text == "".join(expected)
    assert caught.text.startswith("Traceback (most recent call last):\n")
    assert caught.text.endswith("ValueError: boom\n") and "in caught_from" in caught.text
    assert reports == []


@behaviour("marshal-exceptions.to-clr.full-without-traceback")
def test_an_error_without_a_traceback_is_told_alone():
    assert Caught(ValueError, ValueError("boom")).text == "ValueError: boom\n"


@behaviour("marshal-exceptions.to-clr.no-value")
def test_an_error_without_a_value_is_told():
    assert Caught(ValueError).text == "ValueError\n"


@behaviour("marshal-exceptions.to-clr.normalised")
def test_an_error_is_normalised_first(stub_traceback):
    seen = []
    stub_traceback(format_exception_only=lambda *parts: seen.append(parts) or ["told"])
    assert Caught(ValueError, "boom").text == "told"
    ((kind, value),) = seen
    assert kind is ValueError and type(value) is ValueError and value.args == ("boom",)


@behaviour("marshal-exceptions.to-clr.traceback-imported-by-name")
def test_the_module_is_imported_each_time(stub_traceback):
    calls = []

    def teller(name):
        return lambda *parts, **named: calls.append((name, parts, named)) or ["one, ", name, "."]

    stub_traceback(
        format_exception=teller("format_exception"),
        format_exception_only=teller("format_exception_only"),
    )
    error = ValueError("boom")
    with_trace = caught_from(error)
    trace = error.__traceback__
    assert with_trace.text == "one, format_exception."
    assert caught_from(error, with_traceback=False).text == "one, format_exception_only."
    assert calls == [
        ("format_exception", (ValueError, error, trace), {}),
        ("format_exception_only", (ValueError, error), {}),
    ]
    stub_traceback(format_exception_only=lambda *parts: ["another"])
    assert caught_from(error, with_traceback=False).text == "another"


@behaviour("marshal-exceptions.to-clr.owner")
def test_the_caller_owns_the_text(stub_traceback):
    text = "".join(["a text", " of the test"])
    stub_traceback(format_exception_only=lambda *parts: [text])
    before = sys.getrefcount(text)
    owner, record = ctypes.c_void_p(), PyStringArg()
    _raise_and_catch(
        identity(ValueError), None, None, ctypes.addressof(owner), ctypes.addressof(record)
    )
    # One piece joined is that piece itself.
    assert owner.value == identity(text)
    assert sys.getrefcount(text) == before + 1
    drop(owner.value)
    assert sys.getrefcount(text) == before
    assert caught_from(KeyError("x")).owner_references == 1


@behaviour("marshal-exceptions.to-clr.text-record")
@pytest.mark.parametrize(("message", "size"), [("boom", 1), ("é", 1), ("€", 2), ("\U0001f600", 4)])
def test_the_text_is_lent_in_its_own_width(message, size):
    caught = Caught(ValueError, ValueError(message))
    assert (caught.char_size, caught.text) == (size, f"ValueError: {message}\n")


class Weakly(Exception):
    pass


@behaviour("marshal-exceptions.to-clr.references-dropped")
def test_the_exception_is_let_go():
    for with_traceback in (True, False):
        error = Weakly("x")
        seen = weakref.ref(error)
        caught_from(error, with_traceback)
        del error
        gc.collect()
        assert seen() is None


# Without the full form.


@behaviour("marshal-exceptions.fallback.import-fails")
def test_without_the_module_class_and_value_are_told(no_traceback_module, reports):
    caught = Caught(ValueError, ValueError("boom"))
    assert (caught.result, caught.text) == (0, "ValueError: boom")


def reported(reports):
    """The one report, as (class, text) of its exception."""
    ((where, error),) = reports
    assert where == LABEL
    return said(error)


@behaviour("marshal-exceptions.fallback.unraisable-report")
def test_the_failed_import_is_reported(no_traceback_module, reports):
    assert Caught(ValueError, ValueError("boom")).result == 0
    assert reported(reports)[0] is ModuleNotFoundError


@behaviour("marshal-exceptions.fallback.import-fails-silently")
def test_an_import_that_fails_without_a_word_gets_one(reports):
    stub = (ctypes.c_size_t * 2).from_address(address("stub_import_module"))
    stub[:] = [1, 0]
    try:
        caught = Caught(ValueError, ValueError("boom"))
    finally:
        stub[:] = [0, 0]
    assert (caught.result, caught.text) == (0, "ValueError: boom")
    assert reported(reports) == (
        ImportError,
        "Unable to import the specified module traceback. "
        "The module not found or errors occurred while initializing it.",
    )


@behaviour("marshal-exceptions.fallback.attribute-missing")
def test_a_module_without_the_function_is_reported(stub_traceback, reports):
    stub_traceback()
    assert caught_from(ValueError("boom")).text == "ValueError: boom"
    kind, text = reported(reports)
    assert kind is AttributeError and "format_exception" in text


@behaviour("marshal-exceptions.fallback.attribute-not-callable")
def test_what_cannot_be_called_is_passed_over(stub_traceback, reports):
    stub_traceback(format_exception=5)
    caught = caught_from(ValueError("boom"))
    assert (caught.result, caught.text, caught.pending) == (0, "ValueError: boom", 0)
    assert reports == []


def failing(*parts):
    raise ZeroDivisionError("no text")


@behaviour("marshal-exceptions.fallback.call-fails")
@pytest.mark.parametrize(
    ("function", "error"),
    [
        (failing, ZeroDivisionError),
        (lambda *parts: [1, 2], TypeError),
        (lambda *parts: None, TypeError),
    ],
    ids=["raises", "numbers", "none"],
)
def test_a_call_that_fails_is_reported(stub_traceback, reports, function, error):
    stub_traceback(format_exception=function)
    caught = caught_from(ValueError("boom"))
    assert (caught.result, caught.text) == (0, "ValueError: boom")
    assert reported(reports)[0] is error


class Outer:
    class Inner(Exception):
        pass


@behaviour("marshal-exceptions.fallback.qualname")
def test_the_class_is_told_by_its_qualified_name(no_traceback_module, reports):
    assert Caught(Outer.Inner, Outer.Inner("boom")).text == "Outer.Inner: boom"


class Nameless(type):
    def __getattribute__(cls, name):
        return 5 if name == "__qualname__" else super().__getattribute__(name)


class Speechless(Nameless):
    def __str__(cls):
        raise ZeroDivisionError("no name")

    __repr__ = __str__


E = Nameless("E", (Exception,), {"__module__": "mod"})
S = Speechless("S", (Exception,), {"__module__": "mod"})


@behaviour("marshal-exceptions.fallback.qualname-not-str")
def test_a_class_with_an_odd_name_is_told_as_text(no_traceback_module, reports):
    assert Caught(E, E("boom")).text == "<class 'mod.E'>: boom"


@behaviour("marshal-exceptions.fallback.class-str-fails")
def test_a_class_without_a_text_gives_none(no_traceback_module, reports):
    caught = Caught(S, S("boom"))
    assert (caught.result, caught.pending) == (-1, 0)
    assert caught.state == (UNTOUCHED, 7, 7, UNTOUCHED)
    assert reported(reports) == (ZeroDivisionError, "no name")


class Mute(Exception):
    def __str__(self):
        raise ZeroDivisionError("no words")


@behaviour("marshal-exceptions.fallback.value-str-fails")
def test_a_value_without_a_text_is_left_out(no_traceback_module, reports):
    caught = Caught(Mute, Mute("boom"))
    assert (caught.result, caught.text) == (0, "Mute:")
    assert reported(reports) == (ZeroDivisionError, "no words")
    reports.clear()
    assert caught_from(Mute()).text == "Mute:"
    assert reported(reports) == (ZeroDivisionError, "no words")


@behaviour("marshal-exceptions.fallback.traceback-not-shown")
def test_an_ordinary_traceback_is_left_out(no_traceback_module, reports):
    assert caught_from(ValueError("boom")).text == "ValueError: boom"


_describe = native("fn_describe_py_error", INT, POINTER, POINTER, POINTER, POINTER, POINTER)


def described(kind, value, trace):
    """The bridge over parts that the interpreter would not let stand so."""
    owner, record = ctypes.c_void_p(UNTOUCHED), PyStringArg()
    parts = [None if part is None else identity(part) for part in (kind, value, trace)]
    with reporting():
        result = _describe(*parts, ctypes.addressof(owner), ctypes.addressof(record))
    text = text_of(record)
    if result == 0:
        drop(owner.value)
    return result, text


class Text:
    def __init__(self, text):
        self.text = text

    def __str__(self):
        if self.text is None:
            raise ZeroDivisionError("no trace")
        return self.text


@behaviour("marshal-exceptions.fallback.empty-traceback-text")
def test_only_an_empty_traceback_text_is_shown(no_traceback_module, reports):
    error = ValueError("boom")
    assert described(ValueError, error, Text("")) == (0, "ValueError: boom\n")
    assert described(ValueError, error, Text("trace")) == (0, "ValueError: boom")
    assert [type(raised) for _, raised in reports] == [ModuleNotFoundError] * 2
    reports.clear()
    # That a traceback has no text is nothing to report.
    assert described(ValueError, error, Text(None))[0] == 0
    assert [type(raised) for _, raised in reports] == [ModuleNotFoundError]
    assert described(Mute, Mute(), Text(""))[0] == 0


@behaviour("marshal-exceptions.fallback.value-null")
def test_without_a_value_the_full_form_is_not_tried(stub_traceback, reports):
    stub_traceback(format_exception=failing, format_exception_only=failing)
    assert described(ValueError, None, None) == (0, "ValueError:")
    assert reports == []


@behaviour("marshal-exceptions.to-clr.indicator-clear")
def test_nothing_is_pending_afterwards(stub_traceback, reports, monkeypatch):
    cases = [ValueError("x"), Mute("x"), S("x"), KeyboardInterrupt()]
    for error in cases:
        assert caught_from(error).pending == 0
        assert Caught(type(error), error).pending == 0
    stub_traceback(format_exception=failing)
    for error in cases:
        assert caught_from(error).pending == 0
        assert Caught(type(error), error).pending == 0
    monkeypatch.setitem(sys.modules, "traceback", None)
    results = set()
    for error in cases:
        caught = Caught(type(error), error)
        assert caught.pending == 0
        results.add(caught.result)
    assert results == {0, -1}


@behaviour("marshal-exceptions.label-not-in-traceback")
def test_the_label_is_only_the_object_of_a_report(reports):
    asked = []

    class Watched(types.ModuleType):
        def __getattribute__(self, name):
            asked.append(name)
            return super().__getattribute__(name)

    watched = Watched("traceback")
    watched.format_exception = traceback.format_exception
    watched.format_exception_only = failing
    before = sys.modules["traceback"]
    sys.modules["traceback"] = watched
    try:
        asked.clear()
        caught_from(ValueError("boom"))
        Caught(ValueError, ValueError("boom"))
    finally:
        sys.modules["traceback"] = before
    assert reported(reports)[0] is ZeroDivisionError
    assert {"format_exception", "format_exception_only"} <= set(asked)
    assert LABEL not in asked
    sources = pathlib.Path(__file__).resolve().parents[2] / "marshal"
    uses = [
        line.strip()
        for path in sorted(sources.glob("*.cpp"))
        for line in path.read_text().splitlines()
        if "PyWrpIdTraceBack_FormatExceptionWarning" in line
    ]
    assert uses and all("PyErr_WriteUnraisable(" in line for line in uses)


# Text that must not raise.

_unraisable = ctypes.PYFUNCTYPE(POINTER, ctypes.c_char_p, ctypes.c_int32)(
    address("fn_conv_clr_string_to_py_unraisable")
)


@behaviour("marshal-exceptions.unraisable-str.good")
@pytest.mark.parametrize("text", ["", "a", "€\U0001f600"])
def test_a_text_is_built(text, reports):
    with reporting():
        made = _unraisable(*units(text))
    value = ctypes.cast(made, OBJECT).value
    assert value == text and reports == []
    drop(made)


@behaviour("marshal-exceptions.unraisable-str.bad")
def test_a_text_that_cannot_be_built_is_reported(reports):
    # ctypes would raise what is left pending.
    with reporting():
        assert _unraisable(b"\x00\xd8", 1) is None
    assert reported(reports) == (LookupError, "unknown error handler name ''")
