#include "load/PageTree.h"

#include "load/LoadBudget.h"

#include <cstdint>
#include <limits>
#include <set>

namespace VellumLib {

namespace {

using namespace PoDoFo;

// Short of the 256 levels at which PoDoFo gives up.
constexpr std::size_t kDeepestTree = 200;

bool HasType(const PdfObject& node, const char* type) {
    return node.GetIndirectKeyAsName("Type") == type;
}

std::int64_t PagesBelow(const PdfObject& node) {
    const PdfObject* const count = node.GetIndirectKey("Count");
    return count && count->IsNumber() ? static_cast<int>(count->GetNumber()) : 0;
}

/// The inner node that the search for page `wanted` below `node` enters, by the rules
/// of PoDoFo; `wanted` counts within it from then on. Null where the search ends.
const PdfObject* NextNode(const PdfVecObjects& objects, const PdfObject& node, std::int64_t& wanted) {
    const PdfObject* const kids = node.GetIndirectKey("Kids");
    if (!kids || !kids->IsArray() || PagesBelow(node) <= wanted) return nullptr;
    for (const PdfObject& entry : kids->GetArray()) {
        const PdfObject* const kid = entry.IsReference() ? objects.GetObject(entry.GetReference()) : nullptr;
        if (!kid) return nullptr;
        if (HasType(*kid, "Pages")) {
            const std::int64_t pages = PagesBelow(*kid);
            if (pages > wanted) return kid;
            wanted -= pages;
        } else if (!HasType(*kid, "Page") || wanted == 0) {
            return nullptr;
        } else if (wanted > 0) {
            --wanted;
        }
        if (wanted >= std::numeric_limits<int>::max())
            RefusePdf(ePdfError_PageNotFound, "The page tree counts too many pages.");
    }
    return nullptr;
}

}  // namespace

void RequireReachablePage(PdfMemDocument& document, int index) {
    const PdfPagesTree* const tree = document.GetPagesTree();
    std::set<const PdfObject*> entered;
    std::int64_t wanted = index;
    const PdfObject* node = tree ? tree->GetObject() : nullptr;
    while (node) {
        if (entered.size() == kDeepestTree || !entered.insert(node).second)
            RefusePdf(ePdfError_PageNotFound, "The page tree is too deep.");
        node = NextNode(document.GetObjects(), *node, wanted);
    }
}

}  // namespace VellumLib
