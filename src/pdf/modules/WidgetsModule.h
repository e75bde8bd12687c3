#pragma once

#include <QString>

class QWidget;

namespace VellumLib {

/// The functions of the module "widgets", which alone links Qt's widgets.
struct WidgetsModule {
    bool (*show)(QWidget* parent, const QString& title, const QString& text);
};

}  // namespace VellumLib
