// Every current EPSG system through every notation that the library writes, against PROJ's own
// answer. Prints a table of counts, with --list a line for each system that is not the same in
// place and code, and fails when one reads back in another place and nothing was reported.

#include "Notations.h"
#include "Truth.h"

#include <cpl_error.h>
#include <gdal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>

using namespace sweep;
using Tellurion::BCoordSys;
using Tellurion::BPoint;
using Tellurion::BString;

namespace {

constexpr double kSamePlace = 2e-3;    // metres; EPSG's origins in feet are rounded to 1e-3
constexpr double kSameOnWgs84 = 10.0;  // metres; what two ways to shift one datum differ by
constexpr double kMetresPerDegree = 111'319.0;

enum Result { SameAndCode, SamePlace, RefusedOrWarned, Wrong, Unusable, kResults };
constexpr const char* kWords[kResults] = {"same place and code", "same place", "refused or warned", "wrong",
                                          "PROJ has no way"};

struct Finding {
    Result result = SameAndCode;
    std::string text;
};

Finding Classify(const std::string& code, const std::string& wanted) {
    return code == wanted ? Finding{SameAndCode, ""}
                          : Finding{SamePlace, "code " + (code.empty() ? "none" : code)};
}

double Degrees(double difference) {
    return std::abs(std::remainder(difference, 360.0));
}

/// How far the library places the probes from where PROJ does, in metres, either way.
double DistanceOf(const BCoordSys& system, const Truth& truth, const std::vector<Probe>& probes,
                  double meridian_shift) {
    double most = 0.0;
    for (const Probe& probe : probes) {
        try {
            const BPoint grid =
                system.ConvertFromGeodetic({probe.longitude + meridian_shift, probe.latitude, 0});
            const BPoint place = system.ConvertToGeodetic({probe.x, probe.y, 0});
            const double cosine = std::cos(probe.latitude * M_PI / 180.0);
            const double east = Degrees(place.x - probe.back_longitude - meridian_shift) * cosine;
            most = std::max({most, std::hypot(grid.x - probe.x, grid.y - probe.y) * truth.MetresPerUnit(),
                             east * kMetresPerDegree,
                             Degrees(place.y - probe.back_latitude) * kMetresPerDegree});
        } catch (const std::exception&) {
            return HUGE_VAL;
        }
    }
    return most;
}

double DistanceOf(const Truth& other, const Truth& truth, const std::vector<Probe>& probes,
                  double meridian_shift) {
    double most = 0.0;
    for (Probe probe : probes) {
        const Probe wanted = probe;
        probe.longitude += meridian_shift;
        if (!other.IsUsable() || !other.Project(probe)) return HUGE_VAL;
        most = std::max(most, std::hypot(probe.x - wanted.x, probe.y - wanted.y) * truth.MetresPerUnit());
    }
    return most;
}

/// One position on WGS 84, kept for each datum and position: to find the way takes long.
std::optional<Probe> OnWgs84(const Truth& truth, double longitude, double latitude) {
    static std::map<std::string, std::optional<Probe>> known;
    std::ostringstream key;
    key << truth.BaseText() << longitude << ' ' << latitude;
    const auto [found, is_new] = known.try_emplace(key.str());
    if (is_new) found->second = truth.OnWgs84(longitude, latitude);
    return found->second;
}

double DatumDistance(const Truth& other, const Truth& truth, double meridian_shift) {
    // A coarse position, so that neighbouring zones ask once.
    const std::vector<Probe> probes = truth.Probes(1);
    if (probes.empty()) return 0.0;
    const double longitude = std::round(probes[0].longitude);
    const double latitude = std::round(probes[0].latitude);
    const auto a = OnWgs84(truth, longitude, latitude);
    const auto b = OnWgs84(other, longitude + meridian_shift, latitude);
    if (!a || !b) return 0.0;
    const double cosine = std::cos(latitude * M_PI / 180.0);
    return std::hypot(Degrees(a->x - b->x) * cosine, a->y - b->y) * kMetresPerDegree;
}

std::string Metres(const char* what, double metres) {
    std::ostringstream text;
    text << what << ' ' << metres << " m";
    return text.str();
}

Finding Compare(const Answer& answer, const Truth& truth, const std::vector<Probe>& probes,
                const std::string& wanted) {
    if (answer.refused) return {RefusedOrWarned, answer.reason};
    if (!answer.back && answer.text.empty()) return {Wrong, "nothing read back"};
    if (!answer.back && answer.code.empty() && answer.text.empty()) return {Wrong, "not understood"};
    const std::string code = answer.back ? answer.back->ToEPSGCode().StdStr() : answer.code;
    const bool same_code = code == wanted;
    std::optional<Truth> other;
    double shift = 0.0;
    if (!answer.back || !same_code) {
        other.emplace(!answer.back ? answer.text : code.empty() ? answer.back->ToWKT().StdStr() : code);
        if (!other->IsUsable()) return {Wrong, "PROJ does not read " + answer.text};
        const Figure& a = truth.GetFigure();
        const Figure& b = other->GetFigure();
        shift = a.prime_meridian - b.prime_meridian;
        if (std::abs(a.semi_major - b.semi_major) > 0.01 ||
            std::abs(a.inverse_flattening - b.inverse_flattening) > 1e-5)
            return {Wrong, "another ellipsoid"};
    }
    const double distance = answer.back ? DistanceOf(*answer.back, truth, probes, shift)
                                        : DistanceOf(*other, truth, probes, shift);
    if (!(distance < kSamePlace)) return {Wrong, Metres("off by", distance) + ", code " + code};
    if (same_code) return {};
    if (const double datum = DatumDistance(*other, truth, shift); datum > kSameOnWgs84)
        return {Wrong, Metres("the datum is off by", datum)};
    return Classify(code, wanted);
}

struct Options {
    bool sample = false;
    bool positions = false;
    std::size_t stride = 1;
    std::string list;
    std::string only;
    std::string into;
    std::string notation;
};

struct Kind {
    PJ_TYPE type;
    const char* word;
};
constexpr Kind kKinds[] = {{PJ_TYPE_PROJECTED_CRS, "projected"},
                           {PJ_TYPE_GEOGRAPHIC_2D_CRS, "geographic"},
                           {PJ_TYPE_GEOGRAPHIC_3D_CRS, "geographic 3D"},
                           {PJ_TYPE_COMPOUND_CRS, "compound"}};

bool HasHeights(PJ_TYPE type) {
    return type == PJ_TYPE_COMPOUND_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS;
}

class Sweep {
public:
    explicit Sweep(Options options) : options_(std::move(options)) {
        for (const Notation& notation : Notations())
            if (options_.notation.empty() || options_.notation == notation.name)
                if (!options_.sample || notation.in_sample) notations_.push_back(notation);
    }

