// The pending exception as one object.
#pragma once

#include "shell/ref.h"

// Takes the pending exception, normalised and with its traceback set; empty when there is none.
Ref take_raised() noexcept;

// Makes `exception` the pending one, in place of what may be pending.
void raise_again(Ref exception) noexcept;

// Sets the pending exception aside for the life of the object: what is raised meanwhile is lost.
class RaisedAside {
public:
    RaisedAside() noexcept { PyErr_Fetch(&type_, &value_, &traceback_); }
    ~RaisedAside() { PyErr_Restore(type_, value_, traceback_); }
    RaisedAside(const RaisedAside &) = delete;
    RaisedAside &operator=(const RaisedAside &) = delete;

private:
    PyObject *type_ = nullptr;
    PyObject *value_ = nullptr;
    PyObject *traceback_ = nullptr;
};
