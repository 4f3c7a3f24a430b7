"""What an import of the extension makes of its host: when it starts, what it binds, what stays."""

import ctypes
import struct
import sys

import peer
import pytest
from host_programs import ABORTED, TRACE, ended_by
from peer import EXCHANGE, OBJECT, STAGE, Script

behaviour = pytest.mark.behaviour


def import_psd():
    import family

    Script()
    family.Family().complete().psd()


@behaviour("host-platform.trace.no-stderr")
def test_the_diary_of_an_import_reaches_standard_output_alone(in_process):
    outcome = in_process(import_psd, environment=TRACE)
    assert outcome.stdout.startswith("CLR host tracing enabled\r\nInitializing .NET Core host...")
    assert outcome.stdout.endswith(".NET Core host is down: 0\r\n")
    assert outcome.stderr == ""


@behaviour("host-platform.trace-init.silent-before-start")
def test_nothing_is_traced_before_the_host_starts(in_process):
    def program():
        import family

        Script()
        return family.Family().complete(without=["kelmor.gfxtypes"]).failure()

    outcome = in_process(program, environment=TRACE)
    assert [entry[0] for entry in outcome.value[:2]] == ["ImportError", "ImportError"]
    assert "kelmor.gfxtypes" in outcome.value[1][1]
    assert outcome.stdout == ""
    assert outcome.calls == []


@behaviour("host-location.netcore.overflow-ends-process")
def test_a_folder_with_too_large_a_number_ends_an_import(in_process, installation):
    (installation.runtimes / "netcore99999999999.0").mkdir()
    assert ended_by(in_process(import_psd, code=None), "std::out_of_range", "stoi")


def test_an_import_ends_where_there_is_no_wrap_library(in_process, empty_installation):
    outcome = in_process(import_psd, code=None)
    assert ended_by(outcome, "std::runtime_error", "DynamicLibrary::load")


@pytest.mark.parametrize("entry", peer.ENTRIES)
def test_an_import_ends_at_an_entry_that_is_missing(in_process, empty_installation, entry):
    empty_installation.add_runtime(without=[entry])
    outcome = in_process(import_psd, code=None)
    assert ended_by(outcome, "std::runtime_error", f"No such symbol: {entry}")
    assert outcome.calls == []


@pytest.mark.parametrize(
    ("answers", "kind", "text"),
    [
        ({"load": 0}, "std::runtime_error", "init coreclr wap\n"),
        ({"initialize": -1}, "CoreClrInitException", "coreclr_initialize failed (0xffffffff) [<"),
    ],
)
def test_an_import_ends_with_a_runtime_that_is_refused(in_process, answers, kind, text):
    def program(answers):
        import family

        script = Script()
        for entry, answer in answers.items():
            script.answer(entry, answer)
        try:
            family.Family().complete().psd()
        except BaseException:
            return "caught"
        finally:
            print("still here", flush=True)

    outcome = in_process(program, answers, code=ABORTED)
    words = f"terminate called after throwing an instance of '{kind}'\n  what():  {text}"
    assert words in outcome.stderr
    assert (outcome.stdout, outcome.value) == ("", None)


@behaviour("host-services.lazy.no-class-at-import")
def test_an_import_binds_the_two_services_alone(in_process):
    outcome = in_process(import_psd)
    assert {type_name for type_name, _ in outcome.requests} == {EXCHANGE, OBJECT}


@behaviour("host-services.object.not-rebuilt")
def test_a_broken_object_host_stays_broken(in_process):
    def program():
        import family

        script = Script()
        modules = family.Family().complete()
        script.refuse(OBJECT, "Dispose", 77)
        first = modules.failure()
        script.allow()
        script.clear_journal()
        return first, modules.failure(), script.requests

    first, second, requests = in_process(program).value
    assert first[-1][0] == "TypeError"
    assert first[-1][1].endswith("Method 'Dispose' not found (error=77)")
    assert [entry[:2] for entry in second] == [entry[:2] for entry in first]
    assert {type_name for type_name, _ in requests} == {EXCHANGE}


