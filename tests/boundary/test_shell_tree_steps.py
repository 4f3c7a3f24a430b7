"""How the module tree is built: the order of the steps, and what becomes of one that fails."""

import ctypes
import json
import sys

import pytest
from peer import ROOT, Script

behaviour = pytest.mark.behaviour
MARKS = {
    "_additional_interfaces": -1017,
    "_implicit_interfaces": -1018,
    "_kelmor_clr_host": -1016,
    "_kelmor_clr_castable_obj": -1021,
}


def numbered(code):
    return f"One or more errors occurred while loading the module 'kelmor.psd' ({code})"


# The order.


def watch_tree():
    """The calls that build the tree, as [function, text, second argument]; and the types' bases."""
    from family import Family, interposed

    script = Script()
    family = Family().complete()
    between = interposed(script)
    between.watch(
        "PyModule_Create2",
        "PyModule_AddObject",
        "PyType_Ready",
        "PyImport_ImportModule",
        "PyDict_SetItem",
        "PyDict_SetItemString",
    )
    psd = family.psd()
    calls = [
        [entry["function"], entry["text"], entry["second"] & 0xFFFFFFFF]
        for entry in script.journal
        if entry["call"] == "python"
    ]
    bases = {}

    def visit(module):
        for value in vars(module).values():
            if isinstance(value, type(sys)):
                visit(value)
            elif isinstance(value, type):
                name = f"{value.__module__}.{value.__name__}"
                bases[name] = [f"{b.__module__}.{b.__name__}" for b in value.__bases__]

    visit(psd)
    return calls, bases


@pytest.fixture
def watched(in_process):
    return in_process(watch_tree).value


class Step:
    """What the initialiser of one module does, in order; children stand as one step each."""

    def __init__(self, name):
        self.name = name
        self.steps = []


def modules_of(calls):
    """The steps of each module. A module ends where its parent adds it."""
    finished, stack = {}, []
    for function, text, second in calls:
        if function == "PyModule_Create2":
            stack.append(Step(text))
            continue
        if not stack:
            continue
        top = stack[-1]
        if function == "PyModule_AddObject" and top.name.rsplit(".", 1)[1] == text:
            if len(stack) > 1 and stack[-2].name == top.name.rsplit(".", 1)[0]:
                if text != "_wrpgen":
                    stack.pop()
                    stack[-1].steps.append(["child", text])
                    finished[top.name] = top.steps
                    continue
        top.steps.append([function, text])
    finished[stack[0].name] = stack[0].steps
    return finished


def position(steps, step):
    return steps.index(step)


@behaviour("shell-tree.leaf.api-version")
def test_every_module_is_made_for_one_interface_version(watched):
    versions = [second for function, _, second in watched[0] if function == "PyModule_Create2"]
    assert len(versions) == 83
    assert set(versions) == {1013}


@behaviour("shell-tree.branch.children-before-ready")
def test_children_are_built_before_any_type_is_readied(watched):
    steps = modules_of(watched[0])
    seen = 0
    for name, own in steps.items():
        kinds = [function for function, _ in own]
        if "child" not in kinds or "PyType_Ready" not in kinds:
            continue
        last = max(index for index, kind in enumerate(kinds) if kind == "child")
        ready = [index for index, row in enumerate(own) if row[0] == "PyType_Ready"]
        if name == "kelmor.psd":
            ready = ready[2:]  # the two helper types come first of all
        seen += bool(ready)
        # The entry's own type follows the tree.
        assert all(index > last for index in ready), name
    assert seen >= 3


