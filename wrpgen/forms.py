"""Value forms: how each managed type crosses the boundary, in C++, C# and in the stubs.

A form is data. Its native half names a converter, a record and a way to pass it; its managed half
reads the argument and writes the result. All texts are patterns over `{v}`, the value's name or
expression, and `{t}`, the managed type in C#.
"""

from __future__ import annotations

from dataclasses import dataclass

from .model import Extension, Type


@dataclass(frozen=True)
class Form:
    # Parameters, native side.
    local: str  # declaration of the record, such as "PyStringArg {v};"
    converter: str  # the "O&" unit
    target: str  # what the converter is given: "&{v}"
    passed: str  # what the delegate is given
    c_param: str  # how the slot is declared
    # Parameters, managed side.
    cs_param: str
    cs_read: str
    # Results. A result is a value that the delegate returns, or a record behind the arguments.
    c_result: str  # type of the value or of the record; "" when there is no such result
    by_slot: bool
    c_to_py: str
    cs_result: str  # type of the value, or of the pointer to the record
    cs_write: str  # makes the value, or a statement that fills {r}
    # Stubs.
    py_in: str
    py_out: str
    cleanup: bool = False  # the record has a destructor

    @property
    def built(self) -> bool:
        """The managed side makes the Python object itself."""
        return self.c_result == "PyObject *"

    by_reference: bool = False  # usable behind ref and out


def _scalar(c_type: str, unit: str, to_py: str, cs_type: str, py: str) -> Form:
    return Form(
        local=f"{c_type} {{v}} = 0;",
        converter=f"fn_conv_py_{unit}",
        target="&{v}",
        passed="{v}",
        c_param=c_type,
        cs_param=cs_type,
        cs_read="{v}",
        c_result=c_type,
        by_slot=False,
        c_to_py=f"{to_py}({{v}})",
        cs_result=cs_type,
        cs_write="{v}",
        py_in=py,
        py_out=py,
        by_reference=True,
    )


def _changed(form: Form, **fields: object) -> Form:
    return Form(**{**form.__dict__, **fields})


def _block(element: str, count: int, unit: str, back: str, cs_element: str, name: str) -> Form:
    """A fixed block of numbers, passed by its address."""
    cs_name = name
    return Form(
        local=f"{element} {{v}}[{count}] = {{}};",
        converter=f"fn_conv_py_{unit}",
        target="{v}",
        passed="{v}",
        c_param=f"const {element} *",
        cs_param=f"{cs_element}*",
        cs_read=f"Args.{cs_name}({{v}})",
        c_result=f"{element}[{count}]",
        by_slot=True,
        c_to_py=f"{back}({{v}})",
        cs_result=f"{cs_element}*",
        cs_write=f"Results.{cs_name}({{v}}, {{r}})",
        py_in="",
        py_out="",
    )


def _built(local: str, unit: str, c_param: str, cs_param: str, name: str, py: str) -> Form:
    """A result that the managed side builds as a Python object."""
    return Form(
        local=local,
        converter=unit,
        target="&{v}",
        passed="&{v}",
        c_param=c_param,
        cs_param=cs_param,
        cs_read=f"Args.{name}({{v}})",
        c_result="PyObject *",
        by_slot=False,
        c_to_py="{v}",
        cs_result="nint",
        cs_write=f"Results.{name}({{v}})",
        py_in=py,
        py_out=py,
        by_reference=True,
    )


def _runtime(
    name: str, reader: str, back: str, wrapper: str, py_in: str, py_out: str, write: str = ""
) -> Form:
    """An interface or class of the runtime that a hand-made wrapper stands for."""
    return Form(
        local="VariantArg {v};",
        converter=f"wrpPye_conv_py_to_clr_{name}",
        target="&{v}",
        passed="&{v}",
        c_param="const VariantArg *",
        cs_param="VariantArg*",
        cs_read=f"Args.{reader}({{v}})",
        c_result="PyCollectionArg",
        by_slot=True,
        c_to_py=f"{back}({{v}}, &wrpPye_tyds_{wrapper})",
        cs_result="PyCollectionArg*",
        cs_write=write or "Results.Collection({v}, {r})",
        py_in=py_in,
        py_out=py_out,
    )


