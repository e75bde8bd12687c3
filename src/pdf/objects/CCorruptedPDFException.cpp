#include "objects/CCorruptedPDFException.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace VellumLib {

CCorruptedPDFException::~CCorruptedPDFException() = default;

const char* CCorruptedPDFException::what() const noexcept {
    thread_local std::array<char, 512> buffer;
    const QByteArray text = message_.toLocal8Bit();
    const std::size_t length = std::min(static_cast<std::size_t>(text.size()), buffer.size() - 1);
    std::memcpy(buffer.data(), text.constData(), length);
    buffer[length] = '\0';
    return buffer.data();
}

}  // namespace VellumLib