@behaviour("host-services.callbacks.stay-valid")
def test_what_was_handed_over_stays_valid(in_process):
    def program():
        import family
        import gc

        script = Script()
        tables = {}

        def remember(name):
            return lambda frame: tables.setdefault(name, frame.integers[0])

        setters = ["SetPyObjApiCallbacks", "SetPyStaticCallbacks", "SetPyGenericCallbacks"]
        for name in setters + ["SetExceptionCallback"]:
            script.method(EXCHANGE, name).calls(remember(name))
        psd = family.Family().complete().psd()

        def content(depth, address):
            # The object's table is one of functions, the others are tables of tables.
            words = (ctypes.c_uint64 * 2).from_address(address)
            return [content(depth - 1, word) if depth and word else word for word in words]

        def contents():
            return [content(name != "SetPyObjApiCallbacks", tables[name]) for name in setters]

        before = contents()
        del psd
        gc.collect()
        # The peer calls back long after the hand-over.
        call = ctypes.PYFUNCTYPE(None, ctypes.c_void_p, ctypes.c_void_p)
        try:
            call(tables["SetExceptionCallback"])(None, None)
        except RuntimeError as error:
            return before == contents(), str(error)

    assert in_process(program).value == [True, "Proxy error(<unknown>): <unknown>"]


@behaviour("host-services.callback.during-delegate")
def test_a_callback_uses_the_interpreter_while_a_delegate_runs(in_process):
    def program():
        import native

        script = Script()
        native.start_services()
        ids = native.function("fn_intern_identifiers", None)
        ids()
        # The stub calls back as C, without a look at the interpreter lock.
        trigger = script.method(OBJECT, "GetHashOfObj", "WrpInterop.Kelmor.PSD").returns(5)
        name, text = script.keep("Some.Exception"), script.keep("its words")
        for value in (name, text):
            ctypes.pythonapi.Py_IncRef(ctypes.py_object(value))
        trigger.invokes(native.address("on_clr_exception"), id(name), id(text))
        try:
            native.function("object_get_hash_code_of_obj", ctypes.c_int, ctypes.c_void_p)(1)
        except RuntimeError as error:
            return str(error)

    assert in_process(program).value == "Proxy error(Some.Exception): its words"


@behaviour("host-services.type-name.block-freed")
def test_the_block_of_a_type_name_is_freed_and_its_characters_are_not(in_process):
    def program():
        import native

        script = Script()
        native.start_services()
        characters = "No.Such.Type"
        # A string of the old form: length, capacity and count of owners stand before the text.
        text = script.keep(
            ctypes.create_string_buffer(
                struct.pack("<QQiI", len(characters), len(characters), 0, 0)
                + characters.encode("utf-16-le")
                + b"\\0\\0"
            )
        )
        libc = ctypes.CDLL(None)
        libc.malloc.restype = ctypes.c_void_p
        libc.malloc.argtypes = [ctypes.c_size_t]
        # So large that it has a mapping of its own, which ends when it is freed.
        block = libc.malloc(1 << 28)
        ctypes.c_uint64.from_address(block).value = ctypes.addressof(text) + 24
        script.method(EXCHANGE, "GetTypeName", "WrpInterop.Kelmor.PSD").returns(block)

        def is_mapped():
            for line in open("/proc/self/maps"):
                start, end = (int(part, 16) for part in line.split()[0].split("-"))
                if start <= block < end:
                    return True
            return False

        before = is_mapped()
        find = native.function(
            "get_py_type_object_by_obj", ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int64
        )
        found = find(1, 2)
        owners = ctypes.c_int32.from_address(ctypes.addressof(text) + 16).value
        calls = len(script.method(EXCHANGE, "GetTypeName", "WrpInterop.Kelmor.PSD").received)
        return before, found, is_mapped(), owners, bytes(text)[24:48].decode("utf-16-le"), calls

    # A second call of free, or a destructor, would have ended the process.
    assert in_process(program).value == [True, None, False, 0, "No.Such.Type", 1]


# The hosts of bound classes.


