"""The pass that takes the converters of the siblings from their capsules."""

import ctypes
import sys

import pytest
from family import CAPSULES, FACTORY, WORDS
from peer import STAGE, Script

behaviour = pytest.mark.behaviour
GFXTYPES, TYPEMODEL = CAPSULES[:19], CAPSULES[19:]


def numbered(code):
    return f"One or more errors occurred while loading the module 'kelmor.psd' ({code})"


def import_watched(without=()):
    """Imports with a look at what the pass asks for; the failure, and the journal of the pass."""
    from family import Family, interposed

    family = Family().complete(without=without)
    between = interposed(Script())
    between.watch("PyCapsule_Import", "PyImport_ImportModule")
    try:
        family.psd()
        shown = None
    except ImportError as error:
        from family import chain

        shown = [entry[:2] for entry in chain(error)]
    return shown, [text for _, text in between.calls() if text.startswith("kelmor.")]


@behaviour("shell-tree.capsule.order")
def test_the_capsules_are_asked_for_in_their_order(in_process):
    shown, calls = in_process(import_watched).value
    assert shown is None
    assert calls == [
        "kelmor.gfxtypes",
        *GFXTYPES,
        "kelmor.typemodel",
        *TYPEMODEL,
        "kelmor.shellbase",
        FACTORY,
    ]


def test_a_capsule_is_imported_the_plain_way(in_process):
    def program():
        from family import Family, interposed

        script = Script()
        family = Family().complete()
        between = interposed(script)
        between.watch("PyCapsule_Import")
        family.psd()
        return [e["second"] & 0xFFFFFFFF for e in script.journal if e["call"] == "python"]

    assert in_process(program).value == [0] * 23


@behaviour("shell-tree.capsule.factory-not-in-pass")
def test_the_factory_is_no_part_of_the_pass(in_process):
    shown, calls = in_process(import_watched, [FACTORY]).value
    assert shown[0][1] == numbered(-1008)
    assert [name for name in calls if "_C_API" in name] == [*CAPSULES, FACTORY]


@behaviour(
    "shell-tree.pass.missing-capsule-message",
    "shell-tree.pass.stops-at-first",
    "shell-tree.pass.result",
)
@pytest.mark.parametrize("name", CAPSULES)
def test_a_missing_capsule_ends_the_pass(in_process, name):
    # One more behind it is missing too; only the first is named.
    later = CAPSULES[CAPSULES.index(name) + 1 :][:1]
    shown, calls = in_process(import_watched, [name, *later]).value
    assert shown[:2] == [
        ["ImportError", numbered(-1009)],
        ["ImportError", f"can't import capsule '{name}'"],
    ]
    assert shown[2][0] == "AttributeError"
    before = [text for text in calls if "_C_API" in text]
    assert before == CAPSULES[: CAPSULES.index(name) + 1]


@behaviour("shell-tree.pass.typemodel-after-gfxtypes")
def test_typemodel_is_not_touched_when_gfxtypes_falls_short(in_process):
    _, calls = in_process(import_watched, [GFXTYPES[-1]]).value
    assert "kelmor.typemodel" not in calls and calls[0] == "kelmor.gfxtypes"


@pytest.mark.parametrize(
    ("name", "before"),
    [
        pytest.param(
            "kelmor.gfxtypes",
            ["kelmor.gfxtypes"],
            marks=behaviour("shell-tree.pass.gfxtypes-version"),
        ),
        pytest.param(
            "kelmor.typemodel",
            ["kelmor.gfxtypes", *GFXTYPES, "kelmor.typemodel"],
            marks=behaviour("shell-tree.pass.typemodel-version"),
        ),
    ],
)
def test_the_version_of_a_sibling_is_judged_before_its_capsules(in_process, name, before):
    def program(name):
        import shell_probe
        from family import Family, chain, interposed

        family = Family().complete()
        sys.modules[name].VERSION = shell_probe.version(24, 5, 2, 9)
        between = interposed(Script())
        between.watch("PyCapsule_Import", "PyImport_ImportModule")
        try:
            family.psd()
        except ImportError as error:
            return chain(error)[1][1], [t for _, t in between.calls() if t.startswith("kelmor.")]

    text, calls = in_process(program, name).value
    assert text == (
        f"Unable to import module dependencies. Cannot import the {name} module. The {name} module "
        "found has a version ('24.5.2.9') that is lower than the referenced version of that module "
        "('24.5.3.0')."
    )
    assert calls == before


