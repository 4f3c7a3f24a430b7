// What tests reach of the registry's own insides: its fields, bucket counts, load factors, mutexes.
#include "peer/probe.h"

#include "binding/types_map.h"

#include <atomic>
#include <new>
#include <sys/resource.h>
#include <thread>
#include <type_traits>
#include <vector>

// A registry of its own, apart from that of the process.
struct TypesMapTest {
    PyWrpTypesMap map;

    static_assert(
        std::is_same_v<decltype(map.m_names), std::unordered_map<std::u16string, PyTypeObject *>>);
    static_assert(
        std::is_same_v<decltype(map.m_ids), std::unordered_map<std::int64_t, PyTypeObject *>>);
    static_assert(std::is_same_v<decltype(map.m_weak_ids), decltype(map.m_ids)>);
    static_assert(std::is_same_v<decltype(map.m_ids_mutex), std::mutex>);
    static_assert(std::is_same_v<decltype(map.m_weak_ids_mutex), std::mutex>);

    // Offsets of the three maps and of the two mutexes, then the size of all.
    void places(std::int64_t *out) const {
        const auto *const start = reinterpret_cast<const char *>(&map);
        const void *const fields[] = {&map.m_names, &map.m_ids, &map.m_weak_ids, &map.m_ids_mutex,
                                      &map.m_weak_ids_mutex};
        for (const void *field : fields) *out++ = static_cast<const char *>(field) - start;
        *out = sizeof map;
    }

    // Puts ids in until there is no memory for another node. What came of it, one bit each: an
    // std::bad_alloc, a mutex that is free, the first id still there.
    int use_up_memory(bool weak) {
        constexpr std::int64_t most = 1 << 22;
        (weak ? map.m_weak_ids : map.m_ids).reserve(most);
        rlimit usual;
        getrlimit(RLIMIT_AS, &usual);
        const rlimit nothing = {0, usual.rlim_max};
        int seen = 0;
        setrlimit(RLIMIT_AS, &nothing);
        try {
            for (std::int64_t id = 0; id < most; ++id)
                weak ? map.add_weak(id, nullptr) : map.add(id, nullptr);
        } catch (const std::bad_alloc &) {
            seen = 1;
        }
        setrlimit(RLIMIT_AS, &usual);
        std::mutex &mutex = weak ? map.m_weak_ids_mutex : map.m_ids_mutex;
        if (!mutex.try_lock()) return seen;
        mutex.unlock();
        PyTypeObject *type = nullptr;
        return seen | 2 | ((weak ? map.find_weak(0, type) : map.find(0, type)) ? 4 : 0);
    }

    void fill(int count) {
        for (int i = 0; i < count; ++i) {
            map.add(std::u16string(static_cast<std::size_t>(i), u'x'), nullptr);
            map.add(std::int64_t{i}, nullptr);
            map.add_weak(std::int64_t{i}, nullptr);
        }
    }

    // Buckets of the three maps, then their sizes, then their greatest load factors in thousandths.
    void measure(std::int64_t *out) const {
        out[0] = static_cast<std::int64_t>(map.m_names.bucket_count());
        out[1] = static_cast<std::int64_t>(map.m_ids.bucket_count());
        out[2] = static_cast<std::int64_t>(map.m_weak_ids.bucket_count());
        out[3] = static_cast<std::int64_t>(map.m_names.size());
        out[4] = static_cast<std::int64_t>(map.m_ids.size());
        out[5] = static_cast<std::int64_t>(map.m_weak_ids.size());
        out[6] = static_cast<std::int64_t>(map.m_names.max_load_factor() * 1000);
        out[7] = static_cast<std::int64_t>(map.m_ids.max_load_factor() * 1000);
        out[8] = static_cast<std::int64_t>(map.m_weak_ids.max_load_factor() * 1000);
    }

    // While one thread holds the mutex of one map, the other map must still answer.
    bool other_map_answers(bool hold_ids) {
        std::mutex &held = hold_ids ? map.m_ids_mutex : map.m_weak_ids_mutex;
        const std::lock_guard lock(held);
        PyTypeObject *type = nullptr;
        std::thread([&] { hold_ids ? map.add_weak(1, nullptr) : map.add(1, nullptr); }).join();
        return hold_ids ? map.find_weak(1, type) : map.find(1, type);
    }
};

namespace {

void map_measure(int before, int reserved, std::int64_t *out) {
    TypesMapTest test;
    test.fill(before);
    if (reserved >= 0) test.map.reserve(reserved);
    test.measure(out);
}

// Each thread puts its own ids into both maps and looks each up; gives how many were lost.
int map_from_threads(int threads, int ids) {
    TypesMapTest test;
    std::atomic<int> lost = 0;
    std::vector<std::thread> all;
    for (int t = 0; t < threads; ++t)
        all.emplace_back([&, t] {
            for (int i = 0; i < ids; ++i) {
                const std::int64_t id = std::int64_t{i} * threads + t;
                PyTypeObject *type = nullptr;
                test.map.add(id, nullptr);
                test.map.add_weak(id, nullptr);
                lost += !test.map.find(id, type) + !test.map.find_weak(id, type);
            }
        });
    for (std::thread &thread : all) thread.join();
    std::int64_t seen[9];
    test.measure(seen);
    return lost + 2 * threads * ids - static_cast<int>(seen[4] + seen[5]);
}

int map_mutexes_are_apart() {
    TypesMapTest test;
    return test.other_map_answers(true) && test.other_map_answers(false);
}

void map_places(std::int64_t *out) { TypesMapTest().places(out); }

// -1: the sanitizer's allocator would end the process.
int map_without_memory(int weak) {
#ifdef __SANITIZE_ADDRESS__
    (void)weak;
    return -1;
#else
    return TypesMapTest().use_up_memory(weak != 0);
#endif
}

const ProbeRow rows[] = {PROBE_ROW(map_measure), PROBE_ROW(map_from_threads),
                         PROBE_ROW(map_mutexes_are_apart), PROBE_ROW(map_places),
                         PROBE_ROW(map_without_memory)};
const ProbeTable table(rows);

} // namespace
