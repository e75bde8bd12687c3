#include "objects/WarningBox.h"

#ifdef MAPANCHOR_WITH_QTWIDGETS
#include <QApplication>
#include <QMessageBox>
#endif

namespace VellumLib {

bool ShowMessageBox([[maybe_unused]] QWidget* parent, [[maybe_unused]] const QString& title,
                    [[maybe_unused]] const QString& text) {
#ifdef MAPANCHOR_WITH_QTWIDGETS
    if (qobject_cast<QApplication*>(QCoreApplication::instance())) {
        QMessageBox::warning(parent, title, text, QMessageBox::Ok, QMessageBox::NoButton);
        return true;
    }
#endif
    return false;
}

}  // namespace VellumLib
