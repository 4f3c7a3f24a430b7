"""The module tree of the extension, as it stands after an import over stub siblings."""

import json
import sys

import pytest
from peer import ROOT, Installation, run_python

behaviour = pytest.mark.behaviour
MARKS = [
    "_additional_interfaces",
    "_implicit_interfaces",
    "_kelmor_clr_host",
    "_kelmor_clr_castable_obj",
]
CHILDREN = [
    "asynctask",
    "brushes",
    "coreexceptions",
    "customfonthandler",
    "dithering",
    "exif",
    "extensions",
    "fileformats",
    "flatarray",
    "imagefilters",
    "imageloadoptions",
    "imageoptions",
    "interfaces",
    "memorymanagement",
    "multithreading",
    "palettehelper",
    "progressmanagement",
    "shapesegments",
    "shapes",
    "sources",
    "xmp",
]
INTEROP_SETS = {
    "_IDisposableWrapper": None,
    "_IterWrapper": None,
    "_IterableWrapper": None,
    "_IColWrapper": ["_IterableWrapper"],
    "_IListWrapper": ["_IColWrapper", "_IterableWrapper"],
    "_RoColBaseWrapper": ["_IColWrapper", "_IterableWrapper"],
    "_ColBaseWrapper": ["_IColWrapper", "_IListWrapper", "_IterableWrapper"],
    "_ArrayWrapper": ["_IColWrapper", "_IListWrapper", "_IterableWrapper"],
    "_ArrListWrapper": ["_IColWrapper", "_IListWrapper", "_IterableWrapper"],
    "_ShlBufferView": None,
    "_StreamWrapper": ["_IDisposableWrapper"],
}
HIDDEN = ["kelmor.psd._wrpgen", "kelmor.psd._wrpgen._interop", "kelmor.psd._wrpgen._generic"]


def walk():
    from family import Family
    from shell_tree import describe

    psd = Family().complete().psd()
    return describe(psd), sorted(name for name in sys.modules if name.startswith("kelmor"))


@pytest.fixture(scope="module")
def imported(tmp_path_factory):
    installation = Installation(tmp_path_factory.mktemp("tree") / "installation")
    installation.add_runtime()
    outcome = run_python(walk, environment=installation.environment())
    assert outcome.code == 0, outcome
    return outcome.value


@pytest.fixture(scope="module")
def everything(imported):
    """All modules, the hidden ones too, by their paths."""
    return imported[0]


@pytest.fixture(scope="module")
def tree(everything):
    """The generated modules."""
    return {path: module for path, module in everything.items() if path not in HIDDEN}


@pytest.fixture(scope="module")
def root(tree):
    return tree["kelmor.psd"]


@pytest.fixture(scope="module")
def interop(everything):
    return everything["kelmor.psd._wrpgen._interop"]


@pytest.fixture(scope="module")
def described():
    """The modules in the order of the description, each after the one that holds it."""
    with open(ROOT / "api/modules.json") as file:
        return [name for name, _ in json.load(file)["psd"]["modules"]]


def names(module, *kinds):
    return [name for name, kind in module["attributes"] if kind in kinds]


def is_branch(module):
    return bool(names(module, "module"))


@behaviour("shell-tree.module.name-is-dotted", "shell-tree.sys-modules.attribute-access")
def test_each_module_is_named_by_the_path_to_it(tree, described):
    assert len(tree) == 80
    assert {path: module["name"] for path, module in tree.items()} == {
        path: path for path in described
    }


@behaviour("shell-tree.module.no-doc")
def test_no_module_has_documentation(everything):
    assert {module["doc"] for module in everything.values()} == {None}


@behaviour("shell-tree.module.def-fields", "shell-entry.module.definition")
def test_each_definition_is_single_phase_and_bare(everything):
    assert len(everything) == 83
    for path, module in everything.items():
        found = module["definition"]
        assert found == {"name": path, "doc": None, "size": -1, "hooks": [None] * 4}, path


@behaviour("shell-tree.module.def-methods-empty", "shell-entry.module.one-function")
def test_the_root_alone_has_a_function(everything):
    functions = {
        path: names(module, "builtin_function_or_method") for path, module in everything.items()
    }
    assert functions.pop("kelmor.psd") == ["get_pyinstaller_hook_dirs"]
    assert not any(functions.values())


@behaviour("shell-tree.module.same-leaf-twice")
@pytest.mark.parametrize(
    ("leaf", "places"),
    [
        ("psd", ["kelmor", "kelmor.psd.fileformats"]),
        (
            "enums",
            [
                "kelmor.psd.exif",
                "kelmor.psd.fileformats.psd.resources",
                "kelmor.psd.fileformats.tiff",
            ],
        ),
        ("core", ["kelmor.psd.fileformats", "kelmor.psd.fileformats.psd"]),
        ("pdf", ["kelmor.psd.fileformats", "kelmor.psd.xmp.schemas"]),
    ],
)
def test_equal_leaves_are_different_modules(tree, leaf, places):
    found = {path: module for path, module in tree.items() if path.rsplit(".", 1)[1] == leaf}
    assert sorted(found) == sorted(f"{place}.{leaf}" for place in places)
    assert len({module["id"] for module in found.values()}) == len(places)