    /// In processes: threads of one would wait for each other in SQLite.
    void Run() {
        const auto folder =
            std::filesystem::temp_directory_path() / ("crs-sweep-" + std::to_string(getpid()));
        const unsigned workers = std::max(1U, std::min(4U, std::thread::hardware_concurrency()));
        std::vector<pid_t> children;
        for (unsigned i = 0; i < workers; ++i)
            if (const pid_t child = fork(); child != 0)
                children.push_back(child);
            else
                Work(folder / std::to_string(i), i, workers);
        for (const pid_t child : children)
            if (int status = 0; waitpid(child, &status, 0) != child || status != 0)
                throw std::runtime_error("a part of the sweep ended with status " + std::to_string(status));
        for (unsigned i = 0; i < workers; ++i)
            Collect(folder / std::to_string(i) / kFindings);
        std::filesystem::remove_all(folder);
        std::ranges::sort(lines_);
    }

    int Wrongs() const {
        int wrongs = 0;
        for (const auto& [key, count] : counts_)
            if (std::get<2>(key) == Wrong) wrongs += count;
        return wrongs;
    }

    void Print(std::ostream& out) const {
        for (const Kind& kind : kKinds) {
            out << "\n### " << kind.word << "\n\n| notation |";
            for (const char* word : kWords)
                out << ' ' << word << " |";
            out << "\n|---|--:|--:|--:|--:|--:|\n";
            for (const Notation& notation : notations_) {
                out << "| " << notation.name << " |";
                for (int result = 0; result < kResults; ++result) {
                    const auto found = counts_.find({notation.name, kind.type, result});
                    out << ' ' << (found == counts_.end() ? 0 : found->second) << " |";
                }
                out << '\n';
            }
        }
    }

    const std::vector<std::string>& Lines() const { return lines_; }

private:
    /// Every `workers`-th block of systems; neighbours have the datum in common.
    [[noreturn]] void Work(const std::filesystem::path& folder, unsigned worker, unsigned workers) {
        constexpr std::size_t kBlock = 32;
        std::filesystem::create_directories(folder);
        std::ofstream out(folder / kFindings);
        CPLPushErrorHandler(CPLQuietErrorHandler);
        const std::vector<ListedSystem> systems = ListSystems();
        for (std::size_t i = 0; i < systems.size(); i += options_.stride)
            if (i / options_.stride / kBlock % workers == worker &&
                (options_.only.empty() || options_.only == systems[i].code))
                Try(systems[i], folder, out);
        out.close();
        _exit(out ? EXIT_SUCCESS : EXIT_FAILURE);
    }

    void Try(const ListedSystem& listed, const std::filesystem::path& folder, std::ostream& out) {
        const std::string wanted = "EPSG:" + listed.code;
        const Truth truth(wanted);
        const std::vector<Probe> probes = truth.IsUsable() ? truth.Probes(3) : std::vector<Probe>();
        const std::unique_ptr<BCoordSys> system(BCoordSys::FromEPSGCode(BString(listed.code)));
        std::map<std::string, Finding> known;  // several notations come back as the same system
        for (const Notation& notation : notations_) {
            Finding finding{Wrong, "not known"};
            if (probes.empty()) {
                finding = {Unusable, ""};
            } else if (system) {
                const Answer answer = notation.pass(*system, folder);
                const std::string key = answer.refused ? answer.reason
                                        : answer.back  ? answer.back->ToWholeWKT().StdStr()
                                                       : answer.code + ' ' + answer.text;
                const auto [found, is_new] = known.try_emplace(key);
                if (is_new) found->second = Compare(answer, truth, probes, wanted);
                finding = found->second;
            }
            if (finding.result == SamePlace && HasHeights(listed.type) && !notation.holds_heights)
                finding = {RefusedOrWarned, "the horizontal part alone"};
            std::ranges::replace(finding.text, '\n', ' ');
            out << finding.result << '\t' << listed.type << '\t' << notation.name << '\t'
                << kWords[finding.result] << '\t' << wanted << '\t' << listed.name << '\t' << finding.text
                << '\n';
        }
    }

