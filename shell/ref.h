// The owner of one Python reference.
#pragma once

#include "shell/cpython.h"

#include <utility>

// A `PyObject *` parameter is borrowed; what is owned stands in a Ref. There is no third case. It
// is never static: it would outlive the interpreter.
class Ref { // sole owner of one Python reference; may be empty
public:
    Ref() noexcept = default;
    static Ref steal(PyObject *fresh) noexcept { return Ref(fresh); }
    static Ref borrow(PyObject *shared) noexcept {
        Py_XINCREF(shared);
        return Ref(shared);
    }
    Ref(Ref &&other) noexcept : object_(other.release()) {}
    // By value: the old object dies after object_ has changed, so a destructor that re-enters
    // Python never sees a half-assigned owner.
    Ref &operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() { Py_XDECREF(object_); }

    PyObject *get() const noexcept { return object_; }
    PyObject *release() noexcept { return std::exchange(object_, nullptr); }
    explicit operator bool() const noexcept { return object_ != nullptr; }

private:
    explicit Ref(PyObject *object) noexcept : object_(object) {}
    PyObject *object_ = nullptr;
};
