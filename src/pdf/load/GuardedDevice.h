#pragma once

#include "load/GuardedReader.h"

#include <podofo/podofo.h>

#include <memory>
#include <utility>

namespace VellumLib {

/// The parser's input device over a GuardedReader.
class GuardedDevice final : public PoDoFo::PdfInputDevice {
public:
    explicit GuardedDevice(std::unique_ptr<FileWindow> file)
        : reader_(std::make_unique<GuardedReader>(std::move(file))) {}

    GuardedReader& Reader() { return *reader_; }

    std::streamoff Tell() const override { return reader_->Tell(); }
    int GetChar() const override { return reader_->Get(); }
    int Look() const override { return reader_->Peek(); }
    void Seek(std::streamoff offset, std::ios_base::seekdir from) override { reader_->Seek(offset, from); }
    std::streamoff Read(char* target, std::streamsize count) override {
        return static_cast<std::streamoff>(reader_->Read(target, count));
    }
    bool Eof() const override { return reader_->AtEnd(); }
    bool Bad() const override { return false; }
    void Clear(std::ios_base::iostate) const override {}

private:
    std::unique_ptr<GuardedReader> reader_;
};

}  // namespace VellumLib
