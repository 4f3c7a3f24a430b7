"""Symbols of the generated families: their kinds, tags, linkage and numbers."""

import re

import pytest

from wrpgen import generate

LAYER = "Kelmor.PSD.FileFormats.Psd.Layers.Layer"


@pytest.fixture(scope="module")
def native(generation):
    """All generated C++ of kelmor.psd as one text."""
    return "\n".join(generation("psd").native_files(1).values())


@pytest.fixture(scope="module")
def family(generation):
    """`family("Kelmor.PSD.Image")`: the text of one family."""
    from wrpgen import units

    made: generate.Generation = generation("psd")
    return lambda name: units.write_family(made.family(name), made.families)


@pytest.mark.behaviour("family-class.symbols.xmp-header-pi")
def test_the_pieces_of_a_family_have_their_symbols(family):
    text = family("Kelmor.PSD.Xmp.XmpHeaderPi")
    tail = "D91BAC5C_XmpHeaderPi"
    for symbol in (
        f"class PyHost_cs_{tail} ",
        f"PyTypeObject wrpPy_tyds_{tail} ",
        f"PyMethodDef wrpPy_tymd_{tail}[]",
        f"PyGetSetDef wrpPy_typd_{tail}[]",
        f"bool wrpPy_bltp_{tail}_is_not_valid(std::string &",
        f"bool wrpPy_uafn_{tail}_invalidate()",
        f"wrpPy_uafn_{tail}_get_aggregate_host_state()",
        f"wrpPy_tpsb_{tail}_tp_new(",
        f"wrpPy_tpsb_{tail}_tp_init(",
        f"wrpPy_mtfn_{tail}_000_get_xml_value(",
        f"wrpPy_mtfn_{tail}_000_equals(",
        f"wrpPy_pafn_{tail}_000_get_guid(",
        f"wrpPy_pafn_{tail}_000_set_guid(",
        f"int wrpPy_conv_py_to_clr_{tail}(",
        f"PyObject *wrpPy_conv_clr_to_py_{tail}(",
    ):
        assert symbol in text


@pytest.mark.behaviour("binding-casts.names.symbols")
def test_each_built_in_operation_is_a_function(family):
    text = family("Kelmor.PSD.Xmp.XmpHeaderPi")
    for name in ("type_of", "cast_to", "cast_from", "reinterpret_obj", "cast_as", "is_assignable"):
        symbol = f"wrpPy_blts_D91BAC5C_XmpHeaderPi_000__{name}"
        assert text.count(f"static PyObject *{symbol}(") == 1
        assert text.count(f'{{"_{name}", {symbol}, ') == 1


@pytest.mark.behaviour("family-statics.write.setter-symbol")
def test_a_static_setter_has_its_symbol(family):
    text = family("Kelmor.PSD.Cache")
    (tag,) = set(re.findall(r"class PyHost_cs_([0-9A-F]{8})_Cache ", text))
    symbol = f"wrpPy_spvg_{tag}_Cache_000_set_cache_folder"
    assert text.count(f"static PyObject *{symbol}(PyObject *, PyObject *value)") == 1
    row = f'{{"set_cache_folder", {symbol}, METH_O | METH_STATIC, nullptr}}'
    assert row in " ".join(text.split())


@pytest.mark.behaviour("family-class.symbols.kinds")
def test_every_generated_symbol_is_of_a_known_kind(native):
    form = re.compile(
        r"wrpPy_(?:(?:tyds|tymd|typd)_T"
        r"|tpsb_T_tp_(?:new|init)"
        r"|(?:mtfn|mgfn|htgn|htfn|hgfn)_T_[0-9]{3}_[a-z0-9_]+"
        r"|ctfn_T_[0-9]{3}_ctor"
        r"|(?:phfn|pafn)_T_[0-9]{3}_(?:get|set)_[a-z0-9_]+"
        r"|spvg_T_[0-9]{3}_(?:get_[A-Z0-9_]+|set_[a-z0-9_]+)"
        r"|sgsf_T_[0-9]{3}_[A-Z0-9_]+"
        r"|amml_T_[0-9]{3}_[a-z_]+|mxml_T_[0-9]{3}_[a-z0-9_]+|blts_T_[0-9]{3}_[a-z_]+"
        r"|bltp_T_is_not_valid|uafn_T_(?:invalidate|get_aggregate_host_state)"
        r"|eypi_T|conv_py_to_clr_T|conv_clr_to_py_T"
        r"|(?:mlds|mlmd|mlit)_T)\Z".replace("_T", r"_[0-9A-F]{8}_[A-Za-z0-9]+")
    )
    symbols = set(re.findall(r"\bwrpPy_\w+", native))
    assert len(symbols) > 3000
    assert [symbol for symbol in sorted(symbols) if not form.match(symbol)] == []


@pytest.mark.behaviour("family-class.symbols.kinds")
def test_functions_of_different_names_are_each_numbered_from_zero(family):
    text = family("Kelmor.PSD.Image")
    assert "wrpPy_pafn_7E7D27DF_Image_000_get_palette(" in text
    assert "wrpPy_pafn_7E7D27DF_Image_000_get_bounds(" in text


@pytest.mark.behaviour("family-class.symbols.linkage", "family-interfaces.symbols.visible")
def test_what_other_families_name_is_not_static(native):
    visible = "htgn|htfn|hgfn|phfn|bltp|tyds|conv_py_to_clr|conv_clr_to_py"
    assert re.search(rf"^static [^\n=]*\bwrpPy_(?:{visible})_\w+(?:\(| =)", native, re.M) is None
    for kind in ("htfn", "hgfn", "phfn", "htgn"):
        assert re.search(rf"^(?:PyObject \*|int )wrpPy_{kind}_\w+\(", native, re.M), kind


