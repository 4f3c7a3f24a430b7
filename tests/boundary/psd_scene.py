"""A scene over kelmor.psd itself: its bound classes, over delegates of the script.

    @psd_scene("family-class.getter.call")
    def test_a_property_asks_each_time(s):
        s.returns_object("Xmp.XmpHeaderPi", "get_Guid", "one")
        assert s.make("Xmp.XmpHeaderPi").guid == "one"

The siblings are made of nothing. Classes are named by their managed names below Kelmor.PSD, entry
classes that are no bound class as the runtime has them.
"""

import ctypes
import functools
import json
import struct
import types

import peer
import wrappers
from wrappers import CLASSES, POINTER, Scene

psd_scene = functools.partial(wrappers.scene, kind="Psd", module="psd_scene")

TAGS = {
    name.replace("Kelmor.PSD.", "", 1): pair
    for name, pair in json.loads((peer.ROOT / "api/tags.json").read_text())["psd"].items()
}

# The tags of the generic callback table, in its order.
GENERIC_ORDER = """
5DD05DF7 404E5618 E90A8A3E A8DABD8E 342FE80E 188E811B 30E804BA
8B10719C C1D35DED 53A3759B 473C851B A0E7C71A F9646F9F 11570E3D
9DECBCBA 0D30925B 2FDE0862 02992A18 DF816D51 BBEAD545 F372CE9B
8914A225 25E8868A 9B7EDA9E 50C6B2CE 06BBE5C9 4B6EE0B1 46E3121E
7B161336 47FE0CC9 4D95EE1F CEAC6EB6 67EEC098 C7127822 42C841FE
A34CCD0B 24892AA5 5C0982BF 92F00F0B F25B175D 1BA766B5 FCB07591
A2718E40 A4A29720 E7C32114 CF33F510 CBE911FC 57AC8DC4 110A8374
""".split()

REFERENCE = "one or more refereced type is not initialized"


def entry_class(name):
    """The name under which the runtime finds an entry class."""
    if name not in TAGS:
        return CLASSES.get(name, name)
    space, _, simple = f"Kelmor.PSD.{name}".rpartition(".")
    own = simple.rpartition("+")[2]
    spaces = ".".join(f"WrpNs_{part}" for part in space.split("."))
    return f"{spaces}.WrpCs_{own[:8]}_{TAGS[name][1]}"


def missing_text(name, method, number=77):
    return (
        f"While initializing the host for the '{entry_class(name)} (Assembly={peer.ASSEMBLY})'"
        f" type, an error occurred - Method '{method}' not found (error={number})"
    )


class Psd(Scene):
    def __init__(self, refuse=()):
        import family

        self.script, self.kept = peer.Script(), []
        for name, method in refuse:
            self.script.refuse(entry_class(name), method, 77)
        for setter in ("SetPyStaticCallbacks", "SetPyGenericCallbacks", "SetExceptionCallback"):
            self.method("Exchange", setter).takes(1)
        self.registry = family.Registry(self.script)
        stubs = family.Family().complete()
        self.serve_siblings(stubs)
        self.psd = stubs.psd()
        self.interop, self.generic = self.psd._wrpgen._interop, self.psd._wrpgen._generic
        self.journal_of_start = self.script.journal
        self.registry.remember()
        self.clear()

    def serve_siblings(self, stubs):
        """A value of a sibling is shown as the pair of its type's name and its handle."""
        for name in ("Type", "Object", "Enum"):
            self.method("Test", name + "ToPy").calls(self.show_as(name))
            words = [0] + [self.address(f"{name}{way}") for way in ("ToPy", "FromPy")]
            stubs.capsule(f"kelmor.typemodel._C_APIT_{name}", self.table(words))
        for name in ("Color", "PointF"):
            self.method("Test", name + "ToPy").calls(self.show_as(name, by_address=True))
            words = [self.address(f"{name}{way}") for way in ("FromPy", "ToPy")]
            stubs.capsule(f"kelmor.gfxtypes._C_APITV1_{name}", self.table(words + [0]))
        for name in ("Brush", "Font", "RotateFlipType", "GraphicsUnit", "imaging.ColorMap"):
            place, _, leaf = name.rpartition(".")
            self.method("Test", leaf + "ToPy").calls(self.show_as(leaf))
            words = [self.address(f"{leaf}{way}") for way in ("FromPy", "ToPy")]
            module = ".".join(filter(None, ("kelmor.gfxtypes", place)))
            stubs.capsule(f"{module}._C_APIT_{leaf}", self.table(words + [0]))
        self.method("Test", "Factory").calls(self.make_result)
        stubs.capsule("kelmor.shellbase._C_APIF", self.table([self.address("Factory")]))

    def show_as(self, name, by_address=False):
        def show(frame):
            word = frame.integers[0]
            self.give(frame, (name, POINTER.from_address(word).value if by_address else word))

        return show

    def address(self, name):
        return self.method("Test", name).address

    def table(self, words):
        memory = (POINTER * len(words))(*words)
        self.kept.append(memory)
        return ctypes.addressof(memory)

    # The managed side.

    def method(self, name, method):
        return self.script.method(entry_class(name), method, peer.ASSEMBLY)

    # The Python side.

    def type_of(self, name):
        """The Python type of a managed class."""
        place = self.psd
        space, _, simple = name.rpartition(".")
        for part in space.lower().split(".") if space else ():
            place = getattr(place, part)
        for part in simple.split("+"):
            place = getattr(place, part)
        return place

    def make(self, name, handle=0x10, entry=None, arguments=()):
        """An instance made by a constructor whose entry gives the handle."""
        entry = entry or f"ctor_000_{name.rpartition('.')[2]}"
        self.method(name, entry).reset().returns(handle)
        return self.type_of(name)(*arguments)

    def wrap(self, kind, handle):
        """A wrapper over a handle that no constructor made; of a type, or of a class by name."""
        kind = self.type_of(kind) if isinstance(kind, str) else kind
        wrapper = kind.__new__(kind)
        POINTER.from_address(id(wrapper) + object.__basicsize__).value = handle
        return wrapper

    def callback(self, tag, half):
        """The element reader of a tag: half 0 for lists, 1 for sequences."""
        tables = self.registry.callback("SetPyGenericCallbacks")
        table = POINTER.from_address(tables + 8 * (GENERIC_ORDER.index(tag) + 49 * half)).value
        return POINTER.from_address(table).value if table else None

    def types_below(self, module=None):
        """All types of the tree: module, name, type."""
        module = module or self.psd
        found = []
        for name, value in vars(module).items():
            if isinstance(value, type) and value is not type:
                found.append((module.__name__, name, value))
            elif isinstance(value, types.ModuleType) and value.__name__.startswith("kelmor.psd"):
                found.extend(self.types_below(value))
        return found

    # What was seen.

    def requests(self, name=None):
        """The methods asked for, of one class; else class and method, of all bound ones."""
        wanted = self.script.requests
        if name is None:
            return [(cls, method) for cls, method in wanted if cls.startswith("WrpNs_")]
        return [method for cls, method in wanted if cls == entry_class(name)]


def string_at(address):
    """The text of a PyStringArg with one byte for each character; None for None."""
    length, size, data = struct.unpack("<iiQ", ctypes.string_at(address, 16))
    return None if length < 0 else ctypes.string_at(data, length * size).decode("latin-1")


def variant_at(address):
    """kind and value of a VariantArg."""
    return wrappers.variant(ctypes.string_at(address, 16))
