#include <Tellurion/BFileUtilities.h>

#include <Tellurion/FileStandIns.h>

#include <sys/stat.h>
#include <filesystem>
#include <string>
#include <system_error>

namespace Tellurion {
namespace {

std::size_t NameStart(const std::u16string& path) {
    const std::size_t slash = path.rfind(u'/');
    return slash == std::u16string::npos ? 0 : slash + 1;
}

/// The position of the extension's dot, or the end. A dot with nothing behind it is
/// part of the name, and so are "." and "..".
std::size_t ExtensionStart(const std::u16string& path) {
    const std::size_t dot = path.rfind(u'.');
    if (dot == std::u16string::npos || dot < NameStart(path) || dot + 1 == path.size()) return path.size();
    return dot;
}

}  // namespace

bool BFileUtilities::Exists(const BString& path) {
    struct stat status;
    return FileStandIns::Has(path.Ascii()) || ::stat(path.Ascii(), &status) == 0;
}

bool BFileUtilities::IsRegularFile(const BString& path) {
    struct stat status;
    return ::stat(path.Ascii(), &status) == 0 && S_ISREG(status.st_mode);
}

BString BFileUtilities::CompletePath(const BString& path) {
    const std::u16string& units = path.GetUnits();
    if (units.empty() || units.front() == u'/') return path;
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    return error ? path : BString((folder / path.StdStr()).string());
}

BString BFileUtilities::GetExtension(const BString& path) {
    return path.GetUnits().substr(ExtensionStart(path.GetUnits()));
}

BString BFileUtilities::ChangeExtension(const BString& path, const BString& extension) {
    std::u16string stem = path.GetUnits().substr(0, ExtensionStart(path.GetUnits()));
    if (!stem.empty() && stem.back() == u'.' && stem.size() > NameStart(stem) + 1) stem.pop_back();
    return stem + u'.' + extension.GetUnits();
}

BString BFileUtilities::GetFileName(const BString& path) {
    return path.GetUnits().substr(NameStart(path.GetUnits()));
}

BString BFileUtilities::GetBasename(const BString& path) {
    const std::u16string& units = path.GetUnits();
    const std::size_t start = NameStart(units);
    return units.substr(start, ExtensionStart(units) - start);
}

}  // namespace Tellurion
