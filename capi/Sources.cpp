#include "Border.h"

#include "render/SourcesJson.h"

#include <MapAnchor/BReferenceSources.h>

#include <memory>
#include <vector>

/// The sources, with the texts that structures point to.
struct mapanchor_sources {
    struct Texts {
        std::string kind;
        std::string file;
    };

    MapAnchor::BReferenceSources sources;
    std::string raster;
    std::vector<Texts> texts;
};

using namespace Border;

extern "C" {

mapanchor_sources* mapanchor_read_sources(const char* raster, const mapanchor_read_options* options) {
    return Made([&] {
        const std::string name = &Needed(raster, "raster");
        const auto read = ReadOptionsOf(options).ForReading();
        auto handle = std::make_unique<mapanchor_sources>(
            mapanchor_sources{MapAnchor::BReferenceSources::Of(Tellurion::BString(name), read), name, {}});
        for (const auto& source : handle->sources.GetSources()) {
            const auto files = source.GetFiles();
            handle->texts.push_back({source.GetKind().StdStr(), files.empty() ? "" : files.front().StdStr()});
        }
        return handle.release();
    });
}

char* mapanchor_sources_json(const mapanchor_sources* sources) {
    return Made([&] {
        const mapanchor_sources& handle = Needed(sources, "sources");
        const auto result = Tool::ResultOf(handle.sources.GetReading(), handle.raster);
        return CopyOf(Tool::ToText(Tool::SourcesJson(handle.sources, result), Tool::CommonOptions()));
    });
}

size_t mapanchor_sources_count(const mapanchor_sources* sources) {
    return sources ? sources->texts.size() : 0;
}

int mapanchor_sources_get(const mapanchor_sources* sources, size_t index, mapanchor_source* source) {
    return Done([&] {
        const mapanchor_sources& handle = Needed(sources, "sources");
        const auto& texts = At(handle.texts, index, "sources");
        const auto& found = handle.sources.GetSources()[index];
        mapanchor_source known{};
        known.wins = found.Wins() ? 1 : 0;
        known.wins_in_gdal = found.WinsInGdal() ? 1 : 0;
        known.distance_pixels = found.GetDistancePixels();
        known.distance_metres = found.GetDistanceMetres();
        known.kind = texts.kind.c_str();
        known.file = texts.file.c_str();
        Give(known, source, "source");
    });
}

mapanchor_reading* mapanchor_sources_reading(const mapanchor_sources* sources, size_t index) {
    return Made([&] {
        const mapanchor_sources& handle = Needed(sources, "sources");
        return HandleOf(At(handle.sources.GetSources(), index, "sources").GetReading(), handle.raster, 1);
    });
}

void mapanchor_free_sources(mapanchor_sources* sources) {
    delete sources;
}
}
