#include <MapAnchor/BReadingOptions.h>

#include "ReadingOptionsState.h"

#include <MapAnchor/BMapAnchor.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BParamList;
using Tellurion::BSharedPtr;
using Tellurion::BString;
using Tellurion::EMathTransformType;
using Tellurion::EReferenceType;

namespace {

constexpr int kCropBox = 4;
constexpr int kMediaBox = 5;
constexpr double kPointsPerInch = 72.0;

}  // namespace

BReadingOptions::BReadingOptions() {
    // Never destroyed: a host may read from its own static destructors.
    static const auto* const plain = [] {
        auto state = std::make_shared<ReadingOptionsState>();
        state->params.SetInteger(BMapAnchor::kValPDFWide, 1);
        return new std::shared_ptr<const ReadingOptionsState>(std::move(state));
    }();
    state_ = *plain;
}

const ReadingOptionsState& BReadingOptions::GetState() const {
    return *state_;
}

BReadingOptions::BReadingOptions(const BReadingOptions&) = default;
BReadingOptions& BReadingOptions::operator=(const BReadingOptions&) = default;
BReadingOptions::~BReadingOptions() = default;

ReadingOptionsState& BReadingOptions::Change() {
    auto copy = std::make_shared<ReadingOptionsState>(*state_);
    ReadingOptionsState& state = *copy;
    state_ = std::move(copy);
    return state;
}

void BReadingOptions::SetType(EReferenceType type) {
    ReadingOptionsState& state = Change();
    state.has_type = true;
    state.type = type;
}

bool BReadingOptions::HasType() const {
    return state_->has_type;
}

EReferenceType BReadingOptions::GetType() const {
    return state_->type;
}

void BReadingOptions::SetFlags(unsigned int flags) {
    Change().flags = flags;
}

unsigned int BReadingOptions::GetFlags() const {
    return state_->flags;
}

void BReadingOptions::SetSize(long width, long height) {
    ReadingOptionsState& state = Change();
    state.width = std::max(width, 0L);
    state.height = std::max(height, 0L);
}

long BReadingOptions::GetWidth() const {
    return state_->width;
}

long BReadingOptions::GetHeight() const {
    return state_->height;
}

void BReadingOptions::SetFindsSize(bool finds) {
    Change().finds_size = finds;
}

bool BReadingOptions::FindsSize() const {
    return state_->finds_size;
}

void BReadingOptions::SetMathType(EMathTransformType type) {
    Change().math_type = type;
}

EMathTransformType BReadingOptions::GetMathType() const {
    return state_->math_type;
}

void BReadingOptions::SetSource(const BString& name) {
    Change().source = name;
}

BString BReadingOptions::GetSource() const {
    return state_->source;
}

void BReadingOptions::SetCoordSys(const BSharedPtr<BCoordSys>& system, bool overrides) {
    ReadingOptionsState& state = Change();
    state.system = system;
    state.overrides_system = overrides;
}

BSharedPtr<BCoordSys> BReadingOptions::GetCoordSys() const {
    return state_->system;
}

bool BReadingOptions::OverridesCoordSys() const {
    return state_->overrides_system;
}

void BReadingOptions::SetPdfBox(int box) {
    Change().params.SetInteger(BMapAnchor::kValPDFCropType, box);
}

int BReadingOptions::GetPdfBox() const {
    return state_->params.GetInteger(BMapAnchor::kValPDFCropType, state_->pdf_shown ? kCropBox : kMediaBox);
}

void BReadingOptions::SetResolution(double dotsPerInch) {
    Change().params.SetDouble(BMapAnchor::kValPDFResolution, dotsPerInch);
}

double BReadingOptions::GetResolution() const {
    return state_->params.GetDouble(BMapAnchor::kValPDFResolution, kPointsPerInch);
}

void BReadingOptions::SetPdfPage(int page) {
    ReadingOptionsState& state = Change();
    state.pdf_page = page;
    state.params.SetInteger(BMapAnchor::kValPDFPage, page);
}

int BReadingOptions::GetPdfPage() const {
    return state_->pdf_page;
}

void BReadingOptions::SetPdfMap(const BString& map) {
    ReadingOptionsState& state = Change();
    state.pdf_map = map;
    state.params.SetString(BMapAnchor::kValPDFMap, map);
}

BString BReadingOptions::GetPdfMap() const {
    return state_->pdf_map;
}

void BReadingOptions::SetPdfShown(bool shown) {
    ReadingOptionsState& state = Change();
    state.pdf_shown = shown;
    state.params.SetInteger(BMapAnchor::kValPDFShown, shown ? 1 : 0);
}

bool BReadingOptions::IsPdfShown() const {
    return state_->pdf_shown;
}

void BReadingOptions::SetListsPdfPages(bool lists) {
    Change().lists_pdf_pages = lists;
}

bool BReadingOptions::ListsPdfPages() const {
    return state_->lists_pdf_pages;
}

void BReadingOptions::SetPdfStrict(bool strict) {
    ReadingOptionsState& state = Change();
    state.pdf_strict = strict;
    state.params.SetInteger(BMapAnchor::kValPDFWide, strict ? 0 : 1);
}

bool BReadingOptions::IsPdfStrict() const {
    return state_->pdf_strict;
}

void BReadingOptions::SetReadsHeaders(bool reads) {
    Change().reads_headers = reads;
}

bool BReadingOptions::ReadsHeaders() const {
    return state_->reads_headers;
}

void BReadingOptions::SetExplains(bool explains) {
    Change().explains = explains;
}

bool BReadingOptions::Explains() const {
    return state_->explains;
}

void BReadingOptions::SetGdalDrivers(const BString& names) {
    Change().params.SetString(BMapAnchor::kValGdalDrivers, names);
}

BParamList BReadingOptions::GetParams() const {
    return state_->params;
}

void BReadingOptions::SetParam(const BString& key, const BString& value) {
    Change().params.SetString(key, value);
}

}  // namespace MapAnchor
