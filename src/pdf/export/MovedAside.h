#pragma once

#include <Tellurion/BString.h>

#include <QFile>
#include <QString>
#include <QTemporaryFile>

#include <optional>

namespace MapAnchor {

/// The user's PDF, moved from the target to a temporary name while the target is
/// written anew. Whatever happens, it stands whole under one of the two names; where
/// it stays under the temporary one, a log line says so.
class MovedAside {
public:
    /// Moves the target, if there is one. Throws a BFileAccessException when that
    /// fails; the PDF then stands at the target.
    explicit MovedAside(const Tellurion::BString& target);
    ~MovedAside();
    MovedAside(const MovedAside&) = delete;
    MovedAside& operator=(const MovedAside&) = delete;

    /// The temporary name; empty when there was nothing to move.
    const QString& Name() const { return name_; }
    /// What to write the new PDF to: the target, with links resolved where the name that
    /// they lead to has the ending of a PDF.
    const QString& Destination() const { return destination_; }

    /// Moves the PDF back to the target.
    void Restore();
    /// Moves it back unless something stands at the target.
    void RestoreIfGone();
    /// The new target is good: removes the old PDF.
    void Discard();

private:
    void MoveTo(const QString& name);

    QString destination_;
    QString target_;  ///< with links resolved
    QString name_;
    QTemporaryFile reserved_;  ///< keeps others from the temporary name
    QFile file_;
    bool away_ = false;
    QFileDevice::Permissions permissions_;
};

}  // namespace MapAnchor
