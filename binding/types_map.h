// Which Python type shows a managed type: by full managed name, and by run-time type id.
//
// Filled by the module initialisers, read by the results. It borrows the types, which live as long
// as the process, so nothing is ever removed. The name map takes no lock: it is complete before
// the first managed object can come back. The two id maps are caches apart from each other: the
// strong one holds ids that resolved, the weak one also ids known to have no exposed type.
#pragma once

#include "shell/cpython.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>

class PyWrpTypesMap {
public:
    static PyWrpTypesMap *get_instance();

    void add(const std::u16string &name, PyTypeObject *type);
    bool find(const std::u16string &name, PyTypeObject *&type) const;

    void add(std::int64_t id, PyTypeObject *type);
    bool find(std::int64_t id, PyTypeObject *&type);

    void add_weak(std::int64_t id, PyTypeObject *type); // null: use the declared type
    bool find_weak(std::int64_t id, PyTypeObject *&type);

    // Sizes the name map and the id map, never the weak one.
    void reserve(int count);

private:
    friend struct TypesMapTest;

    using IdMap = std::unordered_map<std::int64_t, PyTypeObject *>;

    PyWrpTypesMap();

    std::unordered_map<std::u16string, PyTypeObject *> m_names;
    IdMap m_ids;
    IdMap m_weak_ids;
    std::mutex m_ids_mutex;
    std::mutex m_weak_ids_mutex;
};

// Through the strong cache: null for a type that is not exposed, with no Python error.
PyTypeObject *get_py_type_object_by_obj(void *handle, std::int64_t id);

// Through the weak cache: null for a type that is not exposed.
PyTypeObject *resolve_weakly(void *handle, std::int64_t id);
