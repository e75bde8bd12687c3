#include "ReferenceFormats.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReferenceFormats.h>

#include "BRefGeoPDF.h"
#include "raster/adrg/BRefADRG.h"
#include "raster/cadrg/BRefCADRG.h"
#include "raster/doqq/BRefDOQQ.h"
#include "raster/ecw/BRefECW.h"
#include "raster/geotiff/BRefGeoTIFF.h"
#include "raster/kap/BRefKAP.h"
#include "raster/mrsid/BRefMrSID.h"
#include "sidecar/auxxml/BRefAuxXml.h"
#include "sidecar/ers/BRefERS.h"
#include "sidecar/kml/BRefKml.h"
#include "sidecar/points/BRefPoints.h"
#include "sidecar/rsf/BRefRSF.h"
#include "sidecar/tab/BRefTAB.h"
#include "sidecar/vrt/BRefVrt.h"
#include "sidecar/wld/BRefWLD.h"

#include <Tellurion/BFileUtilities.h>

#include <algorithm>

namespace MapAnchor {

using Tellurion::BGeoReference;
using Tellurion::BParamList;
using Tellurion::BString;
using Tellurion::EMathTransformType;
using Tellurion::EReferenceType;

namespace {

std::vector<ReferenceFormat> MakeTable() {
    return {BRefRSF::Format(),    BRefWLD::Format(),         BRefGeoTIFF::Format(), BRefTAB::Format(),
            BRefERS::Format(),    BRefDOQQ::Format(),        BRefKAP::Format(),     BRefMrSID::Format(),
            BRefECW::Format(),    BRefECW::Jpeg2000Format(), BRefCADRG::Format(),   BRefADRG::Format(),
            BRefGeoPDF::Format(), BRefPoints::Format(),      BRefAuxXml::Format(),  BRefVrt::Format(),
            BRefKml::Format()};
}

bool Holds(const std::vector<std::u16string_view>& extensions, std::u16string_view extension) {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

template <class Matches>
const ReferenceFormat* FindFormat(Matches matches) {
    const auto& table = ReferenceFormatTable();
    const auto found = std::find_if(table.begin(), table.end(), matches);
    return found == table.end() ? nullptr : &*found;
}

std::vector<BString> Texts(const std::vector<std::u16string_view>& extensions) {
    std::vector<BString> texts;
    texts.reserve(extensions.size());
    for (const auto extension : extensions)
        texts.emplace_back(std::u16string(extension));
    return texts;
}

bool IsKept(Keeps keeps, bool by_type) {
    return keeps == Keeps::Always || keeps == (by_type ? Keeps::ByType : Keeps::ByName);
}

/// The whole of a name is no ending: ".points" is a hidden file without one.
BString LowerName(const BString& file) {
    return Tellurion::BFileUtilities::GetFileName(file).ToLower();
}

bool IsTypedName(const ReferenceFormat& format, std::u16string_view name) {
    return std::any_of(
        format.typed_extensions.begin(), format.typed_extensions.end(),
        [name](std::u16string_view ending) { return name.size() > ending.size() && name.ends_with(ending); });
}

/// Some rows only answer for others.
bool IsServed(const ReferenceFormat& format) {
    return (format.typed_read && !format.refuses_typed_read) || format.named_read || format.probe.rank > 0 ||
           (format.typed_save && !format.refuses_save);
}

}  // namespace

const std::vector<ReferenceFormat>& ReferenceFormatTable() {
    static const std::vector<ReferenceFormat> table = MakeTable();
    return table;
}

const std::vector<const ReferenceFormat*>& ProbedFormats() {
    static const std::vector<const ReferenceFormat*> probed = [] {
        std::vector<const ReferenceFormat*> formats;
        for (const ReferenceFormat& format : ReferenceFormatTable())
            if (format.probe.rank > 0) formats.push_back(&format);
        std::sort(formats.begin(), formats.end(),
                  [](const auto* a, const auto* b) { return a->probe.rank < b->probe.rank; });
        return formats;
    }();
    return probed;
}

bool IsPlainRasterExtension(std::u16string_view extension) {
    static constexpr std::u16string_view kPlain[] = {u".jpg", u".jpeg", u".png", u".bmp",
                                                     u".bsq", u".bil",  u".gif"};
    return std::find(std::begin(kPlain), std::end(kPlain), extension) != std::end(kPlain);
}

const ReferenceFormat* FindFormatByType(EReferenceType type) {
    if (type == EReferenceType::Reserved) return nullptr;
    return FindFormat([type](const auto& format) { return format.type == type; });
}

const ReferenceFormat* FindFormatByTypedName(const BString& file) {
    const BString name = LowerName(file);
    return FindFormat(
        [&name](const ReferenceFormat& format) { return IsTypedName(format, name.GetUnits()); });
}

const ReferenceFormat* FindFormatToRead(std::u16string_view extension) {
    return FindFormat([extension](const auto& format) { return Holds(format.read_extensions, extension); });
}

const ReferenceFormat* ReadByName(const ReferenceFormat& format, const ReadCall& call) {
    if (!format.named_read) return nullptr;
    if (format.named_read(call)) return &format;
    const std::string_view second = format.second_reader ? format.second_reader : "";
    const ReferenceFormat* other = FindFormat([second](const auto& row) { return row.name == second; });
    return other && other->named_read(call) ? other : nullptr;
}

const ReferenceFormat* FindFormatToSave(std::u16string_view extension) {
    return FindFormat([extension](const auto& format) { return Holds(format.save_extensions, extension); });
}

std::vector<BReferenceFormat> BReferenceFormats::List() {
    std::vector<BReferenceFormat> list;
    for (const ReferenceFormat& format : ReferenceFormatTable())
        if (IsServed(format)) list.push_back(BReferenceFormat(format));
    return list;
}

BString BReferenceFormats::Read(const BString& file, BGeoReference& reference, BString& usedFile, long width,
                                long height, EMathTransformType mathType, const BParamList* params) {
    return BMapAnchor::ReadAndName(file, reference, usedFile, width, height, mathType, params);
}

BString BReferenceFormat::GetName() const {
    return row_->name;
}

BString BReferenceFormat::GetTitle() const {
    return row_->title;
}

EReferenceType BReferenceFormat::GetType() const {
    return row_->type;
}

bool BReferenceFormat::HasType() const {
    return row_->type != EReferenceType::Reserved;
}

bool BReferenceFormat::ReadsByType() const {
    return row_->typed_read && !row_->refuses_typed_read;
}

bool BReferenceFormat::SavesByType() const {
    return row_->typed_save && !row_->refuses_save;
}

std::vector<BString> BReferenceFormat::GetReadExtensions() const {
    return row_->named_read ? Texts(row_->read_extensions) : std::vector<BString>();
}

std::vector<BString> BReferenceFormat::GetSaveExtensions() const {
    return row_->named_save ? Texts(row_->save_extensions) : std::vector<BString>();
}

bool BReferenceFormat::IsNamedByType(const BString& file) const {
    return IsTypedName(*row_, LowerName(file).GetUnits());
}

std::vector<BString> BReferenceFormat::GetTypedExtensions() const {
    return Texts(row_->typed_extensions);
}

bool BReferenceFormat::IsProbed() const {
    return row_->probe.rank > 0;
}

BString BReferenceFormat::GetServedBy() const {
    return row_->served_by ? BString(row_->served_by) : BString();
}

bool BReferenceFormat::IsCentreAnchored() const {
    return row_->centre_anchored;
}

bool BReferenceFormat::IsSidecar() const {
    return row_->sidecar;
}

bool BReferenceFormat::SavesInPlace() const {
    return row_->in_place;
}

bool BReferenceFormat::HoldsCoordSys(bool byType) const {
    return IsKept(row_->coord_sys, byType);
}

bool BReferenceFormat::HoldsVerticalUnit(bool byType) const {
    return IsKept(row_->vertical_unit, byType);
}

bool BReferenceFormat::HoldsRotation() const {
    return row_->rotation;
}

bool BReferenceFormat::HoldsPoints() const {
    return row_->points;
}

bool BReferenceFormat::HoldsDisabledPoints() const {
    return row_->disabled_points;
}

bool BReferenceFormat::HasOwnSystemNames() const {
    return row_->own_system_names;
}

bool BReferenceFormat::NeedsCoordSys() const {
    return row_->needs_coord_sys;
}

bool BReferenceFormat::NeedsRasterSize() const {
    return row_->needs_size;
}

bool BReferenceFormat::StatesRasterSize() const {
    return row_->states_size;
}

bool BReferenceFormat::NamesRaster() const {
    return row_->names_image;
}

BString BReferenceFormat::GetMissing() const {
    const char* const missing = row_->missing ? row_->missing() : nullptr;
    return missing ? BString(missing) : BString();
}

}  // namespace MapAnchor
