#pragma once

#include <QString>

#include <podofo/podofo.h>

#include <string>

namespace VellumLib {

/// A string, by value.
class CPDFString {
public:
    CPDFString();
    explicit CPDFString(const PoDoFo::PdfString& text) : text_(text) {}
    /// A plain string; what Latin-1 cannot hold becomes a question mark.
    explicit CPDFString(const QString& text);
    CPDFString(const CPDFString&) = default;
    CPDFString& operator=(const CPDFString&) = default;
    virtual ~CPDFString();

    /// The UTF-8 form.
    std::string ToStdString() const;
    /// The bytes of the UTF-8 form of a Unicode string, of any other as they stand, one
    /// character each up to the first zero.
    QString ToQString() const;

private:
    PoDoFo::PdfString text_;
};

}  // namespace VellumLib
