// ---- kelmor.harness.WidthUInt64

PyTypeObject *wrpPy_tyds_0728F04D_WidthUInt64;

// Entry points of Kelmor.Harness.WidthUInt64, in slot order.
class PyHost_cs_0728F04D_WidthUInt64 : public ClassHost {
public:
    static PyHost_cs_0728F04D_WidthUInt64 &get_instance() {
        static PyHost_cs_0728F04D_WidthUInt64 host;
        return host;
    }
    int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
    int btp_CastTo(const VariantArg *value, std::uint64_t *out) const {
        return m_btp_CastTo(value, out);
    }
    int btp_ReInterpretObj(void *value, std::uint64_t *out) const {
        return m_btp_ReInterpretObj(value, out);
    }
    int btp_AsUniEnum(std::uint64_t value, void **out) const { return m_btp_AsUniEnum(value, out); }
    int btp_CastAs(void *value, std::uint64_t *out) const { return m_btp_CastAs(value, out); }
    bool btp_IsAssignable(void *value) const { return m_btp_IsAssignable(value); }
    int btp_GetType(std::uint64_t value, void **out) const { return m_btp_GetType(value, out); }

private:
    PyHost_cs_0728F04D_WidthUInt64() {
        static const char *const methods[] = {
            "btp_TypeOf",
            "btp_CastTo",
            "btp_ReInterpretObj",
            "btp_AsUniEnum",
            "btp_CastAs",
            "btp_IsAssignable",
            "btp_GetType",
        };
        bind("WrpNs_Kelmor.WrpNs_Harness.WrpCs_WidthUIn_6212145B", methods,
             reinterpret_cast<void **>(&m_btp_TypeOf));
    }
    int (*m_btp_TypeOf)(void **) = nullptr;
    int (*m_btp_CastTo)(const VariantArg *, std::uint64_t *) = nullptr;
    int (*m_btp_ReInterpretObj)(void *, std::uint64_t *) = nullptr;
    int (*m_btp_AsUniEnum)(std::uint64_t, void **) = nullptr;
    int (*m_btp_CastAs)(void *, std::uint64_t *) = nullptr;
    unsigned char (*m_btp_IsAssignable)(void *) = nullptr;
    int (*m_btp_GetType)(std::uint64_t, void **) = nullptr;
};
static_assert(sizeof(PyHost_cs_0728F04D_WidthUInt64) ==
              sizeof(ClassHost) + 7 * sizeof(void *));

static const PyHostState &wrpPy_uafn_0728F04D_WidthUInt64_get_aggregate_host_state() {
    static const PyHostState state =
        aggregate_host_state(PyHost_cs_0728F04D_WidthUInt64::get_instance());
    return state;
}
static bool wrpPy_uafn_0728F04D_WidthUInt64_invalidate() {
    return raise_if_not_valid(wrpPy_uafn_0728F04D_WidthUInt64_get_aggregate_host_state());
}

int wrpPy_conv_py_to_clr_0728F04D_WidthUInt64(PyObject *value, std::uint64_t *out) {
    return enum_from_py(value, out, wrpPy_tyds_0728F04D_WidthUInt64, "WidthUInt64");
}
PyObject *wrpPy_conv_clr_to_py_0728F04D_WidthUInt64(std::uint64_t value) {
    return enum_to_py(value, wrpPy_tyds_0728F04D_WidthUInt64);
}

static constexpr CastOperations casts_0728F04D_WidthUInt64 =
    enum_casts<PyHost_cs_0728F04D_WidthUInt64, wrpPy_uafn_0728F04D_WidthUInt64_invalidate,
               wrpPy_conv_clr_to_py_0728F04D_WidthUInt64>();
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__type_of(PyObject *, PyObject *) {
    return type_of(casts_0728F04D_WidthUInt64);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__cast_to(PyObject *, PyObject *object) {
    return cast_to(casts_0728F04D_WidthUInt64, object);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__cast_from(PyObject *, PyObject *) {
    return cast_from_nothing();
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__reinterpret_obj(PyObject *,
    PyObject *object) {
    return reinterpret_obj(casts_0728F04D_WidthUInt64, object);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__cast_as(PyObject *, PyObject *object) {
    return cast_as(casts_0728F04D_WidthUInt64, object);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__is_assignable(PyObject *, PyObject *object) {
    return is_assignable(casts_0728F04D_WidthUInt64, object);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000__as_uni_enum(PyObject *self, PyObject *) {
    return enum_as_uni_enum<PyHost_cs_0728F04D_WidthUInt64, std::uint64_t>(
        self, wrpPy_uafn_0728F04D_WidthUInt64_invalidate);
}
static PyObject *wrpPy_blts_0728F04D_WidthUInt64_000_get_type(PyObject *self, PyObject *) {
    return enum_get_type<PyHost_cs_0728F04D_WidthUInt64, std::uint64_t>(
        self, wrpPy_uafn_0728F04D_WidthUInt64_invalidate);
}
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__type_of = {
    "_type_of", wrpPy_blts_0728F04D_WidthUInt64_000__type_of, METH_NOARGS | METH_STATIC, nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__cast_to = {
    "_cast_to", wrpPy_blts_0728F04D_WidthUInt64_000__cast_to, METH_O | METH_STATIC, nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__cast_from = {
    "_cast_from", wrpPy_blts_0728F04D_WidthUInt64_000__cast_from, METH_O, nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__reinterpret_obj = {
    "_reinterpret_obj", wrpPy_blts_0728F04D_WidthUInt64_000__reinterpret_obj, METH_O | METH_STATIC,
        nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__as_uni_enum = {
    "_as_uni_enum", wrpPy_blts_0728F04D_WidthUInt64_000__as_uni_enum, METH_NOARGS, nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__cast_as = {
    "_cast_as", wrpPy_blts_0728F04D_WidthUInt64_000__cast_as, METH_O | METH_STATIC, nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000__is_assignable = {
    "_is_assignable", wrpPy_blts_0728F04D_WidthUInt64_000__is_assignable, METH_O | METH_STATIC,
        nullptr};
static PyMethodDef wrpPy_amml_0728F04D_WidthUInt64_000_get_type = {
    "get_type", wrpPy_blts_0728F04D_WidthUInt64_000_get_type, METH_NOARGS, nullptr};

PyObject *wrpPy_eypi_0728F04D_WidthUInt64() {
    static constexpr EnumMember members[] = {
        {"NONE", 0},
        {"FIRST", 1},
        {"SECOND", 2},
        {"HIGHEST", INT64_MIN},
    };
    static constexpr EnumDescription description = {
        "WidthUInt64",
        EnumBase::int_flag,
        EnumNumbers::unsigned_numbers,
        members,
        4,
        {&wrpPy_amml_0728F04D_WidthUInt64_000__type_of,
         &wrpPy_amml_0728F04D_WidthUInt64_000__cast_to,
         &wrpPy_amml_0728F04D_WidthUInt64_000__cast_from,
         &wrpPy_amml_0728F04D_WidthUInt64_000__reinterpret_obj,
         &wrpPy_amml_0728F04D_WidthUInt64_000__as_uni_enum,
         &wrpPy_amml_0728F04D_WidthUInt64_000__cast_as,
         &wrpPy_amml_0728F04D_WidthUInt64_000__is_assignable,
         &wrpPy_amml_0728F04D_WidthUInt64_000_get_type}};
    return create_enum(description, &wrpPy_tyds_0728F04D_WidthUInt64);
}
