"""What the built extension shows to the dynamic linker, and what it takes from the interpreter."""

import ctypes
import os
import re
import subprocess
import sys

import pytest
from family import WORDS, extension_path
from peer import STAGE, Script
from shell_identifiers import IDENTIFIERS

behaviour = pytest.mark.behaviour
PSD = extension_path()
LEAVES = ["psd", "gfxtypes", "typemodel", "shellbase", "shellcommon"]


def symbols(*options, path=PSD):
    """Rows of nm: name and kind."""
    text = subprocess.run(
        ["nm", "-C", *options, str(path)], check=True, capture_output=True, text=True
    ).stdout
    rows = [re.match(r"(?:[0-9a-f]{16}|\s{16})\s(\S)\s(.*)", line) for line in text.splitlines()]
    return [(row[2].split("@")[0], row[1]) for row in rows if row]


@pytest.fixture(scope="module")
def defined():
    return dict(symbols("-D", "--defined-only"))


def imports_of(leaf):
    return [name for name, _ in symbols("-D", "--undefined-only", path=extension_path(leaf))]


@pytest.fixture(scope="module")
def imported():
    return imports_of("psd")


@pytest.fixture(scope="module")
def everything():
    return [name.replace("(anonymous namespace)::", "") for name, _ in symbols()]


@behaviour("shell-entry.export.pyinit")
def test_one_entry_is_exported(defined):
    assert [name for name in defined if name.startswith("PyInit")] == ["PyInit_psd"]
    assert defined["PyInit_psd"] == "T"


@behaviour("shell-identifiers.symbols.exported-count")
def test_the_identifiers_are_exported_data(defined):
    found = {name: kind for name, kind in defined.items() if name.startswith("PyWrpId")}
    assert len(found) == 54
    assert set(found) == set(IDENTIFIERS)
    assert set(found.values()) <= set("BD")
    sizes = subprocess.run(
        ["nm", "-D", "-S", "--defined-only", str(PSD)], check=True, capture_output=True, text=True
    ).stdout
    pointers = re.findall(r"^[0-9a-f]{16} 0{15}8 [BD] PyWrpId", sizes, re.MULTILINE)
    assert len(pointers) == 54


@behaviour("shell-entry.cast-result.exported")
def test_the_factory_is_exported_data(defined):
    assert defined["PyShCastOpResult_New"] in "BD"
    rows = subprocess.run(["nm", "-D", "-S", str(PSD)], capture_output=True, text=True).stdout
    assert re.search(r"^[0-9a-f]{16} 0{15}8 [BD] PyShCastOpResult_New$", rows, re.MULTILINE)


@pytest.mark.parametrize("leaf", LEAVES)
def test_nothing_else_is_exported(leaf):
    assert set(dict(symbols("-D", "--defined-only", path=extension_path(leaf)))) == {
        *IDENTIFIERS,
        f"PyInit_{leaf}",
        "PyShCastOpResult_New",
        "KelmorDomainName",
        "HostNotReady",
    }


@pytest.mark.parametrize("leaf", LEAVES)
def test_no_symbol_is_unique_in_the_process(leaf):
    assert "u" not in {kind for _, kind in symbols("-D", path=extension_path(leaf))}


@pytest.mark.parametrize("leaf", LEAVES)
def test_no_library_function_is_exported_weakly(leaf):
    # Such a function may be bound from elsewhere, and then its library cannot be unloaded.
    found = symbols("-D", "--defined-only", path=extension_path(leaf))
    assert [name for name, kind in found if kind in "WVwv"] == []


@behaviour("shell-entry.locks.no-import")
@pytest.mark.parametrize("leaf", LEAVES)
def test_the_lock_is_never_touched(leaf):
    imported = imports_of(leaf)
    assert not [
        name
        for name in imported
        if re.match(r"_?(PyEval_|PyGILState_|PyThread_|PyThreadState_|Py_BEGIN)", name)
    ]
    assert "PyModule_AddObject" in imported


def test_there_are_no_threads_and_no_locks_but_those_of_the_maps(imported):
    # The registry's two mutexes, and the guards of function-local statics.
    found = {name for name in imported if re.match(r"(pthread|sem|thrd|mtx|cnd)_", name)}
    assert found == {"pthread_mutex_lock", "pthread_mutex_unlock"}
    assert "__cxa_guard_acquire" in imported and "__cxa_guard_release" in imported


@behaviour("shell-entry.shutdown.no-hook")
@pytest.mark.parametrize("leaf", LEAVES)
def test_no_exit_hook_can_be_registered(leaf):
    assert not {"Py_AtExit", "_Py_PyAtExit", "atexit"} & set(imports_of(leaf))


@pytest.mark.parametrize("leaf", LEAVES)
def test_python_is_told_of_nothing_but_errors(leaf):
    # No log, no warning, no audit event; what cannot be raised goes to the unraisable hook.
    assert not [name for name in imports_of(leaf) if re.match(r"PySys_|PyErr_Warn", name)]


