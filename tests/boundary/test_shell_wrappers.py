"""The steps by which the hidden wrappers are made, and what becomes of a mark that fails."""

import pytest
from peer import Script
from test_shell_tree import INTEROP_SETS
from test_shell_tree_steps import MARKS, modules_of, numbered, watch_tree

behaviour = pytest.mark.behaviour


@behaviour("shell-tree.interop.types-in-order", "collections-streams.setup.failure-codes")
def test_the_steps_of_the_wrappers_follow_each_other(in_process):
    calls, _ = in_process(watch_tree).value
    interop = "kelmor.psd._wrpgen._interop"
    wanted = []
    for name, interfaces in INTEROP_SETS.items():
        marks = [] if name == "_ShlBufferView" else list(MARKS)[0 if interfaces else 2 :]
        wanted.append(["PyType_Ready", f"{interop}.{name}"])
        wanted += [["PyDict_SetItem", mark] for mark in marks]
        wanted.append(["PyModule_AddObject", name])
    assert modules_of(calls)[interop] == wanted


@behaviour("collections-streams.setup.failure-codes")
@pytest.mark.parametrize("mark", MARKS)
def test_a_failing_mark_of_a_wrapper_has_its_code(in_process, mark):
    def program(mark):
        from family import Family, interposed

        script = Script()
        family = Family().complete()
        between = interposed(script)
        # A first import, which ends before the wrappers, counts the marks of all other types.
        between.watch("PyDict_SetItem")
        between.fail("PyModule_Create2", "kelmor.psd._wrpgen._interop", 0)
        family.failure()
        before = between.calls().count(["PyDict_SetItem", mark])
        between.relent()
        between.fail("PyDict_SetItem", mark, skip=before)
        shown = family.failure()
        between.relent()
        return [entry[:2] for entry in shown], before, str(family.psd().VERSION)

    shown, before, version = in_process(program, mark).value
    # The first of them, or the first with interfaces.
    name = "_IColWrapper" if mark.endswith("interfaces") else "_IDisposableWrapper"
    assert shown == [
        ["ImportError", numbered(-1005)],
        [
            "ImportError",
            f"Type initialization internal error ({MARKS[mark]}) "
            f"<kelmor.psd._wrpgen._interop.{name}>",
        ],
        ["RuntimeError", "refused by the test"],
    ]
    assert before > 10 and version == "24.11.0.0"
