// The viewport dialect: the bytes choose what a page's "VP" holds, whose keys, types,
// counts and numbers are mostly right.

#include "PdfFuzz.h"

using namespace PoDoFo;
using fuzz::Choices;

namespace {

constexpr const char* kUtm =
    "PROJCS[\"UTM 33N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",15],PARAMETER[\"scale_factor\","
    "0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";

void FillSystem(PdfDictionary& system, Choices& choices) {
    static constexpr const char* kTexts[] = {kUtm, "", "GEOGCS[", "LOCAL_CS[\"paper\",UNIT[\"metre\",1]]"};
    static constexpr pdf_int64 kCodes[] = {4326, 32633, 3857, 4978, 5703, 2193, 0, -1, 99999, 1LL << 40};
    fuzz::Put(system, "Type", PdfName("PROJCS"), choices);
    const bool coded = choices.Byte() % 2 == 1;
    if (coded || choices.Odd()) fuzz::Put(system, "EPSG", PdfObject(choices.OneOf(kCodes)), choices);
    if (!coded || choices.Odd())
        fuzz::Put(system, "WKT", PdfString(choices.Text(choices.OneOf(kTexts))), choices);
}

void FillMeasure(PdfDictionary& measure, Choices& choices) {
    fuzz::Put(measure, "Bounds", fuzz::Reals({0, 0, 0, 1, 1, 1, 1, 0}, choices), choices);
    fuzz::Put(measure, "GCS", PdfReference(5, 0), choices);
    fuzz::Put(measure, "GPTS", fuzz::Reals({47, 15, 48, 15, 48, 16, 47, 16}, choices), choices);
    fuzz::Put(measure, "LPTS", fuzz::Reals({0, 0, 0, 1, 1, 1, 1, 0}, choices), choices);
}

PdfObject Viewport(Choices& choices) {
    PdfDictionary viewport;
    fuzz::Put(viewport, "BBox", fuzz::Reals({0, 0, 612, 792}, choices), choices);
    fuzz::Put(viewport, "Measure", PdfReference(4, 0), choices);
    if (choices.Odd()) return fuzz::AnyValue(choices);
    return viewport;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::PageInMemory memory;
    Choices choices(data, size);
    PdfDictionary& page = memory.FreshPage();
    FillMeasure(memory.FreshDictionary(4), choices);
    FillSystem(memory.FreshDictionary(5), choices);
    PdfArray viewports;
    const std::size_t count = choices.Count(1);
    for (std::size_t i = 0; i < count && i < 10; ++i)
        viewports.push_back(Viewport(choices));
    fuzz::Put(page, "VP", viewports, choices);
    fuzz::PutBoxes(page, choices);
    fuzz::ReadPage(memory.Document(), choices);
    return 0;
}
