"""Markers: facts about a type in its own dictionary."""

import ctypes
import gc
import sys

import pytest
from peer import ASSEMBLY, STAGE, Script
from wrappers import INT, OBJECT, POINTER, scene, sibling_wrapper, text_of


def entries(kind):
    return [
        key for key in vars(kind) if key.startswith("_") and "interfaces" in key or "kelmor" in key
    ]


def fresh(**members):
    return type("Fresh", (), members)


@scene(
    "binding-markers.setters.order",
    "binding-markers.sets.distinct-objects",
    "binding-markers.sets.no-interfaces",
    "binding-markers.own-dict.each-type",
)
def test_each_type_has_entries_of_its_own(s):
    list_wrapper = s.interop._IListWrapper
    for kind in (s.Sample, list_wrapper):
        assert entries(kind) == [
            "_additional_interfaces",
            "_implicit_interfaces",
            "_kelmor_clr_host",
            "_kelmor_clr_castable_obj",
        ]
        assert kind._additional_interfaces == kind._implicit_interfaces
        assert kind._additional_interfaces is not kind._implicit_interfaces
    assert entries(s.Derived) == ["_kelmor_clr_host", "_kelmor_clr_castable_obj"]


@scene("binding-markers.setters.return-true", "binding-markers.key.interned-variables")
def test_setters_store_their_entries(s):
    kind = fresh()

    def read(name):
        return OBJECT.from_address(s.native.address(f"PyWrpIdMarkattr_{name}")).value

    castable = s.function("fn_set_castable_type_markattr", ctypes.c_bool, OBJECT, OBJECT)
    for name, key, value in [
        ("fn_set_obj_type_host_markattr", "KelmorClrHost", None),
        ("fn_set_stc_type_host_markattr", "KelmorClrHost", ...),
    ]:
        assert s.function(name, ctypes.c_bool, OBJECT)(kind) is True
        assert vars(kind)[read(key)] is value and kind._kelmor_clr_host is value
    assert castable(kind, ...) is True and vars(kind)[read("KelmorClrCastableObj")] is ...
    names = ["KelmorClrHost", "KelmorClrCastableObj", "AdditionalInterfaces"]
    names += ["ImplicitInterfaces", "ExternalAncestor"]
    assert [read(name) for name in names] == [
        "_kelmor_clr_host",
        "_kelmor_clr_castable_obj",
        "_additional_interfaces",
        "_implicit_interfaces",
        "_external_ancestor",
    ]


@scene("binding-markers.external-ancestor.exists")
def test_an_external_ancestor_is_one_type(s):
    kind, ancestor = fresh(), fresh()
    put = s.function("fn_set_external_ancestor_markattr", ctypes.c_bool, OBJECT, OBJECT)
    has = s.function("fn_has_external_ancestor_markattr", ctypes.c_bool, OBJECT, OBJECT)
    assert has(kind(), ancestor) is False
    assert put(kind, ancestor) is True and kind._external_ancestor is ancestor
    assert has(kind(), ancestor) is True and has(kind(), fresh()) is False


@scene(
    "binding-markers.setters.any-ifcs",
    "binding-markers.setters.variadic-fronts",
    "binding-markers.setters.any-ifcs-add-fails",
)
def test_interfaces_are_a_set(s):
    put = s.function("any_ifcs", ctypes.c_bool, OBJECT, OBJECT, INT, OBJECT, OBJECT)
    kind, one, two = fresh(), fresh(), fresh()
    assert put(kind, "_own", 2, one, two) is True
    assert type(kind._own) is set and kind._own == {one, two}
    assert sys.getrefcount(vars(kind)["_own"]) == 2
    for name, key in [
        ("additional", "_additional_interfaces"),
        ("implicit", "_implicit_interfaces"),
    ]:
        front = s.function(
            f"fn_set_{name}_ifcs_markattr", ctypes.c_bool, OBJECT, INT, OBJECT, OBJECT
        )
        assert front(kind, 2, one, two) is True and vars(kind)[key] == {one, two}
        assert sys.getrefcount(vars(kind)[key]) == 2
    put_raw = s.function("any_ifcs", ctypes.c_bool, OBJECT, OBJECT, INT, OBJECT, OBJECT)
    before = {id(thing) for thing in gc.get_objects() if type(thing) is set}
    assert "unhashable" in text_of(TypeError, put_raw, kind, "_bad", 2, one, [])
    assert "_bad" not in vars(kind)
    left = [t for t in gc.get_objects() if type(t) is set and id(t) not in before]
    assert {one} in left


