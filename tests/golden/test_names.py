"""Names as Python has them."""

import pytest

from wrpgen import names


@pytest.mark.behaviour("family-class.names.snake-case")
@pytest.mark.parametrize(
    ("managed", "python"),
    [("GetXmlValue", "get_xml_value"), ("IsVisible", "is_visible"), ("X", "x"), ("CMYK", "cmyk")],
)
def test_methods_and_properties_are_lower_snake_case(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.names.word-breaks")
@pytest.mark.parametrize(
    ("managed", "python"),
    [
        pytest.param("IsVisible", "is_visible", id="capital-after-small-letter"),
        pytest.param("Create8BitGrayscale", "create_8_bit_grayscale", id="capital-after-digit"),
        pytest.param("XMLValue", "xml_value", id="last-capital-of-a-run"),
        pytest.param("ExifGPSAltitudeRef", "exif_gps_altitude_ref", id="run-inside"),
        pytest.param("JFIFData", "jfif_data", id="run-at-the-start"),
        pytest.param("RawDataCMYK", "raw_data_cmyk", id="run-at-the-end"),
    ],
)
def test_a_word_begins_at_a_capital(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.names.inner-digits")
@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("GetArgb32Color", "get_argb_32_color"),
        ("Create8BitGrayscale", "create_8_bit_grayscale"),
        ("GenerateLfx2ResourceNodes", "generate_lfx_2_resource_nodes"),
        ("Html5Canvas", "html_5_canvas"),
        ("LoadCmyk32Pixels", "load_cmyk_32_pixels"),
    ],
)
def test_digits_inside_a_name_are_a_word(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.names.final-digits")
@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("ToArgb32", "to_argb32"),
        ("ImageBase64", "image_base64"),
        ("Matrix00", "matrix00"),
        ("Threshold1", "threshold1"),
        ("Jpeg2000", "jpeg2000"),
    ],
)
def test_digits_at_the_end_stay_on_their_word(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.names.digits-after-lone-capital")
@pytest.mark.parametrize(
    ("managed", "python"), [("FaxT4Options", "fax_t4_options"), ("X1Y1", "x1_y1"), ("M11", "m11")]
)
def test_digits_after_a_lone_capital_stay_on_it(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.names.statics-upper")
@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("DublinCore", "DUBLIN_CORE"),
        ("ColorValueMax", "COLOR_VALUE_MAX"),
        ("Html5Canvas", "HTML_5_CANVAS"),
        ("Jpeg2000", "JPEG2000"),
    ],
)
def test_static_members_take_the_same_words_in_capitals(managed, python):
    assert names.upper_snake(managed) == python


@pytest.mark.behaviour("family-class.names.parameters")
@pytest.mark.parametrize(
    ("managed", "python"),
    [
        ("guid", "guid"),
        ("filePath", "file_path"),
        ("loadOptions", "load_options"),
        ("argb32Color", "argb_32_color"),
    ],
)
def test_keywords_are_the_managed_parameter_names(managed, python):
    assert names.snake(managed) == python


@pytest.mark.behaviour("family-class.entry.class-form")
@pytest.mark.parametrize(
    ("namespace", "name", "tag", "entry"),
    [
        pytest.param(
            "Kelmor.PSD.Xmp",
            "XmpHeaderPi",
            "B968B5B1",
            "WrpNs_Kelmor.WrpNs_PSD.WrpNs_Xmp.WrpCs_XmpHeade_B968B5B1",
            id="cut-to-eight",
        ),
        pytest.param("A", "Layer", "0D30925B", "WrpNs_A.WrpCs_Layer_0D30925B", id="shorter"),
        pytest.param("A", "ColorMode", "9E8BB7C7", "WrpNs_A.WrpCs_ColorMod_9E8BB7C7", id="nine"),
    ],
)
def test_an_entry_class_is_named_by_namespace_cut_name_and_tag(namespace, name, tag, entry):
    assert names.entry_class(namespace, name, tag) == entry


@pytest.mark.behaviour("family-class.names.ds-exception")
def test_an_odd_name_is_data(generation):
    from wrpgen import families, model

    composer = families.Composer(generation("psd").extension)
    row = {"type": "LayerGroupsEnabledResource", "kind": "class"}
    owner = model.Type.read("Kelmor.PSD.FileFormats.Psd.Resources", row)
    member = model.Member.read({"kind": "property", "name": "IDs", "type": "System.Byte[]"})
    assert composer._py_name(owner, member) == "ds"
    assert names.snake("IDs") == "i_ds"
