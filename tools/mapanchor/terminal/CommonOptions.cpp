#include "terminal/CommonOptions.h"

#include <Tellurion/Numbers.h>
#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace Tool {

void CommonOptions::AddTo(CLI::App& app) {
    app.option_defaults()->group("Output options");
    app.get_help_ptr()->group("Output options");
    app.add_flag("--json", json, "Print JSON, one object per line and input");
    app.add_option("--indent", indent, "Indent the JSON by this number of blanks (0 to 16)")
        ->check(CLI::Range(0, 16))
        ->type_name("N");
    app.add_flag("-q,--quiet", quiet, "Print only errors to stderr");
    app.add_flag("-v,--verbose", verbose, "Print more, such as the well-known text");
    const std::map<std::string, ColorMode> modes = {
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    app.add_option("--color", color, "Colour on a terminal, unless NO_COLOR is set: auto, always, never")
        ->transform(CLI::CheckedTransformer(modes, CLI::ignore_case))
        ->type_name("WHEN");
    app.option_defaults()->group("Options");
}

std::string RefuseEmpty(const std::string& name) {
    return name.empty() ? "the name is empty" : "";
}

void AddInputNames(CLI::App& app, const std::string& name, const std::string& description,
                   std::vector<std::string>& names, bool& nul_separated) {
    app.add_option(name, names, description + "; - reads names from stdin, one per line")->required();
    AddNulSeparated(app, nul_separated);
}

void AddNulSeparated(CLI::App& app, bool& nul_separated) {
    app.add_flag("-0,--null", nul_separated, "Names on stdin end in NUL, as find -print0 writes them");
}

std::vector<double> NumbersIn(std::string_view& text, std::size_t most) {
    std::vector<double> numbers;
    double value = 0.0;
    while (numbers.size() < most && Tellurion::ScanDouble(text, value)) {
        numbers.push_back(value);
        if (!text.starts_with(',')) break;
        text.remove_prefix(1);
    }
    return numbers;
}

CLI::Option* AddNumber(CLI::App& app, const std::string& name, std::function<void(double)> take,
                       NumberRange range, const std::string& description) {
    const auto parse = [name, take = std::move(take), range](const std::string& word) {
        std::string_view rest = word;
        double value = 0.0;
        if (!Tellurion::ScanDouble(rest, value) || !rest.empty() ||
            !(value >= range.least && value <= range.most))
            throw CLI::ValidationError(name, "\"" + word + "\" is not a number from " +
                                                 Tellurion::PrintShortest(range.least) + " to " +
                                                 Tellurion::PrintShortest(range.most));
        take(value);
    };
    return app.add_option_function<std::string>(name, parse, description);
}

}  // namespace Tool
