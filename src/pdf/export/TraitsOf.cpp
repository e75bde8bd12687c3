#include "export/TraitsOf.h"

#include "PdfFunctions.h"
#include "load/PageSearch.h"
#include "load/PoDoFoSettings.h"

#include <exception>
#include <string>
#include <string_view>

namespace MapAnchor {

using PoDoFo::PdfDictionary;
using PoDoFo::PdfError;
using PoDoFo::PdfObject;
using Tellurion::BString;
using VellumLib::CrossReferences;
using VellumLib::FileWindow;
using VellumLib::FollowedEntry;

namespace {

/// A look at one part of a file, of which a damaged one counts as absent.
template <class Look>
auto OrNothing(Look look) -> decltype(look()) {
    try {
        return look();
    } catch (const PdfError&) {
        return {};
    }
}

PdfDictionary DictionaryIn(CrossReferences& file, const PdfDictionary& holder, const char* key) {
    return OrNothing([&] {
        const PdfObject value = FollowedEntry(file, holder, key);
        return value.IsDictionary() ? value.GetDictionary() : PdfDictionary();
    });
}

/// A field of a form that is a signature with a value, or has one below it.
class SignatureSearch {
public:
    explicit SignatureSearch(CrossReferences& file) : file_(file) {}

    bool In(const PdfObject& fields, int depth = 0) {
        constexpr int kMaxDepth = 20;
        if (!fields.IsArray() || depth > kMaxDepth) return false;
        for (const PdfObject& entry : fields.GetArray()) {
            constexpr int kMaxFields = 2'000;
            if (++looked_at_ > kMaxFields) return true;  // a form that has the flag, and no end
            const bool found = OrNothing([&] {
                const PdfObject field = VellumLib::Followed(file_, entry);
                if (!field.IsDictionary()) return false;
                const PdfDictionary& keys = field.GetDictionary();
                if (keys.GetKeyAsName("FT") == "Sig" && keys.HasKey("V")) return true;
                return In(FollowedEntry(file_, keys, "Kids"), depth + 1);
            });
            if (found) return true;
        }
        return false;
    }

private:
    CrossReferences& file_;
    int looked_at_ = 0;
};

bool IsSigned(CrossReferences& file, const PdfDictionary& catalog) {
    constexpr PoDoFo::pdf_int64 kSignaturesExist = 1;
    const PdfDictionary form = DictionaryIn(file, catalog, "AcroForm");
    if ((form.GetKeyAsLong("SigFlags", 0) & kSignaturesExist) == 0) return false;
    return OrNothing([&] { return SignatureSearch(file).In(FollowedEntry(file, form, "Fields")); });
}

/// A certifying signature whose transform parameters allow nothing.
bool IsLocked(CrossReferences& file, const PdfDictionary& catalog) {
    constexpr PoDoFo::pdf_int64 kFormsAllowed = 2;
    const PdfDictionary signature = DictionaryIn(file, DictionaryIn(file, catalog, "Perms"), "DocMDP");
    return OrNothing([&] {
        const PdfObject references = FollowedEntry(file, signature, "Reference");
        if (!references.IsArray() || references.GetArray().empty()) return false;
        const PdfObject first = VellumLib::Followed(file, references.GetArray()[0]);
        if (!first.IsDictionary()) return false;
        const PdfDictionary parameters = DictionaryIn(file, first.GetDictionary(), "TransformParams");
        return parameters.GetKeyAsLong("P", kFormsAllowed) < kFormsAllowed;
    });
}

/// The value behind a name in XMP, as an attribute or an element.
std::string XmpValue(const std::string& text, std::string_view name) {
    const std::size_t found = text.find(name);
    if (found == std::string::npos) return {};
    const std::size_t begin = text.find_first_not_of("=\"'> \t\r\n", found + name.size());
    if (begin == std::string::npos) return {};
    constexpr std::size_t kMaxValue = 4;
    const std::size_t end = text.find_first_of("\"'< \t\r\n", begin);
    return text.substr(begin, std::min(end - begin, kMaxValue));
}

std::string MetadataText(CrossReferences& file, const PdfDictionary& catalog) {
    constexpr std::uint64_t kMaxMetadata = std::uint64_t{1} << 20;
    return OrNothing([&] {
        const PdfObject* const entry = catalog.GetKey("Metadata");
        return entry && entry->IsReference() ? file.StreamOf(entry->GetReference(), kMaxMetadata)
                                             : std::string();
    });
}

BString ConformanceOf(const std::string& metadata) {
    const std::string part = XmpValue(metadata, "pdfaid:part");
    if (part.empty() || part.find_first_not_of("0123456789") != std::string::npos) return {};
    BString level(XmpValue(metadata, "pdfaid:conformance"));
    return BString("PDF/A-" + part) + level.ToLower();
}

bool IsTagged(CrossReferences& file, const PdfDictionary& catalog) {
    const PdfDictionary root = DictionaryIn(file, catalog, "StructTreeRoot");
    return root.HasKey("K");
}

std::string HeadOf(FileWindow& file) {
    constexpr std::size_t kHead = 1024;
    std::string head(kHead, '\0');
    head.resize(file.Read(0, head.data(), head.size()));
    return head;
}

}  // namespace

BGeoPDFTraits TraitsOf(CrossReferences& references, FileWindow& file) {
    BGeoPDFTraits traits;
    traits.Known = true;
    traits.Size = file.Size();
    traits.Encrypted = references.IsEncrypted();
    constexpr std::size_t kVersion = 5;
    const std::string head = HeadOf(file);
    traits.Version =
        BString(head.substr(kVersion, head.find_first_not_of("0123456789.", kVersion) - kVersion));
    traits.Linearized = head.find("/Linearized") != std::string::npos;
    const PdfDictionary catalog = DictionaryIn(references, references.Trailer(), "Root");
    traits.Signed = IsSigned(references, catalog);
    traits.Locked = IsLocked(references, catalog);
    traits.Tagged = IsTagged(references, catalog);
    if (!traits.Encrypted) traits.Conformance = ConformanceOf(MetadataText(references, catalog));
    return traits;
}

bool AllowsNewRoles(CrossReferences& references) {
    if (references.IsEncrypted()) return true;
    const std::string metadata =
        MetadataText(references, DictionaryIn(references, references.Trailer(), "Root"));
    return XmpValue(metadata, "pdfuaid:part").empty() &&
           XmpValue(metadata, "pdfaid:conformance").substr(0, 1) != "A";
}

BGeoPDFTraits TraitsOfFile(const BString& path) {
    const VellumLib::PoDoFoSettings settings;
    try {
        FileWindow file(path.StdStr());
        if (!file.IsOpen()) return {};
        CrossReferences references(file);
        return TraitsOf(references, file);
    } catch (const PdfError&) {
        return {};
    } catch (const std::exception&) {
        return {};
    }
}

}  // namespace MapAnchor
