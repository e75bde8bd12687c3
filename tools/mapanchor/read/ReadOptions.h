#pragma once

#include <MapAnchor/BReadingOptions.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BParamList.h>
#include <Tellurion/BSharedPtr.h>
#include <Tellurion/EMathTransformType.h>
#include <Tellurion/EReferenceType.h>

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// How a reference is to be read: the arguments of the library, by option.
struct ReadOptions {
    ReadOptions();

    std::optional<Tellurion::EReferenceType> type;
    unsigned int flags = 0;
    std::optional<long> width;
    std::optional<long> height;
    Tellurion::EMathTransformType fit = Tellurion::EMathTransformType::Affine;
    Tellurion::BParamList params;
    int pdf_box = kMediaBox;  ///< by the library's number
    double dpi = kPointsPerInch;
    std::string source;  ///< of a raster; empty for the one that wins
    Tellurion::BSharedPtr<Tellurion::BCoordSys> crs;
    bool overrides_crs = false;
    bool pdf_strict = false;

    static constexpr int kMediaBox = 5;
    static constexpr double kPointsPerInch = 72.0;

    void AddTo(CLI::App& app);
    void AddSystemsTo(CLI::App& app);
    MapAnchor::BReadingOptions ForReading() const;
};

/// The kind that an option's word names; throws CLI::ValidationError for none.
Tellurion::EReferenceType KindFromWord(const std::string& option, const std::string& word);

/// All these words, for descriptions.
std::string KindWords();
