#include "crs/CoordSysDefinition.h"

#include "crs/AuthalicSphere.h"
#include "crs/DefinitionCaches.h"
#include "crs/Identification.h"
#include "crs/NamedFiles.h"
#include "crs/UnitTable.h"
#include "crs/UtmZones.h"
#include "crs/WebMercatorText.h"
#include "crs/WktTexts.h"

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/Numbers.h>

#include <proj_experimental.h>

#include <algorithm>
#include <numbers>
#include <string>
#include <string_view>
#include <utility>

namespace Tellurion {
namespace {

constexpr int kWebMercator = 3857;

CoordSysDefinition::Kind KindOf(PJ* crs) {
    switch (proj_get_type(crs)) {
        case PJ_TYPE_GEOGRAPHIC_2D_CRS:
        case PJ_TYPE_GEOGRAPHIC_3D_CRS:
            return CoordSysDefinition::Kind::Geodetic;
        case PJ_TYPE_PROJECTED_CRS:
            return CoordSysDefinition::Kind::Projected;
        default:
            return CoordSysDefinition::Kind::Other;
    }
}

/// Without a shift to another datum; null when there is no such shift to leave out.
Proj::Object WithoutShift(PJ* crs) {
    if (proj_get_type(crs) != PJ_TYPE_BOUND_CRS) return nullptr;
    return Proj::Object(proj_get_source_crs(Proj::ThreadContext(), crs));
}

Proj::Object Clone(PJ* object) {
    return Proj::Object(proj_clone(Proj::ThreadContext(), object));
}

Proj::Object ReadWkt(std::string text) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    const std::string misleading(MisleadingName(text));
    if (!misleading.empty()) text.replace(text.find(misleading), misleading.size(), "unknown");
    Proj::Object read(proj_create_from_wkt(context, text.c_str(), nullptr, nullptr, nullptr));
    if (read && !misleading.empty()) read.reset(proj_alter_name(context, read.get(), misleading.c_str()));
    return read;
}

/// The number that the text states, else that of the one same system.
int NumberOf(PJ* crs) {
    const int stated = Proj::StatedEpsg(crs);
    return stated != 0 ? stated : IdentifyEpsg(crs);
}

void RequireNoFile(const std::string& text) {
    const std::string file = FileNamedIn(text);
    if (!file.empty())
        throw BCoordSysException(
            "The coordinate system is not read.", "CoordSysDefinition::FromWkt",
            BString::Format("It names the file <%s>. Name grids without a folder.", file));
}

/// Cuts a decimal number off the front of `text`, in what all readers of well-known text take for one.
std::optional<double> CutNumber(std::string_view& text) {
    std::string_view rest = text;
    double number = 0.0;
    if (!ScanDouble(rest, number)) return std::nullopt;
    const std::string_view digits = text.substr(0, text.size() - rest.size());
    if (digits.find_first_not_of("0123456789.-") != digits.npos) return std::nullopt;
    text = rest;
    return number;
}

/// Whether two texts are the same but for blanks behind commas and the digits of numbers.
bool StateTheSame(std::string_view first, std::string_view second) {
    bool quoted = false;
    while (!first.empty() && !second.empty()) {
        const char next = first.front();
        if (const auto number = quoted ? std::nullopt : CutNumber(first)) {
            if (number != CutNumber(second)) return false;
            continue;
        }
        if (next != second.front()) return false;
        quoted = quoted != (next == '"');
        for (std::string_view* text : {&first, &second})
            text->remove_prefix(std::min(text->size(), next == ',' && !quoted
                                                           ? text->find_first_not_of(" \t\r\n", 1)
                                                           : std::size_t{1}));
    }
    return first.empty() && second.empty();
}

}  // namespace

