#include "HostWindow.h"

#include <QApplication>

#include <iostream>

/// qt_host [FILE [SIDECAR]]: shows FILE; with SIDECAR saves its reference there, says what
/// the window says, and ends.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    HostWindow window;
    window.show();
    const QStringList words = QApplication::arguments();
    const bool opened = words.size() < 2 || window.Open(words[1]);
    if (words.size() < 3) return QApplication::exec();
    QApplication::processEvents();
    std::cout << window.Text().toStdString() << "\n";
    return opened && window.Save(words[2]) ? 0 : 1;
}
