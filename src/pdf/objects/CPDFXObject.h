#pragma once

#include "objects/CPDFCanvas.h"

namespace VellumLib {

/// The canvas of one form. It knows no XObject resources, so forms nest one deep.
class CPDFXObject : public CPDFCanvas {
public:
    /// The wrapped object stays the document's.
    explicit CPDFXObject(PoDoFo::PdfObject* object);
    ~CPDFXObject() override;

    std::uint32_t GetObjectNumber() const;

    void OpenContents() override;
    void WriteStatement(const CPDFStatement& statement) override;
    void WriteText(const QString& text) override;
    /// Replaces the whole stream by what was written: nothing, for a form that was only read.
    void FlushContents() override;

private:
    std::unique_ptr<PoDoFo::PdfXObject> form_;
    QString output_;
};

}  // namespace VellumLib
