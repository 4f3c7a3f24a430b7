// Puts static fields and mixed methods on the types of classes.
#include "binding/statics.h"

#include "binding/descriptors.h"

int install_static_fields(PyTypeObject *type, PyGetSetDef *const *fields, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        PyObject *const descriptor = PyShDescr_NewStaticField(type, fields[i]);
        if (install_descriptor(type, fields[i]->name, descriptor) < 0) return -1;
    }
    return 0;
}

int install_mixed_method(PyTypeObject *type, const MixedMethod &method) {
    PyObject *const descriptor =
        PyShDescr_NewMixedMethod(type, method.static_definition, method.instance_definition);
    return install_descriptor(type, method.instance_definition->ml_name, descriptor);
}
