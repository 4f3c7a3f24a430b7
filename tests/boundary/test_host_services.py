"""The two fixed services: what is bound in which order, and what each operation hands over."""

import ctypes

import pytest
from peer import ASSEMBLY, EXCHANGE, EXCHANGE_METHODS, OBJECT, OBJECT_METHODS, Script

behaviour = pytest.mark.behaviour

MISSING = 0x80131513 - 2**32
HANDLE, OTHER, TABLE = 0x1122334455667788, 0x7766554433221100, 0x1020304050607080
MESSAGE = (
    "While initializing the host for the '{} (Assembly=WrpInterop.Kelmor.PSD)' type, an error"
    " occurred - Method '{}' not found (error={})"
)

# The order of the exchange's slots, which differs from that of their binding.
EXCHANGE_SLOTS = (
    EXCHANGE_METHODS[:4] + [EXCHANGE_METHODS[5], EXCHANGE_METHODS[4]] + EXCHANGE_METHODS[6:]
)


def bound(refused=None, code=1):
    """Binds both services; gives results, texts and slots, and what was asked for."""
    import native

    script = Script()
    if refused:
        script.refuse(*refused, code=code)
    native.start_host()
    initialize = native.function("exchange_initialize", ctypes.c_int, ctypes.c_char_p)
    name = script.keep(ctypes.create_string_buffer(b"WrpInterop.Kelmor.PSD"))
    slots = (ctypes.c_void_p * 15).from_address(
        native.function("exchange_slots", ctypes.c_void_p)()
    )
    text = ctypes.c_char_p
    result = {
        "before": script.requests,
        "initialized": initialize(ctypes.cast(name, text)),
        "exchange": script.requests,
        "exchange_error": native.function("exchange_error_msg", text)().decode(),
        "exchange_slots": list(slots),
        "assembly": native.function("exchange_get_assembly_name", text)().decode(),
    }
    if not result["initialized"]:
        return result
    script.clear_journal()
    objects = native.function("object_get_instance", ctypes.c_void_p)
    first = objects()
    slots = (ctypes.c_void_p * 11).from_address(native.function("object_slots", ctypes.c_void_p)())
    result.update(
        object=script.requests,
        object_same=[objects(), objects()] == [first, first],
        object_again=script.requests,
        object_invalid=native.function("object_is_not_valid")(),
        object_error=native.function("object_error_msg", text)().decode(),
        object_slots=list(slots),
        exchange_delegates=[script.method(EXCHANGE, m, ASSEMBLY).address for m in EXCHANGE_METHODS],
        object_delegates=[script.method(OBJECT, m, ASSEMBLY).address for m in OBJECT_METHODS],
    )
    return result


def test_the_exchange_is_bound(in_process):
    value = in_process(bound).value
    assert value["initialized"] == 1
    assert value["exchange_error"] == ""


@behaviour("host-services.exchange.get-instance-lazy")
def test_the_exchange_binds_nothing_before_it_is_initialized(in_process):
    def program():
        import native

        script = Script()
        native.start_host()
        exchange = native.function("exchange_get_instance", ctypes.c_void_p)
        first = exchange()
        slots = (ctypes.c_void_p * 15).from_address(first)
        return exchange() == first, script.requests, list(slots)

    assert in_process(program).value == [True, [], [None] * 15]


@behaviour(
    "host-services.exchange.names",
    "host-services.exchange.bind-order",
    "host-services.exchange.free-instance-twice",
)
def test_the_exchange_asks_for_its_delegates_in_order(in_process):
    outcome = in_process(bound)
    assert outcome.value["exchange"] == [[EXCHANGE, method] for method in EXCHANGE_METHODS]
    assemblies = {entry["assembly"] for entry in outcome.journal if "assembly" in entry}
    assert assemblies == {ASSEMBLY}
    methods = [method for _, method in value_requests(outcome)]
    assert methods.count("FreeInstance") == 2
    assert "FreeStruct" not in methods


def value_requests(outcome):
    return outcome.value["exchange"] + outcome.value["object"]


@behaviour("host-services.exchange.slots", "host-services.exchange.initialize-true")
def test_each_slot_of_the_exchange_holds_its_delegate(in_process):
    value = in_process(bound).value
    delegates = dict(zip(EXCHANGE_METHODS, value["exchange_delegates"]))
    assert value["exchange_slots"] == [delegates[method] for method in EXCHANGE_SLOTS]
    assert len(set(value["exchange_slots"])) == 14
    assert (value["initialized"], value["assembly"]) == (1, ASSEMBLY)


