"""How the interned names are used: which module a class comes from, and when it is looked up."""

import ctypes
import re
import sys

import pytest
from peer import ROOT, STAGE, Script

behaviour = pytest.mark.behaviour


def look_ups(wanted):
    """Which attributes of which modules are asked for, when each module stands in for itself."""
    import decimal
    import importlib
    import types
    import uuid

    import marshal_probe
    import shell_probe

    seen = []

    class Recorder(types.ModuleType):
        def __getattribute__(self, name):
            if not name.startswith("__"):
                seen.append(name)
            return getattr(real, name)

    def stream(value):
        target = marshal_probe.VariantArg()
        shell_probe.native(
            "wrpPye_conv_py_to_clr_stream", ctypes.c_int, ctypes.py_object, ctypes.c_void_p
        )(value, ctypes.addressof(target))

    def describe_error(value):
        words = (ctypes.c_uint64 * 8)()
        text = ctypes.addressof(words) + 16
        call = shell_probe.native("call_with_pending", None, *[ctypes.c_void_p] * 8)
        function = shell_probe.kelmor_probe.address("fn_catch_and_clear_py_error")
        traceback = value.__traceback__
        call(
            id(type(value)),
            id(value),
            id(traceback) if traceback else None,
            function,
            ctypes.addressof(words),
            text,
            0,
            0,
        )

    def thrown():
        try:
            raise KeyError("thrown")
        except KeyError as error:
            return error

    def guid():
        target = ctypes.create_string_buffer(16)
        marshal_probe.convert("fn_conv_py_uuid_to_clr_guid", uuid.UUID(int=1), target)

    def number():
        target = (ctypes.c_uint32 * 8)()
        marshal_probe.convert(
            "fn_conv_py_decimal_to_clr_decimal", decimal.Decimal(1).as_tuple(), target
        )
        marshal_probe.convert("fn_conv_py_decimal_to_clr_decimal", decimal.Decimal(1), target)

    def moment():
        ticks = (ctypes.c_int64 * 2)(630822816000000000, 36000000000)
        shell_probe.native(
            "fn_conv_clr_datetimeoffset_to_py_datetime", ctypes.py_object, ctypes.c_void_p
        )(ctypes.addressof(ticks))

    def refused_stream():
        try:
            stream(object())
        except TypeError:
            pass

    def integer():
        derived = type("Derived", (int,), {})(1)
        marshal_probe.convert("fn_conv_py_long_to_clr_int32", derived, (ctypes.c_int32 * 1)())

    def both_errors():
        describe_error(thrown())
        describe_error(KeyError("without a traceback"))

    sys.path.insert(0, str(STAGE))
    actions = {
        "uuid": guid,
        "decimal": number,
        "datetime": moment,
        "io": refused_stream,
        "kelmor.shellcommon": refused_stream,
        "enum": integer,
        "traceback": both_errors,
    }
    found = {}
    for name in wanted:
        real = importlib.import_module(name)
        sys.modules[name] = Recorder(name)
        seen.clear()
        try:
            actions[name]()
        finally:
            sys.modules[name] = real
        found[name] = sorted(set(seen))
    return found


CLASSES = {
    "uuid": ["UUID"],
    "decimal": ["Decimal", "DecimalTuple"],
    "datetime": ["datetime", "timezone"],
    "io": ["BufferedIOBase", "RawIOBase"],
    "kelmor.shellcommon": ["BytesAsStream"],
    "enum": ["EnumType"],
    "traceback": ["format_exception", "format_exception_only"],
}


@behaviour("shell-identifiers.classes.module-of-each")
@pytest.mark.parametrize("name", CLASSES)
def test_each_class_comes_from_its_module(in_process, name):
    found = in_process(look_ups, [name]).value[name]
    if name == "datetime":  # the interface in C comes from there too, whatever the module
        assert set(CLASSES[name]) <= set(found)
    else:
        assert found == CLASSES[name]


