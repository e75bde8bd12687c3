#pragma once

#include <nlohmann/json.hpp>

#include "Outcomes.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <vector>

/// The corpus: folders of real files, each with the answers of a peer.
namespace MapAnchor {

using Json = nlohmann::json;

inline const std::filesystem::path kCorpus = MAPANCHOR_CORPUS;

/// Hands every file that `expected.json` of a folder names to the check, with its answer.
inline void ForEachAnswer(const std::string& folder,
                          const std::function<void(const std::filesystem::path&, const Json&)>& check) {
    const Json expected = Json::parse(std::ifstream(kCorpus / folder / "expected.json"));
    ASSERT_FALSE(expected.empty());
    for (const auto& [name, answer] : expected.items()) {
        SCOPED_TRACE(name);
        check(kCorpus / folder / name, answer);
    }
}

inline std::vector<std::filesystem::path> FilesOf(const std::string& folder, const std::string& extension) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(kCorpus / folder))
        if (entry.path().extension() == extension) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

/// GDAL's six numbers in the order of the affine's terms.
inline Six TermsOfGdal(const Json& g) {
    const std::vector<double> t = g;
    return {t.at(1), t.at(2), t.at(0), t.at(4), t.at(5), t.at(3)};
}

/// From the outer corner to the centre of the top left pixel.
inline Six Centred(Six t) {
    t[2] += 0.5 * (t[0] + t[1]);
    t[5] += 0.5 * (t[3] + t[4]);
    return t;
}

/// Within a share of each term, or that much where it is below 1.
inline void ExpectTerms(const Tellurion::BGeoReference& reference, const Six& wanted, double share) {
    ASSERT_TRUE(reference.HasMathTransform());
    const Six got = References::Terms(reference);
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_NEAR(got[i], wanted[i], share * std::max(1.0, std::fabs(wanted[i]))) << "term " << i;
}

}  // namespace MapAnchor
