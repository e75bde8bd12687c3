#include "load/PageSearch.h"

#include "load/LoadBudget.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr int kMaxDepth = 64;
constexpr int kMaxNodes = 40'000;

void Require(bool held) {
    if (!held) RefusePdf(ePdfError_PageNotFound, "The way to the page is not plain.");
}

class Search {
public:
    explicit Search(ObjectSource& objects) : objects_(objects) {}

    FoundPage Run(long index) {
        const PdfObject catalog = Followed(objects_, Entry(objects_.Trailer(), "Root"));
        Require(catalog.IsDictionary());
        PdfObject node = Node(Entry(catalog.GetDictionary(), "Pages"));
        std::int64_t wanted = index;
        for (int depth = 0; depth < kMaxDepth; ++depth) {
            NoteBox(node.GetDictionary());
            if (IsPage(node)) {
                Require(wanted == 0);
                return {node.Reference(), node.GetDictionary(), media_};
            }
            node = Below(node.GetDictionary(), wanted);
        }
        RefusePdf(ePdfError_PageNotFound, "The page tree is too deep.");
    }

private:
    static const PdfObject& Entry(const PdfDictionary& dictionary, const char* key) {
        const PdfObject* const value = dictionary.GetKey(key);
        Require(value != nullptr);
        return *value;
    }
    PdfObject Node(const PdfObject& entry) {
        Require(entry.IsReference() && ++nodes_ <= kMaxNodes);
        PdfObject node = Followed(objects_, entry);
        Require(node.IsDictionary());
        return node;
    }
    static bool IsPage(const PdfObject& node) { return node.GetDictionary().GetKeyAsName("Type") == "Page"; }
    std::int64_t PagesBelow(const PdfObject& node) {
        if (IsPage(node)) return 1;
        const PdfObject count = FollowedEntry(objects_, node.GetDictionary(), "Count");
        Require(count.IsNumber() && count.GetNumber() >= 0);
        return count.GetNumber();
    }
    /// The child that leads to the wanted page, which counts within it from then on.
    PdfObject Below(const PdfDictionary& node, std::int64_t& wanted) {
        const PdfObject kids = FollowedEntry(objects_, node, "Kids");
        Require(kids.IsArray());
        for (const PdfObject& entry : kids.GetArray()) {
            PdfObject kid = Node(entry);
            const std::int64_t pages = PagesBelow(kid);
            if (wanted < pages) return kid;
            wanted -= pages;
        }
        RefusePdf(ePdfError_PageNotFound, "The document has no such page.");
    }
    void NoteBox(const PdfDictionary& node) {
        const PdfObject box = FollowedEntry(objects_, node, "MediaBox");
        if (!box.IsArray() || box.GetArray().size() < 4) return;
        std::array<double, 4> sides{};
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const PdfObject side = Followed(objects_, box.GetArray()[i]);
            if (!side.IsNumber() && !side.IsReal()) return;
            sides[i] = side.GetReal();
            if (!std::isfinite(sides[i])) return;
        }
        if (sides[0] > sides[2]) std::swap(sides[0], sides[2]);
        if (sides[1] > sides[3]) std::swap(sides[1], sides[3]);
        media_ = sides;
    }

    ObjectSource& objects_;
    int nodes_ = 0;
    std::optional<std::array<double, 4>> media_;
};

}  // namespace

PdfObject Followed(ObjectSource& objects, const PdfObject& value) {
    if (!value.IsReference()) return value;
    PdfObject object(value.GetReference(), PdfVariant());
    objects.Read(object);
    return object;
}

PdfObject FollowedEntry(ObjectSource& objects, const PdfDictionary& dictionary, const char* key) {
    const PdfObject* const value = dictionary.GetKey(key);
    return value ? Followed(objects, *value) : PdfObject();
}

FoundPage FindPage(ObjectSource& objects, long index) {
    if (index < 0) RefusePdf(ePdfError_PageNotFound, "The document has no such page.");
    return Search(objects).Run(index);
}

}  // namespace VellumLib
