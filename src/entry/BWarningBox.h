#pragma once

#include <MapAnchor/Export.h>
#include <Tellurion/BString.h>

#include <functional>

namespace MapAnchor {

/// The warnings of a PDF export, the one thing that the library shows to a user. By
/// default a QMessageBox where a QApplication runs, a log line otherwise; a host may
/// put its own in their place, for the whole process.
class MAPANCHOR_EXPORT BWarningBox {
public:
    /// `parent` is a QWidget* or null.
    using Box =
        std::function<void(void* parent, const Tellurion::BString& title, const Tellurion::BString& text)>;

    /// An empty box brings the default back.
    static void Replace(Box box);
};

}  // namespace MapAnchor
