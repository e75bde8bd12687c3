#include "objects/WarningBox.h"

#include <Tellurion/BLogger.h>
#include <Tellurion/WarningSeam.h>

namespace VellumLib {

using Tellurion::BLogger;
using Tellurion::BString;
using Tellurion::ELogSeverity;

void ShowWarningBox(QWidget* parent, const QString& title, const QString& text) {
    if (const auto seam = Tellurion::GetWarningSeam())
        seam(parent, BString(title.toUtf8().constData()), BString(text.toUtf8().constData()));
    else if (!ShowMessageBox(parent, title, text))
        BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s: %s", title.toUtf8().constData(),
                                       text.toUtf8().constData());
}

}  // namespace VellumLib
