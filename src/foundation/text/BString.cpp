#include <Tellurion/BString.h>

#include "text/Unicode.h"

#include <algorithm>
#include <memory>
#include <ostream>
#include <utility>

namespace Tellurion {
namespace {

std::string_view OrEmpty(const char* text) {
    return text ? std::string_view(text) : std::string_view();
}
std::wstring_view OrEmpty(const wchar_t* text) {
    return text ? std::wstring_view(text) : std::wstring_view();
}

}  // namespace

BString::BString(const wchar_t* text) : units_(Unicode::FromWide(OrEmpty(text))) {}
BString::BString(const char* text) : units_(Unicode::FromUtf8(OrEmpty(text))) {}
BString::BString(const std::string& text) : units_(Unicode::FromUtf8(text)) {}
BString::BString(const std::u16string& units) : units_(units) {}
BString::BString(const BString& other) : units_(other.units_) {}
BString::BString(BString&& other) noexcept
    : units_(std::move(other.units_)), narrow_(other.narrow_.exchange(nullptr)) {
    other.units_.clear();
}
BString::~BString() {
    delete narrow_.load(std::memory_order_acquire);
}

BString& BString::operator=(const BString& other) {
    if (this == &other) return *this;
    units_ = other.units_;
    Changed();
    return *this;
}

BString& BString::operator=(BString&& other) noexcept {
    if (this == &other) return *this;
    units_ = std::move(other.units_);
    delete narrow_.exchange(other.narrow_.exchange(nullptr));
    other.units_.clear();
    return *this;
}

BString& BString::operator=(const wchar_t* text) {
    return *this = BString(text);
}
BString& BString::operator=(const char* text) {
    return *this = BString(text);
}

BString& BString::operator+=(const BString& text) {
    units_ += text.units_;
    Changed();
    return *this;
}

BString& BString::operator+=(const wchar_t* text) {
    return *this += BString(text);
}
BString& BString::operator+=(const char* text) {
    return *this += BString(text);
}
BString& BString::operator+=(char character) {
    return *this += BString(std::string(1, character));
}

BString BString::Left(std::size_t count) const {
    return units_.substr(0, count);
}

BString BString::Right(std::size_t count) const {
    return count >= units_.size() ? units_ : units_.substr(units_.size() - count);
}

BString& BString::Trim() {
    const auto first = std::find_if_not(units_.begin(), units_.end(), Unicode::IsSpace);
    const auto last = std::find_if_not(units_.rbegin(), units_.rend(), Unicode::IsSpace).base();
    units_ = first < last ? std::u16string(first, last) : std::u16string();
    Changed();
    return *this;
}

BString& BString::ToLower() {
    std::transform(units_.begin(), units_.end(), units_.begin(), Unicode::ToLower);
    Changed();
    return *this;
}

BString& BString::ToUpper() {
    std::transform(units_.begin(), units_.end(), units_.begin(), Unicode::ToUpper);
    Changed();
    return *this;
}

BString& BString::ReplaceAll(const BString& from, const BString& to) {
    if (from.IsEmpty()) return *this;
    std::u16string result;
    std::size_t start = 0;
    for (std::size_t hit; (hit = units_.find(from.units_, start)) != std::u16string::npos;) {
        result.append(units_, start, hit - start).append(to.units_);
        start = hit + from.units_.size();
    }
    units_ = result.append(units_, start);
    Changed();
    return *this;
}

BString& BString::RemoveAll(const BString& what) {
    return ReplaceAll(what, BString());
}

bool BString::StartsWith(const BString& prefix) const {
    return units_.compare(0, prefix.units_.size(), prefix.units_) == 0;
}

bool BString::EndsWith(const BString& suffix) const {
    return units_.size() >= suffix.units_.size() &&
           units_.compare(units_.size() - suffix.units_.size(), std::u16string::npos, suffix.units_) == 0;
}

/// Of a text that was never asked for its narrow form no second one is kept: there may be
/// millions of them.
std::string BString::StdStr() const {
    const std::string* made = narrow_.load(std::memory_order_acquire);
    return made ? *made : Unicode::ToUtf8(units_);
}

std::wstring BString::WideStr() const {
    return Unicode::ToWide(units_);
}

const std::string& BString::Narrow() const {
    if (const std::string* made = narrow_.load(std::memory_order_acquire)) return *made;
    auto mine = std::make_unique<const std::string>(Unicode::ToUtf8(units_));
    const std::string* expected = nullptr;
    // Another thread may have been faster; then its copy is the one that counts.
    if (narrow_.compare_exchange_strong(expected, mine.get(), std::memory_order_acq_rel))
        return *mine.release();
    return *expected;
}

void BString::Changed() {
    delete narrow_.exchange(nullptr, std::memory_order_acq_rel);
}

std::ostream& operator<<(std::ostream& out, const BString& text) {
    return out << text.StdStr();
}

}  // namespace Tellurion
