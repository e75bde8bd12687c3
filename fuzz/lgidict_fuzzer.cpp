// The LGIDict dialect: the bytes choose what a page's "LGIDict" holds, whose keys,
// types, counts and numbers are mostly right. Numbers are strings in this dialect.

#include "PdfFuzz.h"

#include "import/CLGIDatum.h"
#include "import/CLGIProjection.h"

#include <iterator>

using namespace PoDoFo;
using fuzz::Choices;

namespace {

std::string NumberText(double honest, Choices& choices) {
    static constexpr const char* kOdd[] = {"", "inf", "nan", "-", "1e999", "-1e999", "0x10", "1,5", " 12 "};
    if (choices.Odd()) return choices.OneOf(kOdd);
    char text[32];
    std::snprintf(text, sizeof text, "%.15g", choices.Number(honest));
    return choices.Text(text);
}

PdfArray Numbers(std::initializer_list<double> honest, Choices& choices) {
    PdfArray array;
    const std::size_t count = choices.Count(honest.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::string text = NumberText(honest.begin()[i % honest.size()], choices);
        array.push_back(choices.Odd()
                            ? fuzz::AnyValue(choices)
                            : PdfObject(PdfString(text.data(), static_cast<pdf_long>(text.size()))));
    }
    return array;
}

PdfArray Registration(Choices& choices) {
    PdfArray points;
    const std::size_t count = choices.Count(4);
    for (std::size_t i = 0; i < count; ++i) {
        const double right = i % 2 == 1 ? 1.0 : 0.0;
        const double up = i % 4 > 1 ? 1.0 : 0.0;
        points.push_back(
            PdfObject(Numbers({600 * right, 800 * up, 4e5 + 1200 * right, 5.2e6 + 1600 * up}, choices)));
    }
    return points;
}

template <class Map>
const std::string& KeyOf(const Map& map, std::size_t index) {
    return std::next(map.begin(), static_cast<std::ptrdiff_t>(index % map.size()))->first;
}

PdfDictionary Projection(Choices& choices) {
    using namespace VellumLib;
    PdfDictionary projection;
    const std::size_t kind = choices.Byte();
    const std::string type = kind == 0 ? "UT" : KeyOf(LGIProjections(), kind);
    const std::size_t datum = choices.Byte();
    static constexpr const char* kUnits[] = {"M", "USSF", "FT", ""};
    fuzz::Put(projection, "Type", PdfName("Projection"), choices);
    fuzz::Put(projection, "ProjectionType", PdfString(choices.Text(type)), choices);
    fuzz::Put(projection, "Datum", PdfString(choices.Text(datum == 0 ? "WGE" : KeyOf(LGIDatums(), datum))),
              choices);
    fuzz::Put(projection, "Units", PdfString(choices.OneOf(kUnits)), choices);
    static constexpr pdf_int64 kZones[] = {33, 0, -1, 60, 401, 5401, 2147483647, 1LL << 40};
    fuzz::Put(projection, "Zone", PdfObject(choices.OneOf(kZones)), choices);
    fuzz::Put(projection, "Hemisphere", PdfString(choices.Text("N")), choices);
    for (int key = kCentralMeridian; key < kZone; ++key)
        if (key != kHemisphere && choices.Byte() % 4 == 1)
            fuzz::Put(projection, LGIParameterKeys().at(key).c_str(), PdfString(NumberText(1.0, choices)),
                      choices);
    return projection;
}

void FillEntry(PdfDictionary& entry, Choices& choices) {
    const bool by_points = choices.Byte() % 2 == 1;
    if (!by_points || choices.Odd())
        fuzz::Put(entry, "CTM", Numbers({2, 0, 0, 2, 4e5, 5.2e6}, choices), choices);
    if (by_points || choices.Odd()) fuzz::Put(entry, "Registration", Registration(choices), choices);
    fuzz::Put(entry, "Neatline", Numbers({0, 0, 0, 800, 600, 800, 600, 0}, choices), choices);
    fuzz::Put(entry, "Projection", Projection(choices), choices);
    if (choices.Odd()) fuzz::Put(entry, "Description", PdfString("Map"), choices);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static fuzz::PageInMemory memory;
    Choices choices(data, size);
    PdfDictionary& page = memory.FreshPage();
    FillEntry(memory.FreshDictionary(4), choices);
    PdfDictionary& second = memory.FreshDictionary(5);
    PdfArray entries;
    const std::size_t count = choices.Count(1);
    if (count > 1) FillEntry(second, choices);
    for (std::size_t i = 0; i < count && i < 10; ++i)
        entries.push_back(choices.Odd() ? fuzz::AnyValue(choices)
                                        : PdfObject(PdfReference(4 + static_cast<unsigned>(i % 2), 0)));
    fuzz::Put(page, "LGIDict", entries, choices);
    fuzz::PutBoxes(page, choices);
    fuzz::ReadPage(memory.Document(), choices);
    return 0;
}
