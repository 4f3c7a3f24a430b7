"""How the types of the tree are set up: markers, interface sets, names, and what failures say."""

import enum

import pytest
from psd_scene import psd_scene
from wrappers import handle_of, text_of

LAYERS = "FileFormats.Psd.Layers."
STRUCTS = "CmykColor Color Point PointF Rectangle RectangleF Size SizeF".split()


def wrappers_of(s):
    """All bound classes, interfaces and structs."""
    hidden = "kelmor.psd._"
    found = [
        kind
        for module, name, kind in s.types_below()
        if not module.startswith(hidden) and name[0] != "_" and not issubclass(kind, enum.Enum)
    ]
    assert len(found) > 100
    return found


@psd_scene(
    "binding-markers.key.host-class",
    "binding-markers.key.host-struct",
    "binding-markers.key.castable-class-struct",
    "binding-markers.external-ancestor.unused",
)
def test_every_type_has_its_markers(s):
    for kind in wrappers_of(s):
        entries = vars(kind)
        wanted = ... if kind.__name__ in STRUCTS else None
        assert entries["_kelmor_clr_host"] is wanted, kind
        assert entries["_kelmor_clr_castable_obj"] is None, kind
    assert not [k for _, _, k in s.types_below() if "_external_ancestor" in vars(k)]


@psd_scene(
    "binding-wrapper.type.no-base-flag",
    "binding-wrapper.type.no-gc",
    "binding-wrapper.type.sizes",
)
def test_no_type_can_be_derived_from_and_all_are_of_one_size(s):
    hidden = [*vars(s.interop).values(), *vars(s.generic).values()]
    hidden = [kind for kind in hidden if isinstance(kind, type)]
    for other in (s.interop._ShlBufferView, s.interop._StreamWrapper):  # of records of their own
        hidden.remove(other)
        assert not other.__flags__ & (1 << 10)
    assert len(hidden) > 50
    for kind in [*wrappers_of(s), *hidden]:
        assert not kind.__flags__ & (1 << 10 | 1 << 14), kind
        assert (kind.__basicsize__, kind.__itemsize__) == (24, 0), kind
        assert "not an acceptable base type" in text_of(TypeError, type, "X", (kind,), {})


@psd_scene("binding-casts.names.uni-enum-only-enums", "binding-casts.names.static-or-instance")
def test_every_bound_type_has_the_cast_protocol(s):
    forms = {"_cast_from": "method_descriptor", "get_type": "method_descriptor"}
    for name in ("_type_of", "_cast_to", "_reinterpret_obj", "_cast_as", "_is_assignable"):
        forms[name] = "staticmethod"
    for kind in wrappers_of(s):
        members = vars(kind)
        assert {name: type(members[name]).__name__ for name in forms} == forms, kind
        assert "_as_uni_enum" not in members
    enumerations = [kind for _, _, kind in s.types_below() if issubclass(kind, enum.Enum)]
    assert len(enumerations) >= 30
    for kind in enumerations:
        assert {*forms, "_as_uni_enum"} <= set(vars(kind)), kind


@psd_scene(
    "binding-markers.key.additional-set",
    "binding-markers.key.implicit-set",
    "binding-markers.sets.same-members",
    "binding-markers.sets.inherited-spelled-out",
)
def test_interface_sets_name_all_interfaces_of_a_class(s):
    seen = 0
    for kind in wrappers_of(s):
        entries = vars(kind)
        sets = [entries.get(key) for key in ("_additional_interfaces", "_implicit_interfaces")]
        if sets == [None, None]:
            continue
        seen += 1
        additional, implicit = sets
        assert type(additional) is type(implicit) is set and additional == implicit, kind
        assert all(isinstance(interface, type) for interface in additional)
        inherited = vars(kind.__base__).get("_additional_interfaces", set())
        assert inherited <= additional, kind
    assert seen > 40
    disposable = s.interop._IDisposableWrapper
    shape = s.type_of(LAYERS + "ShapeLayer")
    assert shape._additional_interfaces == {disposable, s.type_of(LAYERS + "IShapeLayer")}


@psd_scene("binding-markers.sets.xmp-header-pi")
def test_the_sets_of_an_xmp_header(s):
    header, interface = s.type_of("Xmp.XmpHeaderPi"), s.type_of("Xmp.IXmlValue")
    assert header._additional_interfaces == header._implicit_interfaces == {interface}


