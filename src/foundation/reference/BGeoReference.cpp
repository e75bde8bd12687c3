#include <Tellurion/BGeoReference.h>

#include <utility>

namespace Tellurion {

BGeoReference::BGeoReference() = default;
BGeoReference::BGeoReference(const BGeoReference&) = default;
BGeoReference& BGeoReference::operator=(const BGeoReference&) = default;
BGeoReference::~BGeoReference() = default;

bool BGeoReference::HasCoordSys() const {
    return !CoordSys.IsEmpty();
}
bool BGeoReference::HasMathTransform() const {
    return !MathTransform.IsEmpty();
}

void BGeoReference::SetCoordSys(const BSharedPtr<BCoordSys>& coordSys) {
    CoordSys = coordSys;
}

void BGeoReference::SetMathTransform(const BMathTransform& transform) {
    MathTransform = transform.IsValid() ? BSharedPtr<BMathTransform>(new BMathTransform(transform))
                                        : BSharedPtr<BMathTransform>();
}

void BGeoReference::SetPointPairVector(std::vector<BPointPair> pairs, EMathTransformType) {
    PointPairVector = std::move(pairs);
    MathTransform = BSharedPtr<BMathTransform>();
}

void BGeoReference::SetPointPairVectorAndMathTransform(std::vector<BPointPair> pairs,
                                                       const BMathTransform& transform) {
    PointPairVector = std::move(pairs);
    SetMathTransform(transform);
}

bool BGeoReference::HasVerticalUnit() const {
    return !vertical_unit_.IsEmpty();
}
BSharedPtr<BLinearUnit> BGeoReference::GetVerticalUnit() const {
    return vertical_unit_;
}
void BGeoReference::SetVerticalUnit(const BSharedPtr<BLinearUnit>& unit) {
    vertical_unit_ = unit;
}

bool BGeoReference::IsPixelAsPointRegistered() const {
    return pixel_as_point_;
}
void BGeoReference::SetPixelAsPointRegistered(bool registered) {
    pixel_as_point_ = registered;
}

}  // namespace Tellurion