_BY_INTERFACE = "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps"
_BY_CLASS = "fn_conv_clr_btpobj_to_py_btpobj"
_BY_ABSTRACT = "fn_conv_clr_absobj_to_py_absobj"
_AS_CLASS = "Results.Class({v}, {r})"
_LONG = "PyLong_FromLong"
_ULONG = "PyLong_FromUnsignedLong"

BASIC: dict[str, Form] = {
    "System.Boolean": _changed(
        _scalar("bool", "bool_to_clr_bool", "PyBool_FromLong", "byte", "bool"),
        local="bool {v} = false;",
        cs_read="({v} != 0)",
        cs_write="(byte)({v} ? 1 : 0)",
    ),
    "System.SByte": _scalar("std::int8_t", "long_to_clr_int8", _LONG, "sbyte", "int"),
    "System.Int16": _scalar("std::int16_t", "long_to_clr_int16", _LONG, "short", "int"),
    "System.Int32": _scalar("std::int32_t", "long_to_clr_int32", _LONG, "int", "int"),
    "System.Int64": _scalar(
        "std::int64_t", "long_to_clr_int64", "PyLong_FromLongLong", "long", "int"
    ),
    "System.Byte": _scalar("std::uint8_t", "ulong_to_clr_uint8", _ULONG, "byte", "int"),
    "System.UInt16": _scalar("std::uint16_t", "ulong_to_clr_uint16", _ULONG, "ushort", "int"),
    "System.UInt32": _scalar("std::uint32_t", "ulong_to_clr_uint32", _ULONG, "uint", "int"),
    "System.UInt64": _scalar(
        "std::uint64_t", "ulong_to_clr_uint64", "PyLong_FromUnsignedLongLong", "ulong", "int"
    ),
    "System.Single": _scalar("float", "float_to_clr_float", "PyFloat_FromDouble", "float", "float"),
    "System.Double": _scalar(
        "double", "float_to_clr_double", "PyFloat_FromDouble", "double", "float"
    ),
    "System.Char": _changed(
        _scalar(
            "std::uint16_t",
            "string_to_clr_char",
            "fn_conv_clr_char_to_py_string",
            "ushort",
            "str",
        ),
        cs_read="((char){v})",
    ),
    "System.TimeSpan": _changed(
        _scalar(
            "std::int64_t",
            "datetimedelta_to_clr_timespan",
            "fn_conv_clr_timespan_to_py_datetimedelta",
            "long",
            "datetime.timedelta",
        ),
        cs_read="Args.TimeSpan({v})",
        cs_write="Results.TimeSpan({v})",
    ),
    # A DateTime goes in as one word and comes back as two: a local time brings its offset.
    "System.DateTime": Form(
        local="std::int64_t {v} = 0;",
        converter="fn_conv_py_datetime_to_clr_datetime",
        target="&{v}",
        passed="{v}",
        c_param="std::int64_t",
        cs_param="long",
        cs_read="Args.DateTime({v})",
        c_result="std::int64_t[2]",
        by_slot=True,
        c_to_py="fn_conv_clr_datetime_to_py_datetime({v})",
        cs_result="long*",
        cs_write="Results.DateTime({v}, {r})",
        py_in="datetime.datetime | datetime.date | datetime.time",
        py_out="datetime.datetime",
    ),
    "System.DateTimeOffset": _changed(
        _block(
            "std::int64_t",
            2,
            "datetime_to_clr_datetimeoffset",
            "fn_conv_clr_datetimeoffset_to_py_datetime",
            "long",
            "DateTimeOffset",
        ),
        py_in="datetime.datetime | datetime.date | datetime.time",
        py_out="datetime.datetime",
    ),
    "System.Decimal": _changed(
        _block(
            "std::uint32_t",
            4,
            "decimal_to_clr_decimal",
            "fn_conv_clr_decimal_to_py_decimal",
            "uint",
            "Decimal",
        ),
        py_in="decimal.Decimal",
        py_out="decimal.Decimal",
    ),
    "System.Guid": _changed(
        _block(
            "std::uint8_t", 16, "uuid_to_clr_guid", "fn_conv_clr_guid_to_py_uuid", "byte", "Guid"
        ),
        py_in="uuid.UUID",
        py_out="uuid.UUID",
    ),
    "System.Version": Form(
        local="PySysVersionArg {v};",
        converter="fn_conv_py_tuple_to_clr_version",
        target="&{v}",
        passed="&{v}",
        c_param="const PySysVersionArg *",
        cs_param="PySysVersionArg*",
        cs_read="Args.Version({v})",
        c_result="PySysVersionArg",
        by_slot=True,
        c_to_py="fn_conv_clr_version_to_py_tuple({v})",
        cs_result="PySysVersionArg*",
        cs_write="Results.Version({v}, {r})",
        py_in="tuple[int, ...] | None",
        py_out="tuple[int, ...] | None",
    ),
    "System.String": _changed(
        _built(
            "PyStringArg {v};",
            "fn_conv_py_string_to_clr_string",
            "const PyStringArg *",
            "PyStringArg*",
            "String",
            "str",
        ),
    ),
    "System.Byte[]": _changed(
        _built(
            "PyBytesArgBuilder {v};",
            "fn_conv_py_bytes_to_clr_bytes",
            "const PyBytesArg *",
            "PyBytesArg*",
            "Bytes",
            "bytearray",
        ),
        passed="{v}.get_info()",
        py_in="bytes | bytearray | memoryview",
        cleanup=True,
    ),
    "System.Object": _built(
        "VariantArg {v};",
        "fn_conv_py_variant_to_clr_variant",
        "const VariantArg *",
        "VariantArg*",
        "Variant",
        "Any",
    ),
    "System.IO.Stream": _runtime(
        "stream", "Stream", _BY_ABSTRACT, "StreamWrapper", "IO[bytes]", "IO[bytes]"
    ),
    "System.Collections.IList": _runtime(
        "ilist", "List", _BY_INTERFACE, "IListWrapper", "Sequence[Any]", "list[Any]"
    ),
    "System.Collections.ICollection": _runtime(
        "icollection",
        "Collection",
        _BY_INTERFACE,
        "IColWrapper",
        "Collection[Any]",
        "Collection[Any]",
    ),
    "System.Collections.IEnumerable": _runtime(
        "iterable",
        "Enumerable",
        _BY_INTERFACE,
        "IterableWrapper",
        "Iterable[Any]",
        "Iterable[Any]",
    ),
    "System.Collections.IEnumerator": _runtime(
        "iter", "Enumerator", _BY_INTERFACE, "IterWrapper", "Iterator[Any]", "Iterator[Any]"
    ),
    "System.IDisposable": _runtime(
        "idisposable",
        "Interface<System.IDisposable>",
        _BY_INTERFACE,
        "IDisposableWrapper",
        "Any",
        "Any",
    ),
    "System.Array": _runtime(
        "array", "Array", _BY_CLASS, "ArrayWrapper", "Sequence[Any]", "Sequence[Any]", _AS_CLASS
    ),
    "System.Collections.ArrayList": _runtime(
        "arrlist",
        "ArrayList",
        _BY_CLASS,
        "ArrListWrapper",
        "Sequence[Any]",
        "list[Any]",
        _AS_CLASS,
    ),
    "System.Collections.CollectionBase": _runtime(
        "colbase",
        "CollectionBase",
        _BY_CLASS,
        "ColBaseWrapper",
        "Sequence[Any]",
        "list[Any]",
        _AS_CLASS,
    ),
    "System.Collections.ReadOnlyCollectionBase": _runtime(
        "rocolbase",
        "ReadOnlyCollectionBase",
        _BY_CLASS,
        "RoColBaseWrapper",
        "Sequence[Any]",
        "Collection[Any]",
        _AS_CLASS,
    ),
}

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
        if type_.kind == "enum":
            return self._enum(type_, symbol, python)
        if type_.kind == "class":
            return Form(
                local="void *{v} = nullptr;",
                converter=f"wrpPy_conv_py_to_clr_{symbol}",
                target="&{v}",
                passed="{v}",
                c_param="void *",
                cs_param="nint",
                cs_read="Handles.Optional<{t}>({v})",
                c_result="void *",
                by_slot=False,
                c_to_py=f"wrpPy_conv_clr_to_py_{symbol}({{v}})",
                cs_result="nint",
                cs_write="Results.Object({v})",
                py_in=python,
                py_out=python,
                by_reference=True,
            )
        interface = type_.kind == "interface"
        return Form(
            local="VariantArg {v};",
            converter=f"wrpPy_conv_py_to_clr_{symbol}",
            target="&{v}",
            passed="&{v}",
            c_param="const VariantArg *",
            cs_param="VariantArg*",
            cs_read="Args.Interface<{t}>({v})" if interface else "Args.Struct<{t}>({v})",
            c_result="PyObjectOutArg" if interface else "void *",
            by_slot=interface,
            c_to_py=f"wrpPy_conv_clr_to_py_{symbol}({{v}})",
            cs_result="PyObjectOutArg*" if interface else "nint",
            cs_write="Results.Interface({v}, {r})" if interface else "Results.Struct({v})",
            py_in=python,
            py_out=python,
        )

    def _enum(self, type_: Type, symbol: str, python: str) -> Form:
        number = number_type(type_)
        return Form(
            local=f"{number} {{v}} = 0;",
            converter=f"wrpPy_conv_py_to_clr_{symbol}",
            target="&{v}",
            passed="{v}",
            c_param=number,
            cs_param=cs_number(type_),
            cs_read="(({t}){v})",
            c_result=number,
            by_slot=False,
            c_to_py=f"wrpPy_conv_clr_to_py_{symbol}({{v}})",
            cs_result=cs_number(type_),
            cs_write=f"({cs_number(type_)}){{v}}",
            py_in=python,
            py_out=python,
            by_reference=True,
        )

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
        python = f"{capsule.module}.{capsule.name}"
        record = capsule.form == "struct"
        number = capsule.form == "enum"
        to_py = f"{outward}({'&' if record else ''}{{v}})" if outward else ""
        return Form(
            local="VariantArg {v};"
            if record
            else "int {v} = 0;"
            if number
            else "void *{v} = nullptr;",
            converter=inward,
            target="&{v}",
            passed="&{v}" if record else "{v}",
            c_param="const VariantArg *" if record else "int" if number else "void *",
            cs_param="VariantArg*" if record else "int" if number else "nint",
            cs_read=(
                "Args.Struct<{t}>({v})"
                if record
                else "(({t}){v})"
                if number
                else "Handles.Optional<{t}>({v})"
            ),
            c_result=("int" if number else "void *") if outward else "",
            by_slot=False,
            c_to_py=to_py,
            cs_result="int" if number else "nint",
            cs_write=(
                "(int){v}" if number else "Results.Struct({v})" if record else "Results.Object({v})"
            ),
            py_in=python,
            py_out=python,
        )

    def _array(self, element: str) -> Form | None:
        inner = self.find(element)
        if inner is None:
            return None
        reader = "Args.Array<{e}>({{v}})".format(e=cs_type(element))
        row = self._arrays.get(element)
        untyped = BASIC["System.Array"]
        form = _changed(
            untyped,
            cs_read=reader,
            py_in=f"Sequence[{inner.py_in}]",
            py_out=f"Sequence[{inner.py_out}]",
        )
        if row is None:
            return form
        wrapper = f"wrpPygn_tyds_ArrayWrapper_{row.tag}"
        return _changed(
            form,
            converter=f"wrpPygn_conv_py_to_clr_array_{row.tag}",
            c_to_py=f"{_BY_CLASS}({{v}}, &{wrapper})",
        )

    def _generic(self, outer: str, inner: str) -> Form | None:
        element = self.find(inner)
        if outer not in _GENERIC or element is None:
            return None
        untyped, reader = _GENERIC[outer]
        form = _changed(
            BASIC[untyped],
            cs_read=f"Args.{reader}<{cs_type(inner)}>({{v}})",
            py_in=BASIC[untyped].py_in.replace("Any", element.py_in),
            py_out=BASIC[untyped].py_out.replace("Any", element.py_out),
        )
        typed = {"Enumerable": self._iterables, "GenericList": self._lists}.get(reader, {})
        if inner in typed:
            kind = "Iterable" if reader == "Enumerable" else "List"
            wrapper = f"wrpPygn_tyds_{kind}Wrapper_{typed[inner].tag}"
            back = _BY_INTERFACE if kind == "Iterable" else _BY_CLASS
            form = _changed(form, c_to_py=f"{back}({{v}}, &{wrapper})")
            if kind == "List":
                form = _changed(
                    form,
                    converter=f"wrpPygn_conv_py_to_clr_list_{typed[inner].tag}",
                    cs_write=_AS_CLASS,
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