def first_uses(refused=(), times=1):
    """Uses `Image`; gives the chain of each failure and, for each use, what was asked for."""
    import family

    script = Script()
    psd = family.Family().complete().psd()
    for type_name, method in refused:
        script.refuse(type_name, method, 77)
    uses = []
    for _ in range(times):
        script.clear_journal()
        try:
            psd.Image.can_load("a.psd")
            error = None
        except TypeError as raised:
            error = family.chain(raised)
        uses.append([error, script.requests])
    return uses


@pytest.fixture(scope="module")
def image_hosts(tmp_path_factory):
    """The entry classes that the first use of `Image` binds, each with its first method."""
    installation = peer.Installation(tmp_path_factory.mktemp("hosts") / "installation")
    installation.add_runtime()
    outcome = peer.run_python(first_uses, environment=installation.environment())
    hosts = {}
    for type_name, method in outcome.value[0][1]:
        hosts.setdefault(type_name, method)
    leaves = [name.rpartition(".")[2].rpartition("_")[0] for name in hosts]
    assert leaves[:2] == ["WrpCs_Image", "WrpCs_DataStre"], outcome
    return list(hosts.items())


def missing(type_name, method):
    return (
        f"While initializing the host for the '{type_name} (Assembly=WrpInterop.Kelmor.PSD)' type,"
        f" an error occurred - Method '{method}' not found (error=77)"
    )


@behaviour("host-services.lazy.first-use")
def test_a_missing_delegate_makes_the_type_unusable(in_process, image_hosts):
    own = image_hosts[0]
    outcome = in_process(first_uses, [own], 3)
    texts = [[entry[:2] for entry in error] for error, _ in outcome.value]
    assert texts == [[["TypeError", missing(*own)]]] * 3
    assert [requests for _, requests in outcome.value] == [[list(own)], [], []]


@behaviour("host-services.lazy.referenced-type")
def test_a_missing_delegate_of_a_referenced_type_is_the_cause(in_process, image_hosts):
    own, referenced = image_hosts[:2]
    outcome = in_process(first_uses, [referenced], 2)
    for error, _ in outcome.value:
        assert [entry[:3] for entry in error] == [
            ["TypeError", "one or more refereced type is not initialized", True],
            ["TypeError", missing(*referenced), True],
        ]
    assert outcome.value[0][1][-1] == list(referenced)
    assert outcome.value[1][1] == []


@behaviour("host-services.lazy.own-host-first")
def test_a_types_own_host_is_asked_first(in_process, image_hosts):
    own, referenced = image_hosts[:2]
    ((error, requests),) = in_process(first_uses, [own, referenced]).value
    assert [entry[:2] for entry in error] == [["TypeError", missing(*own)]]
    assert requests == [list(own)]


# Several modules of the family.

FAMILY = ["shellbase", "typemodel", "gfxtypes", "shellcommon", "psd"]


@behaviour("host-start.shutdown.two-modules")
@pytest.mark.parametrize("first", ["typemodel", "gfxtypes", "psd"])
def test_the_modules_of_the_family_share_one_runtime(in_process, first):
    def program(names, stage):
        import importlib

        sys.path.insert(0, stage)
        script = Script()
        for name in names:
            importlib.import_module(f"kelmor.{name}")
        return [call for call in script.calls if call.startswith("coreclr_wrap_")]

    names = [first] + [name for name in FAMILY if name != first]
    outcome = in_process(program, names, str(STAGE), environment=TRACE)
    started, ended = "coreclr_wrap_initialize", "coreclr_wrap_shutdown"
    assert outcome.value.count("coreclr_wrap_load") == outcome.value.count(started) == 1
    assert outcome.value.count("coreclr_wrap_is_domain_initialized") == 2
    assert outcome.calls.count(ended) == 1 and outcome.calls[-1] == ended
    # All in one voice: each module has a diary of its own, and only the first tells of the end.
    assert outcome.stdout.count("CLR host tracing enabled\r\n") == 3
    assert outcome.stdout.count("Default AppDomain ready.\r\n") == 1
    assert outcome.stdout.count(".NET Core host is down: 0\r\n") == 1
