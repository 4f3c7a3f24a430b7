"""The registry of types, and which type a result is shown as."""

import ctypes
import io
import sys

from wrappers import INT, OBJECT, POINTER, NameBlocks, handle_of, raised, scene, text_of


def finder(s, name, key):
    find = s.function(name, INT, key, POINTER)

    def look(value):
        out = POINTER(0xEEEE)
        return find(value, ctypes.addressof(out)), out.value

    return look


def name_map(s):
    add = s.function("map_add", None, POINTER, POINTER)
    find = finder(s, "map_find", POINTER)

    def encode(text):
        return ctypes.create_string_buffer((text + "\0").encode("utf-16-le"))

    return lambda text, kind: add(encode(text), kind), lambda text: find(encode(text))


def out_record(s, handle, token):
    return s.native.PyObjectOutArg(handle=handle, type_token=token)


def collection_record(s, kind, handle, token):
    return s.native.PyCollectionArg(kind=kind, handle=handle, type_token=token)


def reader(s, name):
    read = s.function(name, OBJECT, POINTER, OBJECT)
    return lambda record, kind: read(ctypes.addressof(record), kind)


def declare_shape_class(s):
    """Sample is found by name and shows IShape; Derived is found and does not."""
    s.type_name("Sample.Sample")


@scene(
    "binding-registry.map.name.add-find",
    "binding-registry.map.name.miss",
    "binding-registry.map.name.overwrite",
    "binding-registry.map.name.exact",
    "binding-registry.map.borrowed",
    "binding-registry.map.singleton",
)
def test_names_are_whole_texts(s):
    add, find = name_map(s)
    before = sys.getrefcount(s.Sample)
    add("Some.Name", id(s.Sample))
    assert find("Some.Name") == (1, id(s.Sample))
    for other in ("Some.Nam", "Some.Name2", "some.name", ""):
        assert find(other) == (0, 0xEEEE)
    add("Some.Name", id(s.Value))
    assert find("Some.Name") == (1, id(s.Value))
    assert sys.getrefcount(s.Sample) == before
    instance = s.function("map_get_instance", POINTER)
    assert instance() == instance()


@scene(
    "binding-registry.map.id.add-find",
    "binding-registry.map.weak.add-find",
    "binding-registry.map.weak.null",
    "binding-registry.map.caches-separate",
)
def test_ids_are_any_number(s):
    for add_name, find_name, other_name in [
        ("map_add_id", "map_find_id", "map_find_weak"),
        ("map_add_weak", "map_find_weak", "map_find_id"),
    ]:
        add = s.function(add_name, None, ctypes.c_int64, POINTER)
        find, other = finder(s, find_name, ctypes.c_int64), finder(s, other_name, ctypes.c_int64)
        first = 0 if add_name == "map_add_id" else 1000
        for number in (first, first - 1, 2**63 - 1 - first, -(2**63) + first, 4711 + first):
            assert find(number) == (0, 0xEEEE)
            add(number, id(s.Sample))
            assert find(number) == (1, id(s.Sample))
            add(number, id(s.Value))
            assert find(number) == (1, id(s.Value))
            assert other(number) == (0, 0xEEEE)
    s.function("map_add_weak", None, ctypes.c_int64, POINTER)(5, None)
    assert finder(s, "map_find_weak", ctypes.c_int64)(5) == (1, None)


@scene(
    "binding-registry.class-result.no-lookup",
    "binding-registry.class-result.null",
)
def test_a_class_result_is_its_declared_type(s):
    read = s.function("fn_conv_clr_clsobj_to_py_clsobj", OBJECT, POINTER, OBJECT)
    s.type_name("Sample.Derived")
    w = read(0x10, s.Sample)
    assert type(w) is s.Sample and handle_of(w) == 0x10
    assert read(None, s.Sample) is None
    assert s.calls("GetTypeName") == []


@scene(
    "binding-registry.ifc-result.null",
    "binding-registry.btp-result.null",
    "binding-registry.abs-result.null",
    "binding-registry.wps-result.null",
)
def test_a_null_handle_is_none(s):
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl")
    assert read(out_record(s, None, 77), s.IShape) is None
    for name in ("btpobj_to_py_btpobj", "absobj_to_py_absobj", "ifcimpl_to_py_ifcimpl_wps"):
        for kind in (0, 1, 2):
            record = collection_record(s, kind, None, 77)
            assert reader(s, f"fn_conv_clr_{name}")(record, s.IShape) is None
    assert s.calls() == []


