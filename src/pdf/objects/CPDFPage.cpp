#include "objects/CPDFPage.h"

#include "load/PageTree.h"
#include "objects/CPDFArray.h"
#include "objects/CPDFDictionary.h"
#include "objects/CPDFDocument.h"
#include "objects/CPDFObject.h"
#include "objects/CPDFXObject.h"
#include "objects/PdfText.h"

#include <cmath>

namespace VellumLib {

using PoDoFo::PdfName;
using PoDoFo::PdfObject;

namespace {

/// Through a reference or held directly.
CPDFDictionary EitherWay(CPDFDocument& document, const CPDFDictionary& holder, const char* key) {
    try {
        return document.GetDictionaryFromReference(holder.GetReference(key));
    } catch (const PoDoFo::PdfError&) {
        return holder.GetDictionary(key);
    }
}

bool NamesSystem(const CPDFDictionary& system) {
    return system.HasKey("Type") && (system.HasKey("WKT") || system.HasKey("EPSG"));
}

bool IsUsable(CPDFDocument& document, const CPDFDictionary& viewport) {
    constexpr int kFewestNumbers = 8;
    const CPDFDictionary measure = EitherWay(document, viewport, "Measure");
    if (!measure.HasKey("GCS") || !measure.HasKey("GPTS") || !measure.HasKey("LPTS")) return false;
    const bool enough = measure.GetArray("GPTS").GetSize() >= kFewestNumbers;
    const CPDFDictionary system = EitherWay(document, measure, "GCS");
    return enough && NamesSystem(system);
}

/// The first entry alone decides, whatever the others hold.
bool HasUsableViewport(CPDFDocument& document, const CPDFDictionary& page) {
    if (!page.HasKey("VP")) return false;
    const CPDFArray viewports = page.GetArray("VP");
    if (viewports.GetSize() == 0) return false;
    const CPDFObject first = viewports[0];
    if (!first.IsDictionary()) return false;
    const CPDFDictionary viewport = first.GetDictionary();
    return viewport.HasKey("Measure") && IsUsable(document, viewport);
}

}  // namespace

CPDFPage::CPDFPage(CPDFDocument* document, int index) : document_(document) {
    if (index < 0) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_PageNotFound);
    RequireReachablePage(document_->Document(), index);
    page_ = document_->Document().GetPage(index);
    if (!page_ || !page_->GetObject() || !page_->GetObject()->IsDictionary())
        PODOFO_RAISE_ERROR(PoDoFo::ePdfError_PageNotFound);
    objects_ = &document_->Document().GetObjects();
    const PdfObject* resources = page_->GetObject()->GetDictionary().GetKey(PdfName("Resources"));
    if (!resources || !resources->IsDictionary()) return;
    properties_ = FollowKey(*objects_, *resources, PdfName("Properties"));
    x_object_resources_ = FollowKey(*objects_, *resources, PdfName("XObject"));
}

CPDFPage::CPDFPage(const CPDFPage& other)
    : CPDFCanvas(other),
      page_(other.page_),
      properties_(other.properties_),
      document_(other.document_),
      clear_on_flush_(other.clear_on_flush_) {}

CPDFPage::~CPDFPage() = default;

CPDFDictionary CPDFPage::GetDictionary() const {
    return CPDFDictionary(*page_->GetObject());
}

std::vector<double> CPDFPage::GetBox(int selector) const {
    static constexpr const char* kOwnKeys[] = {"MediaBox", "CropBox", "BleedBox", "TrimBox", "ArtBox"};
    const bool known = selector > 0 && selector < 5;
    std::vector<const char*> keys;
    if (known) keys.push_back(kOwnKeys[selector]);
    if (known && selector > 1) keys.push_back("CropBox");
    keys.push_back("MediaBox");
    const CPDFDictionary dictionary = GetDictionary();
    for (const char* key : keys) {
        if (!dictionary.HasKey(key)) continue;
        const CPDFArray array = dictionary.GetArray(key);
        std::vector<double> box;
        box.reserve(static_cast<std::size_t>(array.GetSize()));
        for (int i = 0; i < array.GetSize(); ++i)
            box.push_back(array[i].GetReal());
        return box;
    }
    return {};
}