@behaviour("host-services.exchange.stops-at-first-failure", "host-services.set-method-ptr.failure")
@pytest.mark.parametrize("position", range(len(EXCHANGE_METHODS)))
def test_the_exchange_stops_at_the_first_failure(in_process, position):
    method = EXCHANGE_METHODS[position]
    first = EXCHANGE_METHODS.index(method)
    value = in_process(bound, (EXCHANGE, method), 77).value
    assert value["initialized"] == 0
    assert value["exchange"] == [[EXCHANGE, name] for name in EXCHANGE_METHODS[: first + 1]]
    assert value["exchange_error"] == MESSAGE.format(EXCHANGE, method, 77)
    filled = {name for name, slot in zip(EXCHANGE_SLOTS, value["exchange_slots"]) if slot}
    assert filled == set(EXCHANGE_METHODS[:first])


@behaviour("host-services.exchange.missing-assembly")
def test_without_the_assembly_the_first_method_is_named(in_process):
    code = 0x80070002 - 2**32
    value = in_process(bound, (None, None), code).value
    assert value["exchange"] == [[EXCHANGE, "GetTypeName"]]
    assert value["exchange_error"] == MESSAGE.format(EXCHANGE, "GetTypeName", code)


@behaviour("host-services.exchange.rebinds")
def test_a_second_initialization_binds_everything_again(in_process):
    def program():
        import native

        script = Script()
        native.start_host()
        initialize = native.function("exchange_initialize", ctypes.c_int, ctypes.c_char_p)
        name = ctypes.cast(
            script.keep(ctypes.create_string_buffer(b"WrpInterop.Kelmor.PSD")), ctypes.c_char_p
        )
        slots = (ctypes.c_void_p * 15).from_address(
            native.function("exchange_slots", ctypes.c_void_p)()
        )
        script.refuse(method="BoxStcTarget", code=5)
        first = initialize(name), list(slots)
        script.allow()
        script.clear_journal()
        for index, method in enumerate(EXCHANGE_METHODS):
            script.provide(EXCHANGE, method, ctypes.c_void_p(1000 + index))
        second = initialize(name), list(slots)
        error = native.function("exchange_error_msg", ctypes.c_char_p)().decode()
        return first, second, script.requests, error

    first, second, requests, error = in_process(program).value
    assert (first[0], second[0]) == (0, 1)
    assert None not in first[1][:14] and first[1][14] is None
    given = {method: 1000 + index for index, method in enumerate(EXCHANGE_METHODS)}
    assert second[1] == [given[method] for method in EXCHANGE_SLOTS]
    assert requests == [[EXCHANGE, method] for method in EXCHANGE_METHODS]
    # A text of the failure stays: nobody reads it after a success.
    assert error == MESSAGE.format(EXCHANGE, "BoxStcTarget", 5)


@behaviour(
    "host-services.object.names",
    "host-services.object.bind-order",
    "host-services.object.singleton",
)
def test_the_object_host_asks_for_its_delegates_once_in_order(in_process):
    outcome = in_process(bound)
    value = outcome.value
    assert value["object"] == [[OBJECT, method] for method in OBJECT_METHODS]
    assert value["object_same"] is True
    assert value["object_again"] == value["object"]
    asked = [entry for entry in outcome.journal if entry.get("type") == OBJECT]
    assert {entry["assembly"] for entry in asked} == {ASSEMBLY}


def test_the_object_host_takes_the_assembly_of_the_exchange(in_process):
    def program():
        import native

        Script()
        native.start_services("Another.Assembly")

    journal = in_process(program).journal
    assert {entry["assembly"] for entry in journal if "assembly" in entry} == {"Another.Assembly"}


@behaviour("host-services.object.valid")
def test_each_slot_of_the_object_host_holds_its_delegate(in_process):
    value = in_process(bound).value
    assert value["object_slots"] == value["object_delegates"]
    assert (value["object_invalid"], value["object_error"]) == (0, "")


