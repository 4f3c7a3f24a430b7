// Two generic instances made by hand, as the generator would make them: int32, and a class.
#include "peer/probe.h"
#include "peer/probe_sample.h"

#include "binding/host_state.h"
#include "collections/generic.h"
#include "marshal/scalars.h"
#include "shell/module_identity.h"
#include "shell/module_tree.h"

namespace {

int sample_from_py(PyObject *value, void **out);
PyObject *sample_to_py(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &sample_class);
}

using IntElement = ScalarElement<std::int32_t, fn_conv_py_long_to_clr_int32, PyLong_FromLong>;
using SampleElement = ClassElement<sample_from_py, sample_to_py>;

class IntArrayHost : public GenericArrayHost<IntElement> {
public:
    static IntArrayHost &get_instance() {
        static IntArrayHost host;
        return host;
    }

private:
    IntArrayHost() : SlotHost("Kelmor.WrpGen.Generic.SiApiArray_A4A29720") {}
};

class IntIterHost : public GenericIterHost<IntElement> {
public:
    static IntIterHost &get_instance() {
        static IntIterHost host;
        return host;
    }

private:
    IntIterHost() : SlotHost("Kelmor.WrpGen.Generic.SiApiEnumerator_A4A29720") {}
};

class SampleListHost : public GenericListHost<SampleElement> {
public:
    static SampleListHost &get_instance() {
        static SampleListHost host;
        return host;
    }

private:
    SampleListHost() : SlotHost("Kelmor.WrpGen.Generic.SiApiList_0D30925B") {}
};

template <class Host, NotValidQuery... References> const PyHostState &state_of() {
    static const PyHostState state = aggregate_host_state(Host::get_instance(), {References...});
    return state;
}
template <class Host, NotValidQuery... References>
PyObject *create(PyTypeObject *type, PyObject *args, PyObject *kwds) {
    return new_clr_object(state_of<Host, References...>(), type, args, kwds);
}
bool invalidate_int_array() {
    return raise_if_not_valid(state_of<IntArrayHost, wrpPye_bltp_array_is_not_valid>());
}

constexpr ListOperations int_array = array_operations<IntArrayHost>();
constexpr ListOperations sample_list = array_list_operations<SampleListHost>();

template <const ListOperations &list> struct Slots {
    static Py_ssize_t length(PyObject *self) { return list_sq_length(list, self); }
    static PyObject *concat(PyObject *self, PyObject *other) {
        return list_sq_concat(list, self, other);
    }
    static PyObject *repeat(PyObject *self, Py_ssize_t count) {
        return list_sq_repeat(list, self, count);
    }
    static PyObject *item(PyObject *self, Py_ssize_t index) {
        return list_sq_item(list, self, index);
    }
    static int ass_item(PyObject *self, Py_ssize_t index, PyObject *value) {
        return list_sq_ass_item(list, self, index, value);
    }
    static int contains(PyObject *self, PyObject *value) {
        return list_sq_contains(list, self, value);
    }
    static PyObject *subscript(PyObject *self, PyObject *key) {
        return list_mp_subscript(list, self, key);
    }
    static int ass_subscript(PyObject *self, PyObject *key, PyObject *value) {
        return list_mp_ass_subscript(list, self, key, value);
    }
    static PyObject *index(PyObject *self, PyObject *args) { return list_index(list, self, args); }
    static PyObject *append(PyObject *self, PyObject *value) {
        return list_append(list, self, value);
    }
    static PyObject *pop(PyObject *self, PyObject *args) { return list_pop(list, self, args); }
    static inline PySequenceMethods sequence = {length,   concat,  repeat,   item,    nullptr,
                                                ass_item, nullptr, contains, nullptr, nullptr};
    static inline PyMappingMethods mapping = {length, subscript, ass_subscript};
    static inline PyMethodDef methods[] = {{"index", index, METH_VARARGS, nullptr},
                                           {"append", append, METH_O, nullptr},
                                           {"pop", pop, METH_VARARGS, nullptr},
                                           {nullptr, nullptr, 0, nullptr}};
};

PyMethodDef iter_methods[] = {{"__enter__", wrpPye_bltp_idisposable_enter, METH_NOARGS, nullptr},
                              {"__exit__", wrpPye_bltp_idisposable_exit, METH_VARARGS, nullptr},
                              {nullptr, nullptr, 0, nullptr}};