std::vector<double> CPDFPage::GetMediaBox() const {
    return GetBox(0);
}
std::vector<double> CPDFPage::GetCropBox() const {
    return GetBox(1);
}
std::vector<double> CPDFPage::GetBleedBox() const {
    return GetBox(2);
}
std::vector<double> CPDFPage::GetTrimBox() const {
    return GetBox(3);
}
std::vector<double> CPDFPage::GetArtBox() const {
    return GetBox(4);
}

int CPDFPage::GetRotation() const {
    constexpr int kMostLevels = 256;  // parents may stand in a circle
    constexpr int kFullTurn = 360;
    const PdfObject* node = page_->GetObject();
    const PdfObject* value = nullptr;
    for (int level = 0; node && !value && level < kMostLevels; ++level) {
        value = FollowKey(*objects_, *node, PdfName("Rotate"));
        node = FollowKey(*objects_, *node, PdfName("Parent"));
    }
    if (!value || !(value->IsNumber() || value->IsReal())) return 0;
    const double turn = std::fmod(value->GetReal(), kFullTurn);
    const int degrees = std::isfinite(turn) ? static_cast<int>(turn) : 0;
    return degrees < 0 ? degrees + kFullTurn : degrees;
}

double CPDFPage::GetUserUnit() const {
    const PdfObject* value = FollowKey(*objects_, *page_->GetObject(), PdfName("UserUnit"));
    return value && (value->IsNumber() || value->IsReal()) ? value->GetReal() : 1.0;
}

QString CPDFPage::GetPropertyTitle(const QString& resource_name) const {
    if (!properties_) PODOFO_RAISE_ERROR(PoDoFo::ePdfError_InvalidKey);
    if (resource_name.isEmpty()) return QString();
    PdfObject* entry = FollowKey(*objects_, *properties_, ToPdfName(resource_name));
    if (!entry) return QString();
    const CPDFDictionary dictionary(entry->GetDictionary());
    for (const char* key : {"Name", "Title"}) {
        const PdfObject* value = dictionary.GetKey(key);
        if (value && (value->IsString() || value->IsHexString()))
            return QString::fromUtf8(CPDFString(value->GetString()).ToStdString().c_str());
    }
    return QString();
}

std::size_t CPDFPage::GetContentsLength() const {
    return CountDecodedBytes(FollowKey(*objects_, *page_->GetObject(), PdfName("Contents")));
}

CPDFCanvas& CPDFPage::Top() {
    if (entered_.empty()) return *this;
    return *entered_.back();
}

std::int32_t CPDFPage::GetNextStatement(CPDFStatement& statement) {
    if (pending_ && visited_.insert(pending_->GetObjectNumber()).second)
        entered_.push_back(std::move(pending_));
    std::int32_t kind = Top().NextStatement(statement);
    while (kind == StatementEnd && !entered_.empty()) {
        Top().FlushContents();
        entered_.pop_back();
        kind = Top().NextStatement(statement);
    }
    return kind;
}

void CPDFPage::FlushTopCanvas() {
    Top().FlushContents();
}

void CPDFPage::OpenContents() {
    if (tokenizer_) return;
    const PdfObject* contents = FollowKey(*objects_, *page_->GetObject(), PdfName("Contents"));
    tokenizer_ = std::make_unique<ContentTokenizer>(DecodeContents(objects_, contents));
}

void CPDFPage::WriteStatement(const CPDFStatement& statement) {
    output_.push_back(statement.ToText());
}

void CPDFPage::WriteText(const QString& text) {
    output_.push_back(text);
}

/// With nothing to write and nothing to clear the content stays untouched: it may be
/// an array of streams, which cannot be appended to as one.
void CPDFPage::FlushContents() {
    if (output_.empty() && !clear_on_flush_) return;
    PoDoFo::PdfStream* stream = page_->GetContents()->GetStream();
    stream->BeginAppend(clear_on_flush_);
    for (const QString& line : output_)
        stream->Append(line.toLatin1().toStdString());
    stream->EndAppend();
    output_.clear();
}

std::int32_t CPDFPage::GetSpatialKind() const {
    const CPDFDictionary page = GetDictionary();
    if (HasUsableViewport(*document_, page)) return kSpatialMeasure;
    return page.HasKey("LGIDict") ? kSpatialLGIDict : kSpatialNone;
}

}  // namespace VellumLib
