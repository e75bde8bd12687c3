#include "modules/WidgetsModule.h"

#include "objects/WarningBox.h"

#include <Tellurion/Module.h>

#include <QCoreApplication>

namespace VellumLib {

bool ShowMessageBox(QWidget* parent, const QString& title, const QString& text) {
    static auto* const module = new Tellurion::Module("widgets", "Message boxes");
    const QCoreApplication* const application = QCoreApplication::instance();
    if (!application || !application->inherits("QApplication") || !module->IsThere()) return false;
    return static_cast<const WidgetsModule*>(module->Functions())->show(parent, title, text);
}

}  // namespace VellumLib
