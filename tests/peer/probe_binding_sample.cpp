// A few bound types made by hand, as the generator would make them.
#include "peer/probe_sample.h"

#include "binding/casts.h"
#include "binding/class_convert.h"
#include "binding/class_host.h"
#include "binding/clr_object.h"
#include "binding/descriptors.h"
#include "binding/enums.h"
#include "binding/host_state.h"
#include "binding/markers.h"
#include "binding/overloads.h"
#include "binding/results.h"
#include "binding/statics.h"
#include "binding/types_map.h"
#include "marshal/strings.h"
#include "peer/probe.h"
#include "shell/module_tree.h"

#include <string>

namespace {

// The cast entries of a class or struct; `Argument` is what btp_CastAs takes.
template <class Argument> struct CastSlots {
    int (*type_of)(void **) = nullptr;
    int (*cast_to)(const VariantArg *, void **) = nullptr;
    int (*reinterpret)(void *, void **) = nullptr;
    int (*cast_as)(Argument, void **) = nullptr;
    unsigned char (*assignable)(Argument) = nullptr;

    int btp_TypeOf(void **out) const { return type_of(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return cast_to(value, out); }
    int btp_ReInterpretObj(void *object, void **out) const { return reinterpret(object, out); }
    int btp_CastAs(Argument value, void **out) const { return cast_as(value, out); }
    bool btp_IsAssignable(Argument value) const { return assignable(value); }
};

#define SAMPLE_CASTS                                                                               \
    "btp_TypeOf", "btp_CastTo", "btp_ReInterpretObj", "btp_CastAs", "btp_IsAssignable"

struct ClassSlots : CastSlots<void *> {
    void *(*ctor_0)() = nullptr;
    void *(*ctor_1)(const PyStringArg *) = nullptr;
    void *(*self)(void *) = nullptr;
    void *(*constant)() = nullptr;
    static constexpr const char *methods[] = {SAMPLE_CASTS, "ctor_000_Sample", "ctor_001_Sample",
                                              "call_000_Self", "getsa_Constant"};
};
struct PlainSlots : CastSlots<void *> {
    static constexpr const char *methods[] = {SAMPLE_CASTS};
};
struct ValueSlots : CastSlots<const VariantArg *> {
    int (*cast_from)(void *, void *, void **) = nullptr;
    static constexpr const char *methods[] = {SAMPLE_CASTS, "btp_CastFrom"};
};
struct ShapeSlots {
    int (*type_of)(void **) = nullptr;
    int (*cast_to)(const VariantArg *, void **) = nullptr;
    int (*cast_as)(const VariantArg *, void **) = nullptr;
    unsigned char (*assignable)(const VariantArg *) = nullptr;
    static constexpr const char *methods[] = {"btp_TypeOf", "btp_CastTo", "btp_CastAs",
                                              "btp_IsAssignable"};
    int btp_TypeOf(void **out) const { return type_of(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return cast_to(value, out); }
    int btp_CastAs(const VariantArg *value, void **out) const { return cast_as(value, out); }
    bool btp_IsAssignable(const VariantArg *value) const { return assignable(value); }
};
template <class Number> struct EnumSlots {
    int (*type_of)(void **) = nullptr;
    int (*cast_to)(const VariantArg *, Number *) = nullptr;
    int (*reinterpret)(void *, Number *) = nullptr;
    int (*uni_enum)(Number, void **) = nullptr;
    int (*cast_as)(void *, Number *) = nullptr;
    unsigned char (*assignable)(void *) = nullptr;
    int (*get_type)(Number, void **) = nullptr;
    static constexpr const char *methods[] = {"btp_TypeOf",    "btp_CastTo", "btp_ReInterpretObj",
                                              "btp_AsUniEnum", "btp_CastAs", "btp_IsAssignable",
                                              "btp_GetType"};
    int btp_TypeOf(void **out) const { return type_of(out); }
    int btp_CastTo(const VariantArg *value, Number *out) const { return cast_to(value, out); }
    int btp_ReInterpretObj(void *object, Number *out) const { return reinterpret(object, out); }
    int btp_AsUniEnum(Number value, void **out) const { return uni_enum(value, out); }
    int btp_CastAs(void *object, Number *out) const { return cast_as(object, out); }
    bool btp_IsAssignable(void *object) const { return assignable(object); }
    int btp_GetType(Number value, void **out) const { return get_type(value, out); }
};

template <class Slots, char tag> class SampleHost : public ClassHost, public Slots {
public:
    static SampleHost &get_instance() {
        static SampleHost host;
        return host;
    }

private:
    SampleHost() {
        static const std::string type = std::string("WrpNs_Sample.WrpCs_") + tag;
        bind(type.c_str(), Slots::methods, reinterpret_cast<void **>(static_cast<Slots *>(this)));
    }
};
using ClassEntries = SampleHost<ClassSlots, 'S'>;
using DerivedEntries = SampleHost<PlainSlots, 'D'>;
using ValueEntries = SampleHost<ValueSlots, 'V'>;
using ShapeEntries = SampleHost<ShapeSlots, 'I'>;
using ShadeEntries = SampleHost<EnumSlots<std::int32_t>, 'E'>;
using FlagsEntries = SampleHost<EnumSlots<std::uint8_t>, 'F'>;

bool shape_is_not_valid(std::string &message) {
    return is_not_valid(ShapeEntries::get_instance(), message);
}
const PyHostState &class_state() {
    static const PyHostState state =
        aggregate_host_state(ClassEntries::get_instance(), {shape_is_not_valid});
    return state;
}
bool class_is_not_valid(std::string &message) { return is_not_valid(class_state(), message); }

template <class Host, NotValidQuery... References> const PyHostState &state_of() {
    static const PyHostState state = aggregate_host_state(Host::get_instance(), {References...});
    return state;
}
template <class Host, NotValidQuery... References> bool invalidate() {
    return raise_if_not_valid(state_of<Host, References...>());
}
template <class Host, NotValidQuery... References>
PyObject *create(PyTypeObject *type, PyObject *args, PyObject *kwds) {
    return new_clr_object(state_of<Host, References...>(), type, args, kwds);
}
bool invalidate_class() { return raise_if_not_valid(class_state()); }
PyObject *create_class(PyTypeObject *type, PyObject *args, PyObject *kwds) {
    return new_clr_object(class_state(), type, args, kwds);
}

int init_class(PyObject *self, PyObject *args, PyObject *kwds) {
    void *&handle = reinterpret_cast<PyClrObject *>(self)->handle;
    OverloadAttempts<2> attempts;
    {
        static const char *const keywords[] = {nullptr};
        if (PyArg_ParseTupleAndKeywords(args, kwds, "", const_cast<char **>(keywords))) {
            handle = ClassEntries::get_instance().ctor_0();
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"name", nullptr};
        PyStringArg name;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_string_to_clr_string, &name)) {
            handle = ClassEntries::get_instance().ctor_1(&name);
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(1);
    }
    return attempts.raise_from_init();
}

template <PyTypeObject *type> PyObject *wrap(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, type);
}

PyObject *class_self(PyObject *self, PyObject *) {
    void *const result = ClassEntries::get_instance().self(handle_of(self));
    return PyErr_Occurred() ? nullptr : wrap<&sample_class>(result);
}

template <const CastOperations &casts> struct BuiltIns {
    static PyObject *type_of(PyObject *, PyObject *) { return ::type_of(casts); }
    static PyObject *cast_to(PyObject *, PyObject *object) { return ::cast_to(casts, object); }
    static PyObject *cast_from(PyObject *, PyObject *) { return cast_from_nothing(); }
    static PyObject *reinterpret(PyObject *, PyObject *object) {
        return reinterpret_obj(casts, object);
    }
    static PyObject *cast_as(PyObject *, PyObject *object) { return ::cast_as(casts, object); }
    static PyObject *is_assignable(PyObject *, PyObject *object) {
        return ::is_assignable(casts, object);
    }
};

constexpr CastOperations class_operations =
    class_casts<ClassEntries, invalidate_class, wrap<&sample_class>>();
constexpr CastOperations derived_operations =
    class_casts<DerivedEntries, invalidate<DerivedEntries, class_is_not_valid>,
                wrap<&sample_derived>>();
constexpr CastOperations value_operations =
    struct_casts<ValueEntries, invalidate<ValueEntries>, wrap<&sample_struct>>();
constexpr CastOperations shape_operations =
    interface_casts<ShapeEntries, invalidate<ShapeEntries>, &sample_interface>();

int call_cast_from(void *self, void *type, void **out) {
    return ValueEntries::get_instance().cast_from(self, type, out);
}
PyObject *value_cast_from(PyObject *self, PyObject *type) {
    return cast_from(self, type, call_cast_from);
}
PyObject *shape_reinterpret(PyObject *, PyObject *object) {
    return refuse_reinterpretation(&sample_interface, object);
}

#define CAST_ROWS(BuiltIn, get_type_function, from, reinterpret_function)                          \
    {"get_type", get_type_function, METH_NOARGS, nullptr},                                         \
        {"_type_of", BuiltIn::type_of, METH_NOARGS | METH_STATIC, nullptr},                        \
        {"_cast_to", BuiltIn::cast_to, METH_O | METH_STATIC, nullptr},                             \
        {"_cast_from", from, METH_O, nullptr},                                                     \
        {"_reinterpret_obj", reinterpret_function, METH_O | METH_STATIC, nullptr},                 \
        {"_cast_as", BuiltIn::cast_as, METH_O | METH_STATIC, nullptr},                             \
        {"_is_assignable", BuiltIn::is_assignable, METH_O | METH_STATIC, nullptr}, {               \
        nullptr, nullptr, 0, nullptr                                                               \
    }

using OfClass = BuiltIns<class_operations>;
using OfDerived = BuiltIns<derived_operations>;
using OfValue = BuiltIns<value_operations>;
using OfShape = BuiltIns<shape_operations>;

PyMethodDef class_methods[] = {
    {"self", class_self, METH_NOARGS, nullptr},
    CAST_ROWS(OfClass, wrapClrObject_get_type, OfClass::cast_from, OfClass::reinterpret)};
PyMethodDef derived_methods[] = {
    CAST_ROWS(OfDerived, wrapClrObject_get_type, OfDerived::cast_from, OfDerived::reinterpret)};
PyMethodDef value_methods[] = {
    CAST_ROWS(OfValue, wrapClrStruct_get_type, value_cast_from, OfValue::reinterpret)};
PyMethodDef shape_methods[] = {
    CAST_ROWS(OfShape, wrapClrObject_get_type, OfShape::cast_from, shape_reinterpret)};

PyObject *get_constant(PyObject *object, void *closure) {
    if (invalidate_class()) return nullptr;
    if (object != nullptr || closure != nullptr) return fn_py_return_none(); // never so
    void *const result = ClassEntries::get_instance().constant();
    return PyErr_Occurred() ? nullptr : wrap<&sample_class>(result);
}
PyGetSetDef constant_record = {"CONSTANT", get_constant, nullptr, nullptr, nullptr};
PyGetSetDef *const class_fields[] = {&constant_record};

// Both show what they were called with.
PyObject *echo(PyObject *self, PyObject *args, PyObject *kwds) {
    PyObject *const shown = self != nullptr ? self : Py_None;
    return Py_BuildValue("(OOO)", shown, args, kwds != nullptr ? kwds : Py_None);
}
PyObject *echo_one(PyObject *self, PyObject *argument) {
    return Py_BuildValue("(OO)", self != nullptr ? self : Py_None, argument);
}
#define ECHO reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(echo))
PyMethodDef echo_static = {"echo", ECHO, METH_VARARGS | METH_KEYWORDS | METH_STATIC, "of the type"};
PyMethodDef echo_instance = {"echo", ECHO, METH_VARARGS | METH_KEYWORDS, "of an instance"};
PyMethodDef plain_noargs = {"plain_noargs", ECHO, METH_NOARGS, ""};
PyMethodDef plain_oarg = {"plain_oarg", echo_one, METH_O, nullptr};
PyMethodDef static_noargs = {"static_noargs", ECHO, METH_NOARGS | METH_STATIC, nullptr};

// A proper definition without a doc for each protocol name; the tests look at what they install.
using OfShade = EnumCasts<ShadeEntries, invalidate<ShadeEntries>,
                          static_cast<PyObject *(*)(std::int32_t)>(
                              [](std::int32_t value) { return enum_to_py(value, sample_enum); })>;
using OfFlags = EnumCasts<FlagsEntries, invalidate<FlagsEntries>,
                          static_cast<PyObject *(*)(std::uint8_t)>([](std::uint8_t value) {
                              return enum_to_py(value, sample_byte_enum);
                          })>;
constexpr CastOperations shade_operations = OfShade::operations();
constexpr CastOperations flags_operations = OfFlags::operations();

template <class Host, class Number, const CastOperations &casts> struct Protocol {
    static PyObject *get_type(PyObject *self, PyObject *) {
        return enum_get_type<Host, Number>(self, invalidate<Host>);
    }
    static PyObject *uni_enum(PyObject *self, PyObject *) {
        return enum_as_uni_enum<Host, Number>(self, invalidate<Host>);
    }
    using Calls = BuiltIns<casts>;
    static inline PyMethodDef rows[8] = {
        {"_type_of", Calls::type_of, METH_NOARGS | METH_STATIC, nullptr},
        {"_cast_to", Calls::cast_to, METH_O | METH_STATIC, nullptr},
        {"_cast_from", Calls::cast_from, METH_O, nullptr},
        {"_reinterpret_obj", Calls::reinterpret, METH_O | METH_STATIC, nullptr},
        {"_as_uni_enum", uni_enum, METH_NOARGS, nullptr},
        {"_cast_as", Calls::cast_as, METH_O | METH_STATIC, nullptr},
        {"_is_assignable", Calls::is_assignable, METH_O | METH_STATIC, nullptr},
        {"get_type", get_type, METH_NOARGS, nullptr}};
};

constexpr EnumMember shade_members[] = {{"DARK", 1}, {"LIGHT", 2}, {"BELOW", -5}};
constexpr EnumMember flags_members[] = {{"A", 1}, {"B", 2}, {"TOP", 128}};

template <class Rows>
PyObject *make_enum(const char *name, EnumBase base, EnumNumbers numbers, const EnumMember *members,
                    PyTypeObject **type) {
    EnumDescription description = {name, base, numbers, members, 3, {}};
    for (int i = 0; i < 8; ++i) description.protocol[i] = &Rows::rows[i];
    return create_enum(description, type);
}

int class_conversion(PyObject *value, void **out) {
    static constexpr ClassConversion conversion = {"Sample", &sample_class, invalidate_class,
                                                   class_is_assignable<ClassEntries>};
    return class_from_py(value, out, conversion);
}
int struct_conversion(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {
        "Value", &sample_struct, invalidate<ValueEntries>, variant_is_assignable<ValueEntries>};
    return struct_from_py(value, out, conversion);
}
int interface_conversion(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {
        "IShape", &sample_interface, invalidate<ShapeEntries>, variant_is_assignable<ShapeEntries>};
    return interface_from_py(value, out, conversion);
}
int enum_conversion(PyObject *value, std::int32_t *out) {
    return enum_from_py(value, out, sample_enum, "Shade");
}
int byte_enum_conversion(PyObject *value, std::uint8_t *out) {
    return enum_from_py(value, out, sample_byte_enum, "Flags");
}

const ProbeRow rows[] = {
    PROBE_ROW(class_conversion),     PROBE_ROW(struct_conversion), PROBE_ROW(interface_conversion),
    PROBE_ROW(enum_conversion),      PROBE_ROW(publish_samples),   PROBE_ROW(echo_static),
    PROBE_ROW(byte_enum_conversion), PROBE_ROW(echo_instance),     PROBE_ROW(plain_noargs),
    PROBE_ROW(plain_oarg),           PROBE_ROW(static_noargs),     PROBE_ROW(constant_record),
};
const ProbeTable table(rows);

bool mark(PyTypeObject *type, bool is_struct) {
    return (is_struct ? fn_set_stc_type_host_markattr(type)
                      : fn_set_obj_type_host_markattr(type)) &&
           fn_set_castable_type_markattr(type, Py_None);
}

bool publish(PyObject *module, PyTypeObject *type, const char *name, const char16_t *managed) {
    PyWrpTypesMap::get_instance()->add(std::u16string(managed), type);
    return fn_ready_type(type) == 0 && fn_add_type(module, "kelmor.psd", type, name) == 0;
}

} // namespace

