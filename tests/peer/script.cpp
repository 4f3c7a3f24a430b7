// The answers of the scripted peer to the five entries of the wrap library.
#include "peer/script.h"

#include "peer/journal.h"
#include "peer/stub.h"

#include <cstring>
#include <deque>
#include <dlfcn.h>
#include <map>
#include <string>

namespace {

// Whether a name fits; an absent one fits all.
struct Pattern {
    explicit Pattern(const char *name) : any(!name), name(name ? name : "") {}
    bool fits(const std::string &text) const { return any || name == text; }

    bool any;
    std::string name;
};

struct Rule {
    Pattern assembly, type, method;
    int code;       // what the entry answers
    void *function; // with code 0: what it gives, or null for a stub

    bool fits(const std::string &in, const std::string &of, const std::string &called) const {
        return assembly.fits(in) && type.fits(of) && method.fits(called);
    }
};

struct Script {
    std::map<std::string, int> answers;
    std::deque<Rule> rules;
    std::deque<Stub> stubs; // a deque: the machine code holds their addresses
    bool running = false;
};

Script &script() {
    static Script &only = *new Script;
    return only;
}

int answer_of(const char *entry, int usual) {
    const auto fixed = script().answers.find(entry);
    return fixed == script().answers.end() ? usual : fixed->second;
}

Stub *find_stub(const char *assembly, const std::string &type, const std::string &method) {
    for (Stub &stub : script().stubs) {
        const bool fits = assembly ? stub.assembly == assembly : stub.any_assembly;
        if (fits && stub.type == type && stub.method == method) return &stub;
    }
    return nullptr;
}

void *delegate_for(const char *assembly, const char *type, const char *method) {
    Stub *stub = find_stub(assembly, type, method);
    if (!stub) stub = find_stub(nullptr, type, method);
    if (!stub) stub = peer_stub(assembly, type, method);
    return stub->function;
}

// The file name of the library that an address lies in, or null.
const char *library_at(const void *address) {
    Dl_info info;
    if (!dladdr(address, &info) || !info.dli_fname) return nullptr;
    const char *const slash = std::strrchr(info.dli_fname, '/');
    return slash ? slash + 1 : info.dli_fname;
}

} // namespace

void peer_answer(const char *entry, int answer) { script().answers[entry] = answer; }

void peer_refuse(const char *assembly, const char *type, const char *method, int code) {
    script().rules.push_front({Pattern(assembly), Pattern(type), Pattern(method), code, nullptr});
}

void peer_provide(const char *assembly, const char *type, const char *method, void *function) {
    script().rules.push_front({Pattern(assembly), Pattern(type), Pattern(method), 0, function});
}

void peer_allow(const char *assembly, const char *type, const char *method) {
    peer_provide(assembly, type, method, nullptr);
}

Stub *peer_stub(const char *assembly, const char *type, const char *method) {
    if (Stub *stub = find_stub(assembly, type, method)) return stub;
    return &script().stubs.emplace_back(assembly, type, method);
}

int peer_on_load(const char *libcoreclr_path) {
    const int answer = answer_of("load", 1);
    JournalLine("coreclr_wrap_load").text("path", libcoreclr_path).number("answer", answer).write();
    return answer;
}

int peer_on_initialize(const char *exe_path, const char *domain_name, int property_count,
                       const char **keys, const char **values, const void *caller) {
    const int answer = answer_of("initialize", 0);
    if (answer == 0) script().running = true;
    JournalLine("coreclr_wrap_initialize")
        .text("exe_path", exe_path)
        .text("domain_name", domain_name)
        .number("property_count", property_count)
        .texts("keys", keys, property_count)
        .texts("values", values, property_count)
        .text("caller", library_at(caller))
        .number("answer", answer)
        .write();
    return answer;
}

int peer_on_create_delegate(const char *assembly, const char *type, const char *method,
                            void **result) {
    int code = 0;
    void *function = nullptr;
    for (const Rule &rule : script().rules) {
        if (!rule.fits(assembly, type, method)) continue;
        code = rule.code;
        function = rule.function;
        break;
    }
    if (code == 0) *result = function ? function : delegate_for(assembly, type, method);
    JournalLine("coreclr_wrap_create_delegate")
        .text("assembly", assembly)
        .text("type", type)
        .text("method", method)
        .number("slot", reinterpret_cast<std::intptr_t>(result))
        .number("answer", code)
        .write();
    return code;
}

int peer_on_shutdown(const void *caller) {
    const int answer = answer_of("shutdown", 0);
    script().running = false;
    JournalLine("coreclr_wrap_shutdown")
        .text("caller", library_at(caller))
        .number("answer", answer)
        .write();
    return answer;
}

int peer_on_is_domain_initialized() {
    const int answer = answer_of("is_domain_initialized", script().running);
    JournalLine("coreclr_wrap_is_domain_initialized").number("answer", answer).write();
    return answer;
}