@pytest.mark.behaviour("family-interfaces.symbols.shared-bodies")
def test_a_class_points_at_the_functions_of_its_interface(generation, family):
    text = family("Kelmor.PSD.ColorPalette")
    assert "wrpPy_htfn_6868585B_IColorPalette_000_get_color" in text
    assert "wrpPy_hgfn_6868585B_IColorPalette_000_get_nearest_color_index" in text
    assert "wrpPy_phfn_6868585B_IColorPalette_000_get_entries_count" in text
    assert "call_000_GetColor" not in text


@pytest.mark.behaviour("family-overloads.order.image-save-symbols")
def test_the_attempts_of_image_save_stand_in_their_functions(family):
    text = family("Kelmor.PSD.Image")
    body = text[text.index("PyObject *wrpPy_mgfn_7E7D27DF_Image_000_save(") :]
    body = body[: body.index("\n}\n")]
    called = re.findall(r"wrpPy_htgn_\w+|attempts\.keep_failure\(4\)", body)
    image, base = "wrpPy_htgn_7E7D27DF_Image_00", "wrpPy_htgn_35B3618B_DataStreamSupporter_00"
    assert called == [
        *(f"{image}{number}_save" for number in range(4)),
        "attempts.keep_failure(4)",
        *(f"{base}{number}_save" for number in range(3)),
    ]


@pytest.mark.behaviour("family-overloads.builders.layer-ctor-symbol")
def test_a_constructor_with_byte_blocks_stands_out_of_line(family):
    text = family(LAYER)
    init = text[text.index("wrpPy_tpsb_8D6FBABB_Layer_tp_init(") :]
    assert "static int wrpPy_ctfn_8D6FBABB_Layer_003_ctor(" in text
    assert "wrpPy_ctfn_8D6FBABB_Layer_003_ctor(" in init[: init.index("\n}\n")]


@pytest.mark.behaviour("family-overloads.mixed.rectangle-inflate-symbols")
def test_the_halves_of_a_mixed_name_have_two_functions_and_two_records(family):
    text = family("Kelmor.PSD.Rectangle")
    assert "wrpPy_mtfn_5021E3DF_Rectangle_000_inflate(PyObject *," in text
    assert "wrpPy_mgfn_5021E3DF_Rectangle_000_inflate(PyObject *self," in text
    assert text.count("static PyMethodDef wrpPy_mxml_5021E3DF_Rectangle_000_inflate_") == 2
    assert "install_mixed_method(&wrpPy_tyds_5021E3DF_Rectangle" in text


@pytest.mark.behaviour("family-enums.make.pointer-variable", "family-enums.make.protocol-records")
def test_an_enumeration_is_a_pointer_with_eight_records(family):
    text = family("Kelmor.PSD.FileFormat")
    assert re.search(r"^PyTypeObject \*wrpPy_tyds_[0-9A-F]{8}_FileFormat;$", text, re.M)
    assert len(re.findall(r"^static PyMethodDef wrpPy_amml_\w+_000_\w+ = \{$", text, re.M)) == 8


@pytest.mark.behaviour("family-enums.error-function.unused")
def test_no_generated_function_uses_the_error_of_enumerations(native):
    assert "PyShlErr_EnumTypeInitialization" not in native


@pytest.mark.behaviour("family-statics.symbols.record")
def test_a_static_member_is_a_getter_and_a_record_with_nothing_else(family):
    text = family("Kelmor.PSD.Color")
    assert "static PyObject *wrpPy_spvg_342A74C1_Color_000_get_RED(PyObject *, void *) {" in text
    record = text[text.index("static PyGetSetDef wrpPy_sgsf_342A74C1_Color_000_RED = {") :]
    fields = re.sub(r"\s+", " ", record[record.index("{") : record.index("};")])
    assert fields == ('{ "RED", wrpPy_spvg_342A74C1_Color_000_get_RED, nullptr, nullptr, nullptr')


@pytest.mark.behaviour("shell-tree.module.initialiser-count", "shell-tree.module.symbol-names")
def test_each_of_the_eighty_modules_has_its_three_objects(generation, native):
    modules = generation("psd").extension.modules
    assert len(modules) == 80 and modules[0] == ("kelmor.psd", "AFE8B5DB")
    for name, tag in modules:
        tail = f"{tag}_{name.rsplit('.', 1)[-1]}"
        assert f"PyModuleDef wrpPy_mlds_{tail} = " in native
        assert f"PyMethodDef wrpPy_mlmd_{tail}[] = " in native
        assert f"PyObject *wrpPy_mlit_{tail}() {{" in native
    assert len(re.findall(r"^PyObject \*wrpPy_mlit_\w+\(\) \{", native, re.M)) == 80


@pytest.mark.behaviour("family-statics.capsule.stored-words", "shell-tree.capsule.variables")
def test_only_the_words_that_are_used_have_variables(generation, native):
    stored = set(re.findall(r"\bwrpPyl_(?:convcaps|trancaps)_\w+", native))
    wanted = set()
    for capsule in generation("psd").extension.imports:
        for word in capsule.words:
            kind = ("convcaps_py_to_clr", "convcaps_clr_to_py", "trancaps_py_to_clr")[word]
            wanted.add(f"wrpPyl_{kind}_{capsule.symbol}")
    assert stored == wanted and len(wanted) == 27
