// ---- kelmor.harness.Pair

// Entry points of Kelmor.Harness.Pair, in slot order.
class PyHost_cs_037FDF2C_Pair : public ClassHost {
public:
    static PyHost_cs_037FDF2C_Pair &get_instance() {
        static PyHost_cs_037FDF2C_Pair host;
        return host;
    }
    void *ctor_000_Pair() const { return m_ctor_000_Pair(); }
    void *ctor_001_Pair(std::int32_t left, std::int32_t right) const {
        return m_ctor_001_Pair(left, right);
    }
    std::int32_t get_Left(void *self) const { return m_get_Left(self); }
    void set_Left(void *self, std::int32_t value) const { m_set_Left(self, value); }
    std::int32_t get_Right(void *self) const { return m_get_Right(self); }
    void set_Right(void *self, std::int32_t value) const { m_set_Right(self, value); }
    std::int32_t call_000_Sum(void *self) const { return m_call_000_Sum(self); }
    void *call_000_Swap(const VariantArg *pair) const { return m_call_000_Swap(pair); }
    void call_001_Swap(void *self) const { m_call_001_Swap(self); }
    bool call_000_Equals(void *self, const VariantArg *other) const {
        return m_call_000_Equals(self, other);
    }
    void *getsa_Zero() const { return m_getsa_Zero(); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *value, void **out) const {
        return m_btp_ReInterpretObj(value, out);
    }
    int btp_CastAs(const VariantArg *value, void **out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(const VariantArg *value) const { return m_btp_IsAssignable(value); }

private:
    PyHost_cs_037FDF2C_Pair() {
        static const char *const methods[] = {
            "ctor_000_Pair",
            "ctor_001_Pair",
            "get_Left",
            "set_Left",
            "get_Right",
            "set_Right",
            "call_000_Sum",
            "call_000_Swap",
            "call_001_Swap",
            "call_000_Equals",
            "getsa_Zero",
            "btp_TypeOf",
            "btp_CastTo",
            "btp_ReInterpretObj",
            "btp_CastAs",
            "btp_IsAssignable",
        };
        bind("WrpNs_Kelmor.WrpNs_Harness.WrpCs_Pair_EF791D99", methods,
             reinterpret_cast<void **>(&m_ctor_000_Pair));
    }
    void *(*m_ctor_000_Pair)() = nullptr;
    void *(*m_ctor_001_Pair)(std::int32_t, std::int32_t) = nullptr;
    std::int32_t (*m_get_Left)(void *) = nullptr;
    void (*m_set_Left)(void *, std::int32_t) = nullptr;
    std::int32_t (*m_get_Right)(void *) = nullptr;
    void (*m_set_Right)(void *, std::int32_t) = nullptr;
    std::int32_t (*m_call_000_Sum)(void *) = nullptr;
    void *(*m_call_000_Swap)(const VariantArg *) = nullptr;
    void (*m_call_001_Swap)(void *) = nullptr;
    unsigned char (*m_call_000_Equals)(void *, const VariantArg *) = nullptr;
    void *(*m_getsa_Zero)() = nullptr;
    int (*m_btp_TypeOf)(void **) = nullptr;
    int (*m_btp_CastTo)(const VariantArg *, void **) = nullptr;
    int (*m_btp_ReInterpretObj)(void *, void **) = nullptr;
    int (*m_btp_CastAs)(const VariantArg *, void **) = nullptr;
    unsigned char (*m_btp_IsAssignable)(const VariantArg *) = nullptr;
};
static_assert(sizeof(PyHost_cs_037FDF2C_Pair) ==
              sizeof(ClassHost) + 16 * sizeof(void *));

static const PyHostState &wrpPy_uafn_037FDF2C_Pair_get_aggregate_host_state() {
    static const PyHostState state = aggregate_host_state(
        PyHost_cs_037FDF2C_Pair::get_instance());
    return state;
}
bool wrpPy_bltp_037FDF2C_Pair_is_not_valid(std::string &message) {
    return is_not_valid(wrpPy_uafn_037FDF2C_Pair_get_aggregate_host_state(), message);
}
static bool wrpPy_uafn_037FDF2C_Pair_invalidate() {
    return raise_if_not_valid(wrpPy_uafn_037FDF2C_Pair_get_aggregate_host_state());
}

int wrpPy_conv_py_to_clr_037FDF2C_Pair(PyObject *value, VariantArg *out) {
    static constexpr VariantConversion conversion = {
        "Pair",
        &wrpPy_tyds_037FDF2C_Pair,
        wrpPy_uafn_037FDF2C_Pair_invalidate,
        variant_is_assignable<PyHost_cs_037FDF2C_Pair>};
    return struct_from_py(value, out, conversion);
}
PyObject *wrpPy_conv_clr_to_py_037FDF2C_Pair(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_037FDF2C_Pair);
}

