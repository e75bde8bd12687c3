#include <Tellurion/BCoordSys.h>

#include "crs/ArcInfoText.h"
#include "crs/CoordSysDefinition.h"
#include "crs/DefinitionCaches.h"
#include "crs/NamedFiles.h"
#include "crs/ProjObjects.h"
#include "geocalc/CCoordSys.h"
#include "names/ErMapperSystems.h"
#include "text/Unicode.h"

#include <Tellurion/BCoordSysException.h>
#include <Tellurion/BFile.h>
#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BLinearUnit.h>
#include <Tellurion/BLogger.h>
#include <Tellurion/BUnit.h>

#include <cstdint>
#include <string>

namespace Tellurion {
namespace {

/// No PRJ file that means something is near this.
constexpr std::int64_t kLongestFile = std::int64_t{1} << 20;

BCoordSys* Wrap(CoordSysDefinition::Ptr definition) {
    return definition ? new BCoordSys(std::move(definition)) : nullptr;
}

/// The whole file as text; empty when it cannot be read or is too long.
BString ReadText(const BString& path) {
    BFile file(path);
    if (!file.Open(EFileMode::Read, EFileMode::Text)) return {};
    const std::int64_t length = file.GetLength();
    if (length < 0 || length > kLongestFile) return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    bytes.resize(file.Read(bytes.data(), bytes.size()));
    while (bytes.ends_with('\0'))
        bytes.pop_back();
    return BString(Unicode::IsUtf8(bytes) ? Unicode::FromUtf8(bytes) : Unicode::FromWindows1252(bytes));
}

BString EpsgText(int number) {
    return number != 0 ? BString::Format("EPSG:%d", number) : BString();
}

[[noreturn]] void ThrowOutside(const char* source, const BPoint& point) {
    throw BCoordSysException("The coordinates cannot be converted.", source,
                             BString::Format("The system has no value at (%.9g, %.9g).", point.x, point.y));
}

}  // namespace

BCoordSys::BCoordSys(std::shared_ptr<const CoordSysDefinition> definition)
    : definition_(std::move(definition)) {}

BCoordSys::BCoordSys(const BCoordSys& other) : definition_(other.definition_) {
    if (const GeoCalc::CS::CCoordSys* object = other.object_.load()) object_ = object->Clone().release();
}

BCoordSys& BCoordSys::operator=(const BCoordSys& other) {
    if (this == &other) return *this;
    BCoordSys copy(other);
    definition_.swap(copy.definition_);
    copy.object_ = object_.exchange(copy.object_.load());
    return *this;
}

BCoordSys::~BCoordSys() {
    delete object_.load();
}

std::shared_ptr<const CoordSysDefinition> BCoordSys::GetDefinition() const {
    const GeoCalc::CS::CCoordSys* object = object_.load();
    return object ? object->GetDefinition() : definition_;
}

int BCoordSys::GetKind() const {
    return static_cast<int>(GetDefinition()->GetKind());
}

bool BCoordSys::IsValid() const {
    return GetDefinition()->GetKind() != CoordSysDefinition::Kind::Other;
}

bool BCoordSys::GetIdentifier(const BString& issuer, BIdentifier& out) const {
    BString code;
    const auto definition = GetDefinition();
    if (issuer == BString("EPSG") && definition->EpsgNumber() != 0)
        code = BString::Format("%d", definition->EpsgNumber());
    if (issuer == BString(GeoCalc::kValGc)) code = GeoCalc::DB::OwnCodeOf(*definition);
    if (issuer == BString(GeoCalc::DB::kErMapper)) code = GeoCalc::DB::ErMapperNameOf(*definition);
    if (code.IsEmpty()) return false;
    out = BIdentifier(issuer, code);
    return true;
}

BCoordSys* BCoordSys::FromFile(const BString& path) {
    const BString text = ReadText(path);
    const std::string named = FileNamedIn(text.StdStr());
    if (!named.empty()) {
        BLogger::Instance()->WriteLine(
            ELogSeverity::Error,
            "BCoordSys::FromFile: %s names the file <%s>, which is not opened; the "
            "coordinate system is not read",
            path, named);
        return nullptr;
    }
    CoordSysDefinition::Ptr definition = FindByWkt(text);
    return Wrap(definition ? std::move(definition) : FindByArcInfoText(text));
}

BCoordSys* BCoordSys::FromWKT(const BString& text) {
    return Wrap(FindByWkt(text));
}

BCoordSys* BCoordSys::FromEPSGCode(const BString& code) {
    BString number = code;
    number.Trim().ToUpper();
    if (number.StartsWith("EPSG:")) number = number.Right(number.GetLength() - 5);
    const int parsed = Proj::ParseCode(number.StdStr().c_str());
    return parsed != 0 ? Wrap(FindByEpsg(parsed)) : nullptr;
}

bool BCoordSys::ToFile(const BString& path) const {
    const BString text = ToPRJ();
    BFileReplacement file(path);
    const bool written = !text.IsEmpty() && file.Open() && file.Write(text.StdStr()) &&
                         file.Commit(BFileReplacement::EAfterPowerFailure::OldOrNew);
    if (!written)
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "BCoordSys::ToFile: %ls cannot be written (%ls)",
                                       path,
                                       text.IsEmpty() ? "it has no text in this form" : file.GetFailure());
    for (const BString& loss : file.GetLosses())
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "BCoordSys::ToFile: %ls", loss);
    return written;
}

