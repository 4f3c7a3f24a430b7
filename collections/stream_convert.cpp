// The converter of a managed Stream parameter: a stream wrapper, or a Python file object as it is.
#include "binding/class_convert.h"
#include "binding/markers.h"
#include "collections/collection_types.h"
#include "collections/interop_wrappers.h"
#include "collections/stream_host.h"
#include "shell/identifiers.h"
#include "shell/import.h"
#include "shell/ref.h"

namespace {

int refuse_stream(PyObject *value) {
    PyErr_Format(PyExc_TypeError, "can't build Stream from '%s'", Py_TYPE(value)->tp_name);
    return 0;
}

int is_instance_of(PyObject *value, const char *module, PyObject *name) {
    const Ref type = Ref::steal(PyShImport_ImportType(module, name));
    return type ? PyObject_IsInstance(value, type.get()) : -1;
}

// 1 for a Python file object of the classes that the managed side can drive, 0, or -1 with an
// error. The classes are looked up anew each time, so that a replaced module takes effect.
int is_python_stream(PyObject *value) {
    int matches = is_instance_of(value, "io", PyWrpIdTypeName_RawIOBase);
    if (matches == 0) matches = is_instance_of(value, "io", PyWrpIdTypeName_BufferedIOBase);
    if (matches == 0)
        matches = is_instance_of(value, "kelmor.shellcommon", PyWrpIdTypeName_BytesAsStream);
    return matches;
}

} // namespace

int wrpPye_conv_py_to_clr_stream(PyObject *value, VariantArg *out) {
    static constexpr ClassConversion conversion = {"Stream", &wrpPye_tyds_StreamWrapper,
                                                   wrpPye_uafn_stream_invalidate,
                                                   class_is_assignable<PyHost_ph_Stream>};
    if (value == Py_None) return pass_handle(nullptr, out);
    if (PyObject_TypeCheck(value, conversion.type)) return pass_handle(handle_of(value), out);
    void *handle;
    if (fn_conv_py_obj_to_clr_refobj_not_null_handle(value, &handle)) {
        const int assignable = ask_assignable(conversion, handle);
        if (assignable < 0) return refuse_stream(value);
        return assignable != 0 ? pass_handle(handle, out) : 0;
    }
    const int matches = is_python_stream(value);
    if (matches < 0) return 0;
    return matches != 0 ? pass_python_object(value, CollectionKind::object, out)
                        : refuse_stream(value);
}
