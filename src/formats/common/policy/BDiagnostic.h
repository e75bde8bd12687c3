#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <memory>

namespace MapAnchor {

/// A remark on a reading: what was guessed, rounded, replaced, left out or refused. A value
/// that is cheap to copy.
class MAPANCHOR_EXPORT BDiagnostic {
public:
    /// A note does not put the result in doubt; a warning does; an error goes with a failure.
    enum class ESeverity : int { Note = 0, Warning = 1, Error = 2 };

    BDiagnostic();  ///< a note without a text
    BDiagnostic(const BDiagnostic&);
    BDiagnostic& operator=(const BDiagnostic&);
    ~BDiagnostic();

    /// For programs, such as "points-rounded"; it never changes its meaning. The page
    /// docs/diagnostics.md says for each what causes it and what helps.
    Tellurion::BString GetId() const;
    ESeverity GetSeverity() const;        ///< see ESeverity
    Tellurion::BString GetText() const;   ///< a sentence for people, with file names and figures
    Tellurion::BString GetFile() const;   ///< where it was seen; empty when that is not known
    long GetLine() const;                 ///< of a text file, from 1; 0 when not known
    long long GetByteOffset() const;      ///< in the file; -1 when not known
    Tellurion::BString GetPlace() const;  ///< a tag, a field or a PDF object; empty when not known

    /// For the library's own use.
    struct Parts;
    explicit BDiagnostic(std::shared_ptr<const Parts> parts);  ///< for the library's own use

private:
    std::shared_ptr<const Parts> parts_;
};

}  // namespace MapAnchor
