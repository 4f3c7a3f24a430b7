// ---- kelmor.harness.Square

// Entry points of Kelmor.Harness.Square, in slot order.
class PyHost_cs_54657C55_Square : public ClassHost {
public:
    static PyHost_cs_54657C55_Square &get_instance() {
        static PyHost_cs_54657C55_Square host;
        return host;
    }
    void *ctor_000_Square() const { return m_ctor_000_Square(); }
    void *ctor_001_Square(double side) const { return m_ctor_001_Square(side); }
    void *ctor_002_Square(const PyBytesArg *bytes, const PyStringArg *name) const {
        return m_ctor_002_Square(bytes, name);
    }
    void *getsa_Default() const { return m_getsa_Default(); }
    void setsa_Default(void *value) const { m_setsa_Default(value); }
    double get_Side(void *self) const { return m_get_Side(self); }
    void set_Side(void *self, double value) const { m_set_Side(self, value); }
    void get_Neighbour(void *self, PyObjectOutArg *out) const { m_get_Neighbour(self, out); }
    void set_Neighbour(void *self, const VariantArg *value) const { m_set_Neighbour(self, value); }
    void *get_Twin(void *self) const { return m_get_Twin(self); }
    void set_Twin(void *self, void *value) const { m_set_Twin(self, value); }
    PyObject *call_000_Describe(void *self, std::int32_t number) const {
        return m_call_000_Describe(self, number);
    }
    PyObject *call_001_Describe(void *self, bool flag) const {
        return m_call_001_Describe(self, flag);
    }
    void *call_000_Parse(const PyStringArg *text) const { return m_call_000_Parse(text); }
    void *call_001_Parse(double side) const { return m_call_001_Parse(side); }
    void call_000_Fail(void *self, const PyStringArg *message) const {
        m_call_000_Fail(self, message);
    }
    bool call_000_Equals(void *self, void *other) const { return m_call_000_Equals(self, other); }
    double getsa_Unit() const { return m_getsa_Unit(); }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, void **out) const { return m_btp_CastTo(value, out); }
    int btp_ReInterpretObj(void *value, void **out) const {
        return m_btp_ReInterpretObj(value, out);
    }
    int btp_CastAs(void *value, void **out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(void *value) const { return m_btp_IsAssignable(value); }

private:
    PyHost_cs_54657C55_Square() {
        static const char *const methods[] = {
            "ctor_000_Square",
            "ctor_001_Square",
            "ctor_002_Square",
            "getsa_Default",
            "setsa_Default",
            "get_Side",
            "set_Side",
            "get_Neighbour",
            "set_Neighbour",
            "get_Twin",
            "set_Twin",
            "call_000_Describe",
            "call_001_Describe",
            "call_000_Parse",
            "call_001_Parse",
            "call_000_Fail",
            "call_000_Equals",
            "getsa_Unit",
            "btp_TypeOf",
            "btp_CastTo",
            "btp_ReInterpretObj",
            "btp_CastAs",
            "btp_IsAssignable",
        };
        bind("WrpNs_Kelmor.WrpNs_Harness.WrpCs_Square_EA29C6A5", methods,
             reinterpret_cast<void **>(&m_ctor_000_Square));
    }
    void *(*m_ctor_000_Square)() = nullptr;
    void *(*m_ctor_001_Square)(double) = nullptr;
    void *(*m_ctor_002_Square)(const PyBytesArg *, const PyStringArg *) = nullptr;
    void *(*m_getsa_Default)() = nullptr;
    void (*m_setsa_Default)(void *) = nullptr;
    double (*m_get_Side)(void *) = nullptr;
    void (*m_set_Side)(void *, double) = nullptr;
    void (*m_get_Neighbour)(void *, PyObjectOutArg *) = nullptr;
    void (*m_set_Neighbour)(void *, const VariantArg *) = nullptr;
    void *(*m_get_Twin)(void *) = nullptr;
    void (*m_set_Twin)(void *, void *) = nullptr;
    PyObject *(*m_call_000_Describe)(void *, std::int32_t) = nullptr;
    PyObject *(*m_call_001_Describe)(void *, bool) = nullptr;
    void *(*m_call_000_Parse)(const PyStringArg *) = nullptr;
    void *(*m_call_001_Parse)(double) = nullptr;
    void (*m_call_000_Fail)(void *, const PyStringArg *) = nullptr;
    unsigned char (*m_call_000_Equals)(void *, void *) = nullptr;
    double (*m_getsa_Unit)() = nullptr;
    int (*m_btp_TypeOf)(void **) = nullptr;
    int (*m_btp_CastTo)(const VariantArg *, void **) = nullptr;
    int (*m_btp_ReInterpretObj)(void *, void **) = nullptr;
    int (*m_btp_CastAs)(void *, void **) = nullptr;
    unsigned char (*m_btp_IsAssignable)(void *) = nullptr;
};
static_assert(sizeof(PyHost_cs_54657C55_Square) ==
              sizeof(ClassHost) + 23 * sizeof(void *));

