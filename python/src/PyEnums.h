// The library's enumerations as Python IntEnum classes. A caster converts
// between each C++ enumeration and its Python class, so that every binding
// takes and returns the Python members (and accepts their plain numbers).
#pragma once

#include <pybind11/pybind11.h>

#include "KavroEnums.h"
#include "KavroErrors.h"

namespace kavro_python {

// The Python class of enumeration E, once bindEnums has made it; kept for
// the life of the process.
template <typename E>
struct EnumClass {
    static inline PyObject* type = nullptr;
};

}  // namespace kavro_python

namespace pybind11 {
namespace detail {

template <typename E>
struct KavroEnumCaster {
    PYBIND11_TYPE_CASTER(E, const_name("IntEnum"));

    bool load(handle source, bool convert) {
        PyObject* type = kavro_python::EnumClass<E>::type;
        if (type == nullptr || !PyLong_Check(source.ptr())) return false;
        const int member = PyObject_IsInstance(source.ptr(), type);
        if (member < 0) {
            PyErr_Clear();
            return false;
        }
        if (member == 0) {
            // A plain number must name a member.
            if (!convert) return false;
            PyObject* found = PyObject_CallOneArg(type, source.ptr());
            if (found == nullptr) {
                PyErr_Clear();
                return false;
            }
            Py_DECREF(found);
        }
        const long long number = PyLong_AsLongLong(source.ptr());
        if (number == -1 && PyErr_Occurred()) {
            PyErr_Clear();
            return false;
        }
        value = static_cast<E>(number);
        return true;
    }

    static handle cast(E source, return_value_policy, handle) {
        const long long number = static_cast<long long>(source);
        PyObject* type = kavro_python::EnumClass<E>::type;
        if (type != nullptr) {
            PyObject* member = PyObject_CallFunction(type, "L", number);
            if (member != nullptr) return member;
            PyErr_Clear();  // a value no member names stays a number
        }
        return PyLong_FromLongLong(number);
    }
};

#define KAVRO_ENUM_BEGIN(E) \
    template <>             \
    struct type_caster<KavroLibrary::E> : KavroEnumCaster<KavroLibrary::E> {};
#define KAVRO_ENUM_VALUE(E, member)
#define KAVRO_ENUM_END(E)
#include "KavroEnumTable.inc"
#undef KAVRO_ENUM_BEGIN
#undef KAVRO_ENUM_VALUE
#undef KAVRO_ENUM_END

}  // namespace detail
}  // namespace pybind11