constinit PyTypeObject sample_class = class_wrapper_type({.name = "kelmor.psd.Sample",
                                                          .create = create_class,
                                                          .init = init_class,
                                                          .methods = class_methods});
constinit PyTypeObject sample_derived =
    class_wrapper_type({.name = "kelmor.psd.Derived",
                        .create = create<DerivedEntries, class_is_not_valid>,
                        .methods = derived_methods,
                        .base = &sample_class});
constinit PyTypeObject sample_struct = struct_wrapper_type(
    {.name = "kelmor.psd.Value", .create = create<ValueEntries>, .methods = value_methods});
constinit PyTypeObject sample_interface = class_wrapper_type(
    {.name = "kelmor.psd.IShape", .create = create<ShapeEntries>, .methods = shape_methods});
PyTypeObject *sample_enum;
PyTypeObject *sample_byte_enum;

int publish_samples(PyObject *module) {
    if (!publish(module, &sample_interface, "IShape", u"Sample.IShape") ||
        !publish(module, &sample_class, "Sample", u"Sample.Sample") ||
        !publish(module, &sample_derived, "Derived", u"Sample.Derived") ||
        !publish(module, &sample_struct, "Value", u"Sample.Value"))
        return -1;
    if (!fn_set_additional_ifcs_markattr(&sample_class, 1, &sample_interface) ||
        !fn_set_implicit_ifcs_markattr(&sample_class, 1, &sample_interface) ||
        !mark(&sample_class, false) || !mark(&sample_derived, false) ||
        !mark(&sample_interface, false) || !mark(&sample_struct, true))
        return -1;
    if (install_static_fields(&sample_class, class_fields) < 0 ||
        install_mixed_method(&sample_class, {&echo_static, &echo_instance}) < 0)
        return -1;
    PyObject *const shade = make_enum<Protocol<ShadeEntries, std::int32_t, shade_operations>>(
        "Shade", EnumBase::int_enum, EnumNumbers::signed_numbers, shade_members, &sample_enum);
    if (fn_add_enum(module, "kelmor.psd", "kelmor.psd.Shade", "Shade", shade) < 0) return -1;
    PyObject *const flags = make_enum<Protocol<FlagsEntries, std::uint8_t, flags_operations>>(
        "Flags", EnumBase::int_flag, EnumNumbers::unsigned_numbers, flags_members,
        &sample_byte_enum);
    return fn_add_enum(module, "kelmor.psd", "kelmor.psd.Flags", "Flags", flags);
}
