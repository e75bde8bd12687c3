// The viewport dialect as it is written by others: references and numbers of every kind.

#include "import/PdfFailure.h"
#include "wide/WideMap.h"

#include <algorithm>
#include <cmath>

namespace VellumLib {
namespace {

using Pair = CMeasureDictionaryData::Pair;
using Part = CMeasureDictionaryData::CoordSysPart;

/// The corners of a viewport in the order that the standard gives them where none are named.
const std::vector<Pair> kCorners = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};

std::string Quoted(const char* key) {
    return std::string("\"").append(key).append("\"");
}

class Viewport {
public:
    Viewport(const WideValue& page, const WideValue& entry, ReadingBudget& budget, WideMap& map)
        : page_(page), entry_(entry), budget_(budget), map_(map), record_(map.record) {}

    void Read() {
        map_.name = entry_["Name"].Text().value_or("");
        budget_.TakeText(map_.name.size());
        if (entry_.WasReference())
            map_.remarks.Beyond("viewport-in-place",
                                "An entry of \"VP\" is expected to be a dictionary in place; here it is a "
                                "reference.");
        ReadBox();
        const WideValue measure = entry_["Measure"];
        if (!measure.IsDictionary()) return Fail("The viewport has no \"Measure\".");
        if (!measure.WasReference())
            map_.remarks.Beyond("measure-by-reference",
                                "\"Measure\" is expected to be a reference to a dictionary of its own; here "
                                "the dictionary is in the viewport itself.");
        if (const auto kind = measure["Subtype"].Text(); kind && *kind != "GEO")
            return Fail("The viewport's \"Measure\" is of the kind \"" + *kind + "\" and not \"GEO\".");
        ReadSystem(measure);
        ReadPoints(measure);
        const std::string path = "/VP [" + std::to_string(map_.entry) + "] /Measure ";
        map_.origins = {{"system", PlaceOf({measure["GCS"], measure, entry_, page_}, path + "/GCS")},
                        {"points", PlaceOf({measure["GPTS"], measure, entry_, page_}, path + "/GPTS")}};
    }

private:
    void Fail(const std::string& fault) {
        if (map_.fault.empty()) map_.fault = fault;
    }

    void ReadBox() {
        constexpr std::size_t kNumbers = 4;
        const WideValue box = entry_["BBox"];
        Remark("BBox", box);
        record_.BBox = NumbersOf(box, budget_);
        if (record_.BBox.size() < kNumbers) return Fail("The viewport has no complete \"BBox\".");
        map_.area = std::fabs((record_.BBox[2] - record_.BBox[0]) * (record_.BBox[3] - record_.BBox[1]));
    }

    void Remark(const char* key, const WideValue& array) {
        if (array.WasReference())
            map_.remarks.Beyond("array-in-place", Quoted(key) +
                                                      " is expected to be an array in place; here it is a "
                                                      "reference.");
        if (HoldsStrings(array))
            map_.remarks.Beyond("number-as-number",
                                Quoted(key) + " is expected to hold numbers; here they are strings.");
    }

    void ReadSystem(const WideValue& measure) {
        const WideValue system = measure["GCS"];
        if (!system.IsDictionary()) return Fail("The \"Measure\" has no \"GCS\".");
        if (!system.WasReference())
            map_.remarks.Beyond("gcs-by-reference",
                                "\"GCS\" is expected to be a reference to a dictionary of its own; here the "
                                "dictionary is in \"Measure\" itself.");
        Part& part = record_.CoordSys;
        part.EPSG = CMeasureDictionaryData::kNoEPSG;
        part.GCSType = system["Type"].Text().value_or("");
        if (!system["Type"].IsName())
            map_.remarks.Beyond("gcs-type", "\"GCS\" is expected to have a \"Type\"; here it has none.");
        part.WKT = system["WKT"].Text().value_or("");
        budget_.TakeText(part.WKT.size());
        ReadCode(system["EPSG"]);
        if (part.WKT.empty() && part.EPSG <= 0) Fail("The \"GCS\" has neither \"WKT\" nor \"EPSG\".");
    }

