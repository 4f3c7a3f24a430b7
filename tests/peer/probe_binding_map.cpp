// What tests reach of the registry's own insides: bucket counts, load factors, its mutexes.
#include "peer/probe.h"

#include "binding/types_map.h"

#include <atomic>
#include <thread>
#include <vector>

// A registry of its own, apart from that of the process.
struct TypesMapTest {
    PyWrpTypesMap map;

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

const ProbeRow rows[] = {PROBE_ROW(map_measure), PROBE_ROW(map_from_threads),
                         PROBE_ROW(map_mutexes_are_apart)};
const ProbeTable table(rows);

} // namespace