static const PyHostState &wrpPy_uafn_54657C55_Square_get_aggregate_host_state() {
    static const PyHostState state = aggregate_host_state(
        PyHost_cs_54657C55_Square::get_instance(),
        {wrpPy_bltp_D05DADC8_ShapeBase_is_not_valid,
         wrpPye_bltp_idisposable_is_not_valid});
    return state;
}
bool wrpPy_bltp_54657C55_Square_is_not_valid(std::string &message) {
    return is_not_valid(wrpPy_uafn_54657C55_Square_get_aggregate_host_state(), message);
}
static bool wrpPy_uafn_54657C55_Square_invalidate() {
    return raise_if_not_valid(wrpPy_uafn_54657C55_Square_get_aggregate_host_state());
}

int wrpPy_conv_py_to_clr_54657C55_Square(PyObject *value, void **out) {
    static constexpr ClassConversion conversion = {
        "Square",
        &wrpPy_tyds_54657C55_Square,
        wrpPy_uafn_54657C55_Square_invalidate,
        class_is_assignable<PyHost_cs_54657C55_Square>};
    return class_from_py(value, out, conversion);
}
PyObject *wrpPy_conv_clr_to_py_54657C55_Square(void *handle) {
    return fn_conv_clr_clsobj_to_py_clsobj(handle, &wrpPy_tyds_54657C55_Square);
}

static PyObject *wrpPy_tpsb_54657C55_Square_tp_new(PyTypeObject *type, PyObject *args,
                                                   PyObject *kwds) {
    return new_clr_object(wrpPy_uafn_54657C55_Square_get_aggregate_host_state(), type, args, kwds);
}

static int wrpPy_ctfn_54657C55_Square_002_ctor(void **handle, PyObject *args, PyObject *kwds,
                                               PyObject **failure) {
    static const char *const keywords[] = {"bytes", "name", nullptr};
    PyBytesArgBuilder bytes;
    PyStringArg name;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&O&", const_cast<char **>(keywords),
                                     fn_conv_py_bytes_to_clr_bytes, &bytes,
                                         fn_conv_py_string_to_clr_string, &name)) {
        keep_parse_failure(failure);
        return -1;
    }
    *handle = PyHost_cs_54657C55_Square::get_instance().ctor_002_Square(bytes.get_info(), &name);
    return PyErr_Occurred() ? -1 : 0;
}

static int wrpPy_tpsb_54657C55_Square_tp_init(PyObject *self, PyObject *args, PyObject *kwds) {
    void **const handle = &reinterpret_cast<PyClrObject *>(self)->handle;
    OverloadAttempts<3> attempts;
    {
        static const char *const keywords[] = {nullptr};
        if (PyArg_ParseTupleAndKeywords(args, kwds, "", const_cast<char **>(keywords))) {
            *handle = PyHost_cs_54657C55_Square::get_instance().ctor_000_Square();
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"side", nullptr};
        double side = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_float_to_clr_double, &side)) {
            *handle = PyHost_cs_54657C55_Square::get_instance().ctor_001_Square(side);
            return PyErr_Occurred() ? -1 : 0;
        }
        attempts.keep_failure(1);
    }
    const int made_2 =
        wrpPy_ctfn_54657C55_Square_002_ctor(
            handle, args, kwds, attempts.slot(2));
    if (attempts.parsed(2)) return made_2;
    return attempts.raise_from_init();
}

