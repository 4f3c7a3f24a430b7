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
        "versions": [str(sys.modules[f"kelmor.{leaf}"].VERSION) for leaf in order],
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
        assert outcome.value["versions"] == ["24.11.0.0"] * 5
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
        # The first module starts the runtime, the two others ask whether there is one.
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


@pytest.mark.parametrize(
    ("leaf", "capsule"), [("shellbase", "_C_APIF"), ("typemodel", "_C_APIT_Type")]
)
def test_a_capsule_that_cannot_be_offered_ends_the_import(in_process, leaf, capsule):
    def program(leaf, capsule):
        import importlib
        import sys

        from family import chain, interposed

        sys.path.insert(0, str(STAGE))  # noqa: F821
        between = interposed(Script(), leaf)  # noqa: F821
        between.fail("PyModule_AddObject", capsule)
        try:
            importlib.import_module(f"kelmor.{leaf}")
        except ImportError as error:
            shown = chain(error)
        between.relent()
        module = importlib.import_module(f"kelmor.{leaf}")
        return [entry[:3] for entry in shown], type(getattr(module, capsule)).__name__

    shown, kind = in_process(program, leaf, capsule).value
    assert shown == [
        [
            "ImportError",
            f"One or more errors occurred while loading the module 'kelmor.{leaf}' (-1006)",
            True,
        ],
        ["RuntimeError", "refused by the test", True],
    ]
    assert kind == "PyCapsule"