@scene(
    "binding-registry.ifc-result.implicit",
    "binding-registry.weak.lookup-once",
    "binding-registry.name-block.form",
)
def test_an_interface_result_shows_its_class(s):
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl")
    s.type_name("Sample.Sample")
    for handle in (0x10, 0x11):
        w = read(out_record(s, handle, 5), s.IShape)
        assert type(w) is s.Sample and handle_of(w) == handle
    assert s.calls("GetTypeName") == [[0x10]]
    for token, (name, kinds) in enumerate(
        [
            ("btpobj_to_py_btpobj", [1]),
            ("absobj_to_py_absobj", [0, 1]),
            ("ifcimpl_to_py_ifcimpl_wps", [0, 1]),
        ]
    ):
        s.clear()
        for kind in kinds * 2:
            record = collection_record(s, kind, 0x12, 100 + token)
            assert type(reader(s, f"fn_conv_clr_{name}")(record, s.IShape)) is s.Sample
        assert s.calls("GetTypeName") == [[0x12]]


@scene(
    "binding-registry.ifc-result.not-implicit",
    "binding-registry.ifc-result.unknown-type",
    "binding-registry.weak.unknown-cached",
    "binding-registry.weak.candidate-not-rule-cached",
    "binding-registry.weak.shared",
)
def test_an_interface_result_falls_back_to_the_interface(s):
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl")
    disposable = s.interop._IDisposableWrapper
    s.type_name("Sample.Unknown")
    for _ in range(2):
        assert type(read(out_record(s, 1, 10), s.IShape)) is s.IShape
    assert len(s.calls("GetTypeName")) == 1
    s.type_name("Sample.Derived")
    assert type(read(out_record(s, 1, 11), s.IShape)) is s.IShape
    s.type_name("Sample.Sample")
    assert type(read(out_record(s, 1, 12), disposable)) is disposable
    asked = len(s.calls("GetTypeName"))
    assert type(read(out_record(s, 1, 12), s.IShape)) is s.Sample
    shown = reader(s, "fn_conv_clr_absobj_to_py_absobj")(collection_record(s, 0, 1, 12), s.IShape)
    assert type(shown) is s.Sample and len(s.calls("GetTypeName")) == asked


@scene("binding-registry.name-block.freed")
def test_a_name_block_is_freed_once_whether_its_name_is_known_or_not(s):
    blocks = NameBlocks(s)
    asked, held, named = [], [], []

    def answer(frame):
        asked.append(frame.integers[0])
        frame.result = blocks.make(named[-1])
        held.append(blocks.mapped())

    s.method("Exchange", "GetTypeName").calls(answer)
    read = reader(s, "fn_conv_clr_absobj_to_py_absobj")
    find = s.function("get_py_type_object_by_obj", POINTER, POINTER, ctypes.c_int64)
    stream = s.interop._StreamWrapper
    before = blocks.mapped()
    for token, name in enumerate(["Sample.Derived", "Sample.Unknown"], 50):
        named.append(name)
        known = name == "Sample.Derived"
        shown = read(collection_record(s, 0, 0x100 + token, token), stream)
        assert type(shown) is (s.Derived if known else stream) and blocks.mapped() == before
        assert find(0x200 + token, token) == (id(s.Derived) if known else None)
        assert blocks.mapped() == before
    # A second free would end the process.
    assert asked == [0x132, 0x232, 0x133, 0x233] and held == [before + blocks.counts] * 4


@scene("binding-markers.sets.independent")
def test_the_two_sets_act_apart(s):
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl")
    s.type_name("Sample.Sample")
    s.method("IShape", "btp_IsAssignable").returns(1)
    w = s.wrap(s.Sample, 0x10)
    s.Sample._additional_interfaces.clear()
    assert s.convert("interface_conversion", w) == (0, 0x10)
    assert len(s.calls("btp_IsAssignable")) == 1
    assert type(read(out_record(s, 1, 5), s.IShape)) is s.Sample
    s.Sample._additional_interfaces.add(s.IShape)
    s.Sample._implicit_interfaces.clear()
    assert s.convert("interface_conversion", w) == (0, 0x10)
    assert len(s.calls("btp_IsAssignable")) == 1
    assert type(read(out_record(s, 1, 5), s.IShape)) is s.IShape


