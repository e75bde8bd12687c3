#include "import/RefusedForm.h"

#include "import/CLGIProjection.h"

#include "objects/CPDFDictionary.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFPage.h"

#include <podofo/podofo.h>

namespace VellumLib {
namespace {

using PoDoFo::PdfObject;

/// The file's own dictionaries, references followed: what is there, not what may be.
class Look {
public:
    explicit Look(const PdfObject* object) : object_(object) {}

    Look Key(const char* key) const {
        const PdfObject* here = Resolved();
        return Look(here && here->IsDictionary() ? here->GetDictionary().GetKey(PoDoFo::PdfName(key))
                                                 : nullptr);
    }
    Look First() const {
        const PdfObject* here = Resolved();
        return Look(here && here->IsArray() && !here->GetArray().empty() ? &here->GetArray()[0] : nullptr);
    }
    bool IsHere() const { return object_ != nullptr; }
    bool IsReference() const { return object_ && object_->IsReference(); }
    bool IsDirectDictionary() const { return object_ && object_->IsDictionary(); }
    bool IsDirectArray() const { return object_ && object_->IsArray(); }
    bool IsEmptyArray() const { return IsDirectArray() && object_->GetArray().empty(); }
    bool IsString() const { return object_ && (object_->IsString() || object_->IsHexString()); }
    bool IsNumber() const { return object_ && (object_->IsNumber() || object_->IsReal()); }
    bool IsDictionary() const {
        const PdfObject* here = Resolved();
        return here && here->IsDictionary();
    }

private:
    const PdfObject* Resolved() const {
        if (!IsReference()) return object_;
        PoDoFo::PdfVecObjects* owner = object_->GetOwner();
        return owner ? owner->GetObject(object_->GetReference()) : nullptr;
    }

    const PdfObject* object_;
};

std::string ExplainViewport(const Look& viewport) {
    const Look measure = viewport.Key("Measure");
    if (measure.IsDirectDictionary())
        return "\"Measure\" is expected to be a reference to a dictionary of its own; here the dictionary "
               "stands in the viewport itself.";
    if (measure.Key("GCS").IsDirectDictionary())
        return "\"GCS\" is expected to be a reference to a dictionary of its own; here the dictionary stands "
               "in \"Measure\" itself.";
    if (!measure.Key("Bounds").IsHere())
        return "\"Measure\" is expected to hold \"Bounds\", the outline of the map; here it is missing.";
    return {};
}

std::string ExplainProjection(const Look& projection) {
    if (projection.IsReference())
        return "\"Projection\" is expected to be a dictionary in place; here it is a reference.";
    const Look zone = projection.Key("Zone");
    if (zone.IsString()) return "\"Zone\" is expected to be a whole number; here it is a string.";
    for (const auto& [number, key] : LGIParameterKeys()) {
        const Look value = projection.Key(key.c_str());
        if (number == kType || number == kZone || !value.IsHere() || value.IsString()) continue;
        return "\"" + key + "\" of the projection is expected to be a string; here it is " +
               (value.IsNumber() ? "a plain number." : "a value of another kind.");
    }
    return {};
}

std::string ExplainLGIDict(const Look& entry) {
    for (const char* key : {"CTM", "Neatline"})
        if (entry.Key(key).First().IsNumber())
            return std::string("\"") + key +
                   "\" is expected to be an array of numbers written as strings; here they are plain "
                   "numbers.";
    if (entry.Key("Registration").First().First().IsNumber())
        return "\"Registration\" is expected to hold numbers written as strings; here they are plain "
               "numbers.";
    return ExplainProjection(entry.Key("Projection"));
}

std::string ExplainViewports(const Look& viewports) {
    if (viewports.IsReference()) return "\"VP\" is expected to be an array in place; here it is a reference.";
    const Look first = viewports.First();
    if (first.IsReference())
        return "An entry of \"VP\" is expected to be a dictionary in place; here it is a reference.";
    return first.Key("Measure").IsHere() ? ExplainViewport(first) : std::string();
}

std::string ExplainLGIDicts(const Look& dicts) {
    if (dicts.IsEmptyArray())
        return "\"LGIDict\" is expected to hold at least one dictionary; here the array is empty.";
    if (dicts.IsDictionary())
        return std::string("\"LGIDict\" is expected to be an array of dictionaries; here ") +
               (dicts.IsReference() ? "a reference to one dictionary" : "one dictionary") +
               " stands in its place.";
    if (dicts.IsReference())
        return "\"LGIDict\" is expected to be an array in place; here it is a reference.";
    return ExplainLGIDict(dicts.First());
}

/// In the order in which a read would stumble.
std::string ExplainPage(const CPDFDictionary& page) {
    std::string text = ExplainViewports(Look(page.GetKey("VP")));
    const Look dicts(page.GetKey("LGIDict"));
    if (text.empty() && dicts.IsHere()) text = ExplainLGIDicts(dicts);
    if (!text.empty()) return text;
    const Look box(page.GetKey("MediaBox"));
    if (box.IsReference()) return "\"MediaBox\" is expected to be an array in place; here it is a reference.";
    if (!box.IsHere())
        return "The page is expected to have a \"MediaBox\" of its own; here it has none, or inherits it.";
    return {};
}

}  // namespace

std::string ExplainRefusedForm(CPDFDocument& document) {
    return ExplainPage(document.GetPage(0).GetDictionary());
}

}  // namespace VellumLib
