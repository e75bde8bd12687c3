#pragma once

#include <nlohmann/json.hpp>

#include "Outcomes.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

/// The corpus: folders of real files, each with the answers of a peer.
namespace MapAnchor {

using Json = nlohmann::json;
using Path = std::filesystem::path;
/// What is expected of a file, by its name.
using Texts = std::map<std::string, std::string>;

inline const Path kCorpus = MAPANCHOR_CORPUS;

/// Calls the check for every file that `expected.json` of a folder names, with its answer.
inline void ForEachAnswer(const std::string& folder,
                          const std::function<void(const Path&, const Json&)>& check) {
    const Json expected = Json::parse(std::ifstream(kCorpus / folder / "expected.json"));
    ASSERT_FALSE(expected.empty());
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        check(kCorpus / folder / name, answer);
    }
}

inline std::vector<Path> FilesOf(const std::string& folder, const std::string& extension) {
    std::vector<Path> files;
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / folder))
        if (entry.path().extension() == extension) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

/// GDAL's six numbers in the order of the affine's terms.
inline Six TermsOfGdal(const std::vector<double>& g) {
    return {g.at(1), g.at(2), g.at(0), g.at(4), g.at(5), g.at(3)};
}

/// From the outer corner to the centre of the top left pixel.
inline Six Centred(Six t) {
    t[2] += 0.5 * (t[0] + t[1]);
    t[5] += 0.5 * (t[3] + t[4]);
    return t;
}

/// Within a share of each term, or that much where it is below 1.
inline void ExpectTerms(const Tellurion::BGeoReference& reference, const Six& expected, double share) {
    ASSERT_TRUE(reference.HasMathTransform());
    const Six got = References::Terms(reference);
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], expected[i], share * std::max(1.0, std::fabs(expected[i]))) << "term " << i;
}

/// A file that the table does not name fails.
inline void ExpectSystem(const Tellurion::BGeoReference& reference, const Texts& systems,
                         const std::string& name) {
    const auto system = systems.find(name);
    EXPECT_EQ(CodeOf(reference), system == systems.end() ? "not in the table" : system->second);
}

}  // namespace MapAnchor
