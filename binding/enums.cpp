// Makes enumerations and carries their numbers.
#include "binding/enums.h"

#include "binding/casts.h"
#include "binding/class_convert.h"
#include "binding/descriptors.h"
#include "binding/markers.h"
#include "binding/sibling_types.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/import_errors.h"
#include "shell/module_tree.h"
#include "shell/ref.h"

#include <string>
#include <string_view>

namespace {

PyObject *member_number(const EnumDescription &description, const EnumMember &member) {
    if (description.numbers == EnumNumbers::signed_numbers)
        return signed_number_to_py(member.value);
    return unsigned_number_to_py(static_cast<std::uint64_t>(member.value));
}

// One (name, value) pair per member, the form in which the base class takes them.
Ref member_pairs(const EnumDescription &description) {
    Ref pairs = Ref::steal(PyTuple_New(static_cast<Py_ssize_t>(description.count)));
    for (std::size_t i = 0; pairs && i < description.count; ++i) {
        const EnumMember &member = description.members[i];
        PyObject *const pair = Py_BuildValue("(NN)", PyUnicode_FromString(member.name),
                                             member_number(description, member));
        if (pair == nullptr) return Ref();
        PyTuple_SET_ITEM(pairs.get(), static_cast<Py_ssize_t>(i), pair);
    }
    return pairs;
}

Ref call_base(const EnumDescription &description) {
    PyObject *const base_name =
        description.base == EnumBase::int_flag ? PyWrpIdTypeName_IntFlag : PyWrpIdTypeName_IntEnum;
    const Ref base = Ref::steal(PyShImport_ImportType("enum", base_name));
    if (!base) return Ref();
    const Ref name = Ref::steal(PyUnicode_FromString(description.name));
    const Ref pairs = member_pairs(description);
    if (!name || !pairs) return Ref();
    Ref made =
        Ref::steal(PyObject_CallFunctionObjArgs(base.get(), name.get(), pairs.get(), nullptr));
    if (!made || PyType_Check(made.get())) return made;
    // The base is whatever stands in the module at that time, and what it gives is written into.
    PyErr_Format(PyExc_TypeError, "'%.200s' object is no enumeration",
                 Py_TYPE(made.get())->tp_name);
    return Ref();
}

// The order of EnumDescription::protocol.
constexpr bool protocol_is_static[8] = {true, true, false, true, false, true, true, false};

bool install_protocol(const EnumDescription &description, PyTypeObject *type) {
    for (std::size_t i = 0; i < 8; ++i) {
        PyMethodDef *const definition = description.protocol[i];
        PyObject *const descriptor = protocol_is_static[i]
                                         ? PyShDescr_NewStaticMethod(type, definition)
                                         : PyShDescr_NewInstanceMethod(type, definition);
        if (install_descriptor(type, definition->ml_name, descriptor) < 0) return false;
    }
    return true;
}

} // namespace

PyObject *create_enum(const EnumDescription &description, PyTypeObject **type) {
    Ref made = call_base(description);
    *type = reinterpret_cast<PyTypeObject *>(made.get());
    if (!made) return nullptr;
    if (!fn_set_castable_type_markattr(*type, Py_Ellipsis)) {
        PyShlErr_TypeInitializationInternalError(-1021, description.name);
        return nullptr;
    }
    return install_protocol(description, *type) ? made.release() : nullptr;
}

int install_nested_enum(PyTypeObject *enclosing, const char *name, PyObject *enumeration) {
    const Ref owned = Ref::steal(enumeration);
    const std::string full_name = std::string(enclosing->tp_name) + '.' + name;
    if (!owned) {
        PyShlErr_TypeInitializationInternalError(-1013, full_name.c_str());
        return -1;
    }
    const std::string_view outer = enclosing->tp_name;
    const std::size_t dot = outer.rfind('.');
    if (dot != outer.npos) // "Outer.Inner" in the module of Outer
        fn_set_home(owned.get(), outer.substr(0, dot), full_name.substr(dot + 1));
    if (set_type_entry(enclosing, name, owned.get()) == 0) return 0;
    PyShlErr_TypeInitializationInternalError(-1020, enclosing->tp_name, name);
    return -1;
}

PyObject *signed_number_to_py(std::int64_t value) { return PyLong_FromLong(value); }

PyObject *unsigned_number_to_py(std::uint64_t value) { return PyLong_FromUnsignedLong(value); }

bool read_signed_number(PyObject *value, std::int64_t *out) {
    *out = PyLong_AsLong(value);
    return *out != -1 || !PyErr_Occurred();
}

bool read_unsigned_number(PyObject *value, std::uint64_t *out) {
    *out = PyLong_AsUnsignedLong(value);
    return *out != static_cast<std::uint64_t>(-1) || !PyErr_Occurred();
}

bool read_unsigned_64_bit_number(PyObject *value, std::uint64_t *out) {
    *out = PyLong_AsUnsignedLongLong(value);
    return *out != static_cast<std::uint64_t>(-1) || !PyErr_Occurred();
}

bool check_enum_member(PyObject *value, PyTypeObject *type, const char *name) {
    if (PyObject_TypeCheck(value, type)) return true;
    refuse_value(name, value);
    return false;
}

PyObject *enum_member_of(PyObject *number, PyTypeObject *type) {
    const Ref owned = Ref::steal(number);
    if (!owned) return nullptr;
    return PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject *>(type), owned.get(), nullptr);
}

PyObject *uni_enum_result(void *handle) {
    if (PyErr_Occurred()) return nullptr;
    return wrpPyl_convcaps_clr_to_py_738AFABA_Enum(handle);
}
