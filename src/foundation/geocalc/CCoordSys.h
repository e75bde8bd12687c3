#pragma once

#include "CSerializable.h"

#include <Tellurion/Export.h>

#include <functional>
#include <memory>
#include <mutex>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::CS {

class CHorizontalDatum;

/// A coordinate system as an object of the database. Its identifiers are the code of
/// the database's own and, where the system has one, the EPSG number. Const operations
/// may run in several threads.
class TELLURION_EXPORT CCoordSys : public CSerializable {
public:
    using Definition = std::shared_ptr<const Tellurion::CoordSysDefinition>;

    /// The object of a definition: geodetic, projected, or neither.
    static std::unique_ptr<CCoordSys> Make(const Definition& definition);
    ~CCoordSys() override;
    virtual std::unique_ptr<CCoordSys> Clone() const;

    /// What the object describes at present, under its present name.
    virtual Definition GetDefinition() const;

    /// Null for a system that is neither geodetic nor projected.
    virtual CHorizontalDatum* GetHorizontalDatum() { return nullptr; }

protected:
    explicit CCoordSys(const Definition& definition);
    /// Made when it is first asked for; never null.
    explicit CCoordSys(std::function<Definition()> maker) : maker_(std::move(maker)) {}
    CCoordSys(const CCoordSys& other);
    CCoordSys& operator=(const CCoordSys&) = delete;

    /// What the object described at first.
    const Definition& GetOriginal() const;
    /// Guards what is made on first request; one part may be made of another.
    std::recursive_mutex& GetMutex() const { return mutex_; }
    /// `definition` under the object's present name.
    Definition Named(Definition definition) const;

private:
    mutable std::recursive_mutex mutex_;
    std::function<Definition()> maker_;
    mutable Definition original_;
    mutable Definition named_;
};

}  // namespace GeoCalc::CS
