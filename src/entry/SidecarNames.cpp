#include "SidecarNames.h"

#include "ReferenceFormats.h"
#include "common/files/FolderNames.h"
#include "raster/gdal/VirtualFiles.h"

#include <MapAnchor/BMapAnchor.h>
#include <Tellurion/Ascii.h>
#include <Tellurion/BFileUtilities.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace MapAnchor {

using Tellurion::BFileUtilities;
using Tellurion::BString;

namespace {

/// What a name has behind a raster's stem or behind its whole name.
struct Ending {
    const char* kind;
    std::string_view text;  ///< in lower case, with its dot
    bool behind_name = false;
};

/// The endings of a raster's sidecars.
struct SidecarEndings {
    std::string own;       ///< of its world file, by the usual rule
    std::string long_one;  ///< and with the whole extension
    std::array<Ending, 10> all;

    explicit SidecarEndings(const BString& raster)
        : own(BMapAnchor::GenerateWorldFileExt(raster).StdStr()),
          long_one(BFileUtilities::GetExtension(raster).ToLower().StdStr() + "w"),
          all{{{"aux.xml", ".aux.xml", true},
               {"WLD", own.size() > 2 ? std::string_view(own) : kNone},
               {"WLD", long_one != own && long_one.size() > 2 ? std::string_view(long_one) : kNone},
               {"WLD", ".wld"},
               {"TAB", ".tab"},
               {"ERS", ".ers"},
               {"RSF", ".rsf"},
               {"PRJ", ".prj"},
               {"POINTS", ".points", true},  // as QGIS names it
               {"POINTS", ".points"}}} {}
    SidecarEndings(const SidecarEndings&) = delete;
    SidecarEndings& operator=(const SidecarEndings&) = delete;

    static constexpr std::string_view kNone = {};
};

constexpr std::array<Ending, 12> kRasterEndings = {{{"", ".tif"},
                                                    {"", ".tiff"},
                                                    {"", ".jpg"},
                                                    {"", ".jpeg"},
                                                    {"", ".png"},
                                                    {"", ".jp2"},
                                                    {"", ".bmp"},
                                                    {"", ".gif"},
                                                    {"", ".img"},
                                                    {"", ".kap"},
                                                    {"", ".sid"},
                                                    {"", ".ecw"}}};

/// The folder of a file, with the slash; and its stem and name there.
struct Place {
    std::string folder;
    std::string name;
    std::string stem;
    explicit Place(const std::string& file)
        : folder(file.substr(0, file.rfind('/') + 1)), name(file.substr(folder.size())) {
        stem = name.substr(0, name.rfind('.'));
    }
    const std::string& Base(const Ending& ending) const { return ending.behind_name ? name : stem; }
};

constexpr int kMaxEntries = 8192;

/// The names in a folder that only GDAL's file layer can list.
std::vector<std::string> ListVirtual(const Place& place) {
    std::vector<std::string> names = VirtualFiles::List(place.folder, kMaxEntries);
    std::erase_if(
        names, [&](const std::string& name) { return !name.starts_with(place.stem) || name == place.name; });
    return names;
}

/// The other names in the folder that begin with the file's stem; empty for a folder that is
/// too long to list.
std::optional<std::vector<std::string>> List(const Place& place) {
    if (VirtualFiles::IsName(BString(place.folder + place.name))) return ListVirtual(place);
    std::optional<std::vector<std::string>> names = NamesBeginningWith(place.stem, place.folder);
    if (names)
        std::erase_if(*names, [&](const std::string& name) {
            return !name.starts_with(place.stem) || name == place.name;
        });
    return names;
}

bool IsRegular(const std::string& file) {
    const BString name(file);
    return BFileUtilities::IsRegularFile(name) ||
           (VirtualFiles::IsName(name) && VirtualFiles::KindOf(name) == VirtualFiles::Kind::File);
}

/// The spelling of a name that is there, lower case before upper and mixed; empty for none.
std::string FindIn(const std::vector<std::string>& names, const std::string& base, std::string_view ending) {
    std::string found;
    for (const std::string& name : names) {
        if (name.size() != base.size() + ending.size() || !name.starts_with(base)) continue;
        const std::string_view rest = std::string_view(name).substr(base.size());
        if (Tellurion::LowerAscii(rest) != ending) continue;
        if (found.empty() || rest == ending ||
            (rest == Tellurion::UpperAscii(ending) && found != base + std::string(ending)))
            found = name;
    }
    return found;
}

std::string Find(const Place& place, const std::optional<std::vector<std::string>>& names,
                 const Ending& ending) {
    const std::string& base = place.Base(ending);
    if (names) {
        const std::string name = FindIn(*names, base, ending.text);
        return !name.empty() && IsRegular(place.folder + name) ? place.folder + name : "";
    }
    for (const std::string& text : {std::string(ending.text), Tellurion::UpperAscii(ending.text)}) {
        if (text == ending.text || !ending.behind_name)
            if (IsRegular(place.folder + base + text)) return place.folder + base + text;
    }
    return {};
}

}  // namespace

std::vector<SidecarName> FindSidecars(const BString& raster) {
    const Place place(raster.StdStr());
    const auto names = List(place);
    std::vector<SidecarName> found;
    if (names && names->empty()) return found;
    const SidecarEndings endings(raster);
    for (const Ending& ending : endings.all) {
        if (ending.text.empty()) continue;
        const std::string file = Find(place, names, ending);
        if (!file.empty() && file != raster.StdStr()) found.push_back({ending.kind, BString(file)});
    }
    return found;
}

BString FindRasterBeside(const BString& sidecar) {
    const Place place(sidecar.StdStr());
    const auto names = List(place);
    if (names && names->empty()) return {};
    for (const Ending& ending : kRasterEndings) {
        const std::string file = Find(place, names, ending);
        if (!file.empty() && file != sidecar.StdStr()) return BString(file);
    }
    return {};
}

bool IsSidecarName(const BString& file) {
    const std::u16string extension = BFileUtilities::GetExtension(file).ToLower().GetUnits();
    const ReferenceFormat* const row = FindFormatToRead(extension);
    if (row) return row->sidecar;
    const ReferenceFormat* const typed = FindFormatByTypedName(file);
    if (typed && typed->sidecar) return true;
    const auto& of_world_files = FindFormatByType(Tellurion::EReferenceType::WLD)->save_extensions;
    return std::find(of_world_files.begin(), of_world_files.end(), extension) != of_world_files.end();
}

bool IsRasterExtension(const BString& extension) {
    if (IsPlainRasterExtension(extension.GetUnits())) return true;
    const ReferenceFormat* const row = FindFormatToRead(extension.GetUnits());
    if (row) return !row->sidecar;
    for (const Ending& ending : kRasterEndings)
        if (extension == BString(std::string(ending.text))) return true;
    return false;
}

}  // namespace MapAnchor
