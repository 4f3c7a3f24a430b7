"""Wrappers as values, results as wrappers, and collections as they are lent."""

import ctypes
import gc
import io
import sys

from wrappers import (
    INT,
    OBJECT,
    POINTER,
    NameBlocks,
    handle_of,
    raised,
    scene,
    sibling_wrapper,
    text_of,
)


def as_variant(s, value):
    """(kind, value) of a value for a parameter that takes any."""
    return s.convert("fn_conv_py_variant_to_clr_variant", value)


@scene("marshal-variant.kind.class-wrapper", "marshal-records.variant.general-kinds")
def test_a_class_wrapper_gives_its_handle(s):
    assert as_variant(s, s.wrap(s.Sample, 0x5000)) == (1, 0x5000)
    assert as_variant(s, s.wrap(s.Derived, 0x5008)) == (1, 0x5008)


@scene("marshal-variant.kind.struct-wrapper", "marshal-records.variant.general-kinds")
def test_a_struct_wrapper_gives_its_handle(s):
    assert as_variant(s, s.wrap(s.Value, 0x6000)) == (2, 0x6000)


@scene("marshal-variant.kind.sibling-wrapper")
def test_a_wrapper_of_a_sibling_gives_its_handle(s):
    for marker, kind in [(None, 1), (Ellipsis, 2)]:
        assert as_variant(s, sibling_wrapper(0x7000, marker)) == (kind, 0x7000)


@scene("marshal-variant.kind.null-handle")
def test_a_wrapper_without_a_handle_is_unknown(s):
    record = s.native.VariantArg()
    convert = s.function("fn_conv_py_variant_to_clr_variant", INT, OBJECT, POINTER)
    for kind in (s.Sample, s.Value, s.IShape):
        empty = kind.__new__(kind)
        text = text_of(TypeError, convert, empty, ctypes.addressof(record))
        assert text == "unknown variant type"


@scene("marshal-records.scalars.object-handle")
def test_an_object_travels_as_its_handle(s):
    out = POINTER(0x5555)
    convert = s.function("class_conversion", INT, OBJECT, POINTER)
    assert convert(s.wrap(s.Sample, 0x5000), ctypes.addressof(out)) == 1
    assert out.value == 0x5000
    assert convert(None, ctypes.addressof(out)) == 1
    assert out.value is None


def result_of(s, name, handle, kind=None, token=0):
    """Reads an out record with a reader."""
    if kind is None:
        record = s.native.PyObjectOutArg(handle=handle, type_token=token)
    else:
        record = s.native.PyCollectionArg(kind=kind, handle=handle, type_token=token)
    read = s.function(name, OBJECT, POINTER, OBJECT)
    return read(ctypes.addressof(record), s.IShape if "ifcimpl" in name else s.Sample)