@scene(
    "binding-markers.test.refobj-host",
    "binding-markers.test.instance-host",
    "binding-markers.own-dict.no-base-walk",
    "binding-markers.conv.no-type-dict",
)
def test_the_host_marker_is_read_of_the_very_type(s):
    refobj = s.function("fn_is_refobj_has_host_markattr", ctypes.c_bool, OBJECT)
    instance = s.function("fn_is_instance_has_host_markattr", ctypes.c_bool, OBJECT, POINTER)
    marked, struct_marked = fresh(_kelmor_clr_host=None), fresh(_kelmor_clr_host=...)
    heir = type("Heir", (marked,), {})
    kind = INT()
    for value, first, second in [
        (marked(), True, (True, 0)),
        (struct_marked(), False, (True, 1)),
        (fresh(_kelmor_clr_host=0)(), False, (False, 9)),
        (fresh()(), False, (False, 9)),
        (heir(), False, (False, 9)),
        (5, False, (False, 9)),
    ]:
        kind.value = 9
        assert refobj(value) is first
        assert (instance(value, ctypes.addressof(kind)), kind.value) == second
        if not second[0]:
            record = s.native.VariantArg(kind=-7, value=0x99)
            for name in ("refobj_not_null", "gen_not_null", "gen"):
                convert = s.function(f"fn_conv_py_obj_to_clr_{name}_handle", INT, OBJECT, POINTER)
                assert convert(value, ctypes.addressof(record)) == 0
            assert (record.kind, record.value) == (-7, 0x99)


@scene()
def test_a_key_that_cannot_be_compared_leaves_no_error(s):
    class Key:
        def __hash__(self):
            return hash("_kelmor_clr_host")

        def __eq__(self, other):
            raise ValueError("no comparison")

    # In place of the marker the dictionary of the type has a key of the same hash.
    value = type("Odd", (), {Key(): None})()
    record = s.native.VariantArg(kind=-7, value=0x99)
    for name in ("refobj_not_null", "gen_not_null", "gen"):
        convert = s.function(f"fn_conv_py_obj_to_clr_{name}_handle", INT, OBJECT, POINTER)
        assert convert(value, ctypes.addressof(record)) == 0
    assert (record.kind, record.value) == (-7, 0x99)
    assert (s.wrap(s.Sample, 1) == value) is False


@scene(
    "binding-markers.test.contains-any",
    "binding-markers.test.contains-error-cleared",
    "binding-markers.test.contains-additional",
    "binding-markers.test.contains-implicit",
)
def test_an_interface_is_looked_for_in_the_set(s):
    contains = s.function("fn_contains_any_ifc_markattr", ctypes.c_bool, OBJECT, OBJECT, OBJECT)
    interface = fresh()

    class Set(set):
        pass

    class Angry(type):
        def __hash__(cls):
            raise ValueError("no hash")

    for value, wanted in [
        ({interface}, True),
        (Set([interface]), True),
        (set(), False),
        (frozenset([interface]), False),
        ([interface], False),
    ]:
        assert contains(fresh(key=value), "key", interface) is wanted
    assert contains(fresh(), "key", interface) is False
    angry = Angry("Angry", (), {})
    assert contains(fresh(key={interface}), "key", angry) is False
    additional = s.function("fn_contains_additional_ifc_markattr", ctypes.c_bool, OBJECT, OBJECT)
    implicit = s.function("fn_contains_implicit_ifc_markattr", ctypes.c_bool, OBJECT, OBJECT)
    both = fresh(_additional_interfaces={interface}, _implicit_interfaces=set())
    assert additional(both(), interface) is True and implicit(both, interface) is False
    both = fresh(_additional_interfaces=set(), _implicit_interfaces={interface})
    assert additional(both(), interface) is False and implicit(both, interface) is True


