#include "terminal/CommonOptions.h"

#include <Tellurion/Numbers.h>
#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace Tool {

void CommonOptions::AddTo(CLI::App& app) {
    app.add_flag("--json", json, "Print JSON, one object a line for each input");
    app.add_option("--indent", indent, "Spread the JSON over lines with that indent")
        ->check(CLI::Range(0, 16));
    app.add_flag("-q,--quiet", quiet, "Say nothing on stderr but errors");
    app.add_flag("-v,--verbose", verbose, "Print more, such as the well-known text");
    const std::map<std::string, ColorMode> modes = {
        {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};
    app.add_option("--color", color, "auto, always or never; NO_COLOR is heeded")
        ->transform(CLI::CheckedTransformer(modes, CLI::ignore_case))
        ->type_name("WHEN");
}

std::string RefuseEmpty(const std::string& name) {
    return name.empty() ? "the name is empty" : "";
}

CLI::Option* AddNumber(CLI::App& app, const std::string& name, std::function<void(double)> take,
                       NumberRange range, const std::string& description) {
    const auto parse = [name, take = std::move(take), range](const std::string& word) {
        std::string_view rest = word;
        double value = 0.0;
        if (!Tellurion::ScanDouble(rest, value) || !rest.empty() ||
            !(value >= range.least && value <= range.most))
            throw CLI::ValidationError(name, "\"" + word + "\" is no number from " +
                                                 Tellurion::PrintShortest(range.least) + " to " +
                                                 Tellurion::PrintShortest(range.most));
        take(value);
    };
    return app.add_option_function<std::string>(name, parse, description);
}

}  // namespace Tool
