"""Fills the templates of the families: one context for each kind of type."""

from __future__ import annotations

from types import SimpleNamespace

from . import names
from .family import Family, Method, Property, StaticField
from .model import EnumValue
from .native import CallText, environment, groups, host_entries, result_lines, wrapped

_PROTOCOL = (
    ("_type_of", "METH_NOARGS | METH_STATIC"),
    ("_cast_to", "METH_O | METH_STATIC"),
    ("_cast_from", "METH_O"),
    ("_reinterpret_obj", "METH_O | METH_STATIC"),
    ("_cast_as", "METH_O | METH_STATIC"),
    ("_is_assignable", "METH_O | METH_STATIC"),
)
_ENUM_PROTOCOL = (
    ("_type_of", "METH_NOARGS | METH_STATIC"),
    ("_cast_to", "METH_O | METH_STATIC"),
    ("_cast_from", "METH_O"),
    ("_reinterpret_obj", "METH_O | METH_STATIC"),
    ("_as_uni_enum", "METH_NOARGS"),
    ("_cast_as", "METH_O | METH_STATIC"),
    ("_is_assignable", "METH_O | METH_STATIC"),
    ("get_type", "METH_NOARGS"),
)


def write_units(families: list[Family], count: int) -> dict[str, str]:
    """The grouped units; always `count` of them, so that the build knows their names."""
    made = environment()
    template = made.get_template("unit.cpp.j2")
    files = {}
    for number, group in enumerate(groups(families, count)):
        texts = [write_family(family, families) for family in group]
        title = f"group {number}"
        if group:
            first, last = group[0].py_type, group[-1].py_type
            title = first if first == last else f"{first} to {last}"
        files[f"group_{number:02}.cpp"] = template.render(families=texts, title=title)
    return files


def write_family(family: Family, families: list[Family]) -> str:
    if family.kind == "enum":
        return _write_enum(family)
    return _write_class(family, families)


def _write_enum(family: Family) -> str:
    text = (
        environment()
        .get_template("enum.j2")
        .render(
            family=family,
            entries=host_entries(family),
            protocol=_ENUM_PROTOCOL,
            values=[(_value_name(family, value), _number(value)) for value in family.type.values],
        )
    )
    return wrapped(text)


def _value_name(family: Family, value: EnumValue) -> str:
    fixed = family.extension.overrides.python_names.get(f"{family.type.full_name}.{value.name}")
    return (fixed or names.upper_snake(value.name)).upper()


def _number(value: EnumValue) -> str:
    # The lowest 64-bit number has no literal of its own.
    return "INT64_MIN" if value.value == -(2**63) else str(value.value)


def _write_class(family: Family, families: list[Family]) -> str:
    host = family.host
    statics = [_static(family, item) for item in family.statics]
    mixed = _mixed_methods(family)
    by_type = {other.type.full_name: other for other in families}
    nested = [by_type[enum.full_name] for enum in family.enums]
    text = (
        environment()
        .get_template("class.j2")
        .render(
            family=family,
            entries=host_entries(family),
            constructors=[CallText(host, call) for call in family.constructors],
            outlined_constructors=[
                CallText(host, call)
                for call in family.constructors
                if call.cleanup and len(family.constructors) > 1
            ],
            outlined=[CallText(host, a.call, a.function) for a in family.outlined],
            methods=[_method(family, m) for m in family.methods if not m.shared],
            properties=[_property(family, p) for p in family.properties if not p.shared],
            statics=statics,
            mixed_methods=mixed,
            nested_enums=nested,
            has_eypi=has_eypi(family),
            method_rows=_method_rows(family, statics),
            property_rows=_property_rows(family),
            iteration=_iteration(family),
        )
    )
    return wrapped(text)


def has_eypi(family: Family) -> bool:
    """Whether the type gets members at run time."""
    return bool(family.statics or family.enums or any(m.mixed for m in family.methods))


def _method(family: Family, method: Method) -> SimpleNamespace:
    alone = len(method.attempts) == 1
    texts = [CallText(family.host, a.call, "" if alone else a.function) for a in method.attempts]
    return SimpleNamespace(
        row=method,
        texts=texts,
        linkage="" if method.external else "static ",
        uses_self=not method.static or any(text.function for text in texts),
    )


def _property(family: Family, item: Property) -> SimpleNamespace:
    entry = item.member.name
    getter = result_lines(family.host, f"get_{entry}", ["handle_of(self)"], item.form)
    setter = []
    if item.set:
        setter = [f"if (value == nullptr) return refuse_deletion({names.literal(item.py_name)});"]
        setter += _conversion(item.form, "-1")
        passed = item.form.passed.replace("{v}", "converted")
        setter += [
            f"{family.host}::get_instance().set_{entry}(handle_of(self), {passed});",
            "return PyErr_Occurred() ? -1 : 0;",
        ]
    return SimpleNamespace(
        row=item, getter=getter, setter=setter, linkage="" if item.external else "static "
    )