CoordSysDefinition::Parts CoordSysDefinition::Split(Proj::Object crs) {
    PJ_CONTEXT* context = Proj::ThreadContext();
    Parts parts;
    parts.whole = std::move(crs);
    const Proj::Object unshifted = WithoutShift(parts.whole.get());
    if (unshifted && proj_get_type(unshifted.get()) == PJ_TYPE_COMPOUND_CRS)
        parts.whole = Clone(unshifted.get());
    if (proj_get_type(parts.whole.get()) == PJ_TYPE_COMPOUND_CRS) {
        parts.horizontal.reset(proj_crs_get_sub_crs(context, parts.whole.get(), 0));
        parts.vertical.reset(proj_crs_get_sub_crs(context, parts.whole.get(), 1));
    }
    parts.plain = WithoutShift(parts.Horizontal());
    if (KindOf(parts.Plain()) == Kind::Other || Proj::CountAxes(parts.Plain()) != 3) return parts;
    parts.horizontal.reset(proj_crs_demote_to_2D(context, nullptr, parts.Plain()));
    parts.plain.reset();
    return parts;
}

CoordSysDefinition::Ptr CoordSysDefinition::Make(Proj::Object crs, double epoch) {
    if (!crs || !proj_is_crs(crs.get())) return nullptr;
    return Ptr(new CoordSysDefinition(Split(std::move(crs)), epoch));
}

CoordSysDefinition::Ptr CoordSysDefinition::FromWkt(const BString& text) {
    double epoch = 0.0;
    const std::string cleaned = CleanWkt(text, epoch);
    if (cleaned.empty()) return nullptr;
    RequireNoFile(cleaned);
    if (Ptr listed = epoch == 0.0 ? FromListedPrj(cleaned) : nullptr) return listed;
    const bool web_mercator = IsWebMercatorText(cleaned);
    Proj::Object read = web_mercator ? nullptr : ReadWkt(cleaned);
    const int number = web_mercator ? kWebMercator : read ? NumberOnAuthalicSphere(read.get()) : 0;
    if (number == 0) return Make(std::move(read), epoch);
    Ptr standard = FromEpsg(number);
    return standard && epoch != 0.0 ? Make(standard->CloneUnshifted(), epoch) : standard;
}

/// A text that states, word for word and number for number, what ESRI's flavour has for a system that many
/// files are in. PROJ looks each of its names up in a table without an index, which costs as much as
/// loading PROJ and its database.
CoordSysDefinition::Ptr CoordSysDefinition::FromListedPrj(const std::string& text) {
    const std::string_view words(text);
    const std::size_t start = words.find("CS[\"");
    if (start == words.npos) return nullptr;
    const std::string_view name = words.substr(start + 4);
    const int number = EpsgOfEsriName(name.substr(0, name.find('"')));
    const Ptr listed = number != 0 ? FindByEpsg(number) : nullptr;
    if (!listed || !StateTheSame(text, listed->Prj().StdStr())) return nullptr;
    return Ptr(new CoordSysDefinition(*listed, text));
}

CoordSysDefinition::Ptr CoordSysDefinition::FromProjText(const std::string& text) {
    RequireNoFile(text);
    return Make(Proj::Object(proj_create(Proj::ThreadContext(), text.c_str())));
}

CoordSysDefinition::Ptr CoordSysDefinition::FromEpsg(int number) {
    const std::string code = std::to_string(number);
    const Ptr made = Make(Proj::Object(
        proj_create_from_database(Proj::ThreadContext(), "EPSG", code.c_str(), PJ_CATEGORY_CRS, 0, nullptr)));
    return made && made->kind_ != Kind::Other ? made : nullptr;
}

CoordSysDefinition::CoordSysDefinition(Parts parts, double epoch) : epoch_(epoch), parts_(std::move(parts)) {
    kind_ = KindOf(parts_.Plain());
    compound_ = proj_get_type(parts_.whole.get()) == PJ_TYPE_COMPOUND_CRS;
    name_ = BString(Proj::NameOf(parts_.whole.get()));
}

CoordSysDefinition::CoordSysDefinition(const CoordSysDefinition& listed, std::string text)
    : kind_(listed.kind_), name_(listed.name_), unread_(std::move(text)) {
    faces_.epsg = listed.EpsgNumber();
    faces_.horizontal_epsg = faces_.epsg;
    faces_.horizontal_unit = listed.HorizontalUnit();
    faces_.vertical_unit = listed.VerticalUnit();
}