BString BCoordSys::ToWKT() const {
    return GetDefinition()->Wkt();
}

BString BCoordSys::ToWholeWKT() const {
    return GetDefinition()->WholeWkt();
}

BString BCoordSys::ToWKT2() const {
    return GetDefinition()->Wkt2();
}

BString BCoordSys::ToPROJJSON() const {
    return GetDefinition()->ProjJson();
}

BString BCoordSys::ToPROJString() const {
    return GetDefinition()->ProjString();
}

BString BCoordSys::ToPRJ() const {
    return GetDefinition()->Prj();
}

BString BCoordSys::ToEPSGCode() const {
    return EpsgText(GetDefinition()->EpsgNumber());
}

BString BCoordSys::GetName() const {
    return GetDefinition()->Name();
}

BSharedPtr<BUnit> BCoordSys::GetUnits() const {
    return GetDefinition()->HorizontalUnit();
}

BSharedPtr<BLinearUnit> BCoordSys::GetVerticalUnits() const {
    return GetDefinition()->VerticalUnit();
}

BCoordSys* BCoordSys::GetBaseCoordSys() const {
    return Wrap(GetDefinition()->Base());
}

BCoordSys* BCoordSys::GetVerticalCoordSys() const {
    return Wrap(GetDefinition()->Vertical());
}

double BCoordSys::GetCoordinateEpoch() const {
    return GetDefinition()->Epoch();
}

bool BCoordSys::GetDatumIdentifier(const BString& issuer, BIdentifier& out) const {
    BString code;
    const auto definition = GetDefinition();
    if (issuer == BString("EPSG") && definition->DatumEpsgNumber() != 0)
        code = BString::Format("%d", definition->DatumEpsgNumber());
    if (issuer == BString(GeoCalc::DB::kErMapper)) code = GeoCalc::DB::ErMapperDatumNameOf(*definition);
    if (code.IsEmpty()) return false;
    out = BIdentifier(issuer, code);
    return true;
}

BPoint BCoordSys::ConvertToGeodetic(const BPoint& point) const {
    BPoint converted = point;
    if (!GetDefinition()->ToGeodetic(converted)) ThrowOutside("BCoordSys::ConvertToGeodetic", point);
    return converted;
}

BPoint BCoordSys::ConvertFromGeodetic(const BPoint& point) const {
    BPoint converted = point;
    if (!GetDefinition()->FromGeodetic(converted)) ThrowOutside("BCoordSys::ConvertFromGeodetic", point);
    return converted;
}

GeoCalc::CS::CCoordSys* BCoordSys::GetGCCoordSys() const {
    GeoCalc::CS::CCoordSys* object = object_.load();
    if (object) return object;
    auto made = GeoCalc::CS::CCoordSys::Make(definition_);
    // Another thread may have been first: its object is the one that stays.
    if (object_.compare_exchange_strong(object, made.get())) return made.release();
    return object;
}

}  // namespace Tellurion