@behaviour("shell-tree.capsule.none-exported")
def test_capsules_are_taken_and_none_is_made(imported):
    assert "PyCapsule_Import" in imported
    assert "PyCapsule_New" not in imported


@behaviour("shell-tree.sys-modules.symbols-absent")
def test_the_table_of_modules_is_out_of_reach(imported):
    assert "PyImport_AddModule" not in imported
    assert "PyImport_GetModuleDict" not in imported
    assert "PyImport_ImportModule" in imported


def kinds_of(everything, kind):
    pattern = re.compile(rf"wrpPy_{kind}_([0-9A-F]{{8}})_([a-z0-9]+)(?:\(\))?$")
    return {match.groups() for match in map(pattern.match, everything) if match}


@behaviour("shell-tree.module.symbol-names")
def test_each_module_has_definition_methods_and_initialiser(everything):
    definitions = kinds_of(everything, "mlds")
    assert definitions == kinds_of(everything, "mlmd") == kinds_of(everything, "mlit")
    assert ("AFE8B5DB", "psd") in definitions
    leaves = [leaf for _, leaf in definitions]
    assert leaves.count("enums") == 3 and leaves.count("psd") == 2


@behaviour("shell-tree.module.initialiser-count")
def test_there_is_one_initialiser_for_each_module(everything):
    names = [name for name in everything if name.startswith("wrpPy_mlit_")]
    assert len(names) == len(set(names)) == 80


@behaviour("shell-tree.module.handwritten-symbols")
def test_the_hidden_modules_have_their_symbols(everything):
    bare = {name.split("(")[0] for name in everything}
    assert {
        "wrpPye_mlds_FFFFFF_common_wrappers",
        "wrpPye_mlds_FFFFFF_interop_wrappers",
        "wrpPygn_mlds_FFFFFF_generic_wrappers",
        "wrpPye_mlit_FFFFFFFF_common_wrappers",
        "wrpPye_mlit_FFFFFFFF_interop_wrappers",
        "wrpPygn_mlit_FFFFFFFF_generic_wrappers",
        "wrpPyl_ciap_AFE8B5DB_psd",
    } <= bare


@behaviour("shell-tree.capsule.variables")
def test_the_words_of_capsules_have_their_variables(everything):
    stems = {0: "convcaps_py_to_clr", 1: "convcaps_clr_to_py", 2: "trancaps_py_to_clr"}
    found = {
        match.groups()
        for match in (
            re.match(
                r"wrpPyl_(convcaps_py_to_clr|convcaps_clr_to_py|trancaps_py_to_clr)"
                r"_[0-9A-F]{8}_(\w+)$",
                name,
            )
            for name in everything
        )
        if match
    }
    wanted = {
        (stems[word], name.rsplit("_", 1)[1]) for name, words in WORDS.items() for word in words
    }
    assert found == wanted
    assert "wrpPyl_convcaps_clr_to_py_C08ECFAB_Type" in everything


@behaviour("shell-identifiers.symbols.read-from-outside")
def test_the_identifiers_can_be_read_from_outside(in_process):
    def program():
        from family import Family
        from shell_identifiers import IDENTIFIERS

        psd = Family().complete().psd()
        library = ctypes.PyDLL(psd.__file__)
        found = {name: ctypes.py_object.in_dll(library, name).value for name in IDENTIFIERS}
        return {name: [type(value) is str, value] for name, value in found.items()}

    assert in_process(program).value == {name: [True, text] for name, text in IDENTIFIERS.items()}


def test_each_module_of_the_family_has_its_own_data(in_process):
    def program():
        from shell_identifiers import IDENTIFIERS

        Script()
        sys.setdlopenflags(os.RTLD_NOW | os.RTLD_GLOBAL)
        sys.path.insert(0, str(STAGE))
        leaves = ["shellbase", "typemodel", "gfxtypes", "shellcommon", "psd"]
        libraries = []
        for leaf in leaves:
            module = __import__(f"kelmor.{leaf}", fromlist=["VERSION"])
            libraries.append(ctypes.PyDLL(module.__file__))
        names = [*IDENTIFIERS, "PyShCastOpResult_New", "KelmorDomainName", "HostNotReady"]
        return {
            name: len({ctypes.addressof(ctypes.c_void_p.in_dll(lib, name)) for lib in libraries})
            for name in names
        }

    outcome = in_process(program)
    assert len(outcome.value) == 57
    assert set(outcome.value.values()) == {5}
    # So has each its own hosts: all three have asked for a start, and have bound services.
    calls = outcome.calls
    assert calls.count("coreclr_wrap_initialize") == calls.count("coreclr_wrap_shutdown") == 1
    assert calls.count("coreclr_wrap_is_domain_initialized") == 2
    bound = [
        e for e in outcome.journal if e.get("method") == "GetTypeName" and "Exchange" in e["type"]
    ]
    assert len({entry["assembly"] for entry in bound}) == 3
