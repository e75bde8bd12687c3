#include "wide/WideLGIDict.h"

#include "import/LGINumbers.h"
#include "import/PdfFailure.h"

#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>

namespace VellumLib {
namespace {

constexpr std::size_t kMatrix = 6;

std::string Quoted(const std::string& key) {
    return std::string("\"").append(key).append("\"");
}

bool CanBeInverted(const std::vector<double>& m) {
    return m.size() == kMatrix && std::isnormal(m[0] * m[3] - m[1] * m[2]);
}

bool HasExtent(const std::vector<CMeasureDictionaryData::Pair>& points) {
    const auto by_y = [](const auto& a, const auto& b) { return a.second < b.second; };
    if (points.empty()) return false;
    const auto [left, right] = std::minmax_element(points.begin(), points.end());
    const auto [low, high] = std::minmax_element(points.begin(), points.end(), by_y);
    return left->first < right->first && low->second < high->second;
}

}  // namespace

WideLGIDict::WideLGIDict(const WidePage& page, const WideValue& entry, ReadingBudget& budget, WideMap& map)
    : page_(page), entry_(entry), budget_(budget), map_(map) {}

void WideLGIDict::Read() {
    map_.name = entry_["Description"].Text().value_or("");
    budget_.TakeText(map_.name.size());
    ReadNeatline();
    map_.area = NeatlineArea(Neatline);
    Neatline.clear();
    Import();
    map_.record = std::move(Measures.front());
    NoteOrigins();
    UseOwnText();
    DoubtUnits();
    if (!CanBeInverted(map_.record.CTM) && !map_.record.GPTS.empty()) map_.record.CTM.clear();
    if (map_.record.CTM.size() < kMatrix && map_.record.GPTS.empty())
        map_.fault = "The \"LGIDict\" has neither \"CTM\" nor \"Registration\".";
}

void WideLGIDict::NoteOrigins() {
    const std::string path = "/LGIDict [" + std::to_string(map_.entry) + "] ";
    const auto add = [&](const char* value, const char* key) {
        if (entry_[key])
            map_.origins.push_back(
                {value, PlaceOf({entry_[key], entry_, page_.dictionary}, path + "/" + key)});
    };
    add("system", "Projection");
    add("transform", "CTM");
    add("points", "Registration");
}

std::vector<double> WideLGIDict::ReadNumbers(const char* key) {
    const WideValue array = entry_[key];
    if (!array.IsArray()) return {};
    if (array.WasReference())
        map_.remarks.Beyond("array-in-place",
                            Quoted(key) + " is expected to be an array in place; here it is a reference.");
    bool all_numbers = true;
    std::vector<double> numbers = NumbersOf(array, budget_, &all_numbers);
    if (!all_numbers)
        map_.remarks.Doubt("pdf-not-a-number", Quoted(key) +
                                                   " holds values that are not numbers; they count "
                                                   "as 0.");
    if (array.At(0).IsNumber())
        map_.remarks.Beyond("number-as-string", Quoted(key) +
                                                    " is expected to hold numbers written as "
                                                    "strings; here they are plain numbers.");
    return numbers;
}

void WideLGIDict::ReadCTM() {
    matrix_ = ReadNumbers("CTM");
    if (matrix_.size() > kMatrix) {
        map_.remarks.Beyond("matrix-terms", "\"CTM\" is expected to hold six terms; here it holds more.");
        matrix_.resize(kMatrix);
    }
    if (!matrix_.empty() && !CanBeInverted(matrix_))
        map_.remarks.Beyond("matrix-terms",
                            "\"CTM\" is expected to hold six terms that can be inverted; here it does not.");
    CTM = matrix_;
}

void WideLGIDict::ReadRegistration() {
    constexpr std::size_t kNumbers = 4;
    const WideValue array = entry_["Registration"];
    budget_.Take(static_cast<int>(array.Size()));
    for (std::size_t i = 0; i < array.Size(); ++i) {
        const WideValue point = array.At(i);
        const std::vector<double> numbers = NumbersOf(point, budget_);
        if (numbers.size() < kNumbers) continue;
        if (point.At(0).IsNumber())
            map_.remarks.Beyond("number-as-string",
                                "\"Registration\" is expected to hold numbers written as strings; here they "
                                "are plain numbers.");
        Registration.push_back(
            {.PageX = numbers[0], .PageY = numbers[1], .WorldY = numbers[3], .WorldX = numbers[2]});
    }
    if (Registration.size() < array.Size())
        map_.remarks.Beyond("registration-points",
                            "\"Registration\" is expected to hold points of four "
                            "numbers; others are ignored.");
}

void WideLGIDict::ReadNeatline() {
    Neatline.clear();
    std::vector<double> numbers = ReadNumbers("Neatline");
    if (numbers.size() % 2 != 0)
        map_.remarks.Beyond("pairs-even",
                            "\"Neatline\" is expected to hold pairs of numbers; the odd one at "
                            "its end is ignored.");
    for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
        Neatline.emplace_back(numbers[i], numbers[i + 1]);
    if (Neatline.size() == 2) {  // two corners of a box
        const auto [first, second] = std::pair{Neatline[0], Neatline[1]};
        Neatline = {first, {first.first, second.second}, second, {second.first, first.second}};
    }
    if (!HasExtent(Neatline)) Neatline.clear();
}

void WideLGIDict::ReadPageSize() {
    const auto box = page_.media ? page_.media : page_.crop;
    if (!box) return;
    PageWidth = (*box)[2];
    PageHeight = (*box)[3];
}

/// The text that some writers add to the projection says more than its parameters can; the
/// matrix then counts in the units of that text.
void WideLGIDict::UseOwnText() {
    if (own_text_.empty()) return;
    map_.remarks.Beyond("projection-text",
                        "\"Projection\" is expected to be read by its parameters; here it has a \"WKT\", "
                        "which is read in their place.");
    map_.record.CoordSys.WKT = own_text_;
    map_.record.CTM = matrix_;
}

/// As the rules have it, a matrix counts in metres where the system counts in feet.
void WideLGIDict::DoubtUnits() {
    if (map_.record.CTM == matrix_) return;
    map_.remarks.Doubt("pdf-units",
                       "The system counts in feet and \"CTM\" is read as metres; some writers mean feet.");
}

std::vector<WideMap> ReadLGIDicts(const WidePage& page) {
    std::vector<WideMap> maps;
    const WideValue dicts = page.dictionary["LGIDict"];
    const bool single = dicts.IsDictionary();
    const std::size_t count = single ? 1 : dicts.Size();
    ReadingBudget budget;
    for (std::size_t i = 0; i < count && maps.size() < kMaxMaps; ++i) {
        const WideValue entry = single ? dicts : dicts.At(i);
        if (!entry.IsDictionary()) continue;
        WideMap& map = maps.emplace_back();
        map.lgi = true;
        map.entry = i;
        if (single || dicts.WasReference())
            map.remarks.Beyond("lgidict-in-place",
                               std::string("\"LGIDict\" is expected to be an array of "
                                           "dictionaries in place; here it is ") +
                                   (dicts.WasReference() ? "a reference." : "one dictionary."));
        try {
            WideLGIDict(page, entry, budget, map).Read();
        } catch (...) {
            map.fault = CurrentPdfFailure().StdStr();
        }
    }
    return maps;
}

}  // namespace VellumLib