@behaviour("shell-tree.module.handwritten-names")
def test_the_hidden_modules_are_reached_by_their_names(everything):
    assert [everything[path]["name"] for path in HIDDEN] == HIDDEN


@behaviour("shell-tree.branch.child-attribute")
def test_a_child_is_the_attribute_of_its_last_name(tree):
    children = {
        f"{path}.{name}" for path, module in tree.items() for name in names(module, "module")
    }
    assert children - set(HIDDEN) == set(tree) - {"kelmor.psd"}


@behaviour("shell-tree.root.children-order")
def test_the_children_of_the_root_stand_in_their_order(root):
    assert [name for name in names(root, "module") if name != "_wrpgen"] == CHILDREN


def test_the_children_of_every_module_stand_in_the_described_order(tree, described):
    for path, module in tree.items():
        inside = [name.rsplit(".", 1) for name in described if name != "kelmor.psd"]
        wanted = [leaf for parent, leaf in inside if parent == path]
        assert [name for name in names(module, "module") if name != "_wrpgen"] == wanted, path


@behaviour("shell-tree.root.helper-types-first")
def test_the_helper_types_stand_before_the_children(root):
    kinds = [row for row in root["attributes"] if row[0] != "get_pyinstaller_hook_dirs"]
    assert kinds[:3] == [
        ["_FieldDescrType", "type"],
        ["_MixMethodDescrType", "type"],
        ["asynctask", "module"],
    ]


@behaviour("shell-tree.root.own-classes-after-children", "shell-tree.root.wrpgen-last")
def test_the_own_types_of_the_root_stand_behind_its_children(root):
    attributes = root["attributes"]
    start = attributes.index(["xmp", "module"]) + 1
    end = attributes.index(["_wrpgen", "module"])
    kinds = [kind for _, kind in attributes[start:end]]
    assert kinds.count("type") > 5 and kinds.count("enum") > 2
    assert kinds == sorted(kinds)  # "enum" before "type", and nothing else
    assert [name for name, _ in attributes[end + 1 :]] == [
        "_ModuleVersionType",
        "VERSION",
        "_BACKWARD_COMPATIBILITY_THRESHOLD",
    ]


@behaviour("shell-tree.leaf.enum-before-class", "shell-tree.branch.children-before-types")
def test_children_stand_before_enumerations_and_those_before_classes(tree):
    seen = set()
    for path, module in tree.items():
        if path == "kelmor.psd":
            continue
        kinds = [kind for _, kind in module["attributes"]]
        assert set(kinds) <= {"module", "enum", "type"}, path
        assert kinds == sorted(kinds, key=["module", "enum", "type"].index), path
        seen |= {(a, b) for a, b in zip(kinds, kinds[1:])}
    assert {("module", "enum"), ("enum", "type")} <= seen


@behaviour("shell-tree.leaf.enum-short-name", "family-enums.module.attribute")
def test_enumerations_go_by_their_short_names(tree):
    assert "XmpArrayType" in tree["kelmor.psd.xmp"]["enums"]
    for path, module in tree.items():
        assert module["enums"] == module["enum_names"], path


@behaviour("shell-tree.leaf.class-short-name")
def test_classes_go_by_their_short_names(tree):
    assert tree["kelmor.psd.xmp"]["types"]["XmpHeaderPi"]["name"] == "XmpHeaderPi"
    for path, module in tree.items():
        for name, kind in module["types"].items():
            assert (kind["name"], kind["module"]) == (name, path)
            assert not kind["flags"] & (1 << 9)  # static data, not made on the heap


@behaviour("shell-tree.leaf.package-attribute", "shell-tree.leaf.no-path")
def test_the_package_of_a_leaf_is_its_parent(tree):
    photoshop = tree["kelmor.psd.xmp.schemas.photoshop"]
    assert photoshop["package"] == "kelmor.psd.xmp.schemas"
    leaves = {path: module for path, module in tree.items() if not is_branch(module)}
    assert len(leaves) > 40
    for path, module in leaves.items():
        assert (module["package"], module["package_type"]) == (path.rsplit(".", 1)[0], "str")
        assert module["path_type"] == "NoneType"


