"""Finds the value form of any managed type: bound types, siblings, arrays, generics, nullables."""

from __future__ import annotations

import dataclasses

from .basic_forms import AS_CLASS, BASIC, BY_CLASS, BY_INTERFACE, Form
from .model import Extension, Type

# Generic collections of the runtime: how the untyped wrapper serves them, and how they are read.
_GENERIC = {
    "System.Collections.Generic.IEnumerable": ("System.Collections.IEnumerable", "Enumerable"),
    "System.Collections.Generic.IEnumerator": ("System.Collections.IEnumerator", "Enumerator"),
    "System.Collections.Generic.IList": ("System.Collections.IList", "List"),
    "System.Collections.Generic.List": ("System.Collections.IList", "GenericList"),
}

_WIDTHS = {
    "System.SByte": "std::int8_t",
    "System.Byte": "std::uint8_t",
    "System.Int16": "std::int16_t",
    "System.UInt16": "std::uint16_t",
    "System.Int32": "std::int32_t",
    "System.UInt32": "std::uint32_t",
    "System.Int64": "std::int64_t",
    "System.UInt64": "std::uint64_t",
}


# Bound types by their kind, of this module or another one; converters and names are filled in.
_CLASS = Form(
    local="void *{v} = nullptr;",
    converter="",
    target="&{v}",
    passed="{v}",
    c_param="void *",
    cs_param="nint",
    cs_read="Handles.Optional<{t}>({v})",
    c_result="void *",
    by_slot=False,
    c_to_py="",
    cs_result="nint",
    cs_write="Results.Object({v})",
    py_in="",
    py_out="",
)
_STRUCT = dataclasses.replace(
    _CLASS,
    local="VariantArg {v};",
    passed="&{v}",
    c_param="const VariantArg *",
    cs_param="VariantArg*",
    cs_read="Args.Struct<{t}>({v})",
    cs_write="Results.Struct({v})",
)
_INTERFACE = dataclasses.replace(
    _STRUCT,
    cs_read="Args.Interface<{t}>({v})",
    c_result="PyObjectOutArg",
    by_slot=True,
    cs_result="PyObjectOutArg*",
    cs_write="Results.Interface({v}, {r})",
)


def _enumeration(native: str, managed: str) -> Form:
    return dataclasses.replace(
        _CLASS,
        local=f"{native} {{v}} = 0;",
        c_param=native,
        cs_param=managed,
        cs_read="(({t}){v})",
        c_result=native,
        cs_result=managed,
        cs_write=f"({managed}){{v}}",
    )


# A type of another module, by the form that its capsule tells.
_SIBLINGS = {"class": _CLASS, "struct": _STRUCT, "enum": _enumeration("int", "int")}


def cs_type(name: str) -> str:
    """A managed type as C# spells it."""
    if name.endswith("[]"):
        return cs_type(name[:-2]) + "[]"
    if name.startswith("System.Nullable<"):
        return cs_type(name[len("System.Nullable<") : -1]) + "?"
    if "<" in name:
        outer, inner = name[:-1].split("<", 1)
        return f"global::{outer}<{cs_type(inner)}>"
    return "global::" + name.replace("+", ".")


def number_type(type_: Type) -> str:
    """C++ type of an enumeration's numbers."""
    return _WIDTHS[type_.width]


def cs_number(type_: Type) -> str:
    """C# type of an enumeration's numbers."""
    return BASIC[type_.width].cs_param


