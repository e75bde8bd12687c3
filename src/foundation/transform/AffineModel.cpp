#include "AffineModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Tellurion {
namespace {

/// mantissa * 2^exponent. Products of terms leave the range of double where the
/// terms themselves do not.
struct Split {
    explicit Split(double value) : mantissa(std::frexp(value, &exponent)) {}
    int exponent = 0;
    double mantissa;
};

/// p * q - r * s within two units of the last place, and 0 only when it is 0.
double DifferenceOfProducts(double p, double q, double r, double s) {
    const double product = r * s;
    const double rounding = std::fma(-r, s, product);
    return std::fma(p, q, -product) + rounding;
}

bool IsFinite(const AffineTerms& t) {
    return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
           std::isfinite(t.e) && std::isfinite(t.f);
}

bool Invert(const AffineTerms& terms, AffineModel::InverseTerms& inverse) {
    const Split a(terms.a), b(terms.b), d(terms.d), e(terms.e);
    const bool diagonal = a.mantissa * e.mantissa != 0.0;
    const bool counter_diagonal = b.mantissa * d.mantissa != 0.0;
    const int ae_exponent = a.exponent + e.exponent;
    const int bd_exponent = b.exponent + d.exponent;
    const int top = !diagonal           ? bd_exponent
                    : !counter_diagonal ? ae_exponent
                                        : std::max(ae_exponent, bd_exponent);
    // Scaled by 2^-top the larger product is near 1; of the smaller one nothing is
    // lost but what is 900 powers of two below.
    const double a_scaled = diagonal ? std::ldexp(a.mantissa, ae_exponent - top) : 0.0;
    const double b_scaled = counter_diagonal ? std::ldexp(b.mantissa, bd_exponent - top) : 0.0;
    const double determinant = DifferenceOfProducts(a_scaled, e.mantissa, b_scaled, d.mantissa);
    const double size = std::abs(a_scaled * e.mantissa) + std::abs(b_scaled * d.mantissa);
    if (!(std::abs(determinant) > std::numeric_limits<double>::epsilon() * size)) return false;

    inverse.a = std::ldexp(e.mantissa / determinant, e.exponent - top);
    inverse.b = std::ldexp(-b.mantissa / determinant, b.exponent - top);
    inverse.d = std::ldexp(-d.mantissa / determinant, d.exponent - top);
    inverse.e = std::ldexp(a.mantissa / determinant, a.exponent - top);
    return std::isfinite(inverse.a) && std::isfinite(inverse.b) && std::isfinite(inverse.d) &&
           std::isfinite(inverse.e);
}

}  // namespace

std::shared_ptr<const AffineModel> AffineModel::Make(const AffineTerms& terms, EMathTransformType type) {
    InverseTerms inverse{};
    if (!IsFinite(terms) || !Invert(terms, inverse)) return nullptr;
    return std::make_shared<const AffineModel>(terms, inverse, type);
}

bool AffineModel::ToTarget(double& x, double& y) const {
    return AssignFinite(terms_.a * x + terms_.b * y + terms_.c, terms_.d * x + terms_.e * y + terms_.f, x, y);
}

bool AffineModel::ToSource(double& x, double& y) const {
    const double u = x - terms_.c;
    const double v = y - terms_.f;
    const double x0 = inverse_.a * u + inverse_.b * v;
    const double y0 = inverse_.d * u + inverse_.e * v;
    // What the first answer leaves over repairs the rounding of the inverse's terms.
    const double u_left = std::fma(-terms_.a, x0, std::fma(-terms_.b, y0, u));
    const double v_left = std::fma(-terms_.d, x0, std::fma(-terms_.e, y0, v));
    const double x1 = x0 + (inverse_.a * u_left + inverse_.b * v_left);
    const double y1 = y0 + (inverse_.d * u_left + inverse_.e * v_left);
    return AssignFinite(x1, y1, x, y) || AssignFinite(x0, y0, x, y);
}

// An affine step has the same image everywhere: no difference of large coordinates.

bool AffineModel::LengthInTarget(double, double, double dx, double dy, double& length) const {
    length = std::hypot(terms_.a * dx + terms_.b * dy, terms_.d * dx + terms_.e * dy);
    return std::isfinite(length);
}

bool AffineModel::LengthInSource(double, double, double dx, double dy, double& length) const {
    length = std::hypot(inverse_.a * dx + inverse_.b * dy, inverse_.d * dx + inverse_.e * dy);
    return std::isfinite(length);
}

}  // namespace Tellurion
