"""The type that a result is shown as: the declared one, or for an object its own."""

import ctypes

from harness_scene import INT, POINTER, harness_scene, raised
from psd_scene import psd_scene
from wrappers import handle_of


@psd_scene("binding-registry.class-result.declared-type")
def test_a_loaded_image_is_an_image_whatever_it_is(s):
    s.registry.name = "Kelmor.PSD.FileFormats.Psd.PsdImage"
    s.method("Image", "call_001_Load").returns(0x40)
    image = s.type_of("Image").load("a.psd")
    assert type(image) is s.type_of("Image") and handle_of(image) == 0x40
    s.method("Image", "get_Bounds").returns(0x50)
    assert type(image.bounds) is s.type_of("Rectangle") and s.calls("GetTypeName") == []
    # Where the type is asked for, it would be found.
    assert s.registry.find(s.registry.name) is s.type_of("FileFormats.Psd.PsdImage")


@harness_scene("binding-registry.object-result.exact-type")
def test_an_object_result_is_shown_as_its_exact_type(s):
    from family import symbols_of

    symbols = {n.split("(")[0]: a for n, a in symbols_of(s.harness.__file__).items()}
    write = ctypes.PYFUNCTYPE(POINTER, POINTER, ctypes.c_int64)(symbols["fn_write_py_tpo"])
    create = ctypes.PYFUNCTYPE(POINTER, ctypes.c_char_p, INT)(symbols["fn_create_u16_buffer"])
    names = ["Kelmor.Harness.Pair", "Kelmor.Harness.Square", "Kelmor.Harness.ShapeBase"]
    state = {"token": 0}

    def name_of(frame):
        name = names[state["token"]]
        frame.result = create(name.encode("utf-16-le"), len(name))

    def make(frame):
        frame.result = write(0x40 + state["token"], state["token"])

    s.service("GetTypeName").calls(name_of)
    s.on("Variants", "call_000_Make", make)
    for token, name in enumerate(names):
        state["token"] = token
        made = s.harness.Variants.make("anything")
        assert type(made) is getattr(s.harness, name.rpartition(".")[2])
        assert POINTER.from_address(id(made) + 16).value == 0x40 + token
    names[2] = "Kelmor.Harness.Nobody"
    state["token"] = 2
    assert type(s.harness.Variants.make("anything")) is s.harness.ShapeBase  # known by its id
    names.append("Kelmor.Harness.Nobody")
    state["token"] = 3
    s.method("Variants", "call_000_Make").reset().invokes(symbols["fn_write_py_tpo"], 0x43, 3)
    assert str(raised(TypeError, s.harness.Variants.make, "anything")) == "unknown wrapper type"
    assert s.freed()[-1] == 0x43