static PyObject *wrpPy_mgfn_54657C55_Square_000_describe(PyObject *self, PyObject *args,
                                                         PyObject *kwds) {
    OverloadAttempts<3> attempts;
    {
        static const char *const keywords[] = {"number", nullptr};
        std::int32_t number = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_long_to_clr_int32, &number)) {
            PyObject *const result =
                PyHost_cs_54657C55_Square::get_instance().call_000_Describe(handle_of(self),
                    number);
            if (PyErr_Occurred()) return nullptr;
            return result;
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"flag", nullptr};
        bool flag = false;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_bool_to_clr_bool, &flag)) {
            PyObject *const result =
                PyHost_cs_54657C55_Square::get_instance().call_001_Describe(handle_of(self), flag);
            if (PyErr_Occurred()) return nullptr;
            return result;
        }
        attempts.keep_failure(1);
    }
    PyObject *const result_2 =
        wrpPy_htgn_D05DADC8_ShapeBase_000_describe(self, args, kwds, attempts.slot(2));
    if (attempts.parsed(2)) return result_2;
    return attempts.raise();
}

static PyObject *wrpPy_mgfn_54657C55_Square_000_parse(PyObject *, PyObject *args, PyObject *kwds) {
    if (wrpPy_uafn_54657C55_Square_invalidate()) return nullptr;
    OverloadAttempts<2> attempts;
    {
        static const char *const keywords[] = {"text", nullptr};
        PyStringArg text;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_string_to_clr_string, &text)) {
            void *const result = PyHost_cs_54657C55_Square::get_instance().call_000_Parse(&text);
            if (PyErr_Occurred()) return nullptr;
            return wrpPy_conv_clr_to_py_54657C55_Square(result);
        }
        attempts.keep_failure(0);
    }
    {
        static const char *const keywords[] = {"side", nullptr};
        double side = 0;
        if (PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                        fn_conv_py_float_to_clr_double, &side)) {
            void *const result = PyHost_cs_54657C55_Square::get_instance().call_001_Parse(side);
            if (PyErr_Occurred()) return nullptr;
            return wrpPy_conv_clr_to_py_54657C55_Square(result);
        }
        attempts.keep_failure(1);
    }
    return attempts.raise();
}

static PyObject *wrpPy_mtfn_54657C55_Square_000_fail(PyObject *self, PyObject *args,
                                                     PyObject *kwds) {
    static const char *const keywords[] = {"message", nullptr};
    PyStringArg message;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                     fn_conv_py_string_to_clr_string, &message))
        return nullptr;
    PyHost_cs_54657C55_Square::get_instance().call_000_Fail(handle_of(self), &message);
    if (PyErr_Occurred()) return nullptr;
    return fn_py_return_none();
}

static PyObject *wrpPy_mtfn_54657C55_Square_000_equals(PyObject *self, PyObject *args,
                                                       PyObject *kwds) {
    static const char *const keywords[] = {"other", nullptr};
    void *other = nullptr;
    if (!PyArg_ParseTupleAndKeywords(args, kwds, "O&", const_cast<char **>(keywords),
                                     wrpPy_conv_py_to_clr_54657C55_Square, &other))
        return nullptr;
    const bool result =
        PyHost_cs_54657C55_Square::get_instance().call_000_Equals(handle_of(self), other);
    if (PyErr_Occurred()) return nullptr;
    return PyBool_FromLong(result);
}

