#pragma once

#include "names/CProjection.h"

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace Tellurion {
class CoordSysDefinition;
}

namespace GeoCalc::DB {

/// Full: the same but for the last digits of a text. LessRestrictive: within what names
/// and numbers rounded by hand leave open.
enum class Sameness { Full, LessRestrictive };

bool IsSame(const PJ::CProjection& a, const PJ::CProjection& b, Sameness sameness);

/// The projected EPSG systems. The list is read once, on first need, and a system when
/// it comes into question. Safe to use from several threads.
class EpsgProjections {
public:
    struct Row {
        int number;
        std::string name;
        std::string method;
        bool deprecated;
    };

    static const EpsgProjections& Instance();

    /// By number.
    const std::vector<Row>& All() const;

    /// The current system of a projection that is fully a zone of UTM on a geodetic EPSG system; 0 for
    /// others. It is the first that Find() gives, which needs the list.
    int FindUtmZone(const PJ::CProjection& projection, const Tellurion::CoordSysDefinition& geodetic) const;

    /// The systems of a projection on a geodetic EPSG system; current ones first, those
    /// with the easting first before others. A system is looked for among those named
    /// after the geodetic one, as all but a few are.
    std::vector<const Row*> Find(const PJ::CProjection& projection,
                                 const Tellurion::CoordSysDefinition& geodetic, Sameness sameness) const;

private:
    struct System {
        PJ::CProjection projection;
        int geodetic = 0;
        bool easting_first = false;
        bool deprecated = false;
    };
    using SystemPtr = std::shared_ptr<const System>;

    EpsgProjections() = default;
    static std::vector<Row> ReadAll();
    static SystemPtr Read(int number);
    SystemPtr Get(int number) const;

    mutable std::mutex mutex_;
    mutable std::unordered_map<int, SystemPtr> systems_;
};

}  // namespace GeoCalc::DB
