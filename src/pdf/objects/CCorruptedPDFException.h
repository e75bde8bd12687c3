#pragma once

#include <QString>

#include <exception>

namespace VellumLib {

/// A PDF that is broken in a way that still lets it be shown, without georeferencing.
class CCorruptedPDFException : public std::exception {
public:
    explicit CCorruptedPDFException(const QString& message) : message_(message) {}
    CCorruptedPDFException(const CCorruptedPDFException&) = default;
    CCorruptedPDFException& operator=(const CCorruptedPDFException&) = default;
    ~CCorruptedPDFException() override;

    /// The message in the local encoding, at most 511 bytes of it. Good until the next
    /// call in the same thread, of any such exception.
    const char* what() const noexcept override;

private:
    QString message_;
};

}  // namespace VellumLib