@behaviour("shell-identifiers.classes.module-of-each")
def test_the_bases_of_enumerations_come_from_enum(in_process):
    def program():
        import enum
        import types

        from family import Family

        seen = set()

        class Recorder(types.ModuleType):
            def __getattribute__(self, name):
                if name.startswith("Int"):
                    seen.add(name)
                return getattr(enum, name)

        family = Family().complete()
        sys.modules["enum"] = Recorder("enum")
        family.psd()
        return sorted(seen)

    assert in_process(program).value == ["IntEnum", "IntFlag"]


@behaviour("shell-identifiers.classes.not-cached")
def test_a_class_is_looked_up_at_each_use(in_process):
    def program():
        import types
        import uuid

        import marshal_probe

        def build(value):
            result, error = marshal_probe.convert(
                "fn_conv_py_uuid_to_clr_guid", value, ctypes.create_string_buffer(16)
            )
            return result, str(error)

        class UUID:
            bytes_le = bytes(range(16))

        own = uuid.UUID(int=7)
        first = build(own)
        fake = types.ModuleType("uuid")
        fake.UUID = UUID
        sys.modules["uuid"] = fake
        return first, build(UUID()), build(own)

    assert in_process(program).value == [
        [1, "None"],
        [1, "None"],
        [0, "can't build Guid from 'UUID'"],
    ]


@behaviour("shell-identifiers.classes.via-sys-modules")
def test_a_module_that_stands_there_is_not_loaded_again(in_process):
    def program():
        import types

        import marshal_probe

        class Marker:
            def as_tuple(self):
                raise KeyError("the marker was asked")

        class DecimalTuple:
            pass

        fake = types.ModuleType("decimal")
        fake.Decimal, fake.DecimalTuple = Marker, DecimalTuple
        sys.modules["decimal"] = fake
        loads = []
        sys.meta_path.insert(
            0, type("Finder", (), {"find_spec": lambda self, name, *more: loads.append(name)})()
        )
        result, error = marshal_probe.convert(
            "fn_conv_py_decimal_to_clr_decimal", Marker(), (ctypes.c_uint32 * 8)()
        )
        return result, repr(error), loads, sys.modules["decimal"] is fake

    assert in_process(program).value == [0, "KeyError('the marker was asked')", [], True]


@behaviour("shell-identifiers.classes.not-imported-at-start")
def test_the_start_imports_no_class(in_process):
    def program():
        from family import Family

        family = Family().complete()
        names = ["uuid", "decimal", "kelmor.shellcommon"]
        before = [name for name in names if name in sys.modules]
        loads = []
        sys.meta_path.insert(
            0, type("Finder", (), {"find_spec": lambda self, name, *more: loads.append(name)})()
        )
        family.psd()
        return before, [name for name in names if name in sys.modules], loads

    before, after, loads = in_process(program).value
    assert (before, after) == ([], [])
    assert loads == ["kelmor.psd"]


@behaviour("shell-identifiers.lookup.passes-interned-object")
def test_a_look_up_passes_the_interned_object(in_process):
    def program():
        import shell_probe

        seen = {}

        class Stream:
            def __getattribute__(self, name):
                if name != "__class__":  # of the interpreter
                    seen[name] = id(name)
                if name.endswith("able"):
                    return lambda: True
                return {"closed": False}.get(name, lambda *arguments: 1)

        stream = Stream()
        call = ctypes.py_object, ctypes.c_void_p, ctypes.c_int32
        buffer = ctypes.create_string_buffer(4)
        for name in ("readable", "writable", "seekable", "tell", "flush", "close"):
            shell_probe.native(f"fn_clbk_rawio_{name}", ctypes.c_int64, ctypes.py_object)(stream)
        for name in ("read", "write"):
            shell_probe.native(f"fn_clbk_rawio_{name}", ctypes.c_int32, *call)(
                stream, ctypes.addressof(buffer), 4
            )
        shell_probe.native(
            "fn_clbk_rawio_seek", ctypes.c_int64, ctypes.py_object, ctypes.c_int64, ctypes.c_int32
        )(stream, 0, 0)
        shell_probe.native(
            "fn_clbk_rawio_truncate", ctypes.c_int32, ctypes.py_object, ctypes.c_int64
        )(stream, 1)
        members = {
            "Write": "write",
            "ReadInto": "readinto",
            "Seek": "seek",
            "Flush": "flush",
            "Close": "close",
            "Closed": "closed",
            "Readable": "readable",
            "Writable": "writable",
            "Seekable": "seekable",
            "Tell": "tell",
            "Truncate": "truncate",
        }
        held = {
            text: id(shell_probe.identifier(f"PyWrpIdRawIo_{member}"))
            for member, text in members.items()
        }
        return sorted(seen), [text for text in held if held[text] != seen.get(text)]

    names, others = in_process(program).value
    assert len(names) == 11
    assert others == []


