#pragma once

#include <podofo/podofo.h>

#include <memory>
#include <string>
#include <string_view>

namespace VellumLib {

class ObjectSource;

/// The strings and streams of a file that is encrypted with AES-256 and opens with a password. Other
/// ciphers are refused: the parser's own library does not offer them any more.
class Decryption {
public:
    ~Decryption();

    /// Null where the dictionary is of another kind or incomplete, or where the password is
    /// not the file's.
    static std::unique_ptr<Decryption> Unlock(const PoDoFo::PdfObject& dictionary,
                                              const std::string& password);
    /// By the dictionary that the trailer of `source` names, which has to be open. A PdfError where that
    /// one does not unlock; null for a file that is not encrypted.
    static std::unique_ptr<Decryption> Unlock(ObjectSource& source, const std::string& password);

    /// Replaces every string in the value. A PdfError for one that is damaged.
    void DecryptStrings(PoDoFo::PdfVariant& value);
    /// The bytes of a stream, before its filters.
    std::string DecryptBytes(std::string_view bytes);

private:
    explicit Decryption(std::unique_ptr<PoDoFo::PdfEncrypt> cipher) : cipher_(std::move(cipher)) {}

    std::unique_ptr<PoDoFo::PdfEncrypt> cipher_;
};

}  // namespace VellumLib
