#include "objects/FirstPageExcerpt.h"

#include "objects/LoadBudget.h"
#include "objects/PlainTables.h"

#include <podofo/podofo.h>

#include <cstdio>
#include <map>
#include <vector>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::size_t kMostObjects = 1'000;

void Require(bool held) {
    if (!held) RefusePdf(ePdfError_InvalidDataType, "The way to the first page is not plain.");
}

class Excerpt {
public:
    explicit Excerpt(PlainTables& tables) : tables_(tables) {}

    void Collect() {
        const PdfVariant catalog = Follow(Entry(tables_.Trailer(), "Root"));
        const PdfVariant page = FindPage(Follow(Entry(Dictionary(catalog), "Pages")));
        for (const char* key : {"VP", "LGIDict", "Type", "MediaBox", "CropBox", "BleedBox", "TrimBox",
                                "ArtBox", "Rotate", "UserUnit"})
            if (const PdfObject* const value = Dictionary(page).GetKey(key)) CollectFrom(*value);
    }

    // The parser takes an object's number from the object itself, and spends time on
    // every number that its table leaves out. So the rows need not tell the numbers.
    std::string End(std::int64_t start) const {
        const std::string count = std::to_string(offsets_.size() + 1);
        std::string end = "\nxref\n0 " + count + "\n0000000000 65535 f \n";
        for (const auto& [reference, offset] : offsets_) {
            char row[24];
            std::snprintf(row, sizeof row, "%010lld 00000 n \n", static_cast<long long>(offset));
            end += row;
        }
        const PdfReference root = tables_.Trailer().GetKey("Root")->GetReference();
        return end + "trailer\n<</Size " + count + "/Root " + std::to_string(root.ObjectNumber()) + " " +
               std::to_string(root.GenerationNumber()) + " R>>\nstartxref\n" + std::to_string(start + 1) +
               "\n%%EOF\n";
    }

private:
    static const PdfDictionary& Dictionary(const PdfVariant& value) {
        Require(value.IsDictionary());
        return value.GetDictionary();
    }
    static PdfObject Entry(const PdfDictionary& dictionary, const char* key) {
        Require(dictionary.HasKey(key));
        return *dictionary.GetKey(key);
    }

    /// Null for what does not exist, as the parser has it.
    PdfVariant Take(const PdfReference& reference) {
        const auto offset = tables_.Find(reference);
        if (!offset) return {};
        Require(offsets_.size() < kMostObjects);
        offsets_.emplace(reference, *offset);
        return tables_.ObjectAt(*offset, reference);
    }
    PdfVariant Follow(const PdfObject& reference) {
        Require(reference.IsReference());
        return Take(reference.GetReference());
    }

    PdfVariant FindPage(PdfVariant node) {
        for (;;) {
            const PdfObject kids = Entry(Dictionary(node), "Kids");
            const PdfVariant list = kids.IsReference() ? Follow(kids) : static_cast<PdfVariant>(kids);
            Require(list.IsArray());
            node = FirstWithPages(list.GetArray());
            if (node.GetDictionary().GetKeyAsName("Type") == "Page") return node;
        }
    }
    PdfVariant FirstWithPages(const PdfArray& kids) {
        for (const PdfObject& entry : kids) {
            Require(entry.IsReference() && offsets_.count(entry.GetReference()) == 0);
            PdfVariant kid = Follow(entry);
            const PdfName type = Dictionary(kid).GetKeyAsName("Type");
            if (type == "Page") return kid;
            Require(type == "Pages" && Entry(kid.GetDictionary(), "Count").IsNumber());
            if (kid.GetDictionary().GetKey("Count")->GetNumber() > 0) return kid;
        }
        RefusePdf(ePdfError_PageNotFound, "There is no first page.");
    }

    void CollectFrom(const PdfVariant& value) {
        std::vector<PdfVariant> left{value};
        while (!left.empty()) {
            const PdfVariant next = std::move(left.back());
            left.pop_back();
            if (next.IsReference()) {
                if (offsets_.count(next.GetReference()) == 0) left.push_back(Take(next.GetReference()));
            } else if (next.IsArray()) {
                for (const PdfObject& element : next.GetArray())
                    if (MayRefer(element)) left.push_back(element);
            } else if (next.IsDictionary()) {
                for (const auto& [key, element] : next.GetDictionary().GetKeys())
                    if (MayRefer(*element)) left.push_back(*element);
            }
        }
    }
    static bool MayRefer(const PdfVariant& value) {
        return value.IsReference() || value.IsArray() || value.IsDictionary();
    }

    PlainTables& tables_;
    std::map<PdfReference, std::int64_t> offsets_;
};

}  // namespace

std::string ExcerptOfFirstPage(FileWindow& file, std::int64_t fewest) {
    try {
        PlainTables tables(file);
        if (tables.CountRows() < fewest) return {};
        Excerpt excerpt(tables);
        excerpt.Collect();
        return excerpt.End(file.Size());
    } catch (const PdfError&) {
        return {};
    }
}

}  // namespace VellumLib