static PyObject *wrpPy_tpsb_037FDF2C_Pair_tp_new(PyTypeObject *type, PyObject *args,
                                                 PyObject *kwds) {
    return new_clr_object(wrpPy_uafn_037FDF2C_Pair_get_aggregate_host_state(), type, args, kwds);
}

static int wrpPy_tpsb_037FDF2C_Pair_tp_init(PyObject *self, PyObject *args, PyObject *kwds) {
    void **const handle = &reinterpret_cast<PyClrObject *>(self)->handle;
    OverloadAttempts<2> attempts;
    {
        static const char *const keywords[] = {nullptr};
        if (PyArg_ParseTupleAndKeywords(args, kwds, "", const_cast<char **>(keywords))) {
            *handle = PyHost_cs_037FDF2C_Pair::get_instance().ctor_000_Pair();
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"left", "right", nullptr};
        std::int32_t left = 0;
        std::int32_t right = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&O&", const_cast<char **>(keywords),
                                        fn_conv_py_long_to_clr_int32, &left,
                                            fn_conv_py_long_to_clr_int32, &right)) {
            *handle = PyHost_cs_037FDF2C_Pair::get_instance().ctor_001_Pair(left, right);
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(1);
    }
    return attempts.raise_from_init();
}

static PyObject *wrpPy_mtfn_037FDF2C_Pair_000_sum(PyObject *self, PyObject *) {
    const std::int32_t result =
        PyHost_cs_037FDF2C_Pair::get_instance().call_000_Sum(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return PyLong_FromLong(result);
}

static PyObject *wrpPy_mtfn_037FDF2C_Pair_000_swap(PyObject *, PyObject *args, PyObject *kwds) {
    if (wrpPy_uafn_037FDF2C_Pair_invalidate()) return nullptr;
    static const char *const keywords[] = {"pair", nullptr};
    VariantArg pair;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                     wrpPy_conv_py_to_clr_037FDF2C_Pair, &pair))
        return nullptr;
    void *const result = PyHost_cs_037FDF2C_Pair::get_instance().call_000_Swap(&pair);
    if (PyErr_Occurred()) return nullptr;
    return wrpPy_conv_clr_to_py_037FDF2C_Pair(result);
}

static PyObject *wrpPy_mtfn_037FDF2C_Pair_001_swap(PyObject *self, PyObject *) {
    PyHost_cs_037FDF2C_Pair::get_instance().call_001_Swap(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return fn_py_return_none();
}

static PyObject *wrpPy_mtfn_037FDF2C_Pair_000_equals(PyObject *self, PyObject *args,
                                                     PyObject *kwds) {
    static const char *const keywords[] = {"other", nullptr};
    VariantArg other;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                     wrpPy_conv_py_to_clr_037FDF2C_Pair, &other))
        return nullptr;
    const bool result =
        PyHost_cs_037FDF2C_Pair::get_instance().call_000_Equals(handle_of(self), &other);
    if (PyErr_Occurred()) return nullptr;
    return PyBool_FromLong(result);
}

