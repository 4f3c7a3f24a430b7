// The base of every host class: the record in front of the delegate slots, and their binding.
//
// A host is built at its first use and never changes. A missing entry point makes it not valid and
// leaves the slots from there on null; the classes concerned refuse with its message, the rest of
// the module works on. A generated host declares its slots as its only members, in order:
//
//     class PyHost_cs_D91BAC5C_XmpHeaderPi : public ClassHost {
//     public:
//         static PyHost_cs_D91BAC5C_XmpHeaderPi &get_instance() {
//             static PyHost_cs_D91BAC5C_XmpHeaderPi host;
//             return host;
//         }
//         void *ctor_000_XmpHeaderPi() const { return m_ctor_000_XmpHeaderPi(); }
//         int btp_TypeOf(void **out) const { return m_btp_TypeOf(out); }
//     private:
//         PyHost_cs_D91BAC5C_XmpHeaderPi() {
//             static const char *const methods[] = {"ctor_000_XmpHeaderPi", "btp_TypeOf"};
//             bind("WrpNs_Kelmor.WrpNs_PSD.WrpNs_Xmp.WrpCs_XmpHeade_B968B5B1", methods,
//                  reinterpret_cast<void **>(&m_ctor_000_XmpHeaderPi));
//         }
//         void *(*m_ctor_000_XmpHeaderPi)() = nullptr;
//         int (*m_btp_TypeOf)(void **out) = nullptr;
//     };
//
// Fork: in a child process the runtime is gone. There every slot of every host is a function that
// raises RuntimeError and returns all ones, so a call costs nothing more in the parent. All ones is
// a failure or is not looked at, because callers test PyErr_Occurred before they use a result.
#pragma once

#include <cstddef>
#include <string>

class HostEnvironment;

class ClassHost {
public:
    ClassHost(const ClassHost &) = delete;
    ClassHost &operator=(const ClassHost &) = delete;

    bool is_not_valid() const { return m_invalid; }
    const std::string &error_msg() const { return m_error_msg; }

    // True when the delegate was bound; else the message and the flag are set.
    bool set_method_ptr(const HostEnvironment &host, const char *type, const char *method,
                        void **slot);

protected:
    ClassHost();

    // Binds all names in order into the slots that start at `slots`, up to the first failure.
    template <std::size_t Count>
    void bind(const char *type, const char *const (&methods)[Count], void **slots) {
        bind(type, methods, Count, slots);
    }
    void bind(const char *type, const char *const *methods, std::size_t count, void **slots);

private:
    const char *m_assembly_name; // not owned
    bool m_invalid = false;
    std::string m_error_msg; // empty unless the flag is set
};

// For calls that reach the managed side by another way than a host class. True: in a forked child,
// RuntimeError is set.
bool refuse_in_forked_child();
