#pragma once

#include <QString>

#include <podofo/podofo.h>

namespace VellumLib {

/// A name, by value.
class CPDFName {
public:
    CPDFName() = default;
    explicit CPDFName(const PoDoFo::PdfName& name) : name_(name) {}
    explicit CPDFName(const QString& text);
    CPDFName(const CPDFName&) = default;
    CPDFName& operator=(const CPDFName&) = default;
    virtual ~CPDFName();

    QString ToQString() const;
    static int GetObjectKind() { return 4; }

private:
    PoDoFo::PdfName name_;
};

}  // namespace VellumLib