@behaviour("shell-tree.leaf.ready-order")
def test_types_are_readied_before_they_are_used(watched):
    calls, bases = watched
    readied = [text for function, text, _ in calls if function == "PyType_Ready"]
    first = {name: readied.index(name) for name in readied}
    for name, parents in bases.items():
        for parent in parents:
            if name in first and parent in first:
                assert first[parent] <= first[name], (parent, name)
    generated = {n: own for n, own in modules_of(calls).items() if "._wrpgen" not in n}
    assert len(generated) == 80
    for name, own in generated.items():
        # Readying ends before the first enumeration, whose base class is imported, and type.
        rows = own[: position(own, ["PyModule_AddObject", "__package__"])]
        ready = [
            index
            for index, (function, text) in enumerate(rows)
            if function == "PyType_Ready" and not text.startswith("kelmor.psd._")  # descriptors
        ]
        later = [
            index
            for index, (function, text) in enumerate(rows)
            if function == "PyImport_ImportModule" or text in MARKS
        ]
        if ready and later:
            assert max(ready) < min(later), name
    own_types = [text for _, text in modules_of(calls)["kelmor.psd.xmp"] if _ == "PyType_Ready"]
    interfaces = [text for text in own_types if text.endswith(".IXmlValue")]
    classes = [text for text in own_types if text.startswith("kelmor.psd.xmp.X")]
    assert interfaces and classes
    assert own_types.index(interfaces[0]) < min(own_types.index(text) for text in classes)


@behaviour("shell-tree.leaf.ready-foreign-types")
def test_bases_of_other_modules_are_readied_too(watched):
    steps = modules_of(watched[0])
    child = steps["kelmor.psd.coreexceptions.compressors"]
    base = ["PyType_Ready", "kelmor.psd.coreexceptions.CompressorException"]
    own = ["PyType_Ready", "kelmor.psd.coreexceptions.compressors.RleCompressorException"]
    # The module of the base is still at its children then.
    assert position(child, base) < position(child, own)
    parent = steps["kelmor.psd.coreexceptions"]
    assert position(parent, ["child", "compressors"]) < position(
        parent, ["PyModule_AddObject", "CompressorException"]
    )


@behaviour("shell-tree.leaf.static-members-last")
def test_static_members_follow_the_publication(watched):
    own = modules_of(watched[0])["kelmor.psd.xmp"]
    published = position(own, ["PyModule_AddObject", "Namespaces"])
    behind = [row for row in own[published + 1 :] if row[0] != "PyType_Ready"]  # of descriptors
    assert behind[0] == ["PyDict_SetItemString", "XML"]


@behaviour("shell-tree.leaf.type-steps-order")
def test_the_steps_of_a_type_follow_each_other(watched):
    own = modules_of(watched[0])["kelmor.psd.xmp"]
    published = position(own, ["PyModule_AddObject", "XmpHeaderPi"])
    assert own[published - 4 : published] == [["PyDict_SetItem", mark] for mark in MARKS]


# Failing steps.


def fail_tree(function, text, result, skip=0):
    """Imports with one failing call; then what is left, and whether a second import succeeds."""
    import gc
    import types

    from family import Family, interposed

    script = Script()
    family = Family().complete()
    between = interposed(script)
    between.keep()
    between.watch("PyType_Ready", "PyModule_Create2")
    between.fail(function, text, result, skip)
    shown = family.failure()
    calls = between.calls()
    kept = between.kept_counts() if function == "PyModule_AddObject" else None
    gc.collect()
    leftover = sorted(
        module.__name__
        for module in gc.get_objects()
        if isinstance(module, types.ModuleType) and module.__name__.startswith("kelmor.psd")
    )
    again = None
    if kept:
        between.relent()
        between.fail(function, text, result, skip)
        family.failure()
        again = between.kept_counts()
    between.relent()
    psd = family.psd()
    return {
        "shown": [entry[:2] for entry in shown],
        "linked": [entry[2] for entry in shown],
        "leftover": leftover,
        "last": calls[-1],
        "kept": kept,
        "again": again,
        "version": str(psd.VERSION),
        "published": ctypes.c_uint32.from_address(id(psd.xmp.XmpArrayType)).value,
    }


