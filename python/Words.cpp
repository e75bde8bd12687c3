#include "Words.h"

#include "Module.h"

#include <MapAnchor/BReferenceFormats.h>

#include "read/ReferenceFacts.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

namespace py = pybind11;
using namespace Tellurion;

namespace {

/// An enumeration of Python and the numbers of its members; both live as long as the interpreter.
struct Members {
    py::handle type;
    py::handle numbers;  ///< a dict from text to number
};

Members enumerations[3];

Members& Of(Enumeration enumeration) {
    return enumerations[static_cast<int>(enumeration)];
}

class Maker {
public:
    /// The name of the member is its word in capitals.
    void Add(const std::string& word, int number) {
        std::string name = word;
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
        AddAlias(name, word);
        numbers_[py::str(word)] = number;
    }
    void AddAlias(const std::string& name, const std::string& word) {
        members_.append(py::make_tuple(name, word));
    }
    void Define(py::module_& module, Enumeration enumeration, const char* name) {
        const py::object base = py::module_::import("mapanchor._words").attr("Word");
        py::object made = base(name, members_, py::arg("module") = "mapanchor");
        module.attr(name) = made;
        Of(enumeration) = {made.release(), numbers_.release()};
    }

private:
    py::list members_;
    py::dict numbers_;
};

void DefineTypes(py::module_& module) {
    Maker maker;
    for (const MapAnchor::BReferenceFormat& format : MapAnchor::BReferenceFormats::List())
        if (format.HasType()) maker.Add(format.GetName().StdStr(), static_cast<int>(format.GetType()));
    maker.AddAlias("GEOTIFF", "TIF");
    maker.AddAlias("MRSID", "SID");
    maker.AddAlias("DOQQ", "DOQ");
    maker.Define(module, Enumeration::Type, "Type");
}

void DefineFits(py::module_& module) {
    Maker maker;
    for (int number = 0; number <= static_cast<int>(EMathTransformType::None); ++number)
        maker.Add(Tool::WordFor(static_cast<EMathTransformType>(number)), number);
    maker.AddAlias("POLYNOMIAL2", "poly2");
    maker.AddAlias("POLYNOMIAL3", "poly3");
    maker.AddAlias("THIN_PLATE_SPLINE", "tps");
    maker.Define(module, Enumeration::Fit, "Fit");
}

void DefineBoxes(py::module_& module) {
    Maker maker;
    maker.Add("art", static_cast<int>(Box::Art));
    maker.Add("trim", static_cast<int>(Box::Trim));
    maker.Add("bleed", static_cast<int>(Box::Bleed));
    maker.Add("crop", static_cast<int>(Box::Crop));
    maker.Add("media", static_cast<int>(Box::Media));
    maker.Define(module, Enumeration::Box, "Box");
}

}  // namespace

int NumberOf(Enumeration enumeration, py::handle word) {
    const Members& members = Of(enumeration);
    return members.numbers[members.type(word)].cast<int>();
}

py::object MemberOf(Enumeration enumeration, int number) {
    const Members& members = Of(enumeration);
    for (const auto& [word, of_word] : py::reinterpret_borrow<py::dict>(members.numbers))
        if (of_word.cast<int>() == number) return members.type(word);
    return py::none();
}

void DefineEnumerations(py::module_& module) {
    DefineTypes(module);
    DefineFits(module);
    DefineBoxes(module);
}