@scene(
    "binding-registry.btp-result.kind-0",
    "binding-registry.btp-result.kind-1",
    "binding-registry.btp-result.kind-2",
)
def test_a_bound_collection_resolves_for_kind_one_alone(s):
    read = reader(s, "fn_conv_clr_btpobj_to_py_btpobj")
    array = s.interop._ArrayWrapper
    s.type_name("Sample.Derived")
    assert type(read(collection_record(s, 0, 1, 5), array)) is array
    assert type(read(collection_record(s, 2, 1, 5), array)) is array
    assert s.calls("GetTypeName") == []
    assert type(read(collection_record(s, 1, 1, 5), array)) is s.Derived
    s.type_name("Sample.Unknown")
    assert type(read(collection_record(s, 1, 1, 6), array)) is array


@scene(
    "binding-registry.abs-result.kind-2",
    "binding-registry.abs-result.resolves",
    "binding-registry.wps-result.kind-2",
    "collections-streams.result.stream-typed",
)
def test_a_python_object_comes_back_itself(s):
    thing = io.BytesIO()
    for name in ("absobj_to_py_absobj", "ifcimpl_to_py_ifcimpl_wps"):
        before = sys.getrefcount(thing)
        record = collection_record(s, 2, id(thing), 5)
        back = reader(s, f"fn_conv_clr_{name}")(record, s.interop._StreamWrapper)
        assert back is thing and sys.getrefcount(thing) == before + 1
        del back
    assert s.calls() == []
    read = reader(s, "fn_conv_clr_absobj_to_py_absobj")
    s.type_name("Sample.Unknown")
    for kind in (0, 1):
        stream = read(collection_record(s, kind, 1, 20), s.interop._StreamWrapper)
        assert type(stream) is s.interop._StreamWrapper
    s.type_name("Sample.Derived")
    for kind in (0, 1):
        record = collection_record(s, kind, 1, 30 + kind)
        assert type(read(record, s.interop._StreamWrapper)) is s.Derived


@scene(
    "binding-registry.wps-result.implicit",
    "binding-registry.wps-result.kind-0-fallback",
    "binding-registry.wps-result.kind-1-boxes",
)
def test_a_value_behind_an_interface_is_boxed(s):
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps")
    s.method("Exchange", "BoxStcTarget").returns(0xB0C5)
    s.type_name("Sample.Sample")
    for kind in (0, 1):
        w = read(collection_record(s, kind, 0x10, 5), s.IShape)
        assert type(w) is s.Sample and handle_of(w) == 0x10
    assert s.calls("BoxStcTarget") == []
    for token, name in [(6, "Sample.Unknown"), (7, "Sample.Derived")]:
        w = plain = boxed = None
        s.clear()
        s.type_name(name)
        plain = read(collection_record(s, 0, 0x20, token), s.IShape)
        assert (type(plain), handle_of(plain)) == (s.IShape, 0x20)
        assert s.calls("BoxStcTarget") == []
        boxed = read(collection_record(s, 1, 0x21, token), s.IShape)
        assert (type(boxed), handle_of(boxed)) == (s.IShape, 0xB0C5)
        assert s.calls("BoxStcTarget") == [[0x21]] and s.calls("FreeInstance") == []


@scene("binding-registry.vlarr")
def test_the_kind_chooses_the_type(s):
    read = s.function("fn_conv_clr_vlarr_to_py_vlarr", OBJECT, POINTER, OBJECT, OBJECT)
    for kind, wanted in [(0, s.Sample), (1, s.Value), (2, s.Value), (-1, s.Value)]:
        record = s.native.VariantArg(kind=kind, value=9)
        assert type(read(ctypes.addressof(record), s.Sample, s.Value)) is wanted
    record = s.native.VariantArg(kind=0, value=None)
    assert read(ctypes.addressof(record), s.Sample, s.Value) is None
    assert s.calls("GetTypeName") == []