    void ReadCode(const WideValue& value) {
        if (!value) return;
        constexpr double kMostCode = 0x7FFFFFFF;
        const double code = value.Number().value_or(0.0);
        if (!value.IsWhole())
            map_.remarks.Beyond("epsg-whole",
                                "\"EPSG\" is expected to be a whole number; here it is another value.");
        if (code >= 1.0 && code <= kMostCode && code == std::floor(code))
            record_.CoordSys.EPSG = static_cast<std::int32_t>(code);
    }

    std::vector<Pair> ReadPairs(const WideValue& measure, const char* key) {
        const WideValue array = measure[key];
        if (!array.IsArray()) return {};
        Remark(key, array);
        bool all_numbers = true;
        const std::vector<double> numbers = NumbersOf(array, budget_, &all_numbers);
        if (!all_numbers) Fail(Quoted(key) + " holds values that are not numbers.");
        if (numbers.size() % 2 != 0)
            map_.remarks.Beyond("pairs-even", Quoted(key) +
                                                  " is expected to hold pairs of numbers; the odd one at its "
                                                  "end is ignored.");
        std::vector<Pair> pairs;
        for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
            pairs.emplace_back(numbers[i], numbers[i + 1]);
        return pairs;
    }

    void ReadPoints(const WideValue& measure) {
        constexpr std::size_t kFewest = 4;
        record_.Bounds = ReadPairs(measure, "Bounds");
        record_.GPTS = ReadPairs(measure, "GPTS");
        record_.LPTS = ReadPairs(measure, "LPTS");
        if (record_.Bounds.empty())
            map_.remarks.Beyond("bounds-present",
                                "\"Measure\" is expected to hold \"Bounds\"; here it does not.");
        if (record_.GPTS.empty()) return Fail("The \"Measure\" has no \"GPTS\".");
        if (record_.GPTS.size() < kFewest)
            map_.remarks.Beyond("four-points", "\"GPTS\" is expected to hold four points; here it holds " +
                                                   std::to_string(record_.GPTS.size()) + ".");
        if (record_.LPTS.empty()) return InventPlaces();
        MatchCounts();
    }

    /// Positions without places: those of the outline's corners, else of the box's.
    void InventPlaces() {
        const bool by_bounds = record_.Bounds.size() == record_.GPTS.size();
        if (!by_bounds && record_.GPTS.size() != kCorners.size())
            return Fail("\"GPTS\" has no \"LPTS\" beside it, and its points are not corners.");
        record_.LPTS = by_bounds ? record_.Bounds : kCorners;
        map_.remarks.Beyond("lpts-present",
                            std::string("\"Measure\" is expected to hold \"LPTS\"; here it does not, and "
                                        "\"GPTS\" is read as the corners of ") +
                                (by_bounds ? "\"Bounds\"." : "\"BBox\"."));
    }

    void MatchCounts() {
        if (record_.GPTS.size() == record_.LPTS.size()) return;
        map_.remarks.Beyond("points-match",
                            "\"GPTS\" and \"LPTS\" are expected to hold as many points; here "
                            "they hold " +
                                std::to_string(record_.GPTS.size()) + " and " +
                                std::to_string(record_.LPTS.size()) +
                                ", and those at the end without a partner are ignored.");
        const std::size_t count = std::min(record_.GPTS.size(), record_.LPTS.size());
        record_.GPTS.resize(count);
        record_.LPTS.resize(count);
    }

    WideValue page_;
    WideValue entry_;
    ReadingBudget& budget_;
    WideMap& map_;
    CMeasureDictionaryData& record_;
};

}  // namespace

std::vector<WideMap> ReadViewports(const WidePage& page) {
    std::vector<WideMap> maps;
    const WideValue viewports = page.dictionary["VP"];
    ReadingBudget budget;
    for (std::size_t i = 0; i < viewports.Size() && maps.size() < kMaxMaps; ++i) {
        const WideValue entry = viewports.At(i);
        if (!entry.IsDictionary()) continue;
        WideMap& map = maps.emplace_back();
        map.entry = i;
        if (viewports.WasReference())
            map.remarks.Beyond("vp-in-place",
                               "\"VP\" is expected to be an array in place; here it is a reference.");
        try {
            Viewport(page.dictionary, entry, budget, map).Read();
        } catch (...) {
            map.fault = CurrentPdfFailure().StdStr();
        }
    }
    return maps;
}

}  // namespace VellumLib
