#pragma once

#include <QString>

class QWidget;

namespace VellumLib {

/// Shows a warning to the user: parent (may be null), title, text. Where the host set no box of
/// its own, a message box where a QApplication runs, and a log line otherwise.
void ShowWarningBox(QWidget* parent, const QString& title, const QString& text);

/// False where no QApplication runs, and where the module of Qt's widgets is not installed.
bool ShowMessageBox(QWidget* parent, const QString& title, const QString& text);

}  // namespace VellumLib
