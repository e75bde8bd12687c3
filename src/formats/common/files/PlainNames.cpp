#include "common/files/PlainNames.h"

#include <Tellurion/BCoordSysRepository.h>
#include <Tellurion/BException.h>
#include <Tellurion/BLogger.h>

#include <memory>

namespace MapAnchor {

using Tellurion::BCoordSys;
using Tellurion::BCoordSysRepository;
using Tellurion::BException;
using Tellurion::BGeoReference;
using Tellurion::BLogger;
using Tellurion::BMathTransform;
using Tellurion::BSharedPtr;
using Tellurion::ELogSeverity;

BSharedPtr<BCoordSys> LookUp(const PlainNames& names) {
    BCoordSys* system = BCoordSysRepository::Instance()->ReadCoordSysFromPlainTextStrings(
        names.projection, names.datum, names.units);
    return system ? BSharedPtr<BCoordSys>(system) : BSharedPtr<BCoordSys>();
}

void StoreWhatThereIs(BGeoReference& reference, const AffineTerms& t, const PlainNames& names,
                      const char* log_format) {
    constexpr bool kOptimizeFor2D = true;
    try {
        const std::unique_ptr<BMathTransform> transform(
            BMathTransform::CreateAffine(t.a, t.b, t.c, t.d, t.e, t.f, kOptimizeFor2D));
        if (transform) reference.SetMathTransform(*transform);
        const BSharedPtr<BCoordSys> system = LookUp(names);
        if (!system.IsEmpty()) reference.SetCoordSys(system);
    } catch (const BException& error) {
        BLogger::Instance()->WriteLine(ELogSeverity::Error, log_format, error.GetDetailedMessage());
    }
}

}  // namespace MapAnchor