def _conversion(form, failure: str) -> list[str]:
    lines = form.local.replace("{v}", "converted").split("\n")
    target = form.target.replace("{v}", "converted")
    return [*lines, f"if (!{form.converter}(value, {target})) return {failure};"]


def _static(family: Family, item: StaticField) -> SimpleNamespace:
    symbol, entry = family.symbol, item.member.name
    setter = []
    py_setter = "set_" + names.snake(item.member.name)
    if item.settable:
        passed = item.form.passed.replace("{v}", "converted")
        setter = _conversion(item.form, "nullptr") + [
            f"{family.host}::get_instance().setsa_{entry}({passed});",
            "if (PyErr_Occurred()) return nullptr;",
            "return fn_py_return_none();",
        ]
    return SimpleNamespace(
        row=item,
        getter_name=f"wrpPy_spvg_{symbol}_000_get_{item.py_name}",
        setter_name=f"wrpPy_spvg_{symbol}_000_{py_setter}",
        py_setter=py_setter,
        record=f"wrpPy_sgsf_{symbol}_000_{item.py_name}",
        getter=result_lines(family.host, f"getsa_{entry}", [], item.form),
        setter=setter,
    )


def _method_row(name: str, function: str, flags: str) -> str:
    if "METH_KEYWORDS" in flags:
        # The definition stores the keyword form under the plain type.
        function = f"KELMOR_WITH_KEYWORDS({function})"
    return f"{{{names.literal(name)}, {function}, {flags}, nullptr}}"


def _method_rows(family: Family, statics: list[SimpleNamespace]) -> list[str]:
    """Own members first, then what every type has."""
    setters = {static.row.member: static for static in statics if static.row.settable}
    rows = []
    for item in family.order:
        if isinstance(item, Method):
            if not item.mixed:
                rows.append(_method_row(item.py_name, item.function, item.flags))
        elif isinstance(item, StaticField) and item.settable:
            static = setters[item.member]
            rows.append(_method_row(static.py_setter, static.setter_name, "METH_O | METH_STATIC"))
    if family.disposable:
        rows.append(_method_row("__enter__", "wrpPye_bltp_idisposable_enter", "METH_NOARGS"))
        rows.append(_method_row("__exit__", "wrpPye_bltp_idisposable_exit", "METH_VARARGS"))
    get_type = "wrapClrStruct_get_type" if family.kind == "struct" else "wrapClrObject_get_type"
    rows.append(_method_row("get_type", get_type, "METH_NOARGS"))
    for name, flags in _PROTOCOL:
        rows.append(_method_row(name, f"wrpPy_blts_{family.symbol}_000_{name}", flags))
    return [row + "," for row in rows]


def _property_rows(family: Family) -> list[str]:
    return [
        f"{{{names.literal(p.py_name)}, {p.get}, {p.set or 'nullptr'}, nullptr, nullptr}},"
        for p in family.properties
    ]


def _mixed_methods(family: Family) -> list[SimpleNamespace]:
    """Names that are static and instance at once, each with its two definitions."""
    pairs: dict[str, dict[bool, Method]] = {}
    for method in family.methods:
        if method.mixed:
            pairs.setdefault(method.py_name, {})[method.static] = method
    mixed = []
    for name, halves in pairs.items():
        stem = f"wrpPy_mxml_{family.symbol}_000_{name}"
        mixed.append(
            SimpleNamespace(
                name=f"mixed_{name}",
                static_record=f"{stem}_static",
                instance_record=f"{stem}_instance",
                static_row=_method_row(name, halves[True].function, halves[True].flags),
                instance_row=_method_row(name, halves[False].function, halves[False].flags),
            )
        )
    return mixed


def _iteration(family: Family) -> str:
    """The slots of a class that is itself a Python iterable or iterator."""
    if family.iterator:
        return "wrpPye_bltp_iter_iter, wrpPye_bltp_iter_iternext"
    return "wrpPye_bltp_iterable_iter, nullptr" if family.iterable else ""


def visible_functions(family: Family) -> list[str]:
    """Declarations of what other families of the module name."""
    lines = []
    for attempt in family.outlined:
        lines.append(
            f"PyObject *{attempt.function}(PyObject *self, PyObject *args, PyObject *kwds, "
            "PyObject **failure);"
        )
    if family.kind == "interface":
        for method in family.methods:
            if method.shared:
                continue
            parameters = "PyObject *self, PyObject *"
            if not method.no_arguments:
                parameters = "PyObject *self, PyObject *args, PyObject *kwds"
            lines.append(f"PyObject *{method.function}({parameters});")
        for item in family.properties:
            if item.shared:
                continue
            lines.append(f"PyObject *{item.get}(PyObject *self, void *);")
            if item.set:
                lines.append(f"int {item.set}(PyObject *self, PyObject *value, void *);")
    if has_eypi(family):
        lines.append(f"int wrpPy_eypi_{family.symbol}();")
    return lines
