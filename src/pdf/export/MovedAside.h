#pragma once

#include <Tellurion/BFileReplacement.h>
#include <Tellurion/BString.h>

#include <QString>
#include <QTemporaryFile>

#include <sys/stat.h>
#include <optional>
#include <string>

namespace MapAnchor {

/// The user's PDF, moved from the target to a temporary name while the new one is
/// written. Whatever happens, it is whole under one of the two names; where it stays
/// under the temporary one, a log line says so.
///
/// Nobody but its owner can read it under the temporary name, and nobody the new PDF before
/// it is complete. To move it within a device takes away the rights of others first, and
/// gives them back with the place. It is copied to another device, and where it belongs to
/// somebody else or has other hard links; the file itself then waits beside the target.
class MovedAside {
public:
    /// Moves the target, if there is one. Throws a BFileAccessException when that
    /// fails; the PDF is then at the target.
    explicit MovedAside(const Tellurion::BString& target);
    ~MovedAside();
    MovedAside(const MovedAside&) = delete;
    MovedAside& operator=(const MovedAside&) = delete;

    /// The temporary name; empty when there was nothing to move.
    const QString& Name() const { return name_; }
    /// The name of the new PDF: the target, with links resolved where the name that
    /// they lead to has the ending of a PDF.
    const QString& Destination() const { return destination_; }
    /// Where to write it until it is complete; empty when there was nothing to move.
    QString WorkName() const;

    /// Moves the PDF back to the target.
    void Restore();
    /// Moves it back unless something is at the target.
    void RestoreIfGone();
    /// The new PDF is complete: gives it its name and what belonged to the old one, which
    /// is removed. Throws a BGeoReferenceWriteException when that fails; the old PDF is then
    /// at the target.
    void ReplaceByResult();

private:
    void OpenResult();
    void Move();
    bool MoveByRename();
    bool MoveByCopy();
    bool IsOnOneDevice() const;

    QString destination_;
    std::string target_;  ///< with links resolved
    QString name_;
    std::string aside_;        ///< the same name
    std::string waiting_;      ///< the file itself while aside_ is a copy; else empty
    QTemporaryFile reserved_;  ///< keeps others from the temporary name
    struct stat state_ {};     ///< of the target before
    std::optional<Tellurion::BFileReplacement> result_;
    bool has_own_name_ = false;  ///< the result is not at the target, whose name lacks an ending
    bool away_ = false;
};

}  // namespace MapAnchor