@scene("marshal-records.object-out.null", "marshal-records.collection-out.null-any-kind")
def test_a_null_result_is_none(s):
    for token in (0, 7, -1):
        assert result_of(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl", None, token=token) is None
        for kind in (0, 1, 2):
            for name in ("btpobj_to_py_btpobj", "absobj_to_py_absobj", "ifcimpl_to_py_ifcimpl_wps"):
                assert result_of(s, "fn_conv_clr_" + name, None, kind, token) is None
    assert s.calls() == []


@scene("marshal-records.collection-out.btpobj")
def test_the_plain_reader_looks_kind_1_up(s):
    name = "fn_conv_clr_btpobj_to_py_btpobj"
    s.type_name("Sample.Derived")
    for kind in (0, 2):
        assert type(result_of(s, name, 0x5000, kind, 50)) is s.Sample
    assert s.calls("GetTypeName") == []
    assert type(result_of(s, name, 0x5000, 1, 50)) is s.Derived
    s.type_name("Unknown.Type")
    assert type(result_of(s, name, 0x5000, 1, 51)) is s.Sample


@scene("marshal-records.collection-out.absobj")
def test_the_abstract_reader_looks_up_or_gives_the_object(s):
    name = "fn_conv_clr_absobj_to_py_absobj"
    s.type_name("Sample.Derived")
    for kind in (0, 1):
        assert type(result_of(s, name, 0x5000, kind, 60)) is s.Derived
    s.type_name("Unknown.Type")
    assert type(result_of(s, name, 0x5000, 0, 61)) is s.Sample
    value = object()
    before = sys.getrefcount(value)
    shown = result_of(s, name, id(value), 2, 60)
    assert shown is value and sys.getrefcount(value) == before + 1


@scene(
    "marshal-records.collection-out.ifcimpl-kind-0",
    "marshal-records.collection-out.ifcimpl-kind-1",
    "marshal-records.collection-out.ifcimpl-kind-2",
)
def test_the_interface_reader_takes_implementers(s):
    name = "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps"
    box = s.method("Exchange", "BoxStcTarget").returns(0x9999)
    s.type_name("Sample.Sample")  # shows IShape
    for kind in (0, 1):
        shown = result_of(s, name, 0x5000, kind, 70)
        assert type(shown) is s.Sample and handle_of(shown) == 0x5000
    assert box.received == []
    for token, other in [(71, "Sample.Derived"), (72, "Unknown.Type")]:  # do not
        s.type_name(other)
        shown = result_of(s, name, 0x5000, 0, token)
        assert type(shown) is s.IShape and handle_of(shown) == 0x5000
        assert len(box.received) == token - 71
        shown = result_of(s, name, 0x5000, 1, token)
        assert type(shown) is s.IShape and handle_of(shown) == 0x9999
        assert s.calls("BoxStcTarget") == [[0x5000]] * (token - 70)
    value = object()
    before = sys.getrefcount(value)
    shown = result_of(s, name, id(value), 2, 70)
    assert shown is value and sys.getrefcount(value) == before + 1


@scene("marshal-records.lifetime.handle-owned-by-wrapper")
def test_a_handle_is_given_back_when_its_wrapper_dies(s):
    wrapper = s.wrap(s.Sample, 0x5000)
    struct_wrapper = s.wrap(s.Value, 0x6000)
    as_variant(s, wrapper)
    gc.collect()
    assert s.calls("FreeInstance") == []
    del wrapper
    assert s.calls("FreeInstance") == [[0x5000]]
    del struct_wrapper
    assert s.calls("FreeInstance") == [[0x5000], [0x6000]]


@scene(
    "marshal-records.lifetime.handle-released-when-unwrappable", refuse=[("Sample", "btp_TypeOf")]
)
def test_a_handle_that_cannot_be_wrapped_is_given_back_at_once(s):
    error = raised(TypeError, s.wrap, s.Sample, 0x5000)
    assert "btp_TypeOf" in str(error)
    assert s.calls("FreeInstance") == [[0x5000]]


@scene("marshal-records.service.type-name-cell-freed")
def test_the_cell_of_a_type_name_is_freed_once(s):
    blocks = NameBlocks(s)
    seen = []

    def answer(frame):
        frame.result = blocks.make("Sample.Derived")
        seen.append(blocks.mapped())

    s.method("Exchange", "GetTypeName").calls(answer)
    before = blocks.mapped()
    for token in range(100, 103):
        shown = result_of(s, "fn_conv_clr_absobj_to_py_absobj", 0x5000, 0, token)
        assert type(shown) is s.Derived
        assert blocks.mapped() == before
    # A second free would end the process.
    assert seen == [before + blocks.counts] * 3


@scene("marshal-records.service.free-pending-never-called", "marshal-records.service.delegates")
def test_the_services_of_the_records(s):
    requests = [method for _, method in s.requests_of_start]
    names = ["FreePendingArgs", "FreeInstance", "FreeInstance", "BoxStcTarget", "GetTypeName"]
    for name in set(names):
        assert requests.count(name) >= names.count(name)
    pending = s.method("Exchange", "FreePendingArgs")
    s.type_name("Sample.Derived")
    s.method("Exchange", "BoxStcTarget").returns(0x9999)
    result_of(s, "fn_conv_clr_absobj_to_py_absobj", 0x5000, 0, 80)
    result_of(s, "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps", 0x5008, 1, 81)
    wrapper = s.wrap(s.Sample, 0x5010)
    as_variant(s, wrapper)
    raised(TypeError, s.Sample, 5)
    s.method("Sample", "ctor_000_Sample").raises(ValueError, "no")
    raised(ValueError, s.Sample)
    del wrapper
    # The arguments of each service, as it was called.
    assert s.calls("GetTypeName") == [[0x5000], [0x5008]]
    assert s.calls("BoxStcTarget") == [[0x5008]]
    assert sorted(handle for (handle,) in s.calls("FreeInstance")) == [0x5000, 0x5010, 0x9999]
    assert pending.received == []


# Collections.


def converters():
    """The collection converters, with the wrapper type of each."""
    names = {
        "array": "_ArrayWrapper",
        "arrlist": "_ArrListWrapper",
        "colbase": "_ColBaseWrapper",
        "rocolbase": "_RoColBaseWrapper",
        "ilist": "_IListWrapper",
        "icollection": "_IColWrapper",
        "iterable": "_IterableWrapper",
        "iter": "_IterWrapper",
        "stream": "_StreamWrapper",
    }
    return {"wrpPye_conv_py_to_clr_" + form: name for form, name in names.items()}


def as_collection(s, name, value, fill=0x5555):
    """(kind, value) of a record that held a pattern before."""
    record = s.native.VariantArg(kind=-7, value=fill)
    convert = s.function(name, INT, OBJECT, POINTER)
    assert convert(value, ctypes.addressof(record)) == 1
    return record.kind, record.value


@scene(
    "marshal-records.variant.collection-kind-0",
    "marshal-records.variant.collection-value-always-set",
    "marshal-records.variant.collection-no-kind-1",
)
def test_a_managed_collection_is_its_handle(s):
    for name, type_name in converters().items():
        wrapper = s.wrap(getattr(s.interop, type_name), 0x5000)
        assert as_collection(s, name, wrapper) == (0, 0x5000)
        assert as_collection(s, name, None) == (0, None)


@scene(
    "marshal-records.variant.collection-kind-2",
    "marshal-records.variant.collection-value-always-set",
    "marshal-records.variant.collection-no-kind-1",
)
def test_a_python_collection_is_lent(s):
    lists, derived = [1, 2], type("MyList", (list,), {})([1])
    cases = [
        *[
            (form, value)
            for form in ("array", "arrlist", "colbase", "ilist")
            for value in (lists, derived)
        ],
        *[("icollection", value) for value in (lists, {1: 2}, {1, 2}, range(3))],
        *[("iterable", value) for value in (lists, (1, 2), {1: 2}, iter([1]), "text")],
        *[("iter", value) for value in (iter([1]), (i for i in range(3)))],
        *[("stream", value) for value in (io.BytesIO(b"x"), io.BufferedReader(io.BytesIO(b"x")))],
    ]
    for form, value in cases:
        before = sys.getrefcount(value)
        assert as_collection(s, "wrpPye_conv_py_to_clr_" + form, value) == (2, id(value)), form
        assert sys.getrefcount(value) == before


@scene(
    "marshal-records.variant.collection-kind-3",
    "marshal-records.variant.collection-value-always-set",
    "marshal-records.variant.collection-no-kind-1",
)
def test_a_python_sequence_is_lent(s):
    for form in ("array", "arrlist", "colbase", "ilist"):
        for value in ((1, 2), range(3), "text"):
            converted = as_collection(s, "wrpPye_conv_py_to_clr_" + form, value)
            assert converted == (3, id(value)), (form, value)


@scene("marshal-bytes.view.readinto-path")
def test_a_python_stream_reads_into_a_managed_block(s):
    """The window is writable, and what the stream stores arrives in the block."""
    block = ctypes.create_string_buffer(b"........", 8)
    windows = []

    class Watching(io.BytesIO):
        def readinto(self, window):
            windows.append((type(window), memoryview(window).readonly, memoryview(window).nbytes))
            return super().readinto(window)

    read = s.function("fn_clbk_rawio_read", INT, OBJECT, POINTER, INT)
    stream = Watching(b"abc")
    assert read(stream, ctypes.addressof(block), 6) == 3
    assert block.raw == b"abc....."
    assert windows == [(s.interop._ShlBufferView, False, 6)]


@scene("marshal-bytes.from-clr.stream-read-is-bytes")
def test_a_managed_stream_reads_bytes(s):
    stream = s.wrap(s.interop._StreamWrapper, 0x5000)
    pieces = [b"abc", b""]

    def read(frame):
        piece = pieces.pop(0) if pieces else b""
        ctypes.memmove(frame.integers[1], piece, len(piece))
        frame.result = len(piece)

    s.method("Stream", "CanRead").returns(1)
    s.method("Stream", "Read").calls(read)
    made = stream.read(3)
    assert type(made) is bytes and made == b"abc"


@scene("marshal-bytes.view-type.name")
def test_the_window_is_a_type_of_the_interop_module(s):
    kind = s.interop._ShlBufferView
    assert id(kind) == s.native.address("wrpPye_tyds_ShlBufferView")
    assert kind.__module__ == "kelmor.psd._wrpgen._interop"