    void Collect(const std::filesystem::path& findings) {
        std::ifstream in(findings);
        for (std::string line; std::getline(in, line);) {
            int result = 0;
            int type = 0;
            std::string rest;
            std::istringstream fields(line);
            fields >> result >> type >> std::ws;
            std::getline(fields, rest);
            ++counts_[{rest.substr(0, rest.find('\t')), type, result}];
            if (result != SameAndCode) lines_.push_back(rest);
        }
    }

    static constexpr const char* kFindings = "findings.tsv";

    Options options_;
    std::vector<Notation> notations_;
    std::map<std::tuple<std::string, int, int>, int> counts_;  ///< by notation, type and result
    std::vector<std::string> lines_;
};

/// 1,000 positions in each of 200 systems, both picked at random but always the same, on their
/// own datum and across datums to WGS 84. Answers the number of systems that are off.
int ComparePositions(std::ostream& out) {
    constexpr int kSystems = 200;
    constexpr int kPositions = 1000;
    constexpr double kMillimetre = 1e-3;
    std::vector<ListedSystem> systems = ListSystems();
    std::shuffle(systems.begin(), systems.end(), std::mt19937(kSystems));
    const std::unique_ptr<BCoordSys> wgs84(BCoordSys::FromEPSGCode("EPSG:4326"));
    int compared = 0;
    int off = 0;
    double largest = 0.0;
    for (std::size_t i = 0; i < systems.size() && compared < kSystems; ++i) {
        const std::string code = "EPSG:" + systems[i].code;
        const Truth truth(code);
        const std::vector<Probe> probes = truth.IsUsable() ? truth.Probes(kPositions) : std::vector<Probe>();
        const std::unique_ptr<BCoordSys> system(BCoordSys::FromEPSGCode(BString(code)));
        if (probes.empty() || !system) continue;
        ++compared;
        double distance = DistanceOf(*system, truth, probes, 0.0);
        for (const Probe& there : truth.OnWgs84(probes)) {
            const BPoint ours = system->ConvertTo(*wgs84, {there.x, there.y, 0});
            distance = std::max(
                distance, std::hypot(Degrees(ours.x - there.longitude), Degrees(ours.y - there.latitude)) *
                              kMetresPerDegree);
        }
        largest = std::max(largest, distance);
        if (distance < kMillimetre) continue;
        ++off;
        out << code << ' ' << systems[i].name << Metres(" is off by", distance) << '\n';
    }
    out << compared << " systems compared, the largest distance is " << largest << " m\n";
    return compared == kSystems ? off : off + 1;
}

void ReplaceTable(const std::string& path, const std::string& table) {
    constexpr const char* kStart = "<!-- crs-sweep -->\n";
    constexpr const char* kEnd = "<!-- end of crs-sweep -->";
    std::stringstream text;
    text << std::ifstream(path).rdbuf();
    std::string document = text.str();
    const std::size_t start = document.find(kStart);
    const std::size_t end = document.find(kEnd);
    if (start == document.npos || end == document.npos)
        throw std::runtime_error(path + " has no place for the table");
    const std::size_t from = start + std::strlen(kStart);
    document.replace(from, end - from, table + '\n');
    std::ofstream(path) << document;
}

void AddOptions(CLI::App& app, Options& options) {
    app.add_flag("--sample", options.sample, "A small part of the systems");
    app.add_flag("--positions", options.positions, "Only compare positions, not the notations");
    app.add_option("--list", options.list, "A file for a line of each system that is not the same");
    app.add_option("--only", options.only, "Only this system, by its code");
    app.add_option("--notation", options.notation, "Only this notation");
    app.add_option("--into", options.into, "A document whose table is replaced");
    app.add_option("--every", options.stride, "Only one system of so many")->check(CLI::PositiveNumber);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app("Holds every EPSG system in every notation against PROJ");
    AddOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    GDALAllRegister();
    CollectLog();
    if (options.positions) return ComparePositions(std::cout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    Sweep sweep(options);
    sweep.Run();
    std::ostringstream table;
    sweep.Print(table);
    std::cout << table.str();
    if (!options.into.empty()) ReplaceTable(options.into, table.str());
    if (!options.list.empty()) {
        std::ofstream list(options.list);
        for (const std::string& line : sweep.Lines())
            list << line << '\n';
    }
    return sweep.Wrongs() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