@behaviour("host-services.object.stops-at-first-failure", "host-services.set-method-ptr.failure")
@pytest.mark.parametrize("position", range(len(OBJECT_METHODS)))
def test_the_object_host_stops_at_the_first_failure(in_process, position):
    method = OBJECT_METHODS[position]
    value = in_process(bound, (OBJECT, method), -3).value
    assert value["object"] == [[OBJECT, name] for name in OBJECT_METHODS[: position + 1]]
    assert value["object_invalid"] == 1
    assert value["object_error"] == MESSAGE.format(OBJECT, method, -3)
    assert value["object_slots"][:position] == value["object_delegates"][:position]
    assert set(value["object_slots"][position:]) == {None}


@behaviour("host-services.object.missing-dispose")
def test_a_missing_dispose_is_named(in_process):
    value = in_process(bound, (OBJECT, "Dispose"), MISSING).value
    assert len(value["object"]) == 11
    assert value["object_error"] == (
        "While initializing the host for the 'Kelmor.WrpGen.Interop.ObjectHost"
        " (Assembly=WrpInterop.Kelmor.PSD)' type, an error occurred -"
        " Method 'Dispose' not found (error=-2146233069)"
    )


@behaviour("host-services.set-method-ptr.success", "host-services.set-method-ptr.failure")
@pytest.mark.parametrize("host", ["exchange", "object"])
def test_a_method_pointer_is_set_or_the_failure_told(in_process, host):
    def program(host, type_name):
        import native

        script = Script()
        native.start_services()
        script.clear_journal()
        bind = native.function(
            f"{host}_set_method_ptr", ctypes.c_int, ctypes.c_char_p, ctypes.c_void_p
        )
        error = native.function(f"{host}_error_msg", ctypes.c_char_p)
        invalid = native.function("object_is_not_valid")
        slot = ctypes.c_void_p()
        good = bind(b"Good", ctypes.addressof(slot)), error().decode(), invalid()
        filled = slot.value == script.method(type_name, "Good", "WrpInterop.Kelmor.PSD").address
        script.refuse(method="Bad", code=9)
        bad = bind(b"Bad", ctypes.addressof(slot)), error().decode(), invalid()
        again = bind(b"Good", ctypes.addressof(slot)), error().decode(), invalid()
        slots = [entry["slot"] == ctypes.addressof(slot) for entry in script.journal]
        return good, filled, bad, again, script.requests, slots

    type_name = {"exchange": EXCHANGE, "object": OBJECT}[host]
    good, filled, bad, again, requests, slots = in_process(program, host, type_name).value
    text = MESSAGE.format(type_name, "Bad", 9)
    invalid = int(host == "object")
    assert (good, filled) == ([1, "", 0], True)
    assert bad == [0, text, invalid]
    assert again == [1, text, invalid]
    assert requests == [[type_name, name] for name in ("Good", "Bad", "Good")]
    assert slots == [True] * 3


# The operations.


def operated(host, operation, types, arguments, type_name, method, answer):
    """Calls one operation; gives its result, the method's arguments, and further requests."""
    import native

    script = Script()
    native.start_services()
    script.clear_journal()
    script.method(type_name, method, "WrpInterop.Kelmor.PSD").takes(max(len(arguments), 0)).returns(
        *([] if answer is None else [answer])
    )
    result, *parameters = [getattr(ctypes, name) if name else None for name in types]
    call = native.function(f"{host}_{operation}", result, *parameters)
    results = [call(*arguments) for _ in range(3)]
    received = [entry["arguments"] for entry in script.journal if entry["call"] == "delegate"]
    names = [(e["type"], e["method"]) for e in script.journal if e["call"] == "delegate"]
    return results, received, names, script.requests


POINTER, INT = "c_void_p", "c_int"
TAKES_HANDLE = (None, POINTER)
GIVES_OUT = (INT, POINTER, POINTER)


def operation(claim, host, name, method, types, arguments, answer=None):
    mark = behaviour(f"host-services.{host}.op.{claim}", "host-services.delegates.stay-valid")
    values = (host, name, method, types, arguments, answer)
    return pytest.param(*values, marks=mark, id=f"{host}-{name}")