@scene(
    "binding-registry.write-tpo.known",
    "binding-registry.try-write-tpo.known",
    "binding-registry.strong.lookup-once",
    "binding-registry.id-is-the-key",
    "binding-registry.get-py-type",
)
def test_an_object_is_written_as_its_exact_type(s):
    write = s.function("fn_write_py_tpo", OBJECT, POINTER, ctypes.c_int64)
    attempt = s.function("fn_try_write_py_tpo", INT, POINTER, ctypes.c_int64, POINTER)
    find = s.function("get_py_type_object_by_obj", POINTER, POINTER, ctypes.c_int64)
    s.type_name("Sample.Value")
    w = write(0x10, 5)
    assert type(w) is s.Value and handle_of(w) == 0x10 and sys.getrefcount(w) == 2
    s.type_name("Sample.Sample")
    out = POINTER()
    assert attempt(0x11, 5, ctypes.addressof(out)) == 1
    again = ctypes.cast(out.value, OBJECT).value
    assert type(again) is s.Value and handle_of(again) == 0x11
    assert find(0x12, 5) == id(s.Value)
    assert s.calls("GetTypeName") == [[0x10]]
    s.type_name("Sample.Unknown")
    assert find(0x12, 6) is None


@scene(
    "binding-registry.write-tpo.unknown",
    "binding-registry.try-write-tpo.unknown",
    "binding-registry.strong.unknown-not-cached",
    "binding-registry.register.not-registered",
)
def test_an_unknown_object_is_released(s):
    write = s.function("fn_write_py_tpo", OBJECT, POINTER, ctypes.c_int64)
    attempt = s.function("fn_try_write_py_tpo", INT, POINTER, ctypes.c_int64, POINTER)
    s.type_name("Sample.Unknown")
    for _ in range(2):
        assert text_of(TypeError, write, 0x10, 5) == "unknown wrapper type"
    out = POINTER(0xEEEE)
    assert attempt(0x11, 5, ctypes.addressof(out)) == 0 and out.value == 0xEEEE
    assert s.calls("FreeInstance") == [[0x10], [0x10], [0x11]]
    assert s.calls("GetTypeName") == [[0x10], [0x10], [0x11]]
    for name in ("Sample.Shade", "System.IO.Stream", "System.Collections.IList"):
        s.type_name(name)
        raised(TypeError, write, 0x12, 9)


@scene("binding-registry.strong.independent-of-weak")
def test_the_two_caches_do_not_meet(s):
    write = s.function("fn_write_py_tpo", OBJECT, POINTER, ctypes.c_int64)
    read = reader(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl")
    s.type_name("Sample.Unknown")
    read(out_record(s, 1, 5), s.IShape)
    s.type_name("Sample.Sample")
    assert type(write(0x10, 5)) is s.Sample
    assert type(read(out_record(s, 1, 5), s.IShape)) is s.IShape
    assert len(s.calls("GetTypeName")) == 2


@scene(
    "binding-registry.write-tpo.creation-failed",
    "binding-registry.try-write-tpo.creation-failed",
    "binding-registry.declared-path.creation-failed",
    refuse=[("Sample", "btp_TypeOf")],
)
def test_a_wrapper_that_cannot_be_made_releases_its_handle(s):
    write = s.function("fn_write_py_tpo", OBJECT, POINTER, ctypes.c_int64)
    attempt = s.function("fn_try_write_py_tpo", INT, POINTER, ctypes.c_int64, POINTER)
    declared = s.function("fn_conv_clr_clsobj_to_py_clsobj", OBJECT, POINTER, OBJECT)
    s.type_name("Sample.Sample")
    raised(TypeError, write, 0x10, 5)
    out = POINTER(0xEEEE)
    raised(TypeError, attempt, 0x11, 5, ctypes.addressof(out))
    assert out.value is None
    raised(TypeError, declared, 0x12, s.Sample)
    assert s.calls("FreeInstance") == [[0x10], [0x11], [0x12]]


@scene("binding-registry.register.no-lookup-at-import")
def test_the_start_asks_for_no_name(s):
    assert "GetTypeName" not in [entry["method"] for entry in s.script.journal if "method" in entry]
    assert s.requests_of_start.count(("Kelmor.WrpGen.Interop.ExchangeHost", "GetTypeName")) == 1
