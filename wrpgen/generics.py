"""Instances of managed generic collections: element policies, wrapper types, entry classes."""

from __future__ import annotations

from dataclasses import dataclass
from types import SimpleNamespace

from .basic_forms import BASIC, Form
from .forms import Forms, cs_type
from .model import Extension, GenericTag
from .native import environment, wrapped

_KINDS = {"A": "array", "I": "iter", "E": "iterable", "L": "list"}


@dataclass(frozen=True)
class Instance:
    """One tag. `form` is None while the element type is not bound."""

    row: GenericTag
    element: str | None  # managed full name
    form: Form | None
    policy: str
    back: str  # function that an array element comes back through, with its body; else ""

    @property
    def tag(self) -> str:
        return self.row.tag

    @property
    def cs_type(self) -> str:
        return cs_type(self.element or "")

    def has(self, letter: str) -> bool:
        return letter in self.row.wrappers and self.form is not None

    @property
    def iterate(self) -> str:
        """The host that makes enumerators of arrays and lists of this element."""
        return f"PyHost_gn_Iterable_{self.tag}" if self.has("E") else "PyHost_ph_Iterable"


def instances(extension: Extension, forms: Forms) -> list[Instance]:
    found = []
    for row in extension.generics:
        element = forms.element_name(row.element)
        form = forms.find(element) if element else None
        if form is None or not form.converter or not form.c_result:
            found.append(Instance(row, None, None, "", ""))
            continue
        policy, back = _policy(extension, forms, row, element, form)
        found.append(Instance(row, element, form, policy, back))
    return found


def _policy(
    extension: Extension, forms: Forms, row: GenericTag, element: str, form: Form
) -> tuple[str, str]:
    to_py = form.c_to_py.split("(")[0]
    pair = f"{form.converter}, {to_py}"
    if element == "System.Object":
        return "VariantElement", ""
    if element == "System.String":
        return f"StringElement<{form.converter}>", ""
    if element in extension.capsules:
        kind = "Struct" if extension.capsules[element].form == "struct" else "Class"
        return f"Sibling{kind}Element<{pair}>", ""
    if element.endswith("[]"):
        back = f"element_{row.tag}_to_py"
        body = (
            f"static PyObject *{back}(const PyCollectionArg &result) {{\n"
            f"    return {form.c_to_py.replace('{v}', 'result')};\n}}"
        )
        return f"ArrayElement<{form.converter}, {back}>", body
    bound = extension.by_name.get(element)
    if bound is None or bound.kind == "enum":
        return f"ScalarElement<{form.c_param}, {pair}>", ""
    return f"{bound.kind.capitalize()}Element<{pair}>", ""


def write_native(extension: Extension, found: list[Instance]) -> str:
    text = (
        environment()
        .get_template("generic.cpp.j2")
        .render(
            extension=extension,
            instances=[instance for instance in found if instance.form is not None],
            callbacks=[instance for instance in found if instance.row.callbacks],
            module=f"{extension.module}._wrpgen._generic",
        )
    )
    return wrapped(text)


_SCALAR_RESULT = "*result = {write};"
_BUILT_RESULT = "if ((*result = {write}) == 0) { return -1; }"


def write_managed(extension: Extension, found: list[Instance]) -> dict[str, str]:
    bound = [instance for instance in found if instance.form is not None]
    if not found:
        return {}
    template = environment().get_template("generic.cs.j2")
    table = (
        environment()
        .get_template("generic_table.cs.j2")
        .render(callbacks=[instance for instance in found if instance.row.callbacks])
    )
    return {
        "Generic.cs": template.render(instances=[_managed(instance) for instance in bound]),
        "GenericTable.cs": table,
    }


def _managed(instance: Instance) -> SimpleNamespace:
    form = instance.form
    assert form is not None
    built = form in (BASIC["System.String"], BASIC["System.Object"])
    out = form.cs_result.removesuffix("*") if form.by_slot else form.cs_result
    if form.by_slot:
        write = form.cs_write.replace("{v}", "item").replace("{r}", "result") + ";"
        give = f"{out} item_; " + form.cs_write.replace("{v}", "item").replace("{r}", "&item_")
        give += "; return item_;"
    else:
        value = form.cs_write.replace("{v}", "item")
        write = (_BUILT_RESULT if built else _SCALAR_RESULT).replace("{write}", value)
        give = f"return {value};"
    read = form.cs_read.replace("{v}", "value").replace("{t}", instance.cs_type)
    return SimpleNamespace(
        tag=instance.tag,
        type=instance.cs_type,
        parameter=form.cs_param,
        read=read,
        out=out,
        write=write,
        give=give,
        array=instance.has("A"),
        iter=instance.has("I"),
        iterable=instance.has("E"),
        list=instance.has("L"),
        struct=form.cs_write == "Results.Struct({v})",
    )