STEPS = [
    pytest.param(
        ("PyModule_Create2", "kelmor.psd.xmp.types.basic", 0),
        "Module initialization internal error (-1003) <kelmor.psd.xmp.types.basic>",
        marks=behaviour("shell-tree.leaf.create-failure", "shell-tree.branch.child-init-failure"),
        id="create-leaf",
    ),
    pytest.param(
        ("PyModule_Create2", "kelmor.psd.asynctask", 0),
        "Module initialization internal error (-1003) <kelmor.psd.asynctask>",
        marks=behaviour("shell-tree.leaf.create-failure", "shell-tree.branch.child-init-failure"),
        id="create-first-child",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd.xmp.XmpHeaderPi", -1),
        "Type initialization internal error (-1015) <kelmor.psd.xmp.XmpHeaderPi>",
        marks=behaviour("shell-tree.leaf.ready-failure"),
        id="ready-class",
    ),
    pytest.param(
        ("PyModule_AddObject", "XmpArrayType", -1),
        "Type initialization internal error (-1014) <kelmor.psd.xmp,XmpArrayType>",
        marks=behaviour("shell-tree.leaf.enum-add-failure", "family-enums.module.attribute"),
        id="add-enum",
    ),
    pytest.param(
        ("PyModule_AddObject", "XmpHeaderPi", -1),
        "Type initialization internal error (-1014) <kelmor.psd.xmp,XmpHeaderPi>",
        marks=behaviour("shell-tree.leaf.class-add-failure"),
        id="add-class",
    ),
    pytest.param(
        ("PyModule_AddObject", "Rectangle", -1),
        "Type initialization internal error (-1014) <kelmor.psd,Rectangle>",
        marks=behaviour("shell-tree.leaf.class-add-failure"),
        id="add-struct",
    ),
    pytest.param(
        ("PyDict_SetItemString", "XML", -1),
        "Type initialization internal error (-1020) <kelmor.psd.xmp.Namespaces,XML>",
        marks=behaviour("shell-tree.leaf.static-members-last"),
        id="add-static-member",
    ),
    pytest.param(
        ("PyModule_AddObject", "__package__", -1),
        "Module initialization internal error (-1022) <kelmor.psd.asynctask>",
        marks=behaviour("shell-tree.leaf.package-failure"),
        id="package-of-a-leaf",
    ),
    pytest.param(
        ("PyModule_AddObject", "__package__", -1, 4),
        "Module initialization internal error (-1022) <kelmor.psd.coreexceptions>",
        marks=behaviour("shell-tree.branch.package-or-path-failure"),
        id="package-of-a-branch",
    ),
    pytest.param(
        ("PyModule_AddObject", "__path__", -1),
        "Module initialization internal error (-1022) <kelmor.psd.coreexceptions>",
        marks=behaviour("shell-tree.branch.package-or-path-failure"),
        id="path-of-a-branch",
    ),
    pytest.param(
        ("PyModule_AddObject", "schemas", -1),
        "Module initialization internal error (-1002) <kelmor.psd.xmp,schemas>",
        marks=behaviour("shell-tree.branch.add-failure"),
        id="add-child",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd._FieldDescrType", -1),
        "Type initialization internal error (-1015) <kelmor.psd._FieldDescrType>",
        marks=behaviour("shell-tree.root.helper-types-failure"),
        id="ready-field-descriptor",
    ),
    pytest.param(
        ("PyType_Ready", "kelmor.psd._MixMethodDescrType", -1),
        "Type initialization internal error (-1015) <kelmor.psd._MixMethodDescrType>",
        marks=behaviour("shell-tree.root.helper-types-failure"),
        id="ready-mixed-descriptor",
    ),
    pytest.param(
        ("PyModule_AddObject", "_FieldDescrType", -1),
        "Type initialization internal error (-1014) <kelmor.psd,_FieldDescrType>",
        marks=behaviour("shell-tree.root.helper-types-failure"),
        id="add-field-descriptor",
    ),
    pytest.param(
        ("PyModule_AddObject", "_MixMethodDescrType", -1),
        "Type initialization internal error (-1014) <kelmor.psd,_MixMethodDescrType>",
        marks=behaviour("shell-tree.root.helper-types-failure"),
        id="add-mixed-descriptor",
    ),
]


