"""What is said of a hidden type that cannot be set up, and texts that are hard to reach."""

import sys

import pytest
from family import extension_path
from test_shell_tree_steps import fail_tree

behaviour = pytest.mark.behaviour
STREAM = "kelmor.psd._wrpgen._interop._StreamWrapper"


@behaviour("collections-streams.setup.failure-codes")
@pytest.mark.parametrize(
    ("call", "code", "where"),
    [
        pytest.param(("PyType_Ready", STREAM), -1015, STREAM, id="ready"),
        pytest.param(
            ("PyModule_AddObject", "_StreamWrapper"),
            -1014,
            "kelmor.psd._wrpgen._interop,_StreamWrapper",
            id="add",
        ),
    ],
)
def test_the_last_type_cannot_be_set_up(in_process, call, code, where):
    seen = in_process(fail_tree, *call, -1).value
    assert seen["shown"][1:] == [
        ["ImportError", f"Type initialization internal error ({code}) <{where}>"],
        ["RuntimeError", "refused by the test"],
    ]
    assert seen["version"] == "24.11.0.0"


@behaviour("collections-streams.readloop.too-long")
def test_the_extension_has_the_text_that_no_test_can_reach():
    text = b"unbounded read returned more bytes than a Python bytes buffer can hold\0"
    assert text in extension_path().read_bytes()


def characters_of(text, function, result):
    """What the callback answers while a call of it into the interpreter gives another result."""
    import ctypes

    import peer
    from family import Family, Registry, interposed

    script = peer.Script()
    registry = Registry(script)
    family = Family().complete()
    between = interposed(script)
    family.psd()
    address = ctypes.c_void_p
    tables = (address * 9).from_address(registry.callback("SetPyStaticCallbacks"))
    ask = ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.py_object, address, address, address)(
        (address * 11).from_address(tables[5])[10]
    )
    owner, count, characters = address(0x77), ctypes.c_int32(), address()
    places = [ctypes.addressof(place) for place in (owner, count, characters)]
    between.fail(function, result=result, message=None)
    try:
        return ask(text, *places)
    except TypeError as error:
        return owner.value, str(error)


@behaviour("collections-reverse.unicode-bytes.rare-texts")
def test_a_text_that_cannot_be_encoded(in_process):
    def program():
        from test_collections_setup import characters_of

        return characters_of("text", "PyUnicode_AsUTF16String", 0)

    wanted = [0x77, "cannot convert unicode object to byte string"]
    assert in_process(program).value == wanted


@behaviour("collections-reverse.unicode-bytes.rare-texts")
def test_a_text_that_is_encoded_as_something_else(in_process):
    def program():
        import ctypes
        import sys

        from test_collections_setup import characters_of

        other = bytearray(b"other")
        before = sys.getrefcount(other)
        ctypes.pythonapi.Py_IncRef(ctypes.py_object(other))  # what the call hands out
        seen = characters_of("text", "PyUnicode_AsUTF16String", id(other))
        return [*seen, sys.getrefcount(other) - before]

    text = "converted string must be bytes-like object, not 'bytearray'"
    assert in_process(program).value == [0x77, text, 0]


@behaviour("collections-reverse.unicode-bytes.rare-texts")
def test_a_text_that_is_not_ready(in_process):
    if sys.version_info >= (3, 12):
        pytest.skip("on this interpreter every str is ready")

    def program():
        import ctypes

        from test_collections_setup import characters_of

        make = ctypes.pythonapi.PyUnicode_FromUnicode
        make.restype, make.argtypes = ctypes.py_object, [ctypes.c_void_p, ctypes.c_ssize_t]
        return characters_of(make(None, 3), "_PyUnicode_Ready", -1)

    assert in_process(program).value == [0x77, "unicode object is not ready"]
