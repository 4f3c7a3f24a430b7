// How an element of a managed collection crosses, one policy per form.
//
// `In` is what the element's converter writes, also for the reverse read of a Python list; `Pass`
// is how the collection delegates take it: scalars and handles by value, records by pointer; `Out`
// is what SqGetItem, Pop and MoveNext write and SqGetItemNoCheck returns. `to_py` takes an `Out`
// over and gives a new reference, or null: of a Python object that the managed side built, null
// stands for a failure. On the managed side:
//
//     form        In, Pass                            Out
//     scalar      T                                   T
//     string      PyStringArg *                       PyObject * (a str)
//     class       void * handle                       void * handle
//     struct      VariantArg * of kind 1              void * handle
//     interface   VariantArg * of kind 0 or 1         PyObjectOutArg
//     array       VariantArg * of collection kind     PyCollectionArg
//     variant     VariantArg * of general kind        PyObject *
#pragma once

#include "binding/variant.h"
#include "marshal/records.h"
#include "shell/cpython.h"

// Numbers and enumerations; the converters are those of scalars.h or of the enumeration.
template <class T, auto FromPy, auto ToPy> struct ScalarElement {
    using In = T;
    using Pass = T;
    using Out = T;
    static int from_py(PyObject *value, In *out) { return FromPy(value, out); }
    static Pass pass(const In &value) { return value; }
    static PyObject *to_py(const Out &value) { return ToPy(value); }
};

template <class Record, auto FromPy> struct RecordElement {
    using In = Record;
    using Pass = const Record *;
    static int from_py(PyObject *value, In *out) { return FromPy(value, out); }
    static Pass pass(const In &value) { return &value; }
};

// The managed side has built the Python object.
template <class Record, auto FromPy> struct BuiltElement : RecordElement<Record, FromPy> {
    using Out = PyObject *;
    static PyObject *to_py(const Out &value) { return value; }
};

template <auto FromPy> using StringElement = BuiltElement<PyStringArg, FromPy>;
using VariantElement = BuiltElement<VariantArg, fn_conv_py_variant_to_clr_variant>;

template <auto FromPy, auto ToPy> struct ClassElement : ScalarElement<void *, FromPy, ToPy> {};

template <auto FromPy, auto ToPy> struct StructElement : RecordElement<VariantArg, FromPy> {
    using Out = void *;
    static PyObject *to_py(const Out &value) { return ToPy(value); }
};

template <auto FromPy, auto ToPy> struct InterfaceElement : RecordElement<VariantArg, FromPy> {
    using Out = PyObjectOutArg;
    static PyObject *to_py(const Out &value) { return ToPy(value); }
};

// An array within an array.
template <auto FromPy, auto ToPy> struct ArrayElement : RecordElement<VariantArg, FromPy> {
    using Out = PyCollectionArg;
    static PyObject *to_py(const Out &value) { return ToPy(value); }
};

// Types of a sibling module: the converters are pointers that the import has filled.
template <auto &FromPy, auto &ToPy> struct SiblingClassElement {
    using In = void *;
    using Pass = void *;
    using Out = void *;
    static int from_py(PyObject *value, In *out) { return FromPy(value, out); }
    static Pass pass(const In &value) { return value; }
    static PyObject *to_py(const Out &value) { return ToPy(value); }
};

template <auto &FromPy, auto &ToPy> struct SiblingStructElement {
    using In = VariantArg;
    using Pass = const VariantArg *;
    using Out = void *;
    static int from_py(PyObject *value, In *out) { return FromPy(value, out); }
    static Pass pass(const In &value) { return &value; }
    static PyObject *to_py(const Out &value) { return ToPy(&value); }
};
