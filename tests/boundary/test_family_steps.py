"""How a module sets its types up, step by step, and the code of each step that fails."""

import peer
import pytest
from test_family_enums import imports_with
from test_shell_tree_steps import MARKS, fail_tree, modules_of, watch_tree

ERRORS = "kelmor.psd.coreexceptions.imageformats"
HEADER = "kelmor.psd.xmp.XmpHeaderPi"
STEPS = [
    (("PyType_Ready", HEADER), -1015, HEADER),
    (("PyModule_AddObject", "XmpHeaderPi"), -1014, "kelmor.psd.xmp,XmpHeaderPi"),
    (("PyDict_SetItemString", "XML"), -1020, "kelmor.psd.xmp.Namespaces,XML"),
    (("PyDict_SetItemString", "ErrorReason"), -1020, f"{ERRORS}.JpegLoadException,ErrorReason"),
]


@pytest.fixture(scope="module")
def watched(tmp_path_factory):
    installation = peer.Installation(tmp_path_factory.mktemp("setup") / "installation")
    installation.add_runtime()
    installation.add_assemblies("psd")
    outcome = peer.run_python(watch_tree, environment=installation.environment())
    assert outcome.code == 0, outcome
    return outcome.value


@pytest.mark.behaviour("family-class.setup.codes")
@pytest.mark.parametrize(("call", "code", "where"), STEPS)
def test_a_failing_step_of_a_type_has_its_code(in_process, call, code, where):
    seen = in_process(fail_tree, *call, -1).value
    text = f"Type initialization internal error ({code}) <{where}>"
    assert seen["shown"][1] == ["ImportError", text]


@pytest.mark.behaviour("family-class.setup.codes")
@pytest.mark.parametrize("mark", MARKS)
def test_a_failing_mark_of_a_class_has_its_code(in_process, watched, mark):
    """The marks of XmpHeaderPi, which has all four."""
    calls = [[function, text] for function, text, _ in watched[0]]
    published = calls.index(["PyModule_AddObject", "XmpHeaderPi"])
    earlier = calls[: published - 4].count(["PyDict_SetItem", mark])
    seen = in_process(fail_tree, "PyDict_SetItem", mark, -1, earlier).value
    text = f"Type initialization internal error ({MARKS[mark]}) <{HEADER}>"
    assert seen["shown"][1] == ["ImportError", text]


@pytest.mark.behaviour("family-class.setup.codes")
def test_an_enumeration_that_cannot_be_made_has_its_code(in_process):
    _, shown = in_process(imports_with, "XmpArrayType").value
    text = "Type initialization internal error (-1013) <kelmor.psd.xmp.XmpArrayType>"
    assert text in [text for _, text, _, _ in shown]


@pytest.mark.behaviour("family-class.setup.order")
def test_a_module_readies_all_types_and_then_sets_up_each_in_turn(watched):
    own = modules_of(watched[0])["kelmor.psd.xmp"]
    readied = [text for function, text in own if function == "PyType_Ready"]
    readied = [text for text in readied if not text.startswith("kelmor.psd._")]  # descriptors
    last = own.index(["PyType_Ready", readied[-1]])
    assert len(readied) > 3
    assert not [row for row in own[:last] if row[0] in ("PyDict_SetItem", "PyModule_AddObject")]
    for name in readied:
        place = own.index(["PyModule_AddObject", name.rpartition(".")[2]])
        marks = [row for row in own[place - 4 : place] if row[0] == "PyDict_SetItem"]
        assert ["PyDict_SetItem", "_kelmor_clr_castable_obj"] == marks[-1] == own[place - 1]
    statics = own.index(["PyDict_SetItemString", "XML"])
    published = own.index(["PyModule_AddObject", "Namespaces"])
    others = [row for row in own[published + 1 : statics] if row[0] != "PyType_Ready"]
    assert published < statics and others == []


@pytest.mark.behaviour("family-class.setup.order")
def test_a_type_is_registered_before_its_first_mark(in_process, watched):
    calls = [[function, text] for function, text, _ in watched[0]]
    published = calls.index(["PyModule_AddObject", "XmpHeaderPi"])
    first = "_additional_interfaces"
    earlier = calls[: published - 4].count(["PyDict_SetItem", first])

    def program(first, earlier):
        from family import Family, Registry, interposed
        from peer import Script

        script = Script()
        registry = Registry(script)
        family = Family().complete()
        interposed(script).fail("PyDict_SetItem", first, skip=earlier)
        family.failure()
        found = registry.find("Kelmor.PSD.Xmp.XmpHeaderPi")
        later = registry.find("Kelmor.PSD.Xmp.XmpTrailerPi")
        return found.__name__, first in vars(found), later is None

    assert in_process(program, first, earlier).value == ["XmpHeaderPi", False, True]


@pytest.mark.behaviour("family-enums.module.attribute")
def test_an_enumeration_is_an_attribute_of_its_module(in_process):
    def program():
        import enum

        from family import Family, interposed
        from peer import Script

        script = Script()
        family = Family().complete()
        between = interposed(script)
        between.fail("PyModule_AddObject", "XmpArrayType")
        text = family.failure()[1][1]
        between.relent()
        kind = vars(family.psd().xmp)["XmpArrayType"]
        return text, kind.__name__, issubclass(kind, enum.IntEnum)

    text = "Type initialization internal error (-1014) <kelmor.psd.xmp,XmpArrayType>"
    assert in_process(program).value == [text, "XmpArrayType", True]