PyObject *next_int(PyObject *self) { return next_item<IntIterHost>(self); }

} // namespace

extern PyTypeObject generic_int_iter;
constinit PyTypeObject generic_int_iter =
    collection_wrapper_type({.name = "kelmor.psd._wrpgen._generic._IterWrapper_A4A29720",
                             .create = create<IntIterHost>,
                             .methods = iter_methods},
                            {.iterate = wrpPye_bltp_iter_iter, .next = next_int});

namespace {

PyObject *iterate_ints(PyObject *self) {
    return iterate<PyHost_ph_Iterable>(self, &generic_int_iter);
}

constinit PyTypeObject int_array_type =
    collection_wrapper_type({.name = "kelmor.psd._wrpgen._generic._ArrayWrapper_A4A29720",
                             .create = create<IntArrayHost, wrpPye_bltp_array_is_not_valid>,
                             .methods = Slots<int_array>::methods,
                             .base = &wrpPye_tyds_ArrayWrapper},
                            {.sequence = &Slots<int_array>::sequence,
                             .mapping = &Slots<int_array>::mapping,
                             .iterate = iterate_ints});

constinit PyTypeObject sample_list_type =
    collection_wrapper_type({.name = "kelmor.psd._wrpgen._generic._ListWrapper_0D30925B",
                             .create = create<SampleListHost>,
                             .methods = Slots<sample_list>::methods},
                            {.sequence = &Slots<sample_list>::sequence,
                             .mapping = &Slots<sample_list>::mapping,
                             .iterate = wrpPye_bltp_iterable_iter});

int sample_from_py(PyObject *value, void **out) {
    static constexpr ClassConversion conversion = {"Sample", &sample_class, invalidate_int_array,
                                                   class_is_assignable<IntArrayHost>};
    return class_from_py(value, out, conversion);
}

int int_array_conversion(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"Array", &int_array_type, invalidate_int_array,
                                                   class_is_assignable<IntArrayHost>};
    return array_like_from_py(value, out, conversion);
}

int fn_clbk_pylist_A4A29720_get_item(PyObject *list, int index, std::int32_t *out) {
    return pylist_get_item<IntElement>(list, index, out);
}
int fn_clbk_pyseq_A4A29720_get_item(PyObject *sequence, int index, PyObject **keep,
                                    std::int32_t *out) {
    return pyseq_get_item<IntElement>(sequence, index, keep, out);
}
int fn_clbk_pylist_0D30925B_get_item(PyObject *list, int index, void **out) {
    return pylist_get_item<SampleElement>(list, index, out);
}

const ProbeRow rows[] = {
    PROBE_ROW(int_array_conversion),
    PROBE_ROW(fn_clbk_pylist_A4A29720_get_item),
    PROBE_ROW(fn_clbk_pyseq_A4A29720_get_item),
    PROBE_ROW(fn_clbk_pylist_0D30925B_get_item),
};
const ProbeTable table(rows);

PyModuleDef definition = {PyModuleDef_HEAD_INIT,
                          module_identity::generic_module,
                          nullptr,
                          -1,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr,
                          nullptr};

void **no_callbacks[] = {nullptr};

} // namespace

void ***get_all_pygn_generic_callbacks() { return no_callbacks; }

PyObject *wrpPygn_mlit_FFFFFFFF_generic_wrappers() {
    PyObject *const module = fn_create_module(&definition);
    if (module == nullptr) return nullptr;
    const auto publish = [module](PyTypeObject *type, const char *name,
                                  std::initializer_list<PyTypeObject *> interfaces) {
        return publish_wrapper_type(module, module_identity::generic_module, type, name,
                                    interfaces) == 0;
    };
    PyTypeObject *const iterable = &wrpPye_tyds_IterableWrapper;
    PyTypeObject *const list = &wrpPye_tyds_IListWrapper;
    if (publish(&int_array_type, "_ArrayWrapper_A4A29720", {iterable, list}) &&
        publish(&generic_int_iter, "_IterWrapper_A4A29720",
                {&wrpPye_tyds_IterWrapper, &wrpPye_tyds_IDisposableWrapper}) &&
        publish(&sample_list_type, "_ListWrapper_0D30925B", {iterable, list}))
        return module;
    Py_DECREF(module);
    return nullptr;
}
