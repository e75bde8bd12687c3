#pragma once

#include <MapAnchor/BReadingOptions.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <memory>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace Tool {

/// How a reference is to be read: the arguments of the library, by option.
struct ReadOptions {
    ReadOptions();

    std::optional<Tellurion::EReferenceType> type;
    unsigned int flags = 0;
    std::optional<long> width;
    std::optional<long> height;
    Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine;
    Tellurion::BParamList params;
    std::optional<int> pdf_box;  ///< by the library's number
    bool pdf_by_rules = false;   ///< and not beyond them, where this and what is below count
    bool pdf_shown = false;
    int pdf_page = 1;
    bool explains = false;        ///< state where each value is written; of no option
    bool pdf_list_pages = false;  ///< say which other pages have maps; of no option
    double dpi = kPointsPerInch;
    std::string source;  ///< of a raster; empty for the one that wins
    Tellurion::BSharedPtr<Tellurion::BCoordSys> crs;
    bool overrides_crs = false;

    static constexpr double kPointsPerInch = 72.0;

    void AddTo(CLI::App& app);
    void AddSystemsTo(CLI::App& app);
    void AddSizeTo(CLI::App& app, const std::string& description);
    MapAnchor::BReadingOptions ForReading() const;

private:
    void AddPdfTo(CLI::App& app);
    void AskBeyondRules(const char* option);
};

/// The fit of a word of --fit, which must be one.
Tellurion::EMathTransformType FitFromWord(const std::string& word);

/// The system that an option names, null for an empty text; throws CLI::ValidationError for an unknown one.
std::unique_ptr<Tellurion::BCoordSys> SystemOption(const std::string& option, const std::string& text);

/// The kind that an option's word names; throws CLI::ValidationError for none.
Tellurion::EReferenceType KindFromWord(const std::string& option, const std::string& word);

/// All these words, for descriptions.
std::string KindWords(bool saved = false);

}  // namespace Tool
