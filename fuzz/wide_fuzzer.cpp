// Geospatial PDF beyond the rules: the bytes choose what a page's "VP" and "LGIDict" hold, in
// the forms of the rules, of other writers, and of none.

#include "PdfFuzz.h"

#include "PdfParameters.h"
#include "wide/ReadWideGeoPDF.h"
#include "wide/WideDocument.h"

using namespace PoDoFo;
using fuzz::Choices;

namespace {

/// The number, or the string that others write for it.
PdfObject Either(double number, Choices& choices) {
    if (choices.Byte() % 2 == 0) return PdfObject(number);
    return PdfString(choices.Text(std::to_string(number)));
}

PdfArray Numbers(std::initializer_list<double> honest, Choices& choices) {
    PdfArray array;
    const std::size_t count = choices.Count(honest.size());
    for (std::size_t i = 0; i < count; ++i)
        array.push_back(choices.Odd() ? fuzz::AnyValue(choices)
                                      : Either(choices.Number(honest.begin()[i % honest.size()]), choices));
    return array;
}

void FillMeasure(PdfDictionary& measure, Choices& choices) {
    static constexpr pdf_int64 kCodes[] = {4326, 32633, 2154, 4807, 27572, 0, -1, 1LL << 40};
    PdfDictionary system;
    fuzz::Put(system, "Type", PdfName("PROJCS"), choices);
    fuzz::Put(system, "EPSG", PdfObject(choices.OneOf(kCodes)), choices);
    if (choices.Odd()) fuzz::Put(system, "WKT", PdfString(choices.Text("GEOGCS[")), choices);
    fuzz::Put(measure, "Bounds", Numbers({0, 0, 0, 1, 1, 1, 1, 0}, choices), choices);
    fuzz::Put(measure, "GCS", PdfObject(system), choices);
    fuzz::Put(measure, "GPTS", Numbers({47, 15, 48, 15, 48, 16, 47, 16}, choices), choices);
    fuzz::Put(measure, "LPTS", Numbers({0, 0, 0, 1, 1, 1, 1, 0}, choices), choices);
}

PdfObject Datum(Choices& choices) {
    static constexpr const char* kCodes[] = {"WGE", "NAS-C", "NAR", "XYZ", ""};
    if (choices.Byte() % 2 == 0) return PdfString(choices.Text(choices.OneOf(kCodes)));
    PdfDictionary ellipsoid;
    fuzz::Put(ellipsoid, "SemiMajorAxis", Either(choices.Number(6378137.0), choices), choices);
    fuzz::Put(ellipsoid, "InvFlattening", Either(choices.Number(298.0), choices), choices);
    PdfDictionary shift;
    for (const char* key : {"dx", "dy", "dz", "rx", "ry", "rz", "sf"})
        fuzz::Put(shift, key, Either(choices.Number(1.0), choices), choices);
    PdfDictionary datum;
    fuzz::Put(datum, "Ellipsoid", PdfObject(ellipsoid), choices);
    fuzz::Put(datum, "ToWGS84", PdfObject(shift), choices);
    return datum;
}

PdfObject Projection(Choices& choices) {
    static constexpr const char* kTypes[] = {"UT", "TC", "LE", "PG", "SD", "OC", "UP", "SPCS", "GEOGRAPHIC"};
    PdfDictionary projection;
    fuzz::Put(projection, "ProjectionType", PdfString(choices.Text(choices.OneOf(kTypes))), choices);
    fuzz::Put(projection, "Datum", Datum(choices), choices);
    fuzz::Put(projection, "Units", PdfString(choices.Odd() ? "USSF" : "M"), choices);
    for (const char* key : {"Zone", "CentralMeridian", "OriginLatitude", "StandardParallelOne", "ScaleFactor",
                            "LatitudeTrueScale", "LongitudeDownFromPole", "FalseEasting"})
        fuzz::Put(projection, key, Either(choices.Number(33.0), choices), choices);
    return projection;
}

void FillLGIDict(PdfDictionary& entry, Choices& choices) {
    if (choices.Byte() % 2 == 0)
        fuzz::Put(entry, "CTM", Numbers({2, 0, 0, 2, 400000, 5200000}, choices), choices);
    PdfArray points;
    const std::size_t count = choices.Count(4);
    for (std::size_t i = 0; i < count && i < 10; ++i)
        points.push_back(
            Numbers({100.0 * static_cast<double>(i % 2), 50.0 * static_cast<double>(i), 4e5, 5e6}, choices));
    fuzz::Put(entry, "Registration", points, choices);
    fuzz::Put(entry, "Neatline", Numbers({0, 0, 0, 800, 600, 800, 600, 0}, choices), choices);
    fuzz::Put(entry, "Projection", Projection(choices), choices);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr const char* kMaps[] = {"", "1", "2", "largest", "x"};
    static fuzz::PageInMemory memory;
    Choices choices(data, size);
    PdfDictionary& page = memory.FreshPage();
    FillMeasure(memory.FreshDictionary(4), choices);
    FillLGIDict(memory.FreshDictionary(5), choices);
    PdfDictionary viewport;
    fuzz::Put(viewport, "BBox", Numbers({0, 0, 612, 792}, choices), choices);
    fuzz::Put(viewport, "Measure", PdfReference(4, 0), choices);
    if (choices.Byte() % 2 == 0) fuzz::Put(page, "VP", PdfArray(PdfObject(viewport)), choices);
    if (choices.Byte() % 2 == 0) fuzz::Put(page, "LGIDict", PdfReference(5, 0), choices);
    fuzz::PutBoxes(page, choices);
    fuzz::Put(page, "Rotate", PdfObject(choices.Number(90.0)), choices);
    Tellurion::BParamList params;
    params.SetString(MapAnchor::PdfParameters::kMap, choices.OneOf(kMaps));
    params.SetInteger(MapAnchor::PdfParameters::kShown, choices.Byte() % 2);
    fuzz::Survives([&] {
        VellumLib::WideDocument document(memory.Document());
        Tellurion::BGeoReference reference;
        MapAnchor::ReadWideGeoPDF(document, choices.Byte() % 4, reference,
                                  Tellurion::EMathTransformType::Affine, choices.Odd() ? 0 : 612, 792,
                                  &params);
        fuzz::CheckReference(reference);
    });
    return 0;
}
