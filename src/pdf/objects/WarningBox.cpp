#include "objects/WarningBox.h"

#include <Tellurion/BLogger.h>

#ifdef MAPANCHOR_WITH_QTWIDGETS
#include <QApplication>
#include <QMessageBox>
#endif

#include <mutex>
#include <utility>

namespace VellumLib {
namespace {

using Tellurion::BLogger;
using Tellurion::ELogSeverity;

struct Seam {
    std::mutex mutex;
    WarningBox box;
};

Seam& TheSeam() {
    static Seam seam;
    return seam;
}

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

void ShowDefault(QWidget* parent, const QString& title, const QString& text) {
    if (ShowMessageBox(parent, title, text)) return;
    BLogger::Instance()->WriteLine(ELogSeverity::Error, "%s: %s", title.toUtf8().constData(),
                                   text.toUtf8().constData());
}

}  // namespace

void ShowWarningBox(QWidget* parent, const QString& title, const QString& text) {
    WarningBox box;
    {
        const std::lock_guard lock(TheSeam().mutex);
        box = TheSeam().box;
    }
    if (box)
        box(parent, title, text);
    else
        ShowDefault(parent, title, text);
}

WarningBox SetWarningBox(WarningBox box) {
    const std::lock_guard lock(TheSeam().mutex);
    return std::exchange(TheSeam().box, std::move(box));
}

}  // namespace VellumLib
