"""Value forms of the runtime's own types: how each crosses the boundary, one row for each.

A form is data. Its native half names a converter, a record and a way to pass it; its managed half
reads the argument and writes the result. All texts are patterns over `{v}`, the value's name or
expression, `{t}`, the managed type in C#, and `{r}`, the record of a result.
"""

from __future__ import annotations

import dataclasses
from dataclasses import dataclass


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
    by_reference: bool = False  # usable behind ref and out

    @property
    def built(self) -> bool:
        """The managed side makes the Python object itself."""
        return self.c_result == "PyObject *"


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


def _block(element: str, count: int, unit: str, back: str, cs_element: str, name: str) -> Form:
    """A fixed block of numbers, passed by its address."""
    return Form(
        local=f"{element} {{v}}[{count}] = {{}};",
        converter=f"fn_conv_py_{unit}",
        target="{v}",
        passed="{v}",
        c_param=f"const {element} *",
        cs_param=f"{cs_element}*",
        cs_read=f"Args.{name}({{v}})",
        c_result=f"{element}[{count}]",
        by_slot=True,
        c_to_py=f"{back}({{v}})",
        cs_result=f"{cs_element}*",
        cs_write=f"Results.{name}({{v}}, {{r}})",
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


BY_INTERFACE = "fn_conv_clr_ifcimpl_to_py_ifcimpl_wps"
BY_CLASS = "fn_conv_clr_btpobj_to_py_btpobj"
BY_ABSTRACT = "fn_conv_clr_absobj_to_py_absobj"
AS_CLASS = "Results.Class({v}, {r})"
_LONG = "PyLong_FromLong"
_ULONG = "PyLong_FromUnsignedLong"

BASIC: dict[str, Form] = {
    "System.Boolean": dataclasses.replace(
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
    "System.Char": dataclasses.replace(
        _scalar(
            "std::uint16_t",
            "string_to_clr_char",
            "fn_conv_clr_char_to_py_string",
            "ushort",
            "str",
        ),
        cs_read="((char){v})",
    ),
    "System.TimeSpan": dataclasses.replace(
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
    "System.DateTimeOffset": dataclasses.replace(
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
    "System.Decimal": dataclasses.replace(
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
    "System.Guid": dataclasses.replace(
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
    "System.String": dataclasses.replace(
        _built(
            "PyStringArg {v};",
            "fn_conv_py_string_to_clr_string",
            "const PyStringArg *",
            "PyStringArg*",
            "String",
            "str",
        ),
    ),
    "System.Byte[]": dataclasses.replace(
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
        "stream",
        "Stream",
        BY_ABSTRACT,
        "StreamWrapper",
        "_interop._Stream",
        "_interop._StreamWrapper",
    ),
    "System.Collections.IList": _runtime(
        "ilist",
        "List",
        BY_INTERFACE,
        "IListWrapper",
        "Sequence[Any]",
        "_interop._IListWrapper[Any]",
    ),
    "System.Collections.ICollection": _runtime(
        "icollection",
        "Collection",
        BY_INTERFACE,
        "IColWrapper",
        "Collection[Any]",
        "_interop._IColWrapper[Any]",
    ),
    "System.Collections.IEnumerable": _runtime(
        "iterable",
        "Enumerable",
        BY_INTERFACE,
        "IterableWrapper",
        "Iterable[Any]",
        "Iterable[Any]",
    ),
    "System.Collections.IEnumerator": _runtime(
        "iter", "Enumerator", BY_INTERFACE, "IterWrapper", "Iterator[Any]", "Iterator[Any]"
    ),
    "System.IDisposable": _runtime(
        "idisposable",
        "Interface<System.IDisposable>",
        BY_INTERFACE,
        "IDisposableWrapper",
        "Any",
        "Any",
    ),
    "System.Array": _runtime(
        "array",
        "Array",
        BY_CLASS,
        "ArrayWrapper",
        "Sequence[Any]",
        "_interop._ArrayWrapper[Any]",
        AS_CLASS,
    ),
    "System.Collections.ArrayList": _runtime(
        "arrlist",
        "ArrayList",
        BY_CLASS,
        "ArrListWrapper",
        "Sequence[Any]",
        "_interop._ArrListWrapper[Any]",
        AS_CLASS,
    ),
    "System.Collections.CollectionBase": _runtime(
        "colbase",
        "CollectionBase",
        BY_CLASS,
        "ColBaseWrapper",
        "Sequence[Any]",
        "_interop._ColBaseWrapper[Any]",
        AS_CLASS,
    ),
    "System.Collections.ReadOnlyCollectionBase": _runtime(
        "rocolbase",
        "ReadOnlyCollectionBase",
        BY_CLASS,
        "RoColBaseWrapper",
        "Sequence[Any]",
        "_interop._RoColBaseWrapper[Any]",
        AS_CLASS,
    ),
}
