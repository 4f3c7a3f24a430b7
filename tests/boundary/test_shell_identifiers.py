"""The interned vocabulary."""

import ctypes
import sys
import traceback

import pytest
import shell_probe
from shell_identifiers import IDENTIFIERS

behaviour = pytest.mark.behaviour


def texts(*groups):
    return [name for name in IDENTIFIERS if name.split("_")[0] in groups]


@behaviour("shell-identifiers.text.str")
def test_the_empty_text_is_a_str():
    assert shell_probe.identifier("PyWrpIdStr_Empty") == ""


GROUPS = {
    "raw-io": ("PyWrpIdRawIo", 11),
    "markattr": ("PyWrpIdMarkattr", 5),
    "type-name": ("PyWrpIdTypeName", 12),
    "uuid": ("PyWrpIdUuid", 1),
    "decimal": ("PyWrpIdDecimal", 4),
    "date-time": ("PyWrpIdDateTime", 3),
    "list": ("PyWrpIdList", 5),
    "trace-back": ("PyWrpIdTraceBack", 4),
    "type": ("PyWrpIdType", 1),
    "weakref": ("PyWrpIdWeakref", 1),
    "own": ("PyWrpIdOwn", 2),
    "cast-meth": ("PyWrpIdCastMeth", 2),
    "os-path": ("PyWrpIdOsPath", 2),
}


@pytest.mark.parametrize(
    ("prefix", "count"),
    [
        pytest.param(*group, marks=behaviour(f"shell-identifiers.text.{name}"), id=name)
        for name, group in GROUPS.items()
    ],
)
def test_the_identifiers_of_a_group_hold_their_texts(prefix, count):
    names = texts(prefix)
    assert len(names) == count
    for name in names:
        held = shell_probe.identifier(name)
        assert type(held) is str and held == IDENTIFIERS[name], name


@behaviour("shell-identifiers.text.format-exception-warning")
def test_the_name_of_a_callback_failure_is_no_function():
    held = shell_probe.identifier("PyWrpIdTraceBack_FormatExceptionWarning")
    assert held == "FormatCallbackException"
    assert not hasattr(traceback, held)


@behaviour("shell-identifiers.interned.is-interned-object")
@pytest.mark.parametrize("name", IDENTIFIERS)
def test_each_identifier_is_the_interned_object(name):
    assert shell_probe.identifier(name) is sys.intern(IDENTIFIERS[name])


@behaviour("shell-identifiers.intern.order")
def test_the_texts_are_interned_in_their_order(in_process):
    def program():
        from family import Interposer
        from peer import PEER, Script

        (path,) = PEER.glob("kelmor_probe.cpython-%d%d-*" % sys.version_info[:2])
        between = Interposer(Script(), path)
        between.watch("PyUnicode_InternFromString")
        import kelmor_probe

        ctypes.PYFUNCTYPE(None)(kelmor_probe.address("fn_intern_identifiers"))()
        return between.calls()

    assert in_process(program).value == [
        ["PyUnicode_InternFromString", text] for text in IDENTIFIERS.values()
    ]


@behaviour("shell-identifiers.intern.failure-unchecked")
def test_a_text_that_is_not_interned_leaves_its_variable_null(in_process):
    def program():
        from family import Interposer
        from peer import PEER, Script
        from shell_identifiers import IDENTIFIERS

        (path,) = PEER.glob("kelmor_probe.cpython-%d%d-*" % sys.version_info[:2])
        between = Interposer(Script(), path)
        # Without an exception: one that stays pending would be the test's, not the function's.
        between.fail("PyUnicode_InternFromString", "uuid.none", result=0, message=None)
        between.fail("PyUnicode_InternFromString", "bytes_le", result=0, message=None)
        import kelmor_probe

        ctypes.PYFUNCTYPE(None)(kelmor_probe.address("fn_intern_identifiers"))()
        return [
            name
            for name in IDENTIFIERS
            if not ctypes.c_void_p.from_address(kelmor_probe.address(name)).value
        ]

    assert in_process(program).value == ["PyWrpIdUuid_BytesLe"]
