#include "HostWindow.h"

#include <MapAnchor/BControlPointFile.h>
#include <MapAnchor/BReading.h>
#include <MapAnchor/BSaving.h>
#include <Tellurion/BCoordSys.h>
#include <Tellurion/BException.h>

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QImageReader>
#include <QMenuBar>
#include <QMessageBox>
#include <QRegularExpression>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

#include <algorithm>

using namespace Tellurion;

namespace {

enum Column { kName, kPixel, kLine, kX, kY, kResidual, kLeftOut, kColumns };

struct FitName {
    const char* name;
    EMathTransformType type;
};
constexpr FitName kFits[] = {{"automatic", EMathTransformType::None},
                             {"affine", EMathTransformType::Affine},
                             {"conformal", EMathTransformType::Conformal},
                             {"projective", EMathTransformType::Projective},
                             {"polynomial of order 2", EMathTransformType::Polynomial2},
                             {"polynomial of order 3", EMathTransformType::Polynomial3},
                             {"thin plate spline", EMathTransformType::ThinPlateSpline}};

BString Native(const QString& text) {
    return BString(text.toStdU16String());
}

QString Shown(const BString& text) {
    return QString::fromStdU16String(text.GetUnits());
}

/// The picture in at most that many pixels on a side, so that a large raster fits into memory.
QImage ReadPicture(const QString& file, QSize& size, QString& failure) {
    constexpr int kMaxSide = 3000;
    QImageReader reader(file);
    size = reader.size();
    if (size.width() > kMaxSide || size.height() > kMaxSide)
        reader.setScaledSize(size.scaled(kMaxSide, kMaxSide, Qt::KeepAspectRatio));
    const QImage picture = reader.read();
    if (picture.isNull()) failure = reader.errorString();
    return picture;
}

}  // namespace

HostWindow::HostWindow()
    : view_(new MapView),
      table_(new QTableWidget(0, kColumns)),
      fit_(new QComboBox),
      system_(new QLineEdit),
      report_(new QLabel) {
    BuildMenu();
    table_->setHorizontalHeaderLabels(
        {tr("Name"), tr("Pixel"), tr("Line"), "x", "y", tr("Residual"), tr("Left out")});
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    for (const FitName& fit : kFits)
        fit_->addItem(tr(fit.name));
    system_->setPlaceholderText(tr("such as EPSG:25832"));
    report_->setWordWrap(true);
    report_->setTextFormat(Qt::PlainText);
    report_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* side = new QWidget;
    auto* column = new QVBoxLayout(side);
    auto* form = new QFormLayout;
    form->addRow(tr("Coordinate system"), system_);
    form->addRow(tr("Fit"), fit_);
    column->addLayout(form);
    column->addWidget(table_);
    column->addWidget(report_);
    auto* splitter = new QSplitter;
    splitter->addWidget(view_);
    splitter->addWidget(side);
    splitter->setSizes({560, 560});
    setCentralWidget(splitter);
    resize(1120, 640);

    view_->SetClicked([this](const QPointF& pixel) { AddPoint(pixel); });
    connect(table_, &QTableWidget::itemChanged, this, [this] {
        if (!is_filling_) ReadTable();
    });
    connect(fit_, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] { Fit(); });
    auto* paste = new QShortcut(QKeySequence::Paste, table_);
    connect(paste, &QShortcut::activated, this, [this] { Paste(QApplication::clipboard()->text()); });
    Fit();
}

void HostWindow::BuildMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    const auto add = [&](const QString& text, QKeySequence::StandardKey key, auto work) {
        QAction* action = menu->addAction(text);
        action->setShortcut(key);
        connect(action, &QAction::triggered, this, work);
    };
    add(tr("&Open raster..."), QKeySequence::Open, [this] { AskAndOpen(); });
    add(tr("Open &points..."), QKeySequence::UnknownKey, [this] { AskAndOpenPoints(); });
    add(tr("&Save reference as..."), QKeySequence::SaveAs, [this] { AskAndSave(); });
    add(tr("&Quit"), QKeySequence::Quit, [this] { close(); });
}

QString HostWindow::Status() const {
    return statusBar()->currentMessage();
}

/// Runs a call into the library, and shows the outcome. The PDF library's own failures are no
/// std::exception.
bool HostWindow::Attempt(const std::function<void()>& work, const QString& done) {
    QString failure;
    try {
        work();
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
    } catch (...) {
        failure = tr("The PDF library refuses the file.");
    }
    statusBar()->showMessage(failure.isEmpty() ? done : failure);
    return failure.isEmpty();
}

