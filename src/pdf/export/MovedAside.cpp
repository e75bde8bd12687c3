#include "export/MovedAside.h"

#include <Tellurion/BFileAccessException.h>
#include <Tellurion/BLogger.h>

#include <QFileInfo>

#include <sys/stat.h>
#include <filesystem>
#include <system_error>

namespace MapAnchor {

using Tellurion::BFileAccessException;
using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

namespace {

constexpr const char* kSource = "BRefGeoPDF::Write";

BString ToBString(const QString& text) {
    return BString(std::u16string(reinterpret_cast<const char16_t*>(text.utf16()),
                                  static_cast<std::size_t>(text.size())));
}

const QLatin1String kEnding(".pdf");

/// A link stays a link: what it leads to is what is written.
QString Resolved(const QString& path) {
    const QFileInfo info(path);
    return info.isSymLink() && info.exists() ? info.canonicalFilePath() : path;
}

const char* RenameFailure(QFileDevice::FileError error) {
    switch (error) {
        case QFileDevice::RenameError:
            return "Could not create temp file for PDF export. The target file may be open or read-only.";
        case QFileDevice::PermissionsError:
            return "Could not create temp File for PDF export. Insufficient priveledges.";
        default:
            return "Could not create temp File for PDF export.";
    }
}

struct stat StateOf(const QString& path) {
    struct stat state {};
    stat(QFile::encodeName(path).constData(), &state);
    return state;
}

bool IsOnOneDevice(const QString& file, const QString& other) {
    return StateOf(file).st_dev == StateOf(QFileInfo(other).path()).st_dev;
}

/// To another device: the old file goes when the new one is whole. Qt's own way lets it
/// go before the last bytes are written.
QFileDevice::FileError MoveByCopy(QFile& file, const QString& name) {
    std::error_code failed;
    const std::filesystem::path to = QFile::encodeName(name).toStdString();
    if (std::filesystem::exists(to, failed)) return QFileDevice::RenameError;
    const bool copied =
        std::filesystem::copy_file(QFile::encodeName(file.fileName()).toStdString(), to, failed);
    if (!copied || !file.remove()) {
        std::filesystem::remove(to, failed);
        return QFileDevice::RenameError;
    }
    file.setFileName(name);
    return QFileDevice::NoError;
}

QFileDevice::FileError Move(QFile& file, const QString& name) {
    file.unsetError();
    if (!IsOnOneDevice(file.fileName(), name)) return MoveByCopy(file, name);
    return file.rename(name) ? QFileDevice::NoError : file.error();
}

}  // namespace

MovedAside::MovedAside(const BString& target)
    : destination_(QString::fromUtf8(target.Utf8())), target_(Resolved(destination_)), file_(target_) {
    // An export adds the ending that a name lacks: only through the link does it meet a
    // file of another name.
    if (target_.endsWith(kEnding) || !destination_.endsWith(kEnding)) destination_ = target_;
    if (target_.isEmpty() || !file_.exists()) return;
    // Qt moves a folder as well.
    if (!QFileInfo(target_).isFile())
        throw BFileAccessException(kSource, RenameFailure(QFileDevice::RenameError));
    if (!reserved_.open()) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "BRefGeoPDF::Write Failed to open temp file");
        throw BFileAccessException(kSource, "Could not create temp File for PDF export.");
    }
    const QString name = reserved_.fileName() + ".pdf";
    reserved_.close();
    permissions_ = file_.permissions();
    MoveTo(name);
}

void MovedAside::MoveTo(const QString& name) {
    const QFileDevice::FileError error = Move(file_, name);
    if (error != QFileDevice::NoError) throw BFileAccessException(kSource, RenameFailure(error));
    name_ = name;
    away_ = true;
}

MovedAside::~MovedAside() {
    if (away_)
        BLogger::Instance()->WriteLine(ELogSeverity::Error,
                                       "BRefGeoPDF::Write The PDF file <%ls> stands under the name <%ls>",
                                       ToBString(target_), ToBString(name_));
}

void MovedAside::Restore() {
    if (away_ && Move(file_, target_) == QFileDevice::NoError) away_ = false;
}

void MovedAside::RestoreIfGone() {
    if (!QFile::exists(target_)) Restore();
}

void MovedAside::Discard() {
    if (!away_) return;
    QFile::setPermissions(target_, permissions_);
    if (file_.remove()) away_ = false;
}

}  // namespace MapAnchor