@behaviour("shell-tree.branch.package-attribute", "shell-tree.branch.path-empty-list")
def test_a_branch_is_its_own_package_without_files(tree):
    assert tree["kelmor.psd.xmp.schemas"]["package"] == "kelmor.psd.xmp.schemas"
    branches = {path: module for path, module in tree.items() if is_branch(module)}
    assert len(branches) > 10
    for path, module in branches.items():
        assert (module["package"], module["package_type"]) == (path, "str")
        assert (module["path"], module["path_type"]) == ([], "list")


@behaviour("shell-tree.root.package-and-path")
def test_the_root_is_a_branch(root):
    assert (root["package"], root["path"], root["path_type"]) == ("kelmor.psd", [], "list")


@behaviour("shell-tree.capsule.none-in-tree")
def test_no_module_holds_a_capsule(everything):
    kinds = {kind for module in everything.values() for _, kind in module["attributes"]}
    assert "PyCapsule" not in kinds
    assert {"module", "type", "enum"} <= kinds


@behaviour("shell-tree.sys-modules.no-submodule")
def test_no_submodule_is_known_to_the_import_system(imported):
    loaded = imported[1]
    assert "kelmor.psd" in loaded
    assert [name for name in loaded if name.startswith("kelmor.psd.")] == []


# Marks.


def bound_types(tree):
    helpers = {"_FieldDescrType", "_MixMethodDescrType", "_ModuleVersionType"}
    return {
        f"{path}.{name}": kind
        for path, module in tree.items()
        for name, kind in module["types"].items()
        if name not in helpers
    }


@behaviour("shell-tree.leaf.mark-order")
def test_the_marks_of_a_type_stand_in_their_order(tree):
    orders = {tuple(kind["marks"]) for kind in bound_types(tree).values()}
    assert orders == {tuple(MARKS), tuple(MARKS[2:])}


@behaviour("shell-tree.leaf.no-interface-no-set")
def test_a_type_without_interfaces_has_no_sets(tree):
    types = bound_types(tree)
    bare = [kind for kind in types.values() if list(kind["marks"]) == MARKS[2:]]
    assert len(bare) > 10
    with_sets = [kind for kind in types.values() if list(kind["marks"]) == MARKS]
    assert all(kind["marks"]["_additional_interfaces"] for kind in with_sets)
    assert list(types["kelmor.psd.xmp.Namespaces"]["marks"]) == MARKS[2:]
    header = types["kelmor.psd.xmp.XmpHeaderPi"]["marks"]
    assert header["_additional_interfaces"] == header["_implicit_interfaces"] == ["IXmlValue"]


STRUCTS = {"Color", "CmykColor", "Point", "PointF", "Rectangle", "RectangleF", "Size", "SizeF"}


@behaviour("shell-tree.leaf.host-mark-flavour")
def test_the_host_mark_tells_classes_from_structs(tree):
    seen = set()
    for path, kind in bound_types(tree).items():
        is_struct = path.startswith("kelmor.psd.") and path[len("kelmor.psd.") :] in STRUCTS
        seen.add(is_struct)
        assert kind["marks"]["_kelmor_clr_host"] == ("Ellipsis" if is_struct else "None"), path
        assert kind["marks"]["_kelmor_clr_castable_obj"] == "None"
    assert seen == {True, False}


# The hidden modules.


@behaviour("shell-tree.wrpgen.order")
def test_the_hidden_tree_holds_two_modules(everything):
    assert everything[HIDDEN[0]]["attributes"] == [["_interop", "module"], ["_generic", "module"]]


@behaviour("shell-tree.interop.types-in-order")
def test_the_wrappers_stand_in_their_order(interop):
    assert interop["attributes"] == [[name, "type"] for name in INTEROP_SETS]


@behaviour("shell-tree.interop.interface-sets")
def test_the_wrappers_name_their_interfaces(interop):
    for name, wanted in INTEROP_SETS.items():
        marks = interop["types"][name]["marks"]
        assert marks.get("_additional_interfaces") == wanted, name
        assert marks.get("_implicit_interfaces") == wanted, name


@behaviour("shell-tree.interop.no-interfaces")
@pytest.mark.parametrize("name", ["_IDisposableWrapper", "_IterWrapper", "_IterableWrapper"])
def test_the_first_wrappers_have_no_interfaces(interop, name):
    assert interop["types"][name]["marks"] == {
        "_kelmor_clr_host": "None",
        "_kelmor_clr_castable_obj": "None",
    }


@behaviour("shell-tree.interop.mark-order")
def test_the_marks_of_the_wrappers_stand_in_their_order(interop):
    for name, interfaces in INTEROP_SETS.items():
        if name != "_ShlBufferView":
            wanted = MARKS if interfaces else MARKS[2:]
            assert list(interop["types"][name]["marks"]) == wanted, name


@behaviour("shell-tree.interop.buffer-view-unmarked")
def test_a_buffer_view_is_no_wrapper(interop):
    assert interop["types"]["_ShlBufferView"]["marks"] == {}
