#include <MapAnchor/BWarningBox.h>

#include "objects/WarningBox.h"

#include <utility>

namespace MapAnchor {

using Tellurion::BString;

void BWarningBox::Replace(Box box) {
    if (!box) {
        VellumLib::SetWarningBox({});
        return;
    }
    VellumLib::SetWarningBox(
        [box = std::move(box)](QWidget* parent, const QString& title, const QString& text) {
            box(parent, BString(title.toUtf8().constData()), BString(text.toUtf8().constData()));
        });
}

}  // namespace MapAnchor
