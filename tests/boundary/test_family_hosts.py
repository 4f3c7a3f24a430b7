"""The hosts of bound classes and the records of their validity, as they lie in memory."""

import ctypes

from psd_scene import REFERENCE, entry_class, missing_text, psd_scene
from wrappers import POINTER, text_of

NAME, TAIL = "Xmp.XmpHeaderPi", "D91BAC5C_XmpHeaderPi"
HOST = f"PyHost_cs_{TAIL}::get_instance()"
TEXT_OFFSET, SLOTS_OFFSET = 16, 24


def symbol(s, name):
    from family import symbols_of

    if not hasattr(s, "symbols"):
        s.symbols = symbols_of(s.psd.__file__)
    return s.symbols[name]


def call(s, name, result, *arguments):
    """Calls a function of the extension, whose arguments are words."""
    kinds = [POINTER] * len(arguments)
    return ctypes.PYFUNCTYPE(result, *kinds)(symbol(s, name))(*arguments)


def text_at(address):
    """The text of a std::string: one pointer, the text behind it ends with a null."""
    return ctypes.string_at(POINTER.from_address(address).value).decode()


class Text:
    """An empty std::string that somebody else shares, so that it is never freed."""

    def __init__(self):
        # length, capacity, further owners; then the text
        self.shared = (ctypes.c_int64 * 4)(0, 0, 7, 0)
        self.pointer = POINTER(ctypes.addressof(self.shared) + 24)

    def reference(self):
        return ctypes.addressof(self.pointer)

    def __str__(self):
        return text_at(self.reference())


def ask_validity(s, text):
    """What wrpPy_bltp_..._is_not_valid gives for XmpHeaderPi, whose message goes into the text."""
    return call(s, f"wrpPy_bltp_{TAIL}_is_not_valid(std::string&)", ctypes.c_bool, text.reference())


def invalidate(s, tail=TAIL):
    return call(s, f"wrpPy_uafn_{tail}_invalidate()", ctypes.c_bool)


@psd_scene(
    "family-class.host.record-order",
    "family-class.host.singleton",
    "family-class.host.valid-state",
)
def test_a_valid_host_in_memory(s):
    assert s.requests() == []
    host = call(s, HOST, POINTER)
    asked = s.requests(NAME)
    assert len(asked) == 11
    assert host == call(s, HOST, POINTER) == symbol(s, f"{HOST}::host")
    assert s.requests(NAME) == asked
    assert ctypes.string_at(POINTER.from_address(host).value) == b"WrpInterop.Kelmor.PSD"
    assert ctypes.c_uint8.from_address(host + 8).value == 0
    assert text_at(host + TEXT_OFFSET) == ""
    slots = list((POINTER * 11).from_address(host + SLOTS_OFFSET))
    assert slots == [s.method(NAME, method).address for method in asked]


@psd_scene("family-class.host.record-order", refuse=[(NAME, "get_Guid")])
def test_a_host_in_memory_that_lacks_an_entry(s):
    host = call(s, HOST, POINTER)
    assert ctypes.c_uint8.from_address(host + 8).value == 1
    assert text_at(host + TEXT_OFFSET) == missing_text(NAME, "get_Guid")
    slots = list((POINTER * 11).from_address(host + SLOTS_OFFSET))
    bound = [s.method(NAME, method).address for method in s.requests(NAME)[:4]]
    assert slots == bound + [None] * 7


@psd_scene("family-class.host.valid-state", refuse=[(NAME, "missing")])
def test_binding_a_slot_tells_whether_it_was_bound(s):
    texts = "char const*, bool, char const*, char const*, char const*, char const*"
    environment = call(s, f"HostEnvironment::instance({texts})", POINTER, 0, 0, 0, 0, 0, 0)
    host, slot = call(s, HOST, POINTER), POINTER()

    def bind(method):
        words = [entry_class(NAME).encode(), method.encode()]
        places = [ctypes.cast(ctypes.c_char_p(word), POINTER).value for word in words]
        function = (
            "ClassHost::set_method_ptr(HostEnvironment const&, char const*, char const*, void**)"
        )
        arguments = [host, environment, *places, ctypes.addressof(slot)]
        return call(s, function, ctypes.c_bool, *arguments)

    assert bind("get_Guid") is True and slot.value == s.method(NAME, "get_Guid").address
    assert ctypes.c_uint8.from_address(host + 8).value == 0
    assert bind("missing") is False
    assert ctypes.c_uint8.from_address(host + 8).value == 1
    assert text_at(host + TEXT_OFFSET) == missing_text(NAME, "missing")


@psd_scene("family-class.state.bltp", "family-class.state.invalidate")
def test_a_valid_class_is_told_to_be_valid(s):
    text = Text()
    before = text.pointer.value
    assert ask_validity(s, text) is False and text.pointer.value == before and str(text) == ""
    assert invalidate(s) is False  # an error would be raised here


@psd_scene(
    "family-class.state.bltp",
    "family-class.state.invalidate",
    "family-class.state.record-order",
    refuse=[(NAME, "get_Guid")],
)
def test_an_invalid_class_tells_why(s):
    text, wanted = Text(), missing_text(NAME, "get_Guid")
    assert ask_validity(s, text) is True and str(text) == wanted
    assert text_of(TypeError, invalidate, s) == wanted
    function = f"wrpPy_uafn_{TAIL}_get_aggregate_host_state()"
    state = symbol(s, f"{function}::state")
    assert list((ctypes.c_uint8 * 2).from_address(state)) == [1, 0]
    assert text_at(state + 8) == wanted


@psd_scene("family-class.state.record-order", refuse=[("DataStreamSupporter", "btp_CastAs")])
def test_a_cause_in_another_type_is_marked(s):
    tail = "7E7D27DF_Image"
    assert text_of(TypeError, invalidate, s, tail) == REFERENCE
    state = symbol(s, f"wrpPy_uafn_{tail}_get_aggregate_host_state()::state")
    assert list((ctypes.c_uint8 * 2).from_address(state)) == [1, 1]
    assert text_at(state + 8) == missing_text("DataStreamSupporter", "btp_CastAs")
