"""The whole family in one process: whoever comes first starts the runtime, once."""

import itertools

import pytest
from peer import ASSEMBLY, EXCHANGE

LEAVES = ["shellbase", "typemodel", "gfxtypes", "shellcommon", "psd"]
# Which modules an import brings along, itself included; of those the ones that use a runtime.
BRINGS = {
    "shellbase": [],
    "shellcommon": [],
    "typemodel": ["typemodel"],
    "gfxtypes": ["typemodel", "gfxtypes"],
    "psd": ["typemodel", "gfxtypes", "psd"],
}
ASSEMBLIES = {
    "typemodel": "WrpInterop.Kelmor.TypeModel",
    "gfxtypes": "WrpInterop.Kelmor.GfxTypes",
    "psd": ASSEMBLY,
}


def import_in_order(order):
    import importlib
    import sys

    sys.path.insert(0, str(STAGE))  # noqa: F821
    script = Script()  # noqa: F821
    started = []
    for leaf in order:
        importlib.import_module(f"kelmor.{leaf}")
        started.append(script.calls.count("coreclr_wrap_initialize"))
    return {
        "started": started,
        "versions": [repr(sys.modules[f"kelmor.{leaf}"].VERSION) for leaf in order],
    }


def assemblies(outcome):
    """The assemblies whose exchange service was bound, in order."""
    return [
        entry["assembly"]
        for entry in outcome.journal
        if entry["call"] == "coreclr_wrap_create_delegate"
        and (entry["type"], entry["method"]) == (EXCHANGE, "GetTypeName")
    ]


@pytest.mark.parametrize("first", LEAVES)
def test_every_order_starts_and_ends_one_runtime(in_process, first):
    others = [leaf for leaf in LEAVES if leaf != first]
    for rest in itertools.permutations(others):
        order = [first, *rest]
        outcome = in_process(import_in_order, order)
        expected = []
        for leaf in order:
            expected += [name for name in BRINGS[leaf] if name not in expected]
        assert assemblies(outcome) == [ASSEMBLIES[name] for name in expected], order
        assert outcome.value["versions"] == [
            f"<kelmor.{leaf}._ModuleVersionType: 24.11.0.0>" for leaf in order
        ]
        seen = list(
            itertools.accumulate(
                order, lambda done, leaf: done or bool(BRINGS[leaf]), initial=False
            )
        )[1:]
        assert outcome.value["started"] == [int(done) for done in seen], order
        calls = outcome.calls
        for entry in ("load", "initialize", "shutdown"):
            assert calls.count(f"coreclr_wrap_{entry}") == 1, (entry, order)
        assert calls[-1] == "coreclr_wrap_shutdown"
        # The first module starts and ends the runtime, the two others ask whether there is one.
        ends = [outcome.entry(f"coreclr_wrap_{entry}") for entry in ("initialize", "shutdown")]
        assert [entry["caller"].split(".")[0] for entry in ends] == [expected[0]] * 2, order
        assert calls.count("coreclr_wrap_is_domain_initialized") == 2


@pytest.mark.parametrize("leaf", ["typemodel", "gfxtypes", "psd"])
def test_a_module_that_fails_leaves_the_runtime_to_the_others(in_process, leaf):
    def program(leaf, assembly):
        import importlib
        import sys

        from family import chain

        sys.path.insert(0, str(STAGE))  # noqa: F821
        script = Script()  # noqa: F821
        script.refuse(EXCHANGE, "InitServices", 5, assembly)
        try:
            importlib.import_module(f"kelmor.{leaf}")
        except ImportError as error:
            shown = chain(error)
        script.allow(EXCHANGE, "InitServices", assembly)
        module = importlib.import_module(f"kelmor.{leaf}")
        return [entry[:2] for entry in shown], str(module.VERSION)

    outcome = in_process(program, leaf, ASSEMBLIES[leaf])
    shown, version = outcome.value
    assert shown[0] == [
        "ImportError",
        f"One or more errors occurred while loading the module 'kelmor.{leaf}' (-1007)",
    ]
    assert shown[1][0] == "TypeError" and f"(Assembly={ASSEMBLIES[leaf]})" in shown[1][1]
    assert version == "24.11.0.0"
    assert outcome.calls.count("coreclr_wrap_initialize") == 1
    assert outcome.calls.count("coreclr_wrap_shutdown") == 1


