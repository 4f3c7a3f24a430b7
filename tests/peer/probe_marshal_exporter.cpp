// An exporter that hands out the view it is told to, whatever was asked for, and counts. Its memory
// may be written.
#include "peer/probe.h"

#include "shell/cpython.h"

namespace {

struct Exporter {
    PyObject_HEAD void *data;
    Py_ssize_t length; // bytes that the view claims
    Py_ssize_t shape;
    Py_ssize_t stride; // of one-byte items; 0 for a view without strides
    int taken;
    int released;
};

int exporter_getbuffer(PyObject *self, Py_buffer *view, int flags) {
    auto *exporter = reinterpret_cast<Exporter *>(self);
    if (PyBuffer_FillInfo(view, self, exporter->data, exporter->length, 0, flags) < 0) return -1;
    if (exporter->stride != 0) {
        view->ndim = 1;
        view->shape = &exporter->shape;
        view->strides = &exporter->stride;
    }
    exporter->taken++;
    return 0;
}

void exporter_releasebuffer(PyObject *self, Py_buffer *) {
    reinterpret_cast<Exporter *>(self)->released++;
}

PyBufferProcs exporter_buffer = {exporter_getbuffer, exporter_releasebuffer};

PyTypeObject exporter_type = [] {
    const PyVarObject head[] = {PyVarObject_HEAD_INIT(nullptr, 0)};
    PyTypeObject type{};
    type.ob_base = head[0];
    type.tp_name = "kelmor_probe.Exporter";
    type.tp_basicsize = sizeof(Exporter);
    type.tp_flags = Py_TPFLAGS_DEFAULT;
    type.tp_as_buffer = &exporter_buffer;
    return type;
}();

PyObject *exporter_new(void *data, Py_ssize_t length, Py_ssize_t stride) {
    if (PyType_Ready(&exporter_type) < 0) return nullptr;
    auto *exporter = PyObject_New(Exporter, &exporter_type);
    if (!exporter) return nullptr;
    exporter->data = data;
    exporter->length = length;
    exporter->shape = length;
    exporter->stride = stride;
    exporter->taken = 0;
    exporter->released = 0;
    return reinterpret_cast<PyObject *>(exporter);
}

int exporter_taken(PyObject *exporter) { return reinterpret_cast<Exporter *>(exporter)->taken; }
int exporter_released(PyObject *exporter) {
    return reinterpret_cast<Exporter *>(exporter)->released;
}

const ProbeRow exporter_rows[] = {PROBE_ROW(exporter_new), PROBE_ROW(exporter_taken),
                                  PROBE_ROW(exporter_released)};
const ProbeTable exporter_table(exporter_rows);

} // namespace
