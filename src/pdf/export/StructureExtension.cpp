#include "export/StructureExtension.h"

#include "export/StructureElementNames.h"
#include "export/StructureState.h"
#include "export/ViewportText.h"
#include "load/DictionaryText.h"
#include "objects/CPDFPage.h"

#include <Tellurion/BLogger.h>

#include <QObject>

#include <limits>
#include <map>
#include <memory>
#include <vector>

namespace MapAnchor {

using PoDoFo::PdfDictionary;
using PoDoFo::PdfError;
using PoDoFo::PdfObject;
using PoDoFo::PdfReference;
using PoDoFo::PdfVecObjects;
using Tellurion::BString;
using VellumLib::CPDFDictionary;
using VellumLib::CPDFDocument;
using VellumLib::CrossReferences;
using VellumLib::DictionaryText;
using VellumLib::FileWindow;
using VellumLib::IncrementalUpdate;
using VellumLib::StructureState;
using Names = VellumLib::StructureElementNames;

namespace {

/// True, since there is a structure.
bool Keep(const std::string& fault) {
    Tellurion::BLogger::Instance()->Write(
        Tellurion::ELogSeverity::Warning,
        BString("pdf-tagged: the logical structure of the file stays as it is, without an element for the "
                "map: ") +
            BString(fault));
    return true;
}

// In a document.

/// The value of the key, or what it refers to; null where that is neither.
PdfObject* Entry(PdfVecObjects& objects, PdfDictionary& holder, const char* key) {
    PdfObject* const value = holder.GetKey(key);
    return value && value->IsReference() ? objects.GetObject(value->GetReference()) : value;
}

void AppendKid(PdfVecObjects& objects, PdfDictionary& parent, const PdfReference& element) {
    PdfObject* const kids = Entry(objects, parent, "K");
    if (kids && kids->IsArray()) return kids->GetArray().push_back(PdfObject(element));
    PoDoFo::PdfArray array;
    if (kids && !kids->IsNull()) array.push_back(*parent.GetKey("K"));
    array.push_back(PdfObject(element));
    parent.AddKey("K", array);
}

void WriteElement(CPDFDictionary& element, const CPDFDictionary& page, const BString& system_name) {
    element.AddName("Type", "StructElem");
    element.AddName("S", Names::kType);
    element.AddUnicodeString("T", Names::kTitle);
    element.AddReference("Pg", page);
    CPDFDictionary attributes = element.AddNewDictionary("A");
    attributes.AddName("O", Names::kOwner);
    CPDFDictionary property = attributes.AddNewArray("P").InsertNewDictionary(0);
    property.AddUnicodeString("N", QObject::tr(Names::kProperty));
    property.AddUnicodeString("V", QString::fromUtf8(system_name.Utf8()));
}

/// Viewers look for user properties where the file says that there are any.
void AnnounceProperties(PdfVecObjects& objects, CPDFDictionary catalog, PdfDictionary& keys) {
    PdfObject* const info = Entry(objects, keys, "MarkInfo");
    if (info && info->IsDictionary())
        info->GetDictionary().AddKey("UserProperties", PdfObject(true));
    else
        catalog.AddNewDictionary("MarkInfo").AddBool("UserProperties", true);
}

// In an update.

std::string AttributesText(const BString& system_name) {
    const BString name(QObject::tr(Names::kProperty).toUtf8().constData());
    std::string text("<< /O /");
    text.append(Names::kOwner).append(" /P [ << /N ").append(StringText(name));
    return text.append(" /V ").append(StringText(system_name)).append(" >> ] >>");
}

std::string ElementText(const PdfReference& parent, const PdfReference& page, const BString& system_name) {
    std::string text("<< /Type /StructElem /S /");
    text.append(Names::kType).append(" /T (").append(Names::kTitle).append(")\n/P ");
    text.append(ReferenceText(parent)).append(" /Pg ").append(ReferenceText(page)).append("\n/A ");
    return text.append(AttributesText(system_name)).append(" >>");
}

/// The objects of a file that are asked for, each kept once it is read.
class ObjectShelf {
public:
    // What the walk costs is not charged to the references that the update needs.
    explicit ObjectShelf(FileWindow& file) : references_(file) {}

    /// Null for one that the file does not have.
    const PdfObject* Find(const PdfReference& reference) {
        if (const auto known = objects_.find(reference); known != objects_.end()) return known->second.get();
        auto object = std::make_unique<PdfObject>(reference, nullptr);
        try {
            references_.Read(*object);
        } catch (const PdfError& error) {
            if (error.GetError() != PoDoFo::ePdfError_NoObject) throw;
            object.reset();
        }
        return (objects_[reference] = std::move(object)).get();
    }

private:
    CrossReferences references_;
    std::map<PdfReference, std::unique_ptr<PdfObject>> objects_;
};

/// Objects that an update changes, put into it when all of them are known.
class UpdateOfStructure {
public:
    UpdateOfStructure(IncrementalUpdate& update, CrossReferences& references)
        : update_(update), references_(references) {}

