#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace VellumLib {

/// Shows a warning to the user: parent (may be null), title, text.
using WarningBox = std::function<void(QWidget* parent, const QString& title, const QString& text)>;

/// The default shows a message box where a QApplication runs, and writes to the log
/// otherwise.
void ShowWarningBox(QWidget* parent, const QString& title, const QString& text);

/// Installs another box and returns the one before; an empty one brings the default back.
WarningBox SetWarningBox(WarningBox box);

}  // namespace VellumLib
