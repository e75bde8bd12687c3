#include "CommonOptions.h"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

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