@behaviour(
    "shell-tree.failure.chained-under-entry",
    "shell-tree.failure.releases-own-module",
    "shell-tree.failure.types-stay-ready",
    "shell-versions.codes.table",
)
@pytest.mark.parametrize(("call", "text"), STEPS)
def test_a_failing_step_ends_the_tree(in_process, call, text):
    seen = in_process(fail_tree, *call).value
    assert seen["shown"] == [
        ["ImportError", numbered(-1006)],
        ["ImportError", text],
        ["RuntimeError", "refused by the test"],
    ]
    assert seen["linked"][:2] == [True, True]
    # What failed is the end: no later type is readied, no later module made.
    if call[0] in ("PyType_Ready", "PyModule_Create2"):
        assert seen["last"] == [call[0], call[1]]
    if seen["kept"]:
        # The test has added a reference at each of two failures. A static type shows both; what is
        # made anew each time shows one. An enumeration has references to itself besides, and here
        # the one of the test in place of the one that its module would have.
        first, second = seen["kept"][1], seen["again"][1]
        if call[1] in ("XmpArrayType", "__package__", "__path__", "schemas"):
            assert first == second == (seen["published"] if call[1] == "XmpArrayType" else 1)
        elif first < 1 << 31:
            assert second == first + 1
        else:  # static types are immortal from 3.12 on: nothing can be told by their counts
            assert sys.version_info >= (3, 12) and second == first
    else:
        assert seen["leftover"] == []
    assert seen["version"] == "24.11.0.0"


@behaviour("shell-tree.failure.types-stay-ready", "shell-entry.failed.types-stay-ready")
def test_types_that_were_readied_are_those_of_the_next_import(in_process):
    def program():
        from family import Family, interposed

        family = Family().complete()
        between = interposed(Script())
        between.fail("PyModule_AddObject", "schemas")
        family.failure()
        between.relent()
        ready = [kind for kind in object.__subclasses__() if "kelmor.psd." in kind.__module__]
        psd = family.psd()
        return (
            len(ready),
            all(kind.__flags__ & (1 << 12) for kind in ready),
            psd.memorymanagement.Configuration in ready,
            psd.xmp.XmpHeaderPi in ready,
        )

    # The module at which it failed had readied no type of its own yet.
    count, are_ready, earlier, later = in_process(program).value
    assert (count > 10, are_ready, earlier, later) == (True, True, True, False)


@behaviour("shell-tree.leaf.mark-failure-codes", "shell-versions.codes.table")
@pytest.mark.parametrize("mark", MARKS)
def test_a_failing_mark_has_its_code(in_process, mark):
    seen = in_process(fail_tree, "PyDict_SetItem", mark, -1).value
    # The first type of the tree that gets any mark, and the first that has interfaces.
    shown = seen["shown"]
    assert shown[0] == ["ImportError", numbered(-1006)]
    kind, text = shown[1]
    assert kind == "ImportError"
    start = f"Type initialization internal error ({MARKS[mark]}) <kelmor.psd."
    assert text.startswith(start) and text.endswith(">")
    assert shown[2] == ["RuntimeError", "refused by the test"]
    assert seen["version"] == "24.11.0.0"


@behaviour("shell-tree.leaf.type-steps-order")
@pytest.mark.parametrize("mark", MARKS)
def test_a_type_is_registered_before_it_is_marked(in_process, mark):
    def program(mark):
        from family import Family, Registry, interposed

        script = Script()
        registry = Registry(script)
        family = Family().complete()
        between = interposed(script)
        between.fail("PyDict_SetItem", mark)
        text = family.failure()[1][1]
        name = text.split("<")[1].split(">")[0].rsplit(".", 1)[1]
        # The managed name of that Python type, out of the description.
        import glob
        import json

        found = None
        for path in glob.glob(f"{ROOT}/api/psd/*.json"):
            with open(path) as file:
                content = json.load(file)
            for entry in content.get("types", []) if "types" in content else []:
                if entry["type"] == name and found is None:
                    found = registry.find(f"{content['namespace']}.{name}")
        return found.__name__ if found else None, name, mark in vars(found)

    found, name, marked = in_process(program, mark).value
    assert found == name
    assert not marked