const CoordSysDefinition::Parts& CoordSysDefinition::GetParts() const {
    const std::lock_guard lock(mutex_);
    if (unread_.empty()) return parts_;
    Proj::Object read = ReadWkt(unread_);
    if (!read)
        throw BCoordSysException("The coordinate system is not read.", "CoordSysDefinition::GetParts",
                                 BString::Format("The text of <%ls> cannot be understood any more.", name_));
    parts_ = Split(std::move(read));
    unread_.clear();
    return parts_;
}

/// The face, made under the lock when it is asked for first.
template <class T, class Maker>
T CoordSysDefinition::Face(std::optional<T>& face, Maker make) const {
    const std::lock_guard lock(mutex_);
    if (!face) face = make();
    return *face;
}

BString CoordSysDefinition::Wkt() const {
    return Face(faces_.wkt, [this] { return ExportWkt(GetParts().Horizontal()); });
}

BString CoordSysDefinition::Prj() const {
    return Face(faces_.prj,
                [this] { return IsWebMercator() ? WebMercatorPrj() : ExportPrj(GetParts().Plain()); });
}

BString CoordSysDefinition::WholeWkt() const {
    if (!GetParts().horizontal && epoch_ == 0.0) return Wkt();
    return Face(faces_.whole_wkt, [this] { return WithEpoch(ExportWkt(GetParts().whole.get()), epoch_); });
}

BString CoordSysDefinition::Wkt2() const {
    const std::lock_guard lock(mutex_);
    return WithEpoch(ExportWkt2(GetParts().whole.get()), epoch_);
}

BString CoordSysDefinition::ProjJson() const {
    const std::lock_guard lock(mutex_);
    return BString(proj_as_projjson(Proj::ThreadContext(), GetParts().whole.get(), nullptr));
}

BString CoordSysDefinition::ProjString() const {
    const std::lock_guard lock(mutex_);
    return BString(proj_as_proj_string(Proj::ThreadContext(), GetParts().whole.get(), PJ_PROJ_4, nullptr));
}

int CoordSysDefinition::EpsgNumber() const {
    return Face(faces_.epsg, [this] {
        // Of two axes and without a shift, unless the system has a vertical part.
        return NumberOf(GetParts().horizontal ? GetParts().whole.get() : GetParts().Plain());
    });
}

int CoordSysDefinition::HorizontalEpsg() const {
    return Face(faces_.horizontal_epsg,
                [this] { return GetParts().horizontal ? NumberOf(GetParts().Plain()) : EpsgNumber(); });
}

int CoordSysDefinition::GeodeticEpsgNumber() const {
    if (kind_ == Kind::Geodetic) return HorizontalEpsg();
    const Ptr base = Base();
    return base ? base->GeodeticEpsgNumber() : 0;
}

/// A text may state the number of Web Mercator and describe another system.
bool CoordSysDefinition::IsWebMercator() const {
    if (kind_ != Kind::Projected || HorizontalEpsg() != kWebMercator) return false;
    const Ptr standard = FromEpsg(kWebMercator);
    return standard && IsSameSystem(GetParts().Plain(), standard->GetParts().Plain());
}

int CoordSysDefinition::DatumEpsgNumber() const {
    return Face(faces_.datum_epsg, [this] { return FindDatum(); });
}

int CoordSysDefinition::FindDatum() const {
    const int stated = StatedDatum();
    if (stated != 0) return stated;
    const int number = GeodeticEpsgNumber();
    const Ptr identified = number != 0 ? FromEpsg(number) : nullptr;
    return identified ? identified->StatedDatum() : 0;
}

Proj::Object CoordSysDefinition::GetDatum() const {
    if (kind_ == Kind::Other) return nullptr;
    const std::lock_guard lock(mutex_);
    PJ_CONTEXT* context = Proj::ThreadContext();
    Proj::Object datum(proj_crs_get_datum(context, GetParts().Plain()));
    if (!datum) datum.reset(proj_crs_get_datum_ensemble(context, GetParts().Plain()));
    return datum;
}

int CoordSysDefinition::StatedDatum() const {
    const Proj::Object datum = GetDatum();
    return datum ? Proj::StatedEpsg(datum.get()) : 0;
}