bool HostWindow::OpenRaster(const QString& file) {
    QSize size;
    QString failure;
    const QImage picture = ReadPicture(file, size, failure);
    if (picture.isNull()) {
        statusBar()->showMessage(tr("%1 cannot be opened: %2").arg(file, failure));
        return false;
    }
    raster_ = file;
    size_ = size;
    view_->SetPicture(picture, size);
    setWindowTitle(QFileInfo(file).fileName());
    const auto reading = MapAnchor::BReading::Of(Native(file));
    reference_ = reading.GetReference();
    points_ = BControlPoint::From(reference_.PointPairVector);
    has_world_.assign(points_.size(), true);
    if (reference_.HasCoordSys()) system_->setText(Shown(reference_.CoordSys->GetName()));
    FillTable();
    Fit();
    return true;
}

bool HostWindow::OpenPoints(const QString& file) {
    return Attempt(
        [&] {
            const auto read = MapAnchor::BControlPointFile::Read(Native(file));
            points_ = read.Points;
            has_world_.assign(points_.size(), true);
            if (!read.CoordSys.IsEmpty()) system_->setText(Shown(read.CoordSys));
            FillTable();
            Fit();
        },
        tr("Opened %1").arg(file));
}

void HostWindow::AddPoint(const QPointF& pixel) {
    BControlPoint point;
    point.Name = Native(tr("P%1").arg(points_.size() + 1));
    point.Column = pixel.x();
    point.Row = pixel.y();
    point.Enabled = false;  // until it has coordinates
    points_.push_back(point);
    has_world_.push_back(false);
    FillTable();
    Fit();
    table_->selectRow(static_cast<int>(points_.size()) - 1);
    statusBar()->showMessage(tr("Type or paste the coordinates of %1.").arg(Shown(point.Name)));
}

void HostWindow::FillTable() {
    is_filling_ = true;
    table_->setRowCount(static_cast<int>(points_.size()));
    for (int row = 0; row < table_->rowCount(); ++row) {
        const auto index = static_cast<std::size_t>(row);
        const BControlPoint& point = points_[index];
        const auto world = [&](double value) {
            return has_world_[index] ? QString::number(value, 'g', 12) : QString();
        };
        const QStringList cells = {Shown(point.Name), QString::number(point.Column, 'f', 2),
                                   QString::number(point.Row, 'f', 2), world(point.World.x),
                                   world(point.World.y)};
        for (int column = 0; column < cells.size(); ++column)
            table_->setItem(row, column, new QTableWidgetItem(cells[column]));
        table_->item(row, kName)->setCheckState(point.Enabled ? Qt::Checked : Qt::Unchecked);
        for (const int column : {kPixel, kLine})
            table_->item(row, column)->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        for (const int column : {kResidual, kLeftOut}) {
            table_->setItem(row, column, new QTableWidgetItem);
            table_->item(row, column)->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
        }
    }
    is_filling_ = false;
}

/// What was edited: names, coordinates and check boxes. A point with coordinates for the first
/// time is used.
void HostWindow::ReadTable() {
    for (std::size_t i = 0; i < points_.size(); ++i) {
        const int row = static_cast<int>(i);
        BControlPoint& point = points_[i];
        bool has_x = false;
        bool has_y = false;
        const double x = table_->item(row, kX)->text().toDouble(&has_x);
        const double y = table_->item(row, kY)->text().toDouble(&has_y);
        const bool is_new = has_x && has_y && !has_world_[i];
        has_world_[i] = has_x && has_y;
        if (has_world_[i]) point.World = BPoint(x, y, point.World.z);
        point.Name = Native(table_->item(row, kName)->text());
        point.Enabled = has_world_[i] && (is_new || table_->item(row, kName)->checkState() == Qt::Checked);
    }
    Fit();
}

void HostWindow::SetUsed(int row, bool used) {
    table_->item(row, kName)->setCheckState(used ? Qt::Checked : Qt::Unchecked);
}

QString HostWindow::Residual(int row) const {
    return table_->item(row, kResidual)->text();
}

void HostWindow::Paste(const QString& text) {
    const QStringList lines = text.split(QRegularExpression("[\r\n]+"));
    int row = std::max(table_->currentRow(), 0);
    is_filling_ = true;
    for (const QString& line : lines) {
        QStringList words = line.split(QRegularExpression("[\\s,;]+"));
        words.removeAll(QString());
        if (words.size() < 2 || row >= table_->rowCount()) continue;
        table_->item(row, kX)->setText(words[0]);
        table_->item(row, kY)->setText(words[1]);
        ++row;
    }
    is_filling_ = false;
    ReadTable();
}