@behaviour("shell-identifiers.unused.finalize-and-pure-path")
def test_two_identifiers_have_no_reader(in_process):
    readers = [
        f"{path.parent.name}/{path.name}"
        for folder in ("host", "shell", "marshal", "binding", "collections", "siblings", "wrpgen")
        for path in (ROOT / folder).rglob("*")
        if path.suffix in {".cpp", ".h", ".inc", ".j2", ".py"}
        and re.search(r"PyWrpIdWeakref_Finalize|PyWrpIdTypeName_PurePath", path.read_text())
    ]
    assert readers == ["shell/identifiers.inc"]

    def program():
        from family import Family, interposed

        family = Family().complete()
        between = interposed(Script())
        between.watch(None)
        psd = family.psd()
        psd.get_pyinstaller_hook_dirs()
        made = psd.xmp.XmpHeaderPi.__new__(psd.xmp.XmpHeaderPi)
        del made
        return [f for f, text in between.calls() if text in ("finalize", "PurePath")]

    assert in_process(program).value == ["PyUnicode_InternFromString"] * 2


# Rows about the start that need a look into the extension.


CALLBACKS = [
    ("SetExceptionCallback", "on_clr_exception"),
    ("SetCatchAndClearErrorCallback", "fn_catch_and_clear_py_error"),
    ("SetU16StrBuilderCallback", "fn_create_u16_buffer"),
    ("SetPyStrBuilderCallback", "fn_conv_clr_string_to_py_string"),
    ("SetPyUnraisableStrBuilderCallback", "fn_conv_clr_string_to_py_unraisable"),
    ("SetPyObjApiCallbacks", "m_py_obj_api_callbacks"),
    ("SetPyStaticCallbacks", "m_all_py_wrapper_callbacks"),
    ("SetPyGenericCallbacks", "m_all_py_generic_callbacks"),
    ("SetPyBytesBuilderCallback", "fn_conv_clr_bytes_to_py_bytes"),
]


@behaviour("shell-entry.callbacks.identity")
def test_each_setter_gets_the_function_or_table_of_its_name(in_process):
    def program(names):
        from family import Family, symbols_of

        script = Script()
        for method, _ in names:
            script.method(EXCHANGE, method, ASSEMBLY).takes(1)  # noqa: F821
        psd = Family().complete().psd()
        given = {
            entry["method"]: entry["arguments"][0]
            for entry in script.journal
            if entry["call"] == "delegate" and entry["method"].startswith("Set")
        }
        addresses = {
            name.split("(")[0]: address for name, address in symbols_of(psd.__file__).items()
        }
        return given, {method: addresses.get(name) for method, name in names}

    given, wanted = in_process(program, CALLBACKS).value
    assert None not in wanted.values(), wanted
    assert given == wanted


