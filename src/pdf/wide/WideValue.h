#pragma once

#include "import/ReadingBudget.h"

#include <podofo/podofo.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace VellumLib {

/// A value of a document with every reference followed, also those of references, or
/// nothing. Every question has an answer for every value, "nothing" among them.
class WideValue {
public:
    WideValue() = default;
    WideValue(PoDoFo::PdfVecObjects& objects, PoDoFo::PdfObject* object);

    explicit operator bool() const { return object_ != nullptr; }
    bool IsDictionary() const { return object_ && object_->IsDictionary(); }
    bool IsArray() const { return object_ && object_->IsArray(); }
    bool IsName() const { return object_ && object_->IsName(); }
    bool IsString() const { return object_ && (object_->IsString() || object_->IsHexString()); }
    bool IsNumber() const { return object_ && (object_->IsNumber() || object_->IsReal()); }
    /// A whole number, and not a real.
    bool IsWhole() const { return object_ && object_->IsNumber(); }
    /// It was a reference where it was asked for.
    bool WasReference() const { return was_reference_; }
    /// Of the object, where it is one of the file's own and not a part of another; else 0.
    std::uint32_t ObjectNumber() const { return object_ ? object_->Reference().ObjectNumber() : 0; }
    /// The object itself, to know it again.
    const PoDoFo::PdfObject* Object() const { return object_; }

    /// Of a dictionary; nothing for other values and for a missing key.
    WideValue operator[](const char* key) const;
    /// Of an array; nothing past its end and for other values.
    WideValue At(std::size_t index) const;
    std::size_t Size() const;

    /// A number, or a string that begins with one. "96 30 0.0W" counts in degrees, minutes
    /// and seconds. Nothing for a value that is not finite.
    std::optional<double> Number() const;
    /// A string or a name as UTF-8, whichever of the usual encodings it has.
    std::optional<std::string> Text() const;

private:
    PoDoFo::PdfVecObjects* objects_ = nullptr;
    PoDoFo::PdfObject* object_ = nullptr;
    bool was_reference_ = false;
};

/// The numbers of an array in order; a PdfError where `budget` does not allow as many.
/// An element that is no number counts as 0, and `all_numbers` becomes false.
std::vector<double> NumbersOf(const WideValue& array, ReadingBudget& budget, bool* all_numbers = nullptr);

/// "object 12, /VP [0]": the number of the first of these values that is an object of its own,
/// innermost first, and a path from the page.
std::string PlaceOf(std::initializer_list<WideValue> values, const std::string& path);

/// True for an array that holds a number which is written as a string.
bool HoldsStrings(const WideValue& array);

}  // namespace VellumLib