def fail_step(leaf, function, text, result, last):
    """Imports a sibling with one failing call, then again without; what `last` is by then."""
    import importlib
    import sys

    from family import chain, interposed

    sys.path.insert(0, str(STAGE))  # noqa: F821
    between = interposed(Script(), leaf)  # noqa: F821
    between.fail(function, text, result)
    try:
        importlib.import_module(f"kelmor.{leaf}")
    except ImportError as error:
        shown = chain(error)
    between.relent()
    module = importlib.import_module(f"kelmor.{leaf}")
    return [entry[:3] for entry in shown], str(getattr(module, last))


@pytest.mark.parametrize(
    ("leaf", "capsule"), [("shellbase", "_C_APIF"), ("typemodel", "_C_APIT_Type")]
)
def test_a_capsule_that_cannot_be_offered_ends_the_import(in_process, leaf, capsule):
    shown, made = in_process(fail_step, leaf, "PyModule_AddObject", capsule, -1, capsule).value
    assert shown == [
        [
            "ImportError",
            f"One or more errors occurred while loading the module 'kelmor.{leaf}' (-1006)",
            True,
        ],
        ["RuntimeError", "refused by the test", True],
    ]
    assert made.startswith(f'<capsule object "kelmor.{leaf}.{capsule}" at ')


STEPS = [
    pytest.param(
        ("PyModule_Create2", "{module}", 0),
        -1006,
        "Module initialization internal error (-1003) <{module}>",
        id="root",
    ),
    pytest.param(
        ("PyType_Ready", "{module}._ModuleVersionType", -1),
        -1004,
        "Type initialization internal error (-1015) <{module}._ModuleVersionType>",
        id="ready-version-type",
    ),
    pytest.param(
        ("PyModule_AddObject", "_ModuleVersionType", -1),
        -1004,
        "Type initialization internal error (-1014) <{module},_ModuleVersionType>",
        id="add-version-type",
    ),
    pytest.param(("PyModule_AddObject", "VERSION", -1), -1001, None, id="add-version"),
    pytest.param(
        ("PyModule_AddObject", "_BACKWARD_COMPATIBILITY_THRESHOLD", -1),
        -1019,
        None,
        id="add-threshold",
    ),
]


@pytest.mark.parametrize("leaf", [leaf for leaf in LEAVES if leaf != "psd"])
@pytest.mark.parametrize(("call", "code", "reason"), STEPS)
def test_a_failing_step_of_a_sibling_is_numbered_in_its_name(in_process, leaf, call, code, reason):
    function, text, result = call
    module = f"kelmor.{leaf}"
    shown, threshold = in_process(
        fail_step,
        leaf,
        function,
        text.format(module=module),
        result,
        "_BACKWARD_COMPATIBILITY_THRESHOLD",
    ).value
    expected = [f"One or more errors occurred while loading the module '{module}' ({code})"]
    expected += [reason.format(module=module)] if reason else []
    assert shown == [
        *(["ImportError", text, True] for text in expected),
        ["RuntimeError", "refused by the test", True],
    ]
    assert threshold == "22.6.0.0"


def test_a_reason_goes_up_through_the_whole_family(in_process):
    def program():
        import importlib
        import sys

        from family import chain

        sys.path.insert(0, str(STAGE))  # noqa: F821
        script = Script()  # noqa: F821
        sys.modules["kelmor.shellbase"] = None
        try:
            importlib.import_module("kelmor.psd")
        except ImportError as error:
            shown = chain(error)
        left = sorted(name for name in sys.modules if name.startswith("kelmor."))
        started = len(script.calls)
        del sys.modules["kelmor.shellbase"]
        version = str(importlib.import_module("kelmor.psd").VERSION)
        return [entry[:2] for entry in shown], [e[2] for e in shown], left, started, version

    outcome = in_process(program)
    shown, linked, left, started, version = outcome.value
    texts = []
    for leaf, needs, code in [
        ("psd", "gfxtypes", -1009),
        ("gfxtypes", "typemodel", -1009),
        ("typemodel", "shellbase", -1008),
    ]:
        texts += [
            f"One or more errors occurred while loading the module 'kelmor.{leaf}' ({code})",
            "Unable to import module dependencies. Cannot import the "
            f"kelmor.{needs} module. The module not found or errors occurred while initializing "
            "it.",
        ]
    assert shown == [
        *(["ImportError", text] for text in texts),
        ["ModuleNotFoundError", "import of kelmor.shellbase halted; None in sys.modules"],
    ]
    assert linked == [True] * 7
    # Nothing is published and nothing started; then all is made in one go.
    assert (left, started, version) == (["kelmor.shellbase"], 0, "24.11.0.0")
    assert outcome.calls.count("coreclr_wrap_initialize") == 1
    assert outcome.entry("coreclr_wrap_shutdown")["caller"].startswith("typemodel.")
