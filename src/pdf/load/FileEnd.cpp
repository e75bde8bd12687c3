#include "load/FileEnd.h"

#include "load/LoadBudget.h"
#include "load/ValueReader.h"

#include <algorithm>

namespace VellumLib {

namespace {

constexpr std::int64_t kBytes = 1024;

}  // namespace

FileEnd::FileEnd(FileWindow& file) : first_(std::max<std::int64_t>(0, file.Size() - kBytes)) {
    bytes_.resize(static_cast<std::size_t>(file.Size() - first_));
    bytes_.resize(file.Read(first_, bytes_.data(), bytes_.size()));
}

std::int64_t FileEnd::TakeStart(ValueReader& values) const {
    constexpr std::string_view kWord = "startxref";
    const std::size_t found = bytes_.rfind(kWord);
    RequirePlain(found != std::string::npos && bytes_.find("%%EOF", found) != std::string::npos);
    std::int64_t position = first_ + static_cast<std::int64_t>(found + kWord.size());
    return values.TakeNumber(position);
}

std::int64_t FileEnd::LastPlaceOf(std::string_view word) const {
    const std::size_t found = bytes_.rfind(word);
    RequirePlain(found != std::string::npos);
    return first_ + static_cast<std::int64_t>(found);
}

}  // namespace VellumLib
