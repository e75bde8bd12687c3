#include "HostWindow.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QTextStream>

#include <iostream>

namespace {

/// A click of the left button on a pixel of the raster, as a person makes it.
void Click(MapView& view, const QPointF& pixel) {
    const QPointF at = view.ToView(pixel);
    QMouseEvent event(QEvent::MouseButtonPress, at, view.mapToGlobal(at.toPoint()), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

/// One line of a script, for the test of this program; false when it fails.
bool Do(HostWindow& window, const QString& line) {
    const QString word = line.section(' ', 0, 0);
    const QString rest = line.section(' ', 1);
    if (word == "open") return window.OpenRaster(rest);
    if (word == "points") return window.OpenPoints(rest);
    if (word == "system") window.SetSystem(rest);
    if (word == "click")
        Click(window.View(), {rest.section(' ', 0, 0).toDouble(), rest.section(' ', 1, 1).toDouble()});
    if (word == "paste") window.Paste(rest);
    if (word == "unuse") window.SetUsed(rest.toInt(), false);
    if (word == "residual") std::cout << window.Residual(rest.toInt()).toStdString() << "\n";
    if (word == "report") std::cout << window.Report().toStdString() << "\n";
    if (word == "save") return window.Save(rest);
    if (word == "picture") return window.grab().save(rest);
    return true;
}

}  // namespace

/// qt_host [RASTER [POINTS]], or qt_host --script FILE for the test.
int main(int argc, char** argv) {
    QApplication application(argc, argv);
    HostWindow window;
    window.show();
    QApplication::processEvents();
    const QStringList words = QApplication::arguments();
    if (words.size() < 3 || words[1] != "--script") {
        if (words.size() > 1) window.OpenRaster(words[1]);
        if (words.size() > 2) window.OpenPoints(words[2]);
        return QApplication::exec();
    }
    QFile script(words[2]);
    if (!script.open(QIODevice::ReadOnly)) return 1;
    QTextStream lines(&script);
    while (!lines.atEnd()) {
        const QString line = lines.readLine();
        const bool done = Do(window, line);
        QApplication::processEvents();
        if (done) continue;
        std::cerr << line.toStdString() << ": " << window.Status().toStdString() << "\n";
        return 1;
    }
    return 0;
}
