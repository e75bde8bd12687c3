#pragma once

#include "Texts.h"

#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

/// The boxes under the numbers by which the library knows them.
enum class Box : int { Art = 0, Trim = 2, Bleed = 3, Crop = 4, Media = 5 };

enum class Enumeration { Type, Fit, Box };

/// The number of a member, or of its text in any case of letters; a ValueError for other texts.
int NumberOf(Enumeration enumeration, pybind11::handle word);
/// The member of a number; None where there is none.
pybind11::object MemberOf(Enumeration enumeration, int number);

namespace pybind11::detail {

/// The library's numbers are members of enumerations in Python, which are str.
template <class Value, Enumeration kEnumeration>
struct word_caster {
    PYBIND11_TYPE_CASTER(Value, const_name("str"));

    bool load(handle source, bool) {
        if (!PyUnicode_Check(source.ptr())) return false;
        value = static_cast<Value>(NumberOf(kEnumeration, source));
        return true;
    }

    static handle cast(Value number, return_value_policy, handle) {
        return MemberOf(kEnumeration, static_cast<int>(number)).release();
    }
};

template <>
struct type_caster<Tellurion::EReferenceType> : word_caster<Tellurion::EReferenceType, Enumeration::Type> {};
template <>
struct type_caster<Tellurion::EMathTransformType>
    : word_caster<Tellurion::EMathTransformType, Enumeration::Fit> {};
template <>
struct type_caster<Box> : word_caster<Box, Enumeration::Box> {};

}  // namespace pybind11::detail
