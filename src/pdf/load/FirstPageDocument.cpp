#include "load/FirstPageDocument.h"

#include "load/CrossReferences.h"
#include "load/LoadBudget.h"
#include "load/PlainTables.h"

#include <podofo/podofo.h>

#include <limits>
#include <set>
#include <vector>

namespace VellumLib {

namespace {

using namespace PoDoFo;

constexpr std::size_t kMostObjects = 1'000;

void Require(bool held) {
    if (!held) RefusePdf(ePdfError_InvalidDataType, "The way to the first page is not plain.");
}

const PdfDictionary& Dictionary(const PdfObject& value) {
    Require(value.IsDictionary());
    return value.GetDictionary();
}

const PdfObject& Entry(const PdfDictionary& dictionary, const char* key) {
    const PdfObject* const value = dictionary.GetKey(key);
    Require(value != nullptr);
    return *value;
}

class FirstPageDocument final : public PdfMemDocument {
public:
    FirstPageDocument() : PdfMemDocument(true) {}
    void SetRoot(PdfObject& catalog) {
        SetCatalog(&catalog);
        InitPagesTree();
    }
    bool unlocked = false;
};

class FirstPageLoad {
public:
    FirstPageLoad(ObjectSource& tables, FirstPageDocument& document, bool inherited)
        : tables_(tables), document_(document), objects_(document.GetObjects()), inherited_(inherited) {}

    void Run() {
        PdfObject& catalog = Follow(Entry(tables_.Trailer(), "Root"));
        const PdfDictionary& page = Dictionary(FindPage(Follow(Entry(Dictionary(catalog), "Pages"))));
        for (const char* key : {"VP", "LGIDict", "Type", "MediaBox", "CropBox", "BleedBox", "TrimBox",
                                "ArtBox", "Rotate", "UserUnit"})
            if (const PdfObject* const value = page.GetKey(key)) TakeAllBelow(*value);
        // The parser has a failure of its own for a page without what it refers to.
        for (const char* key : {"Contents", "Resources"})
            if (const PdfObject* const value = page.GetKey(key))
                if (value->IsReference()) tables_.RequireObject(value->GetReference());
        document_.SetRoot(catalog);
    }

private:
    PdfObject& Take(const PdfReference& reference) {
        tables_.RequireObject(reference);
        Require(taken_.size() < kMostObjects && taken_.insert(reference).second);
        auto object = std::make_unique<PdfObject>(reference, PdfVariant());
        tables_.Read(*object);
        objects_.push_back(object.get());
        return *object.release();
    }
    PdfObject& Follow(const PdfObject& entry) {
        Require(entry.IsReference());
        return Take(entry.GetReference());
    }
    /// A count that is referred to or odd is for the parser, which has its own ways.
    static std::int64_t PagesBelow(const PdfObject& node) {
        const PdfObject& count = Entry(node.GetDictionary(), "Count");
        Require(count.IsNumber() && count.GetNumber() >= 0 &&
                count.GetNumber() <= std::numeric_limits<int>::max());
        return count.GetNumber();
    }

    const PdfObject& FindPage(const PdfObject& root) {
        Require(!Dictionary(root).HasKey("Parent"));
        for (const PdfObject* node = &root;;) {
            const PdfObject& kids = Entry(Dictionary(*node), "Kids");
            Require(PagesBelow(*node) > 0);
            const PdfObject& list = kids.IsReference() ? Follow(kids) : kids;
            Require(list.IsArray());
            if (const PdfObject* const turn = node->GetDictionary().GetKey("Rotate")) TakeAllBelow(*turn);
            for (const char* key : {"MediaBox", "CropBox"})
                if (const PdfObject* const box = node->GetDictionary().GetKey(key); box && inherited_)
                    TakeAllBelow(*box);
            const PdfObject& kid = FirstWithPages(list.GetArray());
            // What a page inherits, it inherits from the parent that it names.
            const PdfObject* const parent = kid.GetDictionary().GetKey("Parent");
            Require(!parent || (parent->IsReference() && parent->GetReference() == node->Reference()));
            node = &kid;
            if (node->GetDictionary().GetKeyAsName("Type") == "Page") return *node;
        }
    }
    const PdfObject& FirstWithPages(const PdfArray& kids) {
        for (const PdfObject& entry : kids) {
            const PdfObject& kid = Follow(entry);
            const PdfName type = Dictionary(kid).GetKeyAsName("Type");
            if (type == "Page") return kid;
            Require(type == "Pages");
            if (PagesBelow(kid) > 0) return kid;
        }
        RefusePdf(ePdfError_PageNotFound, "There is no first page.");
    }

    void TakeAllBelow(const PdfObject& value) {
        std::vector<const PdfObject*> left{&value};
        while (!left.empty()) {
            const PdfObject& next = *left.back();
            left.pop_back();
            if (next.IsReference()) {
                if (taken_.count(next.GetReference()) != 0) continue;
                left.push_back(&Take(next.GetReference()));
            } else if (next.IsArray()) {
                for (const PdfObject& element : next.GetArray())
                    left.push_back(&element);
            } else if (next.IsDictionary()) {
                for (const auto& [key, element] : next.GetDictionary().GetKeys())
                    left.push_back(element);
            }
        }
    }

    ObjectSource& tables_;
    FirstPageDocument& document_;
    PdfVecObjects& objects_;
    const bool inherited_;
    std::set<PdfReference> taken_;
};

std::unique_ptr<PdfMemDocument> Load(ObjectSource& tables, bool inherited) {
    auto document = std::make_unique<FirstPageDocument>();
    FirstPageLoad load(tables, *document, inherited);
    load.Run();
    document->unlocked = tables.IsUnlocked();
    return document;
}

}  // namespace

std::unique_ptr<PdfMemDocument> LoadFirstPage(FileWindow& file, const FirstPageWishes& wishes) {
    try {
        PlainTables tables(file, wishes.password);
        return Load(tables, wishes.inherited);
    } catch (const PdfError&) {
        if (!wishes.inherited) return nullptr;
    }
    try {
        CrossReferences references(file, wishes.password);
        if (references.IsEncrypted() && !references.IsUnlocked()) return nullptr;
        return Load(references, wishes.inherited);
    } catch (const PdfError&) {
        return nullptr;
    }
}

bool WasUnlocked(const PdfMemDocument& document) {
    const auto* const first_page = dynamic_cast<const FirstPageDocument*>(&document);
    return first_page && first_page->unlocked;
}

std::unique_ptr<PdfMemDocument> SearchFirstPage(FileWindow& file) {
    try {
        PlainTables tables(file, SearchObjects(file));
        return Load(tables, true);
    } catch (const PdfError&) {
        return nullptr;
    }
}

}  // namespace VellumLib