static PyObject *wrpPy_pafn_037FDF2C_Pair_000_get_left(PyObject *self, void *) {
    const std::int32_t result = PyHost_cs_037FDF2C_Pair::get_instance().get_Left(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return PyLong_FromLong(result);
}
static int wrpPy_pafn_037FDF2C_Pair_000_set_left(PyObject *self, PyObject *value, void *) {
    std::int32_t converted = 0;
    if (!fn_conv_py_long_to_clr_int32(value, &converted)) return -1;
    PyHost_cs_037FDF2C_Pair::get_instance().set_Left(handle_of(self), converted);
    return PyErr_Occurred() ? -1 : 0;
}

static PyObject *wrpPy_pafn_037FDF2C_Pair_000_get_right(PyObject *self, void *) {
    const std::int32_t result = PyHost_cs_037FDF2C_Pair::get_instance().get_Right(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return PyLong_FromLong(result);
}
static int wrpPy_pafn_037FDF2C_Pair_000_set_right(PyObject *self, PyObject *value, void *) {
    std::int32_t converted = 0;
    if (!fn_conv_py_long_to_clr_int32(value, &converted)) return -1;
    PyHost_cs_037FDF2C_Pair::get_instance().set_Right(handle_of(self), converted);
    return PyErr_Occurred() ? -1 : 0;
}

static PyObject *wrpPy_spvg_037FDF2C_Pair_000_get_ZERO(PyObject *, void *) {
    if (wrpPy_uafn_037FDF2C_Pair_invalidate()) return nullptr;
    void *const result = PyHost_cs_037FDF2C_Pair::get_instance().getsa_Zero();
    if (PyErr_Occurred()) return nullptr;
    return wrpPy_conv_clr_to_py_037FDF2C_Pair(result);
}
static PyGetSetDef wrpPy_sgsf_037FDF2C_Pair_000_ZERO = {
    "ZERO", wrpPy_spvg_037FDF2C_Pair_000_get_ZERO, nullptr, nullptr, nullptr};

static constexpr CastOperations casts_037FDF2C_Pair =
    struct_casts<PyHost_cs_037FDF2C_Pair, wrpPy_uafn_037FDF2C_Pair_invalidate,
                wrpPy_conv_clr_to_py_037FDF2C_Pair>();
static PyObject *wrpPy_blts_037FDF2C_Pair_000__type_of(PyObject *, PyObject *) {
    return type_of(casts_037FDF2C_Pair);
}
static PyObject *wrpPy_blts_037FDF2C_Pair_000__cast_to(PyObject *, PyObject *object) {
    return cast_to(casts_037FDF2C_Pair, object);
}
static PyObject *wrpPy_blts_037FDF2C_Pair_000__cast_from(PyObject *, PyObject *) {
    return cast_from_nothing();
}
static PyObject *wrpPy_blts_037FDF2C_Pair_000__reinterpret_obj(PyObject *, PyObject *object) {
    return reinterpret_obj(casts_037FDF2C_Pair, object);
}
static PyObject *wrpPy_blts_037FDF2C_Pair_000__cast_as(PyObject *, PyObject *object) {
    return cast_as(casts_037FDF2C_Pair, object);
}
static PyObject *wrpPy_blts_037FDF2C_Pair_000__is_assignable(PyObject *, PyObject *object) {
    return is_assignable(casts_037FDF2C_Pair, object);
}

static PyMethodDef wrpPy_tymd_037FDF2C_Pair[] = {
    {"sum", wrpPy_mtfn_037FDF2C_Pair_000_sum, METH_NOARGS, nullptr},
    {"equals", KELMOR_WITH_KEYWORDS(wrpPy_mtfn_037FDF2C_Pair_000_equals),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"get_type", wrapClrStruct_get_type, METH_NOARGS, nullptr},
    {"_type_of", wrpPy_blts_037FDF2C_Pair_000__type_of, METH_NOARGS | METH_STATIC, nullptr},
    {"_cast_to", wrpPy_blts_037FDF2C_Pair_000__cast_to, METH_O | METH_STATIC, nullptr},
    {"_cast_from", wrpPy_blts_037FDF2C_Pair_000__cast_from, METH_O, nullptr},
    {"_reinterpret_obj", wrpPy_blts_037FDF2C_Pair_000__reinterpret_obj, METH_O | METH_STATIC,
     nullptr},
    {"_cast_as", wrpPy_blts_037FDF2C_Pair_000__cast_as, METH_O | METH_STATIC, nullptr},
    {"_is_assignable", wrpPy_blts_037FDF2C_Pair_000__is_assignable, METH_O | METH_STATIC, nullptr},
    {nullptr, nullptr, 0, nullptr},
};
static PyGetSetDef wrpPy_typd_037FDF2C_Pair[] = {
    {"left", wrpPy_pafn_037FDF2C_Pair_000_get_left, wrpPy_pafn_037FDF2C_Pair_000_set_left, nullptr,
     nullptr},
    {"right", wrpPy_pafn_037FDF2C_Pair_000_get_right, wrpPy_pafn_037FDF2C_Pair_000_set_right,
     nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};
constinit PyTypeObject wrpPy_tyds_037FDF2C_Pair = struct_wrapper_type({
    .name = "kelmor.harness.Pair",
    .create = wrpPy_tpsb_037FDF2C_Pair_tp_new,
    .init = wrpPy_tpsb_037FDF2C_Pair_tp_init,
    .methods = wrpPy_tymd_037FDF2C_Pair,
    .properties = wrpPy_typd_037FDF2C_Pair,
    .base = nullptr,
});

static PyMethodDef wrpPy_mxml_037FDF2C_Pair_000_swap_static =
    {"swap", KELMOR_WITH_KEYWORDS(wrpPy_mtfn_037FDF2C_Pair_000_swap),
     METH_VARARGS | METH_KEYWORDS | METH_STATIC, nullptr};
static PyMethodDef wrpPy_mxml_037FDF2C_Pair_000_swap_instance =
    {"swap", wrpPy_mtfn_037FDF2C_Pair_001_swap, METH_NOARGS, nullptr};

// The members that a static table cannot hold.
int wrpPy_eypi_037FDF2C_Pair() {
    static PyGetSetDef *const fields[] = {
        &wrpPy_sgsf_037FDF2C_Pair_000_ZERO,
    };
    if (install_static_fields(&wrpPy_tyds_037FDF2C_Pair, fields) < 0) return -1;
    static constexpr MixedMethod mixed_swap = {
        &wrpPy_mxml_037FDF2C_Pair_000_swap_static,
        &wrpPy_mxml_037FDF2C_Pair_000_swap_instance};
    if (install_mixed_method(&wrpPy_tyds_037FDF2C_Pair, mixed_swap) < 0) return -1;
    return 0;
}
