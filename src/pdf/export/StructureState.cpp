#include "export/StructureState.h"

#include "export/StructureElementNames.h"

#include <deque>
#include <set>

namespace VellumLib {

using PoDoFo::PdfDictionary;
using PoDoFo::PdfName;
using PoDoFo::PdfObject;
using PoDoFo::PdfReference;

namespace {

constexpr const char* kOddKids = "its root has kids that are not structure elements";

bool HasType(const PdfDictionary& dictionary, const char* type) {
    const PdfObject* const value = dictionary.GetKey("Type");
    return !value || (value->IsName() && value->GetName() == type);
}

class TreeWalk {
public:
    TreeWalk(const PdfReference& page, const ObjectLookup& find, StructureState& state)
        : page_(page), find_(find), state_(state) {}

    /// `marks` is what the catalog has for "MarkInfo", which is going to change as well.
    void From(const PdfObject& root, const PdfObject* marks, std::size_t max_elements) {
        seen_ = {state_.root, page_};
        if (root.IsReference() || state_.root == page_ || !root.IsDictionary() ||
            !HasType(root.GetDictionary(), "StructTreeRoot"))
            return Fail("its root is not the root of a structure tree");
        AddKids(root.GetDictionary(), true);
        const PdfDictionary* const top = OnlyKid(root.GetDictionary());
        const PdfObject* const entry = (top ? *top : root.GetDictionary()).GetKey("K");
        const PdfObject* const kids = Follow(entry);
        state_.has_kids = kids != nullptr;
        if (kids && kids->IsArray() && entry->IsReference()) state_.kids = entry->GetReference();
        for (std::size_t i = 0; i < max_elements && !open_.empty() && state_.fault.empty(); ++i) {
            const PdfDictionary& element = *open_.front();
            open_.pop_front();
            AddKids(element, false);
        }
        if (marks && marks->IsReference() && seen_.count(marks->GetReference()) > 0)
            Fail("the page or a part of it is the file's \"MarkInfo\", too");
    }

    /// The value, or what it refers to. Null for nothing.
    const PdfObject* Follow(const PdfObject* value) const {
        if (value && value->IsReference()) value = find_(value->GetReference());
        return value && !value->IsNull() ? value : nullptr;
    }

private:
    void Fail(const char* fault) { state_.fault = fault; }

    /// The one element below the root, which becomes the parent; null where there are more, or none.
    const PdfDictionary* OnlyKid(const PdfDictionary& root) {
        state_.parent = state_.root;
        const PdfObject* entry = root.GetKey("K");
        const PdfObject* const kids = Follow(entry);
        if (!kids || open_.size() != 1) return nullptr;
        if (kids->IsArray()) entry = kids->GetArray().size() == 1 ? &kids->GetArray()[0] : nullptr;
        const bool is_ours = open_.front()->GetKeyAsName("S") == StructureElementNames::kType;
        if (!entry || !entry->IsReference() || is_ours) return nullptr;
        state_.parent = entry->GetReference();
        return open_.front();
    }

    void AddKids(const PdfDictionary& holder, bool of_root) {
        const PdfObject* const entry = holder.GetKey("K");
        const PdfObject* const kids = Follow(entry);
        if (!kids) return;
        if (!kids->IsArray()) return AddKid(*entry, of_root);
        for (const PdfObject& kid : kids->GetArray())
            if (state_.fault.empty()) AddKid(kid, of_root);
    }

    /// An element, or below the root a piece of content.
    void AddKid(const PdfObject& entry, bool of_root) {
        const PdfObject* const kid = Follow(&entry);
        if (!kid || (!of_root && kid->IsNumber())) return;
        if (!kid->IsDictionary())
            return Fail(of_root ? kOddKids : "an element has kids that are neither elements nor content");
        const PdfDictionary& keys = kid->GetDictionary();
        if (!of_root && keys.HasKey("Type") && (HasType(keys, "MCR") || HasType(keys, "OBJR"))) return;
        if (!HasType(keys, "StructElem")) return Fail(kOddKids);
        if (entry.IsReference()) {
            if (!seen_.insert(entry.GetReference()).second)
                return Fail("an element is in it twice, or contains itself");
            if (IsOwn(keys)) state_.own = entry.GetReference();
        }
        open_.push_back(&keys);
    }

    bool IsOwn(const PdfDictionary& keys) const {
        const PdfObject* const page = keys.GetKey("Pg");
        const PdfObject* const title = keys.GetKey("T");
        const PdfObject* const attributes = keys.GetKey("A");
        return page && page->IsReference() && page->GetReference() == page_ &&
               keys.GetKeyAsName("S") == StructureElementNames::kType && title &&
               (title->IsString() || title->IsHexString()) &&
               title->GetString().GetStringUtf8() == StructureElementNames::kTitle && attributes &&
               attributes->IsDictionary() &&
               attributes->GetDictionary().GetKeyAsName("O") == StructureElementNames::kOwner;
    }

    const PdfReference& page_;
    const ObjectLookup& find_;
    StructureState& state_;
    std::deque<const PdfDictionary*> open_;
    std::set<PdfReference> seen_;
};

}  // namespace

StructureState LookAtStructure(const PdfDictionary& catalog, const PdfReference& page,
                               const ObjectLookup& find, std::size_t max_elements) {
    StructureState state;
    TreeWalk walk(page, find, state);
    const PdfObject* const entry = catalog.GetKey("StructTreeRoot");
    const PdfObject* const root = walk.Follow(entry);
    if (!root) return state;
    state.present = true;
    if (entry->IsReference())
        state.root = entry->GetReference();
    else
        state.fault = "its root is not an object of its own";
    if (state.fault.empty()) walk.From(*root, catalog.GetKey("MarkInfo"), max_elements);
    return state;
}

}  // namespace VellumLib
