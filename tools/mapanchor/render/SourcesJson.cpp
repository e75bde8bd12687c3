#include "render/SourcesJson.h"

#include <cmath>

namespace Tool {

using MapAnchor::BReferenceSource;
using MapAnchor::BReferenceSources;
using Tellurion::BString;

namespace {

Json SourceJson(const BReferenceSource& source) {
    Json files = Json::array();
    for (const BString& file : source.GetFiles())
        files.push_back(file.StdStr());
    Json json = {{"kind", source.GetKind().StdStr()},
                 {"files", std::move(files)},
                 {"wins", source.Wins()},
                 {"winsInGdal", source.WinsInGdal()}};
    if (std::isfinite(source.GetDistancePixels())) json["distancePixels"] = source.GetDistancePixels();
    if (std::isfinite(source.GetDistanceMetres())) json["distanceMetres"] = source.GetDistanceMetres();
    json["ok"] = source.GetReading().HasReference();
    if (!source.GetReading().HasReference()) json["error"] = source.GetReading().GetFailureText().StdStr();
    return json;
}

}  // namespace

Json SourcesJson(const BReferenceSources& sources, const ReadResult& result) {
    Json top = JsonAbout(result.file);
    Json ours = {{"schemaVersion", kSchemaVersion}, {"ok", result.Ok()}};
    if (result.failure) ours["error"] = RenderJson(*result.failure);
    ours["sources"] = Json::array();
    for (const BReferenceSource& source : sources.GetSources())
        ours["sources"].push_back(SourceJson(source));
    ours["diagnostics"] = RenderJson(result.diagnostics);
    top["mapanchor"] = std::move(ours);
    return top;
}

}  // namespace Tool