@behaviour("shell-tree.capsule.only-listed-words-read")
@pytest.mark.parametrize("side", ["before", "behind"])
def test_only_the_wanted_words_are_read(in_process, side):
    def program(side):
        from family import CAPSULES, WORDS, Family, lonely_table

        family = Family().complete()
        for name in CAPSULES:
            table = lonely_table({word: family.words(name)[word] for word in WORDS[name]}, side)
            family.capsule(name, table)
        return str(family.psd().VERSION)

    # Whatever else were read would end the process.
    assert in_process(program, side).value == "24.11.0.0"


@behaviour("shell-tree.pass.releases-module-on-success")
def test_a_pass_keeps_no_module(in_process):
    def program():
        from family import Family, counts

        family = Family().complete()
        held = [sys.modules["kelmor.gfxtypes"], sys.modules["kelmor.typemodel"]]
        before = counts(held)
        family.psd()
        return before, counts(held)

    before, after = in_process(program).value
    assert before == after


@behaviour("shell-tree.pass.releases-module-on-failure")
@pytest.mark.parametrize("name", [CAPSULES[0], CAPSULES[18], CAPSULES[19], CAPSULES[21]])
def test_a_pass_that_fails_keeps_no_module(in_process, name):
    def program(name):
        from family import Family, counts

        family = Family().complete(without=[name])
        held = [sys.modules["kelmor.gfxtypes"], sys.modules["kelmor.typemodel"]]
        before = counts(held)
        family.failure()
        return before, counts(held)

    before, after = in_process(program, name).value
    assert before == after


# What the words are used for.


@behaviour("shell-tree.capsule.word-1-clr-to-py")
def test_get_type_is_what_word_1_gives(in_process):
    def program():
        from family import Family, word_table
        from peer import ASSEMBLY, OBJECT

        script = Script()
        marker = ["a type made by the sibling"]
        handles = []

        def to_python(handle):
            handles.append(handle)
            return marker

        function = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_void_p)(to_python)
        family = Family().complete()
        family.capsule("kelmor.typemodel._C_APIT_Type", word_table({1: function, 2: 0}))
        psd = family.psd()
        script.method(OBJECT, "GetObjType", ASSEMBLY).writes(1, ctypes.c_void_p(0x7777)).returns(1)
        made = psd.xmp.XmpHeaderPi.__new__(psd.xmp.XmpHeaderPi)
        return made.get_type() is marker, handles

    assert in_process(program).value == [True, [0x7777]]


@behaviour("shell-tree.capsule.word-2-pass-through")
def test_a_sibling_wrapper_goes_through_word_2(in_process):
    def program():
        from family import Family, word_table

        script = Script()
        passed = []

        def pass_through(value, out):
            passed.append(value)
            out[0] = 0x4321
            return 1

        through = ctypes.PYFUNCTYPE(
            ctypes.c_int, ctypes.py_object, ctypes.POINTER(ctypes.c_void_p)
        )(pass_through)
        family = Family().complete()
        table = word_table({1: 0, 2: through})
        family.capsule("kelmor.typemodel._C_APIT_Object", table)
        psd = family.psd()
        found = psd.xmp.XmpHeaderPi._reinterpret_obj("a sibling's object")
        seen = [
            entry["arguments"][0]
            for entry in script.journal
            if entry["call"] == "delegate" and entry["method"] == "btp_ReInterpretObj"
        ]
        return passed, seen, found is None

    assert in_process(program).value == [["a sibling's object"], [0x4321], True]