@psd_scene("binding-wrapper.type.base-chain", "binding-wrapper.type.no-exposed-base")
def test_the_managed_bases_show(s):
    errors = "CoreExceptions."
    assert s.type_of("Image").__base__ is s.type_of("DataStreamSupporter")
    tiff = s.type_of(errors + "ImageFormats.TiffImageException")
    assert tiff.__base__ is s.type_of(errors + "ImageException")
    assert s.type_of(LAYERS + "Layer").__base__ is s.type_of("RasterCachedImage")
    for name in ("DisposableObject", "IColorPalette", "Xmp.IXmlValue", "IPsdColorPalette"):
        assert s.type_of(name).__base__ is object


@psd_scene("binding-wrapper.state.no-mirror")
def test_a_wrapper_remembers_nothing(s):
    image = s.wrap("Image", 0x10)
    s.method("Image", "get_Width").returns(5, 6)
    s.clear()
    assert (image.width, image.width) == (5, 6) and s.calls() == ["get_Width"] * 2


@psd_scene("binding-casts.cast-from.five-types")
def test_five_types_have_a_cast_of_their_own(s):
    found = []
    for kind in wrappers_of(s):
        s.clear()
        s.wrap(kind, 0)
        asked = [method for _, method in s.requests()]
        found += [kind.__name__] if "btp_CastFrom" in asked else []
    wanted = ["FileStreamContainer", "Point", "Size", "SizeF", "StreamContainer"]
    assert sorted(found) == wanted


@psd_scene("family-class.state.layer-references")
def test_a_layer_asks_its_base_and_then_what_it_reaches(s):
    layer = s.type_of(LAYERS + "Layer")
    s.wrap(layer, 0)
    order = list(dict.fromkeys(cls for cls, _ in s.script.requests))
    names = [name.rsplit("_", 2)[-2] for name in order if name.startswith("WrpNs_")]
    # Each base asks its own references before the next query is made.
    wanted = ["Layer", "RasterCa", "RasterIm", "Image", "DataStre", "Disposab"]
    assert names == wanted and order[-1].endswith("SiApiDisposable")


@psd_scene("binding-registry.register.names")
def test_every_class_is_found_by_its_managed_name(s):
    import json

    import peer

    seen = 0
    for path in sorted((peer.ROOT / "api/psd").glob("*.json")):
        content = json.loads(path.read_text())
        for entry in content["types"]:
            if entry["kind"] == "enum":
                continue
            full = f"{content['namespace']}.{entry['type']}"
            assert s.registry.find(full) is s.type_of(full[len("Kelmor.PSD.") :]), full
            seen += 1
    assert seen > 100


@psd_scene(
    "collections-iterators.disposable.bound-classes",
)
def test_a_disposable_class_is_a_context_manager(s):
    image = s.wrap("Image", 0x10)
    with image as entered:
        assert entered is image and s.calls("Dispose") == []
    assert s.calls("Dispose") == [[0x10]] and handle_of(image) == 0x10
    assert image.__exit__(None, None, None) is None
    assert s.calls("Dispose") == [[0x10]] * 2


@pytest.mark.parametrize(
    ("call", "text"),
    [
        pytest.param(
            ("PyDict_SetItem", "_kelmor_clr_castable_obj"),
            "(-1021) <",
            marks=pytest.mark.behaviour("family-enums.make.castable-fails"),
            id="castable-marker",
        ),
        pytest.param(
            ("PyDict_SetItemString", "_as_uni_enum"),
            ",_as_uni_enum>",
            marks=pytest.mark.behaviour("family-enums.make.protocol-fails"),
            id="protocol-member",
        ),
        pytest.param(
            ("PyDict_SetItemString", "CACHE_FOLDER"),
            "(-1020) <kelmor.psd.Cache,CACHE_FOLDER>",
            marks=pytest.mark.behaviour("family-statics.install.result"),
            id="static-member",
        ),
        pytest.param(
            ("PyDict_SetItemString", "ErrorReason"),
            "(-1020) <kelmor.psd.coreexceptions.imageformats.JpegLoadException,ErrorReason>",
            marks=pytest.mark.behaviour("family-statics.nested.failure"),
            id="nested-enumeration",
        ),
    ],
)
def test_a_failure_of_set_up_names_type_and_member(in_process, call, text):
    from test_shell_tree_steps import fail_tree

    seen = in_process(fail_tree, *call, -1).value
    texts = [shown for _, shown in seen["shown"]]
    found = [t for t in texts if t.startswith("Type initialization internal error (") and text in t]
    assert len(found) == 1 and texts[-1] == "refused by the test"
    assert seen["version"] == "24.11.0.0"
