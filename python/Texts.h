#pragma once

#include <pybind11/pybind11.h>

#include <Tellurion/BString.h>

#include <string>

namespace pybind11::detail {

/// str and BString. Bytes that are no UTF-8 are the same lone surrogates on both sides.
template <>
struct type_caster<Tellurion::BString> {
    PYBIND11_TYPE_CASTER(Tellurion::BString, const_name("str"));

    bool load(handle source, bool) {
        if (!PyUnicode_Check(source.ptr())) return false;
        const auto bytes =
            reinterpret_steal<object>(PyUnicode_AsEncodedString(source.ptr(), "utf-8", "surrogateescape"));
        if (!bytes) throw error_already_set();
        value = Tellurion::BString(bytes.cast<std::string>());
        return true;
    }

    static handle cast(const Tellurion::BString& text, return_value_policy, handle) {
        const std::string bytes = text.StdStr();
        return PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
    }
};

}  // namespace pybind11::detail