    void Renew(const PdfReference& own, const BString& system_name) {
        DictionaryText element(references_.TextOf(own));
        element.Set("A", AttributesText(system_name));
        Change(own, element.Text());
    }

    /// One more kid of its parent.
    void Add(const StructureState& state, const PdfReference& page, const BString& system_name) {
        DictionaryText parent(references_.TextOf(state.parent));
        std::string kids = state.kids ? references_.TextOf(*state.kids) : parent.Value("K");
        if (!state.has_kids) kids.clear();
        if (!state.kids && (kids.empty() || kids.front() != '[')) kids = "[ " + kids + " ]";
        const PdfReference element = update_.NewObject();
        kids = VellumLib::ArrayTextWith(kids, ReferenceText(element));
        if (!state.kids) parent.Set("K", kids);
        Change(state.kids.value_or(state.parent), state.kids ? kids : parent.Text());
        Change(element, ElementText(state.parent, page, system_name));
    }

    void AnnounceProperties(const PdfReference& catalog, const PdfDictionary& keys, ObjectShelf& shelf) {
        const PdfObject* const entry = keys.GetKey("MarkInfo");
        const bool is_apart = entry && entry->IsReference();
        const PdfObject* const info = is_apart ? shelf.Find(entry->GetReference()) : entry;
        const bool is_there = info && info->IsDictionary();
        if (is_there && info->GetDictionary().GetKeyAsBool("UserProperties", false)) return;
        DictionaryText all(references_.TextOf(catalog));
        DictionaryText marks(!is_there  ? "<< >>"
                             : is_apart ? references_.TextOf(entry->GetReference())
                                        : all.Value("MarkInfo"));
        marks.Set("UserProperties", "true");
        if (is_there && is_apart) return Change(entry->GetReference(), marks.Text());
        all.Set("MarkInfo", marks.Text());
        Change(catalog, all.Text());
    }

    void Put() const {
        for (const auto& [reference, body] : changes_)
            update_.Put(reference, body);
    }

private:
    void Change(const PdfReference& reference, std::string body) {
        changes_.emplace_back(reference, std::move(body));
    }

    IncrementalUpdate& update_;
    CrossReferences& references_;
    std::vector<std::pair<PdfReference, std::string>> changes_;
};

}  // namespace

bool ExtendStructure(CPDFDocument& document, int page, const BString& system_name) {
    PdfVecObjects& objects = document.Document().GetObjects();
    CPDFDictionary catalog = document.GetCatalog();
    const CPDFDictionary page_keys = document.GetPage(page).GetDictionary();
    const StructureState state = VellumLib::LookAtStructure(
        catalog.Container(), page_keys.Object()->Reference(),
        [&objects](const PdfReference& reference) { return objects.GetObject(reference); },
        std::numeric_limits<std::size_t>::max());
    if (!state.present) return false;
    if (!state.fault.empty()) return Keep(state.fault);
    CPDFDictionary element =
        state.own ? document.GetDictionaryFromReference(*state.own) : document.CreateDictionary();
    if (!state.own) {
        element.AddReference("P", document.GetDictionaryFromReference(state.parent));
        AppendKid(objects, objects.GetObject(state.parent)->GetDictionary(), element.Object()->Reference());
    }
    WriteElement(element, page_keys, system_name);
    AnnounceProperties(objects, catalog, document.Document().GetCatalog()->GetDictionary());
    return true;
}

bool ExtendStructure(IncrementalUpdate& update, CrossReferences& references, FileWindow& file,
                     const PdfReference& page, const BString& system_name, bool adds) {
    // Reading all of a large tree would cost more than the update.
    constexpr std::size_t kMaxElements = 2'000;
    try {
        const PdfObject* const entry = references.Trailer().GetKey("Root");
        if (!entry || !entry->IsReference()) return false;
        ObjectShelf shelf(file);
        const PdfObject* const catalog = shelf.Find(entry->GetReference());
        if (!catalog || !catalog->IsDictionary()) return false;
        const PdfDictionary& keys = catalog->GetDictionary();
        const StructureState state = VellumLib::LookAtStructure(
            keys, page, [&shelf](const PdfReference& reference) { return shelf.Find(reference); },
            kMaxElements);
        if (!state.present) return false;
        if (!state.fault.empty()) return Keep(state.fault);
        UpdateOfStructure changes(update, references);
        changes.AnnounceProperties(entry->GetReference(), keys, shelf);
        if (state.own && !adds)
            changes.Renew(*state.own, system_name);
        else
            changes.Add(state, page, system_name);
        changes.Put();
        return true;
    } catch (const PdfError&) {
        return Keep("a part of it cannot be read");
    }
}

}  // namespace MapAnchor
