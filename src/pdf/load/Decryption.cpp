#include "load/Decryption.h"

#include "load/LoadBudget.h"
#include "load/ObjectSource.h"
#include "load/ValueReader.h"

#include <vector>

namespace VellumLib {
namespace {

using namespace PoDoFo;

constexpr std::int64_t kVersion = 5;
constexpr pdf_long kBlock = 16;
constexpr pdf_long kMaxPassword = 127;

struct Part {
    const char* key;
    pdf_long bytes;
};

/// What the parser's library copies without a look at its length.
constexpr Part kParts[] = {{"O", 48}, {"U", 48}, {"OE", 32}, {"UE", 32}, {"Perms", 16}};

bool IsNumber(const PdfDictionary& dictionary, const char* key, std::int64_t least, std::int64_t most) {
    const PdfObject* const value = dictionary.GetKey(key);
    return value && value->IsNumber() && value->GetNumber() >= least && value->GetNumber() <= most;
}

bool HoldsString(const PdfDictionary& dictionary, const Part& part) {
    const PdfObject* const value = dictionary.GetKey(part.key);
    return value && (value->IsString() || value->IsHexString()) && value->GetString().IsValid() &&
           !value->GetString().IsUnicode() && value->GetString().GetLength() >= part.bytes;
}

bool IsComplete(const PdfDictionary& dictionary) {
    constexpr std::int64_t kAnyFlags = std::int64_t{1} << 32;
    if (dictionary.GetKeyAsName("Filter") != "Standard" || !IsNumber(dictionary, "V", kVersion, kVersion) ||
        !IsNumber(dictionary, "R", kVersion, kVersion + 1) ||
        !IsNumber(dictionary, "P", -kAnyFlags, kAnyFlags))
        return false;
    for (const Part& part : kParts)
        if (!HoldsString(dictionary, part)) return false;
    return true;
}

/// The last byte says how many were added to fill a block.
pdf_long WithoutPadding(const std::vector<unsigned char>& plain, pdf_long size) {
    if (size <= 0) return 0;
    const pdf_long added = plain[static_cast<std::size_t>(size) - 1];
    return added >= 1 && added <= kBlock && added <= size ? size - added : size;
}

}  // namespace

// Here, so that only this source destroys a cipher; see the folder's CMakeLists.txt.
Decryption::~Decryption() = default;

std::unique_ptr<Decryption> Decryption::Unlock(const PdfObject& dictionary, const std::string& password) {
    if (!dictionary.IsDictionary() || !IsComplete(dictionary.GetDictionary())) return nullptr;
    if (static_cast<pdf_long>(password.size()) > kMaxPassword) return nullptr;
    std::unique_ptr<PdfEncrypt> cipher(PdfEncrypt::CreatePdfEncrypt(&dictionary));
    if (!cipher || !cipher->Authenticate(password, PdfString())) return nullptr;
    return std::unique_ptr<Decryption>(new Decryption(std::move(cipher)));
}

std::unique_ptr<Decryption> Decryption::Unlock(ObjectSource& source, const std::string& password) {
    const PdfObject* const entry = source.Trailer().GetKey("Encrypt");
    if (!entry) return nullptr;
    PdfObject dictionary = *entry;
    if (entry->IsReference()) {
        dictionary = PdfObject(entry->GetReference(), PdfVariant());
        source.Read(dictionary);
    }
    std::unique_ptr<Decryption> unlocked = Unlock(dictionary, password);
    RequirePlain(unlocked != nullptr);
    return unlocked;
}

std::string Decryption::DecryptBytes(std::string_view bytes) {
    const auto length = static_cast<pdf_long>(bytes.size());
    // A first block to begin with, and at least one of text.
    if (length < 2 * kBlock || length % kBlock != 0)
        RefusePdf(ePdfError_BrokenFile, "An encrypted string or stream is damaged.");
    std::vector<unsigned char> plain(static_cast<std::size_t>(length + kBlock));
    pdf_long size = 0;
    cipher_->Decrypt(reinterpret_cast<const unsigned char*>(bytes.data()), length, plain.data(), size);
    if (size < 0 || size > length)
        RefusePdf(ePdfError_BrokenFile, "An encrypted string or stream is damaged.");
    size = WithoutPadding(plain, size);
    return {reinterpret_cast<const char*>(plain.data()), static_cast<std::size_t>(size)};
}

void Decryption::DecryptStrings(PdfVariant& value) {
    if (value.IsArray()) {
        for (PdfObject& element : value.GetArray())
            DecryptStrings(element);
    } else if (value.IsDictionary()) {
        for (const auto& [key, element] : value.GetDictionary().GetKeys())
            DecryptStrings(*element);
    } else if (value.IsString() || value.IsHexString()) {
        const PdfString text = value.GetString();
        if (text.IsUnicode()) RefusePdf(ePdfError_BrokenFile, "An encrypted string is damaged.");
        const std::string plain =
            DecryptBytes({text.GetString(), static_cast<std::size_t>(text.GetLength())});
        value = PdfVariant(PdfString(plain.data(), static_cast<pdf_long>(plain.size())));
    }
}

}  // namespace VellumLib
