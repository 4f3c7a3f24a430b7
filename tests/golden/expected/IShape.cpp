// ---- kelmor.harness.IShape

// Entry points of Kelmor.Harness.IShape, in slot order.
class PyHost_cs_D36F68CA_IShape : public ClassHost {
public:
    static PyHost_cs_D36F68CA_IShape &get_instance() {
        static PyHost_cs_D36F68CA_IShape host;
        return host;
    }
    double get_Area(void *self) const { return m_get_Area(self); }
    PyObject *get_Title(void *self) const { return m_get_Title(self); }
    void set_Title(void *self, const PyStringArg *value) const { m_set_Title(self, value); }
    double call_000_Scale(void *self, double factor) const {
        return m_call_000_Scale(self, factor);
    }
    double call_001_Scale(void *self, double x, double y) const {
        return m_call_001_Scale(self, x, y);
    }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_CastAs(const VariantArg *value, void **out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(const VariantArg *value) const { return m_btp_IsAssignable(value); }

private:
    PyHost_cs_D36F68CA_IShape() {
        static const char *const methods[] = {
            "get_Area",
            "get_Title",
            "set_Title",
            "call_000_Scale",
            "call_001_Scale",
            "btp_TypeOf",
            "btp_CastTo",
            "btp_CastAs",
            "btp_IsAssignable",
        };
        bind("WrpNs_Kelmor.WrpNs_Harness.WrpCs_IShape_A61D50AB", methods,
             reinterpret_cast<void **>(&m_get_Area));
    }
    double (*m_get_Area)(void *) = nullptr;
    PyObject *(*m_get_Title)(void *) = nullptr;
    void (*m_set_Title)(void *, const PyStringArg *) = nullptr;
    double (*m_call_000_Scale)(void *, double) = nullptr;
    double (*m_call_001_Scale)(void *, double, double) = nullptr;
    int (*m_btp_TypeOf)(void **) = nullptr;
    int (*m_btp_CastTo)(const VariantArg *, void **) = nullptr;
    int (*m_btp_CastAs)(const VariantArg *, void **) = nullptr;
    unsigned char (*m_btp_IsAssignable)(const VariantArg *) = nullptr;
};
static_assert(sizeof(PyHost_cs_D36F68CA_IShape) ==
              sizeof(ClassHost) + 9 * sizeof(void *));

static const PyHostState &wrpPy_uafn_D36F68CA_IShape_get_aggregate_host_state() {
    static const PyHostState state = aggregate_host_state(
        PyHost_cs_D36F68CA_IShape::get_instance());
    return state;
}
bool wrpPy_bltp_D36F68CA_IShape_is_not_valid(std::string &message) {
    return is_not_valid(PyHost_cs_D36F68CA_IShape::get_instance(), message);
}
static bool wrpPy_uafn_D36F68CA_IShape_invalidate() {
    return raise_if_not_valid(wrpPy_uafn_D36F68CA_IShape_get_aggregate_host_state());
}

int wrpPy_conv_py_to_clr_D36F68CA_IShape(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {
        "IShape",
        &wrpPy_tyds_D36F68CA_IShape,
        wrpPy_uafn_D36F68CA_IShape_invalidate,
        variant_is_assignable<PyHost_cs_D36F68CA_IShape>};
    return interface_from_py(value, out, conversion);
}
PyObject *wrpPy_conv_clr_to_py_D36F68CA_IShape(const PyObjectOutArg &result) {
    return fn_conv_clr_ifcimpl_to_py_ifcimpl(result, &wrpPy_tyds_D36F68CA_IShape);
}

static PyObject *wrpPy_tpsb_D36F68CA_IShape_tp_new(PyTypeObject *type, PyObject *args,
                                                   PyObject *kwds) {
    return new_clr_object(wrpPy_uafn_D36F68CA_IShape_get_aggregate_host_state(), type, args, kwds);
}

PyObject *wrpPy_hgfn_D36F68CA_IShape_000_scale(PyObject *self, PyObject *args, PyObject *kwds) {
    OverloadAttempts<2> attempts;
    {
        static const char *const keywords[] = {"factor", nullptr};
        double factor = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_float_to_clr_double, &factor)) {
            const double result =
                PyHost_cs_D36F68CA_IShape::get_instance().call_000_Scale(handle_of(self), factor);
            if (PyErr_Occurred()) return nullptr;
            return PyFloat_FromDouble(result);
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"x", "y", nullptr};
        double x = 0;
        double y = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&O&", const_cast<char **>(keywords),
                                        fn_conv_py_float_to_clr_double, &x,
                                            fn_conv_py_float_to_clr_double, &y)) {
            const double result =
                PyHost_cs_D36F68CA_IShape::get_instance().call_001_Scale(handle_of(self), x, y);
            if (PyErr_Occurred()) return nullptr;
            return PyFloat_FromDouble(result);
        }
        attempts.keep_failure(1);
    }
    return attempts.raise();
}