void HostWindow::Fit() {
    residuals_.clear();
    QString text;
    try {
        const auto width = static_cast<unsigned int>(size_.width());
        const auto height = static_cast<unsigned int>(size_.height());
        EMathTransformType type = kFits[fit_->currentIndex()].type;
        if (type == EMathTransformType::None)
            type = BFitReport::Choose(BFitReport::Compare(points_, width, height), points_);
        const BFitReport report = BFitReport::Make(type, points_, width, height);
        residuals_ = report.Residuals;
        reference_.SetPointPairVectorAndMathTransform(BControlPoint::Round(points_), report.Transform);
        const auto* fit = std::find_if(std::begin(kFits), std::end(kFits),
                                       [type](const FitName& each) { return each.type == type; });
        text = tr("%1 through %2 points, RMSE %3 pixels")
                   .arg(fit == std::end(kFits) ? tr("Fit") : tr(fit->name))
                   .arg(report.Used)
                   .arg(report.RmsePixels, 0, 'f', 2);
        if (report.HasShape) text += ". " + Shown(report.DescribeShape(BString()));
        for (std::size_t i = 0; i < residuals_.size(); ++i)
            if (residuals_[i].Suspect) text += tr("\nSuspect: %1").arg(Shown(points_[i].Name));
    } catch (const BException&) {
        reference_.MathTransform = BSharedPtr<BMathTransform>();
        text = tr("Two points and more make a fit. Click on the raster to add one.");
    }
    report_->setText(text);
    ShowResiduals();
    view_->SetPoints(points_, residuals_);
}

void HostWindow::ShowResiduals() {
    is_filling_ = true;
    for (int row = 0; row < table_->rowCount(); ++row) {
        const auto index = static_cast<std::size_t>(row);
        const bool is_known = index < residuals_.size() && has_world_[index];
        const auto show = [&](int column, bool has, double value) {
            table_->item(row, column)->setText(has ? QString::number(value, 'f', 2) : QString());
        };
        show(kResidual, is_known && residuals_[index].HasResidual,
             is_known ? residuals_[index].ResidualPixels : 0.0);
        show(kLeftOut, is_known && residuals_[index].HasLeftOut,
             is_known ? residuals_[index].LeftOutPixels : 0.0);
        table_->item(row, kName)->setCheckState(points_[index].Enabled ? Qt::Checked : Qt::Unchecked);
        const bool is_suspect = is_known && residuals_[index].Suspect;
        table_->item(row, kResidual)->setBackground(is_suspect ? QBrush(QColor(255, 180, 170)) : QBrush());
    }
    is_filling_ = false;
}

/// The system that was typed; the one that was read stays while its name does.
bool HostWindow::TakeSystem() {
    const QString text = system_->text().trimmed();
    if (reference_.HasCoordSys() && Shown(reference_.CoordSys->GetName()) == text) return true;
    if (text.isEmpty()) {
        reference_.CoordSys = BSharedPtr<BCoordSys>();
        return true;
    }
    const BSharedPtr<BCoordSys> system(BCoordSys::FromText(Native(text)));
    if (!system) return false;
    reference_.SetCoordSys(system);
    return true;
}

bool HostWindow::Save(const QString& file) {
    bool is_known = false;
    QString remarks;
    const bool saved = Attempt(
        [&] {
            is_known = TakeSystem();
            if (!is_known) return;
            MapAnchor::BSavingOptions options;
            options.SetSize(size_.width(), size_.height());
            options.SetImageName(Native(QFileInfo(raster_).fileName()));
            const auto saving = MapAnchor::BSaving::Of(Native(file), reference_, options);
            for (const MapAnchor::BDiagnostic& remark : saving.GetDiagnostics())
                remarks += "; " + Shown(remark.GetText());
        },
        QString());
    if (!saved) return false;
    statusBar()->showMessage(is_known ? tr("Saved %1%2").arg(file, remarks)
                                      : tr("Unknown coordinate system: %1").arg(system_->text()));
    return is_known;
}

void HostWindow::AskAndOpen() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open a raster"));
    if (!file.isEmpty() && !OpenRaster(file)) QMessageBox::warning(this, tr("Open"), Status());
}

void HostWindow::AskAndOpenPoints() {
    const QString file = QFileDialog::getOpenFileName(this, tr("Open control points"));
    if (!file.isEmpty() && !OpenPoints(file)) QMessageBox::warning(this, tr("Open"), Status());
}

void HostWindow::AskAndSave() {
    const QString file =
        QFileDialog::getSaveFileName(this, tr("Save the reference"), QString(),
                                     tr("References (*.tfw *.jgw *.pgw *.tab *.rsf *.ers *.tif)"));
    if (!file.isEmpty() && !Save(file)) QMessageBox::warning(this, tr("Save"), Status());
}
