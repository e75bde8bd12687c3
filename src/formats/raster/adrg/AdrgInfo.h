#pragma once

#include "common/storing/Affine.h"

#include <cstddef>
#include <string_view>

namespace MapAnchor {

/// Where the values stand behind the tag "ADRG".
enum class AdrgLayout {
    GeneralInformation,  ///< records of several images; the one of that name is wanted
    Overview,            ///< one image, behind the first tag
};

/// The four values of an ADRG description that place its image. `fault` says what
/// was missing; the values hold only when there is none.
struct AdrgInfo {
    enum class Fault {
        None,
        NoTag,     ///< the text has no "ADRG" at all
        NoRecord,  ///< no record of that image, or the file ends within it
    };

    Fault fault = Fault::None;
    long columns_per_turn = 0;  ///< pixels in 360 degrees of longitude
    long rows_per_turn = 0;
    double longitude = 0.0;  ///< of the outer corner of the top left pixel, in degrees
    double latitude = 0.0;
    std::size_t values_at = 0;  ///< the byte where they begin, one behind the other

    /// The affine whose column 0, row 0 is the centre of the top left pixel.
    AffineTerms ToAffine() const;
};

/// No general information file comes near this size; one that is larger is read so far.
constexpr std::size_t kLongestAdrgInfo = std::size_t{16} << 20;

/// Takes the values from the flat text of an ISO 8211 file. `image` is the name of the
/// image, without extension, in lower case. Tags behind the first NUL are not seen.
AdrgInfo ParseAdrgInfo(std::string_view bytes, AdrgLayout layout, std::string_view image);

/// Degrees of "+DDDMMSS.SS" or "+DDMMSS.SS". The first character is taken as the sign
/// whatever it is.
double ParseAdrgAngle(std::string_view text);

}  // namespace MapAnchor
