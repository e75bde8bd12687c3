#include "HostWindow.h"

#include <MapAnchor/BMapAnchor.h>
#include <MapAnchor/BReading.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BException.h>
#include <Tellurion/BMathTransform.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

using namespace Tellurion;
using MapAnchor::BMapAnchor;

namespace {

BString Native(const QString& text) {
    return BString(text.toStdU16String());
}

QString Shown(const BString& text) {
    return QString::fromStdU16String(text.GetUnits());
}

/// The failure of a call into the library; the PDF library's own are no std::exception.
template <class Work>
QString FailureOf(Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return "The PDF library refuses the file.";
    }
    return QString();
}

}  // namespace

HostWindow::HostWindow() : view_(new MapView), text_(new QLabel), points_(new QTableWidget) {
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    menu->addAction(tr("&Open..."), this, &HostWindow::AskAndOpen, QKeySequence::Open);
    menu->addAction(tr("&Save reference as..."), this, &HostWindow::AskAndSave, QKeySequence::SaveAs);
    menu->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    text_->setTextFormat(Qt::PlainText);
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    column->addWidget(text_);
    column->addWidget(points_);
    auto* splitter = new QSplitter;
    splitter->addWidget(view_);
    splitter->addWidget(side);
    setCentralWidget(splitter);
    resize(900, 600);
}

bool HostWindow::Open(const QString& file) {
    file_ = file;
    picture_ = QPixmap(file);
    MapAnchor::BReadingOptions options;
    options.SetSize(picture_.width(), picture_.height());
    options.SetFindsSize(true);
    const auto reading = MapAnchor::BReading::Of(Native(file), options);
    reference_ = reading.GetReference();
    size_ = QSize(static_cast<int>(reading.GetWidth()), static_cast<int>(reading.GetHeight()));
    QString doubts = Shown(reading.GetFailureText());
    for (const MapAnchor::BDiagnostic& remark : reading.GetDiagnostics())
        doubts += (doubts.isEmpty() ? "" : "; ") + Shown(remark.GetText());
    statusBar()->showMessage(doubts);
    Tell();
    return reading.HasReference();
}

bool HostWindow::Save(const QString& file) {
    const QString failure = FailureOf([&] {
        BMapAnchor::Save(Native(file), reference_, size_.width(), size_.height(),
                         Native(QFileInfo(file_).fileName()), nullptr);
    });
    statusBar()->showMessage(failure.isEmpty() ? tr("Saved %1").arg(file) : failure);
    return failure.isEmpty();
}

void HostWindow::Tell() {
    setWindowTitle(QFileInfo(file_).fileName());
    QString text =
        tr("System: %1\n").arg(reference_.HasCoordSys() ? Shown(reference_.CoordSys->GetName()) : "-");
    text += tr("Size: %1 x %2\n").arg(size_.width()).arg(size_.height());
    text_->setText(text + tr("Corners:\n") + Footprint());
    FillTable();
    view_->Show(picture_, size_, reference_.PointPairVector);
}

QString HostWindow::Footprint() const {
    if (!reference_.HasMathTransform()) return "-";
    QString text;
    for (const QPoint& corner : {QPoint(0, 0), QPoint(1, 0), QPoint(1, 1), QPoint(0, 1)}) {
        double x = corner.x() * size_.width();
        double y = corner.y() * size_.height();
        if (!reference_.MathTransform->ConvertSourceToTarget(x, y)) return "-";
        text += Shown(BString::Format("%.10g, %.10g\n", x, y));
    }
    return text;
}

void HostWindow::FillTable() {
    const std::vector<BPointPair>& pairs = reference_.PointPairVector;
    points_->setColumnCount(5);
    points_->setHorizontalHeaderLabels({tr("Name"), tr("Column"), tr("Row"), "x", "y"});
    points_->setRowCount(static_cast<int>(pairs.size()));
    for (int i = 0; i < points_->rowCount(); ++i) {
        const BPointPair& pair = pairs[static_cast<std::size_t>(i)];
        const QStringList cells = {Shown(pair.Name), QString::number(pair.Column), QString::number(pair.Row),
                                   QString::number(pair.World.x, 'g', 12),
                                   QString::number(pair.World.y, 'g', 12)};
        for (int column = 0; column < cells.size(); ++column)
            points_->setItem(i, column, new QTableWidgetItem(cells[column]));
    }
}

void HostWindow::AskAndOpen() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open a raster, a sidecar or a PDF"));
    if (!file.isEmpty() && !Open(file)) QMessageBox::warning(this, tr("Open"), statusBar()->currentMessage());
}

void HostWindow::AskAndSave() {
    const QString file = QFileDialog::getSaveFileName(this, tr("Save the reference"), QString(),
                                                      tr("Sidecars (*.tfw *.jgw *.pgw *.tab *.rsf *.ers)"));
    if (!file.isEmpty() && !Save(file)) QMessageBox::warning(this, tr("Save"), statusBar()->currentMessage());
}