OPERATIONS = [
    operation(
        "get-type-name",
        "exchange",
        "get_type_name",
        "GetTypeName",
        (POINTER,) * 2,
        (HANDLE,),
        OTHER,
    ),
    *(
        operation("single-callbacks", "exchange", name, method, TAKES_HANDLE, (HANDLE,))
        for name, method in [
            ("set_exception_callback", "SetExceptionCallback"),
            ("set_catch_and_clear_error_callback", "SetCatchAndClearErrorCallback"),
            ("set_u16_bytes_builder_callback", "SetU16StrBuilderCallback"),
            ("set_py_str_builder_callback", "SetPyStrBuilderCallback"),
            ("set_py_unraisable_str_builder", "SetPyUnraisableStrBuilderCallback"),
            ("set_py_bytes_builder_callback", "SetPyBytesBuilderCallback"),
        ]
    ),
    *(
        operation(claim, "exchange", name, method, TAKES_HANDLE, (TABLE,))
        for claim, name, method in [
            ("obj-api-table", "set_py_obj_api_callbacks", "SetPyObjApiCallbacks"),
            ("table-of-tables", "set_py_static_callbacks", "SetPyStaticCallbacks"),
            ("table-of-tables", "set_py_generic_callbacks", "SetPyGenericCallbacks"),
            ("free-instance", "free_instance", "FreeInstance"),
            ("free-struct", "free_struct", "FreeInstance"),
        ]
    ),
    operation(
        "free-pending-args",
        "exchange",
        "free_pending_args",
        "FreePendingArgs",
        (None, POINTER, INT),
        (HANDLE, 3),
    ),
    operation("init-services", "exchange", "init_services", "InitServices", (None,), ()),
    operation(
        "box-stc-target",
        "exchange",
        "box_stc_target",
        "BoxStcTarget",
        (POINTER,) * 2,
        (HANDLE,),
        OTHER,
    ),
    *(
        operation(claim, "object", name, method, GIVES_OUT, (HANDLE, OTHER), answer)
        for claim, name, method, answer in [
            ("to-string", "to_string_of_obj", "ToStringOfObj", 1),
            ("to-string", "to_string_of_stc", "ToStringOfStc", 1),
            ("equals", "equals_of_obj", "IsEqualsOfObj", 1),
            ("equals", "equals_of_stc", "IsEqualsOfStc", 1),
            ("is-type-of", "is_type_of", "IsTypeOf", 1),
            ("get-type-name", "get_type_name", "GetTypeName", 1),
            ("get-type", "get_obj_type", "GetObjType", -7),
            ("get-type", "get_stc_type", "GetStcType", 2),
        ]
    ),
    *(
        operation("hash", "object", name, method, (INT, POINTER), (HANDLE,), answer)
        for name, method, answer in [
            ("get_hash_code_of_obj", "GetHashOfObj", -5),
            ("get_hash_code_of_stc", "GetHashOfStc", -2147483648),
        ]
    ),
    operation("dispose", "object", "dispose", "Dispose", TAKES_HANDLE, (HANDLE,)),
]


@pytest.mark.parametrize(("host", "name", "method", "types", "arguments", "answer"), OPERATIONS)
def test_an_operation_hands_its_arguments_over_and_gives_the_answer(
    in_process, host, name, method, types, arguments, answer
):
    type_name = {"exchange": EXCHANGE, "object": OBJECT}[host]
    outcome = in_process(operated, host, name, types, arguments, type_name, method, answer)
    results, received, called, requests = outcome.value
    assert results == [answer] * 3
    assert received == [list(arguments)] * 3
    assert called == [[type_name, method]] * 3
    assert requests == []


@behaviour("host-services.object.op.equals", "host-services.object.op.is-type-of")
@pytest.mark.parametrize(
    ("answer", "truth"), [(0, 0), (1, 1), (2, 1), (0x100, 0), (0xFFFFFF00, 0), (0x101, 1)]
)
@pytest.mark.parametrize(
    ("operation", "method"),
    [
        ("equals_of_obj", "IsEqualsOfObj"),
        ("equals_of_stc", "IsEqualsOfStc"),
        ("is_type_of", "IsTypeOf"),
    ],
)
def test_a_truth_value_is_the_low_byte(in_process, operation, method, answer, truth):
    types, arguments = (INT, POINTER, POINTER), (HANDLE, OTHER)
    outcome = in_process(operated, "object", operation, types, arguments, OBJECT, method, answer)
    assert outcome.value[0] == [truth] * 3


