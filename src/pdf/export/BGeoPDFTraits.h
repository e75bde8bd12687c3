#pragma once

#include <MapAnchor/BDiagnostic.h>
#include <MapAnchor/BGeoPDFPage.h>
#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <vector>

namespace MapAnchor {

/// What a PDF has that writing the whole file would break, and an incremental update keeps
/// (BMapAnchor::kValPDFIncremental). Found without reading more than a few objects.
class MAPANCHOR_EXPORT BGeoPDFTraits {
public:
    bool Known = false;              ///< false: the file cannot be looked at, and the rest means nothing
    bool Encrypted = false;          ///< it cannot be changed
    bool Signed = false;             ///< it has a digital signature
    bool Locked = false;             ///< a signature certifies the file and allows no changes at all
    bool Tagged = false;             ///< it has a logical structure
    bool Linearized = false;         ///< viewers can show its first page while the rest still loads
    Tellurion::BString Conformance;  ///< to an archiving standard, such as "PDF/A-2b"; usually empty
    Tellurion::BString Version;      ///< of its header, such as "1.7"
    long long Size = 0;              ///< in bytes

    /// Files of this many bytes and more are updated where the host leaves the choice.
    static constexpr long long kLargeFile = 16LL << 20;

    /// Never throws for what the file holds.
    static BGeoPDFTraits Of(const Tellurion::BString& file);
    /// A warning for each thing that writing the whole file breaks.
    std::vector<BDiagnostic> RewriteLosses() const;
    /// What the change itself means for the file, however it is written.
    std::vector<BDiagnostic> ChangeRemarks() const;
    /// True where an update is the better way to change the file.
    bool WantsUpdate() const;
    /// The page of `file`, whose traits these are, that a save beyond the rules georeferences, counted
    /// from 1; its boxes are in points of 1/72 inch. BGeoPDFPage::Fault says why there is none.
    BGeoPDFPage DescribeTarget(const Tellurion::BString& file, int number) const;
};

}  // namespace MapAnchor
