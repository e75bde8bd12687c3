#pragma once

#include <Tellurion/BString.h>
#include <Tellurion/Export.h>

#include <functional>

namespace Tellurion {

/// A host's own way to show a warning: parent (a QWidget* or null), title, text. Kept here, so
/// that a host can set it before what shows warnings is loaded.
using WarningSeam = std::function<void(void* parent, const BString& title, const BString& text)>;

TELLURION_EXPORT void SetWarningSeam(WarningSeam seam);
/// Empty where the host set none.
TELLURION_EXPORT WarningSeam GetWarningSeam();

}  // namespace Tellurion
