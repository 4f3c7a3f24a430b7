// The registry of Python types by managed name and by type id.
#include "binding/types_map.h"

#include "host/exchange_host.h"

#include <cstdlib>

namespace {

constexpr std::size_t bucket_hint = 10;

using IdMap = std::unordered_map<std::int64_t, PyTypeObject *>;

void put(std::mutex &mutex, IdMap &map, std::int64_t id, PyTypeObject *type) {
    const std::lock_guard lock(mutex);
    map.insert_or_assign(id, type);
}

template <class Map, class Key> bool look_up(const Map &map, const Key &key, PyTypeObject *&type) {
    const auto found = map.find(key);
    if (found == map.end()) return false;
    type = found->second;
    return true;
}

bool look_up_locked(std::mutex &mutex, const IdMap &map, std::int64_t id, PyTypeObject *&type) {
    const std::lock_guard lock(mutex);
    return look_up(map, id, type);
}

// Slow, because it crosses: each type id pays for it once. Null for an unknown name. The block goes
// without its destructor, so the characters stay; that is the contract of this one call.
PyTypeObject *find_by_run_time_name(void *handle) {
    PyTypeObject *type = nullptr;
    std::u16string *const name = ExchangeHost::get_instance()->get_type_name(handle);
    if (name == nullptr) return nullptr;
    PyWrpTypesMap::get_instance()->find(*name, type);
    std::free(name);
    return type;
}

} // namespace

PyWrpTypesMap::PyWrpTypesMap()
    : m_names(bucket_hint), m_ids(bucket_hint), m_weak_ids(bucket_hint) {}

PyWrpTypesMap *PyWrpTypesMap::get_instance() {
    static PyWrpTypesMap map;
    return &map;
}

void PyWrpTypesMap::add(const std::u16string &name, PyTypeObject *type) {
    m_names.insert_or_assign(name, type);
}

bool PyWrpTypesMap::find(const std::u16string &name, PyTypeObject *&type) const {
    return look_up(m_names, name, type);
}

void PyWrpTypesMap::add(std::int64_t id, PyTypeObject *type) { put(m_ids_mutex, m_ids, id, type); }

bool PyWrpTypesMap::find(std::int64_t id, PyTypeObject *&type) {
    return look_up_locked(m_ids_mutex, m_ids, id, type);
}

void PyWrpTypesMap::add_weak(std::int64_t id, PyTypeObject *type) {
    put(m_weak_ids_mutex, m_weak_ids, id, type);
}

bool PyWrpTypesMap::find_weak(std::int64_t id, PyTypeObject *&type) {
    return look_up_locked(m_weak_ids_mutex, m_weak_ids, id, type);
}

void PyWrpTypesMap::reserve(int count) {
    m_names.reserve(static_cast<std::size_t>(count));
    const std::lock_guard lock(m_ids_mutex);
    m_ids.reserve(static_cast<std::size_t>(count));
}

PyTypeObject *get_py_type_object_by_obj(void *handle, std::int64_t id) {
    PyWrpTypesMap *const map = PyWrpTypesMap::get_instance();
    PyTypeObject *type = nullptr;
    if (map->find(id, type)) return type;
    type = find_by_run_time_name(handle);
    if (type != nullptr) map->add(id, type);
    return type;
}

PyTypeObject *resolve_weakly(void *handle, std::int64_t id) {
    PyWrpTypesMap *const map = PyWrpTypesMap::get_instance();
    PyTypeObject *type = nullptr;
    if (map->find_weak(id, type)) return type;
    type = find_by_run_time_name(handle);
    map->add_weak(id, type);
    return type;
}
