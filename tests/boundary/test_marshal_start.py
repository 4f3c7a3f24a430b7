"""The functions and tables that the managed side is handed at the start."""

import ctypes

import pytest
from peer import Script


def hand_over():
    """What each setter was given, in order, and where that stands in the module."""
    import types

    import native

    script = Script()
    root = types.ModuleType("kelmor.psd")
    start = native.function("start_wrapped_module", ctypes.c_int, ctypes.py_object)
    assert start(root) == 0
    given = [
        (entry["method"], entry["arguments"][0])
        for entry in script.journal
        if entry["call"] == "delegate" and entry["method"].startswith("Set")
    ]
    names = [
        "on_clr_exception",
        "fn_catch_and_clear_py_error",
        "fn_create_u16_buffer",
        "fn_conv_clr_string_to_py_string",
        "fn_conv_clr_string_to_py_unraisable",
        "m_py_obj_api_callbacks",
        "fn_conv_clr_bytes_to_py_bytes",
    ]
    addresses = {name: native.address(name) for name in names}
    for name in ("get_all_py_wrapper_callbacks", "get_all_pygn_generic_callbacks"):
        addresses[name] = native.function(name, ctypes.c_void_p)()
    # The bytes builder and the two others are still what they were, and can be called.
    build = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_char_p, ctypes.c_int32)
    handed = dict(given)
    made = build(handed["SetPyBytesBuilderCallback"])(b"abc", 3)
    assert type(made) is bytearray and made == b"abc"
    text = build(handed["SetPyUnraisableStrBuilderCallback"])(b"a\0b\0", 2)
    assert text == "ab"
    catch = ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
    assert catch(handed["SetCatchAndClearErrorCallback"])(None, None) == -1
    throw = ctypes.PYFUNCTYPE(None, ctypes.c_void_p, ctypes.c_void_p)
    try:
        throw(handed["SetExceptionCallback"])(None, None)
    except RuntimeError as error:
        assert str(error) == "Proxy error(<unknown>): <unknown>"
    else:
        raise AssertionError("nothing was raised")
    return given, addresses


HANDED = [
    ("SetExceptionCallback", "on_clr_exception"),
    ("SetCatchAndClearErrorCallback", "fn_catch_and_clear_py_error"),
    ("SetU16StrBuilderCallback", "fn_create_u16_buffer"),
    ("SetPyStrBuilderCallback", "fn_conv_clr_string_to_py_string"),
    ("SetPyUnraisableStrBuilderCallback", "fn_conv_clr_string_to_py_unraisable"),
    ("SetPyObjApiCallbacks", "m_py_obj_api_callbacks"),
    ("SetPyStaticCallbacks", "get_all_py_wrapper_callbacks"),
    ("SetPyGenericCallbacks", "get_all_pygn_generic_callbacks"),
    ("SetPyBytesBuilderCallback", "fn_conv_clr_bytes_to_py_bytes"),
]


@pytest.mark.behaviour(
    "marshal-variant.tables.hand-over",
    "marshal-exceptions.wiring",
    "marshal-bytes.from-clr.callback-wired",
)
def test_the_managed_side_is_handed_functions_and_tables(in_process):
    given, addresses = in_process(hand_over).value
    assert [tuple(pair) for pair in given] == [(setter, addresses[name]) for setter, name in HANDED]