static PyObject *wrpPy_pafn_54657C55_Square_000_get_side(PyObject *self, void *) {
    const double result = PyHost_cs_54657C55_Square::get_instance().get_Side(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return PyFloat_FromDouble(result);
}
static int wrpPy_pafn_54657C55_Square_000_set_side(PyObject *self, PyObject *value, void *) {
    double converted = 0;
    if (!fn_conv_py_float_to_clr_double(value, &converted)) return -1;
    PyHost_cs_54657C55_Square::get_instance().set_Side(handle_of(self), converted);
    return PyErr_Occurred() ? -1 : 0;
}

static PyObject *wrpPy_pafn_54657C55_Square_000_get_neighbour(PyObject *self, void *) {
    PyObjectOutArg result{};
    PyHost_cs_54657C55_Square::get_instance().get_Neighbour(handle_of(self), &result);
    if (PyErr_Occurred()) return nullptr;
    return wrpPy_conv_clr_to_py_D36F68CA_IShape(result);
}
static int wrpPy_pafn_54657C55_Square_000_set_neighbour(PyObject *self, PyObject *value, void *) {
    VariantArg converted;
    if (!wrpPy_conv_py_to_clr_D36F68CA_IShape(value, &converted)) return -1;
    PyHost_cs_54657C55_Square::get_instance().set_Neighbour(handle_of(self), &converted);
    return PyErr_Occurred() ? -1 : 0;
}

static PyObject *wrpPy_pafn_54657C55_Square_000_get_twin(PyObject *self, void *) {
    void *const result = PyHost_cs_54657C55_Square::get_instance().get_Twin(handle_of(self));
    if (PyErr_Occurred()) return nullptr;
    return wrpPy_conv_clr_to_py_54657C55_Square(result);
}
static int wrpPy_pafn_54657C55_Square_000_set_twin(PyObject *self, PyObject *value, void *) {
    void *converted = nullptr;
    if (!wrpPy_conv_py_to_clr_54657C55_Square(value, &converted)) return -1;
    PyHost_cs_54657C55_Square::get_instance().set_Twin(handle_of(self), converted);
    return PyErr_Occurred() ? -1 : 0;
}

static PyObject *wrpPy_spvg_54657C55_Square_000_get_DEFAULT(PyObject *, void *) {
    if (wrpPy_uafn_54657C55_Square_invalidate()) return nullptr;
    void *const result = PyHost_cs_54657C55_Square::get_instance().getsa_Default();
    if (PyErr_Occurred()) return nullptr;
    return wrpPy_conv_clr_to_py_54657C55_Square(result);
}
static PyGetSetDef wrpPy_sgsf_54657C55_Square_000_DEFAULT = {
    "DEFAULT", wrpPy_spvg_54657C55_Square_000_get_DEFAULT, nullptr, nullptr, nullptr};
static PyObject *wrpPy_spvg_54657C55_Square_000_set_default(PyObject *, PyObject *value) {
    if (wrpPy_uafn_54657C55_Square_invalidate()) return nullptr;
    void *converted = nullptr;
    if (!wrpPy_conv_py_to_clr_54657C55_Square(value, &converted)) return nullptr;
    PyHost_cs_54657C55_Square::get_instance().setsa_Default(converted);
    if (PyErr_Occurred()) return nullptr;
    return fn_py_return_none();
}

static PyObject *wrpPy_spvg_54657C55_Square_000_get_UNIT(PyObject *, void *) {
    if (wrpPy_uafn_54657C55_Square_invalidate()) return nullptr;
    const double result = PyHost_cs_54657C55_Square::get_instance().getsa_Unit();
    if (PyErr_Occurred()) return nullptr;
    return PyFloat_FromDouble(result);
}
static PyGetSetDef wrpPy_sgsf_54657C55_Square_000_UNIT = {
    "UNIT", wrpPy_spvg_54657C55_Square_000_get_UNIT, nullptr, nullptr, nullptr};

static constexpr CastOperations casts_54657C55_Square =
    class_casts<PyHost_cs_54657C55_Square, wrpPy_uafn_54657C55_Square_invalidate,
                wrpPy_conv_clr_to_py_54657C55_Square>();
static PyObject *wrpPy_blts_54657C55_Square_000__type_of(PyObject *, PyObject *) {
    return type_of(casts_54657C55_Square);
}
static PyObject *wrpPy_blts_54657C55_Square_000__cast_to(PyObject *, PyObject *object) {
    return cast_to(casts_54657C55_Square, object);
}
static PyObject *wrpPy_blts_54657C55_Square_000__cast_from(PyObject *, PyObject *) {
    return cast_from_nothing();
}
static PyObject *wrpPy_blts_54657C55_Square_000__reinterpret_obj(PyObject *, PyObject *object) {
    return reinterpret_obj(casts_54657C55_Square, object);
}
static PyObject *wrpPy_blts_54657C55_Square_000__cast_as(PyObject *, PyObject *object) {
    return cast_as(casts_54657C55_Square, object);
}
static PyObject *wrpPy_blts_54657C55_Square_000__is_assignable(PyObject *, PyObject *object) {
    return is_assignable(casts_54657C55_Square, object);
}

static PyMethodDef wrpPy_tymd_54657C55_Square[] = {
    {"set_default", wrpPy_spvg_54657C55_Square_000_set_default, METH_O | METH_STATIC, nullptr},
    {"describe", KELMOR_WITH_KEYWORDS(wrpPy_mgfn_54657C55_Square_000_describe),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"parse", KELMOR_WITH_KEYWORDS(wrpPy_mgfn_54657C55_Square_000_parse),
     METH_VARARGS | METH_KEYWORDS | METH_STATIC, nullptr},
    {"fail", KELMOR_WITH_KEYWORDS(wrpPy_mtfn_54657C55_Square_000_fail),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"equals", KELMOR_WITH_KEYWORDS(wrpPy_mtfn_54657C55_Square_000_equals),
     METH_VARARGS | METH_KEYWORDS, nullptr},
    {"get_type", wrapClrObject_get_type, METH_NOARGS, nullptr},
    {"_type_of", wrpPy_blts_54657C55_Square_000__type_of, METH_NOARGS | METH_STATIC, nullptr},
    {"_cast_to", wrpPy_blts_54657C55_Square_000__cast_to, METH_O | METH_STATIC, nullptr},
    {"_cast_from", wrpPy_blts_54657C55_Square_000__cast_from, METH_O, nullptr},
    {"_reinterpret_obj", wrpPy_blts_54657C55_Square_000__reinterpret_obj, METH_O | METH_STATIC,
     nullptr},
    {"_cast_as", wrpPy_blts_54657C55_Square_000__cast_as, METH_O | METH_STATIC, nullptr},
    {"_is_assignable", wrpPy_blts_54657C55_Square_000__is_assignable, METH_O | METH_STATIC,
     nullptr},
    {nullptr, nullptr, 0, nullptr},
};
static PyGetSetDef wrpPy_typd_54657C55_Square[] = {
    {"side", wrpPy_pafn_54657C55_Square_000_get_side, wrpPy_pafn_54657C55_Square_000_set_side,
     nullptr, nullptr},
    {"area", wrpPy_phfn_D36F68CA_IShape_000_get_area, nullptr, nullptr, nullptr},
    {"neighbour", wrpPy_pafn_54657C55_Square_000_get_neighbour,
     wrpPy_pafn_54657C55_Square_000_set_neighbour, nullptr, nullptr},
    {"twin", wrpPy_pafn_54657C55_Square_000_get_twin, wrpPy_pafn_54657C55_Square_000_set_twin,
     nullptr, nullptr},
    {nullptr, nullptr, nullptr, nullptr, nullptr},
};
constinit PyTypeObject wrpPy_tyds_54657C55_Square = class_wrapper_type({
    .name = "kelmor.harness.Square",
    .create = wrpPy_tpsb_54657C55_Square_tp_new,
    .init = wrpPy_tpsb_54657C55_Square_tp_init,
    .methods = wrpPy_tymd_54657C55_Square,
    .properties = wrpPy_typd_54657C55_Square,
    .base = &wrpPy_tyds_D05DADC8_ShapeBase,
});

// The members that a static table cannot hold.
int wrpPy_eypi_54657C55_Square() {
    static PyGetSetDef *const fields[] = {
        &wrpPy_sgsf_54657C55_Square_000_DEFAULT,
        &wrpPy_sgsf_54657C55_Square_000_UNIT,
    };
    if (install_static_fields(&wrpPy_tyds_54657C55_Square, fields) < 0) return -1;
    return 0;
}