ARRAYS = {
    "kelmor.gfxtypes._C_APITV1_PointF": "_ArrayWrapper_2A1D6ECF",
    "kelmor.gfxtypes._C_APITV1_Color": "_ArrayWrapper_ADFCB9C9",
    "kelmor.gfxtypes.imaging._C_APIT_ColorMap": "_ArrayWrapper_8D7E2A03",
}


@behaviour("shell-tree.capsule.v1-same-table", "shell-tree.capsule.word-0-py-to-clr")
@pytest.mark.parametrize("name", ARRAYS)
def test_words_0_and_1_convert_items_both_ways(in_process, name):
    def program(name, array_name):
        from family import FACTORY, Family, word_table

        script = Script()
        taken, given = [], []
        is_value = "_C_APITV1_" in name

        def from_python(value, out):
            taken.append(value)
            # A class gives its handle; a value type fills a record, the handle behind the kind.
            target = ctypes.cast(out, ctypes.POINTER(ctypes.c_uint64))
            if is_value:
                target[0] = 1
                target[1] = 0xABC
            else:
                target[0] = 0xABC
            return 1

        def to_python(handle):
            given.append(ctypes.c_uint64.from_address(handle).value if is_value else handle)
            return "made by the sibling"

        words = {
            0: ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.py_object, ctypes.c_void_p)(from_python),
            1: ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_void_p)(to_python),
        }
        results = []

        def cast_result(status, value):
            results.append(value)
            return value

        factory = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_int, ctypes.py_object)(cast_result)
        family = Family().complete()
        family.capsule(name, word_table(words))
        family.capsule(FACTORY, word_table({0: factory}))
        psd = family.psd()
        entry = "Kelmor.WrpGen.Generic.SiApiArray_" + array_name.rsplit("_", 1)[1]
        script.method(entry, "btp_CastTo").writes(1, ctypes.c_void_p(0x1000)).returns(1)
        script.method(entry, "SqLength").returns(3)
        script.method(entry, "SqGetItem").writes(2, ctypes.c_void_p(0xDEF)).returns(0)
        script.method(entry, "SqSetItem").takes(3)
        array = getattr(psd._wrpgen._generic, array_name)._cast_to(None)
        item = array[1]
        array[2] = "a value for the sibling"
        return item, given, taken, type(array).__name__

    item, given, taken, kind = in_process(program, name, ARRAYS[name]).value
    assert kind == ARRAYS[name]
    assert (item, given) == ("made by the sibling", [0xDEF])
    assert taken == ["a value for the sibling"]


# The real siblings offer what the pass takes.


@pytest.fixture(scope="module")
def offered(tmp_path_factory):
    """Import of the real family over the peer: each capsule's words, null or not."""
    from peer import Installation, run_python

    def program():
        sys.path.insert(0, str(STAGE))
        import kelmor.psd

        from family import CAPSULES, FACTORY

        get = ctypes.pythonapi.PyCapsule_Import
        get.restype, get.argtypes = ctypes.c_void_p, [ctypes.c_char_p, ctypes.c_int]
        tables = {name: get(name.encode(), 0) for name in [*CAPSULES, FACTORY]}
        words = {
            name: [bool(ctypes.c_void_p.from_address(table + 8 * i).value) for i in range(2)]
            for name, table in tables.items()
        }
        third = {
            name: bool(ctypes.c_void_p.from_address(tables[name] + 16).value)
            for name in CAPSULES
            if name.endswith(("_Type", "_Object"))
        }
        return words, third, str(kelmor.psd.VERSION)

    installation = Installation(tmp_path_factory.mktemp("siblings") / "installation")
    installation.add_runtime()
    outcome = run_python(program, environment=installation.environment())
    assert outcome.code == 0, outcome
    return outcome.value


def test_the_siblings_offer_all_capsules(offered):
    words, third, version = offered
    assert version == "24.11.0.0"
    assert words[FACTORY][0]
    assert {name: found for name, found in words.items() if name != FACTORY} == {
        name: [True, True] for name in CAPSULES
    }
    assert third == {f"kelmor.typemodel._C_APIT_{name}": True for name in ("Type", "Object")}
    assert {name for name, taken in WORDS.items() if 2 in taken} == set(third)