@behaviour("shell-entry.locks.blocking-call")
def test_a_long_managed_call_blocks_all_threads(in_process):
    def program():
        import threading
        import time

        from family import Family

        script = Script()
        psd = Family().complete().psd()
        sleep = ctypes.cast(ctypes.CDLL(None).usleep, ctypes.c_void_p)
        name = "GetHashOfObj"
        script.method(OBJECT, name, ASSEMBLY).invokes(sleep, 400000)  # noqa: F821
        made = psd.xmp.XmpHeaderPi.__new__(psd.xmp.XmpHeaderPi)
        count = [0]
        stop = threading.Event()

        def work():
            while not stop.is_set():
                count[0] += 1

        thread = threading.Thread(target=work)
        thread.start()
        start = count[0]
        time.sleep(0.4)
        free = count[0] - start
        # Without a switch in between the call is all that lies between the two looks. Waits that
        # have begun keep the old interval, so the lock changes hands once under the new one.
        sys.setswitchinterval(1)
        time.sleep(0.02)
        start = count[0]
        began = time.monotonic()
        hash(made)
        length = time.monotonic() - began
        blocked = count[0] - start
        sys.setswitchinterval(0.005)
        stop.set()
        thread.join()
        return free, blocked, length

    free, blocked, length = in_process(program).value
    assert length >= 0.4
    assert free > 1000
    assert blocked == 0


@behaviour("shell-versions.compare.other-module")
def test_versions_of_two_modules_are_not_compared(in_process):
    def program():
        sys.path.insert(0, str(STAGE))
        import kelmor.psd
        import kelmor.shellbase

        one, other = kelmor.psd.VERSION, kelmor.shellbase.VERSION
        try:
            one < other
        except TypeError as error:
            refused = str(error)
        return (
            type(one).__lt__(one, other) is NotImplemented,
            one == other,
            str(one) == str(other),
            type(one) is type(other),
            refused,
        )

    *facts, refused = in_process(program).value
    assert facts == [True, False, True, False]
    assert refused.startswith("'<' not supported between instances of")


@behaviour("shell-versions.failure.one-exception")
def test_a_failing_function_leaves_one_exception_and_nothing_else(in_process):
    def program():
        import gc
        import types

        import shell_probe as probe

        text, number, pointer = ctypes.c_char_p, ctypes.c_int, ctypes.c_void_p
        home = types.ModuleType("home")
        home.thing = 5
        home.VERSION = probe.version(1, 0, 0, 0)
        sys.modules.update(home=home, no_such=None)
        need = probe.reference(24, 5, 3, 0)
        take = ctypes.py_object
        cases = {
            "ref": lambda: probe.import_ref_module(b"x", b"no_such", need),
            "old": lambda: probe.import_ref_module(b"x", b"home", need),
            "type": lambda: probe.native("PyShImport_ImportType", take, text, take)(
                b"no_such", "x"
            ),
            "attribute": lambda: probe.native("PyShImport_ImportType", take, text, take)(
                b"home", "x"
            ),
            "no type": lambda: probe.native("PyShImport_ImportTypeEx", take, text, take)(
                b"home", "thing"
            ),
            "capsule": lambda: probe.native("import_one_capsule", number, *[text] * 3, pointer)(
                b"x", b"home", b"home.none", None
            ),
            "count": lambda: probe.native(
                "fn_check_args_count_out_of_range", number, pointer, text, pointer, pointer
            )(3, b"f", 0, 1),
        }
        shown = {}
        for name, call in cases.items():

            def fail():
                try:
                    call()
                except Exception as error:
                    return type(error).__name__
                return None

            shown[name] = [fail()]
            fail()
            gc.collect()
            before = sys.getallocatedblocks()
            for _ in range(200):
                fail()
            gc.collect()
            shown[name].append(sys.getallocatedblocks() - before < 50)
        return shown

    assert in_process(program).value == {
        "ref": ["ImportError", True],
        "old": ["ImportError", True],
        "type": ["ImportError", True],
        "attribute": ["ImportError", True],
        "no type": ["TypeError", True],
        "capsule": ["ImportError", True],
        "count": ["TypeError", True],
    }