@behaviour("shell-tree.leaf.type-steps-order")
def test_a_type_that_cannot_be_published_is_registered_and_marked(in_process):
    def program():
        from family import Family, Registry, interposed
        from shell_tree import marks_of

        script = Script()
        registry = Registry(script)
        family = Family().complete()
        between = interposed(script)
        between.fail("PyModule_AddObject", "XmpHeaderPi")
        family.failure()
        found = registry.find("Kelmor.PSD.Xmp.XmpHeaderPi")
        later = registry.find("Kelmor.PSD.Xmp.XmpTrailerPi")
        return found.__name__, list(marks_of(found)), later is None

    assert in_process(program).value == ["XmpHeaderPi", list(MARKS), True]


# The registry.


def managed_classes():
    """Full managed names of classes, interfaces and structs, and the Python types' names."""
    found = {}
    for path in sorted((ROOT / "api/psd").glob("*.json")):
        content = json.loads(path.read_text())
        for entry in content["types"]:
            if entry["kind"] != "enum" and "." not in entry["type"] and "+" not in entry["type"]:
                found[f"{content['namespace']}.{entry['type']}"] = entry["type"]
    return found


@behaviour("shell-tree.leaf.type-registered")
def test_every_class_is_found_by_its_managed_name(in_process):
    def program(names):
        from family import Family, Registry

        script = Script()
        registry = Registry(script)
        psd = Family().complete().psd()

        def place(name):
            module = psd
            for part in name.split(".")[2:-1]:
                module = getattr(module, part.lower())
            return getattr(module, name.rsplit(".", 1)[1])

        return {name: registry.find(name) is place(name) for name in names}

    names = list(managed_classes())
    assert len(names) > 30
    found = in_process(program, names).value
    assert [name for name, is_found in found.items() if not is_found] == []


@behaviour("shell-tree.interop.not-registered")
def test_no_hidden_type_is_found_by_a_managed_name(in_process):
    def program():
        from family import Family, Registry

        script = Script()
        registry = Registry(script)
        psd = Family().complete().psd()
        names = [
            "System.IO.Stream",
            "System.IO.MemoryStream",
            "System.Collections.IList",
            "System.Collections.ICollection",
            "System.Collections.IEnumerable",
            "System.Collections.IEnumerator",
            "System.Collections.ArrayList",
            "System.Collections.CollectionBase",
            "System.Collections.ReadOnlyCollectionBase",
            "System.IDisposable",
            "System.Array",
            "Kelmor.WrpGen.Interop.SiApiStream",
            "Kelmor.WrpGen.Interop.SiApiList",
            "Kelmor.WrpGen.Interop.SiApiEnumerable",
        ]
        names += [name for name in vars(psd._wrpgen._interop) if name.startswith("_")]
        known = registry.find("Kelmor.PSD.Xmp.XmpHeaderPi").__name__
        return known, [name for name in names if registry.find(name)]

    assert in_process(program).value == ["XmpHeaderPi", []]


@behaviour("shell-tree.wrpgen.result-not-owned")
def test_the_hidden_module_belongs_to_the_root(in_process):
    def program():
        from family import Family

        psd = Family().complete().psd()
        return ctypes.c_uint32.from_address(id(psd._wrpgen)).value

    # The root's dictionary, and the copy of it that the interpreter keeps of a module of its kind.
    assert in_process(program).value == 2


@behaviour("shell-tree.leaf.enum-short-name")
def test_an_enumeration_is_held_by_what_is_seen_to_hold_it(in_process):
    if sys.version_info < (3, 9):
        pytest.skip("on this interpreter objects do not tell the collector of their class")

    def program():
        import gc

        from family import Family

        xmp = Family().complete().psd().xmp
        holders = gc.get_referrers(xmp.XmpArrayType)
        found = sum(
            sum(1 for value in gc.get_referents(item) if value is xmp.XmpArrayType)
            for item in holders
        )
        return ctypes.c_uint32.from_address(id(xmp.XmpArrayType)).value - found

    assert in_process(program).value == 0