@behaviour("host-services.object.op.to-string")
def test_the_text_of_an_object_is_a_new_python_string(in_process):
    def program():
        import native

        script = Script()
        native.start_services()
        text = script.keep("some text")
        script.method(OBJECT, "ToStringOfObj", "WrpInterop.Kelmor.PSD").returns(1).writes(
            1, ctypes.c_void_p(id(text))
        )
        out = ctypes.py_object()
        call = native.function(
            "object_to_string_of_obj", ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p
        )
        ctypes.pythonapi.Py_IncRef(ctypes.py_object(text))
        return call(1, ctypes.addressof(out)), out.value

    assert in_process(program).value == [1, "some text"]


@behaviour("host-services.forward.nothing-added")
def test_an_operation_does_not_mind_a_pending_exception(in_process):
    def program(handle):
        import native

        script = Script()
        native.start_services()
        script.clear_journal()
        # One delegate sets the error and then, with the error pending, uses both hosts.
        trigger = script.method(EXCHANGE, "InitServices", "WrpInterop.Kelmor.PSD").takes(0)
        trigger.raises(KeyError, "pending")
        trigger.invokes(native.address("exchange_free_instance"), handle)
        trigger.invokes(native.address("object_get_hash_code_of_obj"), handle)
        try:
            native.function("exchange_init_services", None)()
        except KeyError as error:
            calls = [(e["method"], e["arguments"][:1]) for e in script.journal]
            return error.args, calls

    args, calls = in_process(program, HANDLE).value
    assert args == ["pending"]
    assert calls == [["InitServices", []], ["FreeInstance", [HANDLE]], ["GetHashOfObj", [HANDLE]]]


@pytest.mark.parametrize("host", ["exchange", "object"])
def test_no_operation_looks_whether_its_slot_is_bound(in_process, host):
    def program(host, operations):
        import os

        import native

        script = Script()
        script.refuse(OBJECT)
        native.start_services()
        # The exchange as it is before its start; the object host is one that failed.
        ctypes.memset(native.function("exchange_slots", ctypes.c_void_p)(), 0, 15 * 8)
        ends = {}
        for name in operations:
            child = os.fork()
            if child == 0:
                call = native.function(f"{host}_{name}", None, ctypes.c_void_p, ctypes.c_void_p)
                call(1, 2)
                os._exit(0)
            ends[name] = os.waitpid(child, 0)[1]
        return ends

    operations = [row.values[1] for row in OPERATIONS if row.values[0] == host]
    ends = in_process(program, host, operations).value
    assert len(ends) == {"exchange": 15, "object": 11}[host]
    assert [name for name, end in ends.items() if end == 0] == []


@behaviour("host-services.exit.no-managed-call")
def test_the_end_of_the_services_calls_no_delegate(in_process):
    def program():
        import native

        Script()
        native.start_services()

    calls = in_process(program).calls
    assert calls[-1] == "coreclr_wrap_shutdown"
    assert "delegate" not in calls


@behaviour("host-services.host-not-ready.text")
def test_the_exported_text_is_read_by_nobody(in_process):
    def program(method):
        import kelmor_probe
        import native

        text = ctypes.c_char_p.in_dll(ctypes.CDLL(kelmor_probe.__file__), "HostNotReady")
        before, text.value = text.value.decode(), b"replaced"
        script = Script()
        script.refuse(method=method, code=1)
        native.start_host()
        initialize = native.function("exchange_initialize", ctypes.c_int, ctypes.c_char_p)
        initialize(b"WrpInterop.Kelmor.PSD")
        return before, native.function("exchange_error_msg", ctypes.c_char_p)().decode()

    outcome = in_process(program, "GetTypeName")
    assert outcome.value == ["CLR Host is not ready", MESSAGE.format(EXCHANGE, "GetTypeName", 1)]
    assert "replaced" not in outcome.stdout + outcome.stderr


@behaviour("host-services.exchange.missing-box")
def test_without_the_last_method_the_others_are_bound(in_process):
    value = in_process(bound, (EXCHANGE, "BoxStcTarget"), MISSING).value
    assert [method for _, method in value["exchange"]] == EXCHANGE_METHODS
    assert all(value["exchange_slots"][:14]) and value["exchange_slots"][14] is None
    assert value["exchange_error"] == MESSAGE.format(EXCHANGE, "BoxStcTarget", MISSING)
