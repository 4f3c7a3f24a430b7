// ---- kelmor.psd.xmp.XmpHeaderPi

// Entry points of Kelmor.PSD.Xmp.XmpHeaderPi, in slot order.
class PyHost_cs_D91BAC5C_XmpHeaderPi : public ClassHost {
public:
    static PyHost_cs_D91BAC5C_XmpHeaderPi &get_instance() {
        static PyHost_cs_D91BAC5C_XmpHeaderPi host;
        return host;
    }
    void *ctor_000_XmpHeaderPi() const { return m_ctor_000_XmpHeaderPi(); }
    void *ctor_001_XmpHeaderPi(const PyStringArg *guid) const {
        return m_ctor_001_XmpHeaderPi(guid);
    }
    PyObject *call_000_GetXmlValue(void *self) const { return m_call_000_GetXmlValue(self); }
    bool call_000_Equals(void *self, void *other) const { return m_call_000_Equals(self, other); }
    PyObject *get_Guid(void *self) const { return m_get_Guid(self); }
    void set_Guid(void *self, const PyStringArg *value) const { m_set_Guid(self, value); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *value, void **out) const {
        return m_btp_ReInterpretObj(value, out);
    }
    int btp_CastAs(void *value, void **out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(void *value) const { return m_btp_IsAssignable(value); }

private:
    PyHost_cs_D91BAC5C_XmpHeaderPi() {
        static const char *const methods[] = {
            "ctor_000_XmpHeaderPi",
            "ctor_001_XmpHeaderPi",
            "call_000_GetXmlValue",
            "call_000_Equals",
            "get_Guid",
            "set_Guid",
            "btp_TypeOf",
            "btp_CastTo",
            "btp_ReInterpretObj",
            "btp_CastAs",
            "btp_IsAssignable",
        };
        bind("WrpNs_Kelmor.WrpNs_PSD.WrpNs_Xmp.WrpCs_XmpHeade_B968B5B1", methods,
             reinterpret_cast<void **>(&m_ctor_000_XmpHeaderPi));
    }
    void *(*m_ctor_000_XmpHeaderPi)() = nullptr;
    void *(*m_ctor_001_XmpHeaderPi)(const PyStringArg *) = nullptr;
    PyObject *(*m_call_000_GetXmlValue)(void *) = nullptr;
    unsigned char (*m_call_000_Equals)(void *, void *) = nullptr;
    PyObject *(*m_get_Guid)(void *) = nullptr;
    void (*m_set_Guid)(void *, const PyStringArg *) = nullptr;
    int (*m_btp_TypeOf)(void **) = nullptr;
    int (*m_btp_CastTo)(const VariantArg *, void **) = nullptr;
    int (*m_btp_ReInterpretObj)(void *, void **) = nullptr;
    int (*m_btp_CastAs)(void *, void **) = nullptr;
    unsigned char (*m_btp_IsAssignable)(void *) = nullptr;
};
static_assert(sizeof(PyHost_cs_D91BAC5C_XmpHeaderPi) ==
              sizeof(ClassHost) + 11 * sizeof(void *));

static const PyHostState &wrpPy_uafn_D91BAC5C_XmpHeaderPi_get_aggregate_host_state() {
    static const PyHostState state = aggregate_host_state(
        PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance());
    return state;
}
bool wrpPy_bltp_D91BAC5C_XmpHeaderPi_is_not_valid(std::string &message) {
    return is_not_valid(wrpPy_uafn_D91BAC5C_XmpHeaderPi_get_aggregate_host_state(), message);
}
static bool wrpPy_uafn_D91BAC5C_XmpHeaderPi_invalidate() {
    return raise_if_not_valid(wrpPy_uafn_D91BAC5C_XmpHeaderPi_get_aggregate_host_state());
}

int wrpPy_conv_py_to_clr_D91BAC5C_XmpHeaderPi(PyObject *value, void **out) {
    static constexpr ClassConversion conversion = {
        "XmpHeaderPi",
        &wrpPy_tyds_D91BAC5C_XmpHeaderPi,
        wrpPy_uafn_D91BAC5C_XmpHeaderPi_invalidate,
        class_is_assignable<PyHost_cs_D91BAC5C_XmpHeaderPi>};
    return class_from_py(value, out, conversion);
}
PyObject *wrpPy_conv_clr_to_py_D91BAC5C_XmpHeaderPi(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_D91BAC5C_XmpHeaderPi);
}

static PyObject *wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_new(PyTypeObject *type, PyObject *args,
                                                        PyObject *kwds) {
    return new_clr_object(wrpPy_uafn_D91BAC5C_XmpHeaderPi_get_aggregate_host_state(), type, args,
                          kwds);
}