@scene(
    "binding-markers.conv.refobj-class",
    "binding-markers.conv.refobj-refuses",
    "binding-markers.conv.refobj-sibling",
    "binding-markers.conv.gen-not-null",
    "binding-markers.conv.gen-not-null-refuses",
    "binding-markers.conv.gen-none",
    "binding-markers.conv.null-handle-accepted",
    "binding-markers.conv.handle-offset",
)
def test_wrappers_of_the_family_are_converted(s):
    def run(name, value):
        record = s.native.VariantArg(kind=-7, value=0x99)
        convert = s.function(f"fn_conv_py_obj_to_clr_{name}_handle", INT, OBJECT, POINTER)
        if name == "refobj_not_null":
            return convert(value, ctypes.addressof(record) + 8), record.value
        return convert(value, ctypes.addressof(record)), record.kind, record.value

    sibling = sibling_wrapper(0x55)
    w, v = s.wrap(s.Sample, 0x10), s.wrap(s.Value, 0x20)
    assert run("refobj_not_null", w) == (1, 0x10)
    assert run("refobj_not_null", sibling) == (1, 0x55)
    is_ours = s.function("fn_is_this_module_clr_object", ctypes.c_bool, OBJECT)
    assert is_ours(w) is True and is_ours(sibling) is False
    for value in (v, None, 5):
        assert run("refobj_not_null", value) == (0, 0x99)
    for name in ("gen_not_null", "gen"):
        assert run(name, w) == (1, 0, 0x10) and run(name, v) == (1, 1, 0x20)
        assert run(name, sibling) == (1, 0, 0x55)
        assert run(name, 5) == (0, -7, 0x99)
        assert run(name, s.Sample.__new__(s.Sample)) == (1, 0, None)
    assert run("gen_not_null", None) == (0, -7, 0x99)
    assert run("gen", None) == (1, -7, None)


@scene("binding-markers.key.castable-never-read")
def test_the_castable_marker_is_never_read(s):
    fields = type.__dict__["__dict__"].__get__(s.Sample)
    raw = gc.get_referents(fields)[0]
    assert type(raw) is dict and raw["_kelmor_clr_castable_obj"] is None
    del raw["_kelmor_clr_castable_obj"]
    w = s.wrap(s.Sample, 0x10)
    s.method("Sample", "btp_CastAs").writes(1, ctypes.c_uint64(0x77)).returns(1)
    assert s.Sample._cast_as(w)[1] == 1
    assert s.convert("interface_conversion", w) == (0, 0x10)


@pytest.mark.behaviour("binding-markers.conv.refobj-sibling", "binding-casts.cast-to.sibling")
def test_wrappers_of_a_real_sibling_are_known(in_process):
    def program():
        sys.path.insert(0, str(STAGE))
        script = Script()
        import kelmor.gfxtypes as sibling
        import kelmor.psd as psd
        from psd_scene import entry_class
        from wrappers import variant

        def wrap(kind, handle):
            made = kind.__new__(kind)
            ctypes.c_void_p.from_address(id(made) + 16).value = handle
            return made

        for name in ("Image", "Rectangle"):
            for entry in ("btp_IsAssignable", "btp_CastTo"):
                method = script.method(entry_class(name), entry, ASSEMBLY).takes(1).returns(1)
                if (name, entry) != ("Image", "btp_IsAssignable"):
                    method.shows(0, 16)
        pen, area = wrap(sibling.Pen, 0x77), wrap(sibling.Rectangle, 0x88)
        script.clear_journal()
        assert psd.Image._is_assignable(pen) is True and psd.Image._is_assignable(area) is False
        assert psd.Rectangle._is_assignable(pen) is psd.Rectangle._is_assignable(area) is True
        psd.Image._cast_to(pen), psd.Image._cast_to(area)
        entries = [e for e in script.journal if e["call"] == "delegate" and "btp" in e["method"]]
        return [
            list(variant(bytes.fromhex(e["snapshots"][0]))) if e["snapshots"] else e["arguments"]
            for e in entries
        ]

    # A class takes the bare handle of a class wrapper; all others take records.
    records = [[0, 0x77], [1, 0x88]]
    assert in_process(program).value == [[0x77], *records, *records]