BString CoordSysDefinition::DatumName() const {
    const Proj::Object datum = GetDatum();
    return datum ? BString(Proj::NameOf(datum.get())) : BString();
}

CoordSysDefinition::Ptr CoordSysDefinition::Base() const {
    return Face(faces_.base, [this] { return MakeBase(); });
}

CoordSysDefinition::Ptr CoordSysDefinition::MakeBase() const {
    if (compound_) return Make(Clone(GetParts().Horizontal()));
    if (kind_ != Kind::Projected) return nullptr;
    return Make(Proj::Object(proj_crs_get_geodetic_crs(Proj::ThreadContext(), GetParts().Plain())));
}

Proj::Object CoordSysDefinition::CloneHorizontal() const {
    const std::lock_guard lock(mutex_);
    return Clone(GetParts().Plain());
}

Proj::Object CoordSysDefinition::CloneShifted() const {
    const std::lock_guard lock(mutex_);
    return Clone(GetParts().Horizontal());
}

Proj::Object CoordSysDefinition::CloneUnshifted() const {
    const std::lock_guard lock(mutex_);
    return Clone(GetParts().horizontal ? GetParts().whole.get() : GetParts().Plain());
}

CoordSysDefinition::Ptr CoordSysDefinition::Vertical() const {
    return Make(CloneVertical());
}

Proj::Object CoordSysDefinition::CloneVertical() const {
    const std::lock_guard lock(mutex_);
    return GetParts().vertical ? Clone(GetParts().vertical.get()) : nullptr;
}

CoordSysDefinition::Ptr CoordSysDefinition::Renamed(const BString& name) const {
    const std::lock_guard lock(mutex_);
    return Make(Proj::Object(proj_alter_name(Proj::ThreadContext(), GetParts().whole.get(), name.Utf8())),
                epoch_);
}

BSharedPtr<BUnit> CoordSysDefinition::HorizontalUnit() const {
    return Face(faces_.horizontal_unit, [this] {
        Proj::Axis axis;
        Proj::Object owner;
        if (!Proj::GetAxis(GetParts().Plain(), 0, axis, owner)) return BSharedPtr<BUnit>();
        const bool linear = kind_ != Kind::Geodetic;
        const double size = linear ? axis.unit_factor : axis.unit_factor * 180.0 / std::numbers::pi;
        return UnitTable::FromText(axis.unit_name, size, linear, axis.unit_epsg);
    });
}

BSharedPtr<BLinearUnit> CoordSysDefinition::VerticalUnit() const {
    return Face(faces_.vertical_unit, [this] { return FindVerticalUnit(); });
}

BSharedPtr<BLinearUnit> CoordSysDefinition::FindVerticalUnit() const {
    if (!GetParts().vertical && kind_ == Kind::Other) return {};
    const Proj::Object unshifted =
        WithoutShift(GetParts().vertical ? GetParts().vertical.get() : GetParts().whole.get());
    PJ* bearer = unshifted             ? unshifted.get()
                 : GetParts().vertical ? GetParts().vertical.get()
                                       : GetParts().whole.get();
    Proj::Axis axis;
    Proj::Object owner;
    if (!Proj::GetAxis(bearer, GetParts().vertical ? 0 : 2, axis, owner)) return {};
    return UnitTable::LinearFromText(axis.unit_name, axis.unit_factor, axis.unit_epsg);
}

/// Under the lock.
const GeodeticConversion& CoordSysDefinition::Conversion() const {
    if (!faces_.conversion) faces_.conversion.emplace(GetParts().Plain());
    return *faces_.conversion;
}

bool CoordSysDefinition::ToGeodetic(BPoint& point) const {
    if (kind_ == Kind::Other) return false;
    const std::lock_guard lock(mutex_);
    return Conversion().ToGeodetic(point);
}

bool CoordSysDefinition::FromGeodetic(BPoint& point) const {
    if (kind_ == Kind::Other) return false;
    const std::lock_guard lock(mutex_);
    return Conversion().FromGeodetic(point);
}

}  // namespace Tellurion