static int wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_init(PyObject *self, PyObject *args, PyObject *kwds) {
    void **const handle = &reinterpret_cast<PyClrObject *>(self)->handle;
    OverloadAttempts<2> attempts;
    {
        static const char *const keywords[] = {nullptr};
        if (PyArg_ParseTupleAndKeywords(args, kwds, "", const_cast<char **>(keywords))) {
            *handle = PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().ctor_000_XmpHeaderPi();
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"guid", nullptr};
        PyStringArg guid;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_string_to_clr_string, &guid)) {
            *handle = PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().ctor_001_XmpHeaderPi(&guid);
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(1);
    }
    return attempts.raise_from_init();
}

static PyObject *wrpPy_mtfn_D91BAC5C_XmpHeaderPi_000_get_xml_value(PyObject *self, PyObject *) {
    PyObject *const result =
        PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().call_000_GetXmlValue(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return result;
}

static PyObject *wrpPy_mtfn_D91BAC5C_XmpHeaderPi_000_equals(PyObject *self, PyObject *args,
                                                            PyObject *kwds) {
    static const char *const keywords[] = {"other", nullptr};
    void *other = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                     wrpPy_conv_py_to_clr_D91BAC5C_XmpHeaderPi, &other))
        return nullptr;
    const bool result =
        PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().call_000_Equals(handle_of(self), other);
    if (PyErr_Occurred()) return nullptr;
    return PyBool_FromLong(result);
}

static PyObject *wrpPy_pafn_D91BAC5C_XmpHeaderPi_000_get_guid(PyObject *self, void *) {
    PyObject *const result =
        PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().get_Guid(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return result;
}
static int wrpPy_pafn_D91BAC5C_XmpHeaderPi_000_set_guid(PyObject *self, PyObject *value, void *) {
    PyStringArg converted;
    if (!fn_conv_py_string_to_clr_string(value, &converted)) return -1;
    PyHost_cs_D91BAC5C_XmpHeaderPi::get_instance().set_Guid(handle_of(self), &converted);
    return PyErr_Occurred() ? -1 : 0;
}

static constexpr CastOperations casts_D91BAC5C_XmpHeaderPi =
    class_casts<PyHost_cs_D91BAC5C_XmpHeaderPi, wrpPy_uafn_D91BAC5C_XmpHeaderPi_invalidate,
                wrpPy_conv_clr_to_py_D91BAC5C_XmpHeaderPi>();
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__type_of(PyObject *, PyObject *) {
    return type_of(casts_D91BAC5C_XmpHeaderPi);
}
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_to(PyObject *, PyObject *object) {
    return cast_to(casts_D91BAC5C_XmpHeaderPi, object);
}
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_from(PyObject *, PyObject *) {
    return cast_from_nothing();
}
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__reinterpret_obj(PyObject *,
    PyObject *object) {
    return reinterpret_obj(casts_D91BAC5C_XmpHeaderPi, object);
}
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_as(PyObject *, PyObject *object) {
    return cast_as(casts_D91BAC5C_XmpHeaderPi, object);
}
static PyObject *wrpPy_blts_D91BAC5C_XmpHeaderPi_000__is_assignable(PyObject *, PyObject *object) {
    return is_assignable(casts_D91BAC5C_XmpHeaderPi, object);
}

static PyMethodDef wrpPy_tymd_D91BAC5C_XmpHeaderPi[] = {
    {"get_xml_value", wrpPy_mtfn_D91BAC5C_XmpHeaderPi_000_get_xml_value, METH_NOARGS, nullptr},
    {"equals", KELMOR_WITH_KEYWORDS(wrpPy_mtfn_D91BAC5C_XmpHeaderPi_000_equals),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    {"_type_of", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__type_of, METH_NOARGS | METH_STATIC, nullptr},
    {"_cast_to", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_to, METH_O | METH_STATIC, nullptr},
    {"_cast_from", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_from, METH_O, nullptr},
    {"_reinterpret_obj", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__reinterpret_obj, METH_O | METH_STATIC,
     nullptr},
    {"_cast_as", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__cast_as, METH_O | METH_STATIC, nullptr},
    {"_is_assignable", wrpPy_blts_D91BAC5C_XmpHeaderPi_000__is_assignable, METH_O | METH_STATIC,
     nullptr},
    {nullptr, nullptr, 0, nullptr},
};
static PyGetSetDef wrpPy_typd_D91BAC5C_XmpHeaderPi[] = {
    {"guid", wrpPy_pafn_D91BAC5C_XmpHeaderPi_000_get_guid,
     wrpPy_pafn_D91BAC5C_XmpHeaderPi_000_set_guid, nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};
constinit PyTypeObject wrpPy_tyds_D91BAC5C_XmpHeaderPi = class_wrapper_type({
    .name = "kelmor.psd.xmp.XmpHeaderPi",
    .create = wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_new,
    .init = wrpPy_tpsb_D91BAC5C_XmpHeaderPi_tp_init,
    .methods = wrpPy_tymd_D91BAC5C_XmpHeaderPi,
    .properties = wrpPy_typd_D91BAC5C_XmpHeaderPi,
    .base = nullptr,
});
