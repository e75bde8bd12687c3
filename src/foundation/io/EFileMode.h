#pragma once

namespace Tellurion {

/// How a BFile is opened: an access, Read or Write, and a form, Text or Binary.
enum class EFileMode : int {
    Read = 1,
    Write = 2,  ///< creates the file, or truncates it
    Text = 4,
    Binary = 8,
};

}  // namespace Tellurion