class Forms:
    """Finds the form of a managed type in one extension module."""

    def __init__(self, extension: Extension):
        self._extension = extension
        self._arrays = {
            self.element_name(row.element): row for row in extension.generics if "A" in row.wrappers
        }
        self._iterables = {
            self.element_name(row.element): row for row in extension.generics if "E" in row.wrappers
        }
        self._lists = {
            self.element_name(row.element): row for row in extension.generics if "L" in row.wrappers
        }

    def find(self, name: str) -> Form | None:
        """The form of a type, or None when it has none and its members are not bound."""
        if name in BASIC:
            return BASIC[name]
        if name in self._extension.by_name:
            return self._bound(self._extension.by_name[name])
        if name in self._extension.capsules:
            return self._sibling(name)
        if name.startswith("System.Nullable<"):
            return self._nullable(name[len("System.Nullable<") : -1])
        if name.endswith("[]"):
            return self._array(name[:-2])
        if "<" in name:
            outer, inner = name[:-1].split("<", 1)
            return self._generic(outer, inner)
        return None

    def element_name(self, element: str) -> str | None:
        """The managed name of an element in the table of tags, or None when it is not bound."""
        if element.startswith("System."):
            return element
        for type_ in self._extension.types:
            if self._extension.python_name(type_) == element:
                return type_.full_name
        for capsule in self._extension.imports:
            if f"{capsule.module}.{capsule.name}" == element:
                return capsule.type
        return None

    def _bound(self, type_: Type) -> Form:
        native, _ = self._extension.tags[type_.full_name]
        symbol = f"{native}_{type_.simple_name}"
        python = self._extension.python_name(type_)
        return dataclasses.replace(
            self._shape(type_),
            converter=f"wrpPy_conv_py_to_clr_{symbol}",
            c_to_py=f"wrpPy_conv_clr_to_py_{symbol}({{v}})",
            py_in=python,
            py_out=python,
            by_reference=type_.kind in ("class", "enum"),
        )

    @staticmethod
    def _shape(type_: Type) -> Form:
        if type_.kind == "enum":
            return _enumeration(number_type(type_), cs_number(type_))
        return {"class": _CLASS, "struct": _STRUCT, "interface": _INTERFACE}[type_.kind]

    def _sibling(self, name: str) -> Form:
        """A type of another module of the family, through the words of its capsule."""
        capsule = self._extension.capsules[name]
        symbol = f"{capsule.tag}_{capsule.name}"
        inward = ""
        if 2 in capsule.words:
            inward = f"wrpPyl_trancaps_py_to_clr_{symbol}"
        elif 0 in capsule.words:
            inward = f"wrpPyl_convcaps_py_to_clr_{symbol}"
        outward = f"wrpPyl_convcaps_clr_to_py_{symbol}" if 1 in capsule.words else ""
        by_address = "&" if capsule.form == "struct" else ""
        python = f"{capsule.module}.{capsule.name}"
        form = dataclasses.replace(
            _SIBLINGS[capsule.form],
            converter=inward,
            c_to_py=f"{outward}({by_address}{{v}})" if outward else "",
            py_in=python,
            py_out=python,
        )
        return form if outward else dataclasses.replace(form, c_result="")

    def _array(self, element: str) -> Form | None:
        inner = self.find(element)
        if inner is None:
            return None
        reader = "Args.Array<{e}>({{v}})".format(e=cs_type(element))
        row = self._arrays.get(element)
        untyped = BASIC["System.Array"]
        form = dataclasses.replace(
            untyped,
            cs_read=reader,
            py_in=f"Sequence[{inner.py_in}]",
            py_out=f"_interop._ArrayWrapper[{inner.py_out}]",
        )
        if row is None:
            return form
        wrapper = f"wrpPygn_tyds_ArrayWrapper_{row.tag}"
        return dataclasses.replace(
            form,
            converter=f"wrpPygn_conv_py_to_clr_array_{row.tag}",
            c_to_py=f"{BY_CLASS}({{v}}, &{wrapper})",
        )

    def _generic(self, outer: str, inner: str) -> Form | None:
        element = self.find(inner)
        if outer not in _GENERIC or element is None:
            return None
        untyped, reader = _GENERIC[outer]
        form = dataclasses.replace(
            BASIC[untyped],
            cs_read=f"Args.{reader}<{cs_type(inner)}>({{v}})",
            py_in=BASIC[untyped].py_in.replace("Any", element.py_in),
            py_out=BASIC[untyped].py_out.replace("Any", element.py_out),
        )
        typed = {"Enumerable": self._iterables, "GenericList": self._lists}.get(reader, {})
        if inner in typed:
            kind = "Iterable" if reader == "Enumerable" else "List"
            wrapper = f"wrpPygn_tyds_{kind}Wrapper_{typed[inner].tag}"
            back = BY_INTERFACE if kind == "Iterable" else BY_CLASS
            form = dataclasses.replace(form, c_to_py=f"{back}({{v}}, &{wrapper})")
            if kind == "List":
                form = dataclasses.replace(
                    form,
                    converter=f"wrpPygn_conv_py_to_clr_list_{typed[inner].tag}",
                    cs_write=AS_CLASS,
                )
        return form

    def _nullable(self, name: str) -> Form | None:
        inner = self.find(name)
        if inner is None or not inner.converter or not inner.c_result:
            return None
        managed = cs_type(name)
        held = f"({inner.cs_param}){{v}}->Target"
        if not inner.cs_param.endswith("*"):
            held = f"(*({inner.cs_param}*){{v}}->Target)"
        read = inner.cs_read.replace("{v}", held).replace("{t}", managed)
        target = inner.target.replace("{v}", "{v}_value")
        return Form(
            local=(
                inner.local.replace("{v}", "{v}_value")
                + f"\nPyNullableArg {{v}} = {{0, reinterpret_cast<PyConverter>({inner.converter}), "
                + f"{target}}};"
            ),
            converter="fn_conv_py_nullable_to_clr_nullable",
            target="&{v}",
            passed="&{v}",
            c_param="const PyNullableArg *",
            cs_param="PyNullableArg*",
            cs_read=f"({{v}}->HasValue != 0 ? ({managed}?){read} : null)",
            c_result=f"nullable {inner.c_result}",
            by_slot=True,
            c_to_py=inner.c_to_py,
            cs_result=inner.cs_result if inner.by_slot else f"{inner.cs_result}*",
            # Written only for a value: a struct's handle would otherwise have no owner.
            cs_write=inner.cs_write if inner.by_slot else f"*{{r}} = {inner.cs_write}",
            py_in=f"{inner.py_in} | None",
            py_out=f"{inner.py_out} | None",
        )