PyObject *wrpPy_phfn_D36F68CA_IShape_000_get_area(PyObject *self, void *) {
    const double result = PyHost_cs_D36F68CA_IShape::get_instance().get_Area(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return PyFloat_FromDouble(result);
}

PyObject *wrpPy_phfn_D36F68CA_IShape_000_get_title(PyObject *self, void *) {
    PyObject *const result = PyHost_cs_D36F68CA_IShape::get_instance().get_Title(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return result;
}
int wrpPy_phfn_D36F68CA_IShape_000_set_title(PyObject *self, PyObject *value, void *) {
    PyStringArg converted;
    if (!fn_conv_py_string_to_clr_string(value, &converted)) return -1;
    PyHost_cs_D36F68CA_IShape::get_instance().set_Title(handle_of(self), &converted);
    return PyErr_Occurred() ? -1 : 0;
}

static constexpr CastOperations casts_D36F68CA_IShape =
    interface_casts<PyHost_cs_D36F68CA_IShape, wrpPy_uafn_D36F68CA_IShape_invalidate,
                    &wrpPy_tyds_D36F68CA_IShape>();
static PyObject *wrpPy_blts_D36F68CA_IShape_000__type_of(PyObject *, PyObject *) {
    return type_of(casts_D36F68CA_IShape);
}
static PyObject *wrpPy_blts_D36F68CA_IShape_000__cast_to(PyObject *, PyObject *object) {
    return cast_to(casts_D36F68CA_IShape, object);
}
static PyObject *wrpPy_blts_D36F68CA_IShape_000__cast_from(PyObject *, PyObject *) {
    return cast_from_nothing();
}
static PyObject *wrpPy_blts_D36F68CA_IShape_000__reinterpret_obj(PyObject *, PyObject *object) {
    return refuse_reinterpretation(&wrpPy_tyds_D36F68CA_IShape, object);
}
static PyObject *wrpPy_blts_D36F68CA_IShape_000__cast_as(PyObject *, PyObject *object) {
    return cast_as(casts_D36F68CA_IShape, object);
}
static PyObject *wrpPy_blts_D36F68CA_IShape_000__is_assignable(PyObject *, PyObject *object) {
    return is_assignable(casts_D36F68CA_IShape, object);
}

static PyMethodDef wrpPy_tymd_D36F68CA_IShape[] = {
    {"scale", KELMOR_WITH_KEYWORDS(wrpPy_hgfn_D36F68CA_IShape_000_scale),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    {"_type_of", wrpPy_blts_D36F68CA_IShape_000__type_of, METH_NOARGS | METH_STATIC, nullptr},
    {"_cast_to", wrpPy_blts_D36F68CA_IShape_000__cast_to, METH_O | METH_STATIC, nullptr},
    {"_cast_from", wrpPy_blts_D36F68CA_IShape_000__cast_from, METH_O, nullptr},
    {"_reinterpret_obj", wrpPy_blts_D36F68CA_IShape_000__reinterpret_obj, METH_O | METH_STATIC,
     nullptr},
    {"_cast_as", wrpPy_blts_D36F68CA_IShape_000__cast_as, METH_O | METH_STATIC, nullptr},
    {"_is_assignable", wrpPy_blts_D36F68CA_IShape_000__is_assignable, METH_O | METH_STATIC,
     nullptr},
    {nullptr, nullptr, 0, nullptr},
};
static PyGetSetDef wrpPy_typd_D36F68CA_IShape[] = {
    {"area", wrpPy_phfn_D36F68CA_IShape_000_get_area, nullptr, nullptr, nullptr},
    {"title", wrpPy_phfn_D36F68CA_IShape_000_get_title, wrpPy_phfn_D36F68CA_IShape_000_set_title,
     nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};
constinit PyTypeObject wrpPy_tyds_D36F68CA_IShape = class_wrapper_type({
    .name = "kelmor.harness.IShape",
    .create = wrpPy_tpsb_D36F68CA_IShape_tp_new,
    .init = wrapClrObject_tp_init_fault,
    .methods = wrpPy_tymd_D36F68CA_IShape,
    .properties = wrpPy_typd_D36F68CA_IShape,
    .base = nullptr,
});
