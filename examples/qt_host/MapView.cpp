#include "MapView.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double kMargin = 10.0;
constexpr double kMinShown = 0.01;  // pixels; less is rounding

}  // namespace

MapView::MapView(QWidget* parent) : QWidget(parent) {
    setMinimumSize(320, 240);
    setCursor(Qt::CrossCursor);
}

void MapView::SetPicture(const QImage& picture, const QSize& size) {
    picture_ = picture;
    size_ = size;
    update();
}

void MapView::SetPoints(const std::vector<Tellurion::BControlPoint>& points,
                        const std::vector<Tellurion::BFitResidual>& residuals) {
    points_ = points;
    residuals_ = residuals;
    update();
}

double MapView::Scale() const {
    return std::min((width() - 2 * kMargin) / size_.width(), (height() - 2 * kMargin) / size_.height());
}

QPointF MapView::ToView(const QPointF& pixel) const {
    return pixel * Scale() + QPointF(kMargin, kMargin);
}

QPointF MapView::ToPixel(const QPointF& place) const {
    return (place - QPointF(kMargin, kMargin)) / Scale();
}

double MapView::Enlargement() const {
    constexpr double kLongest = 60.0;
    double largest = 0.0;
    for (const Tellurion::BFitResidual& residual : residuals_)
        largest = std::max(largest, residual.ResidualPixels);
    return largest >= kMinShown ? kLongest / largest : 0.0;
}

void MapView::DrawPoint(QPainter& painter, std::size_t index) const {
    constexpr double kRadius = 4.0;
    const Tellurion::BControlPoint& point = points_[index];
    const QPointF at = ToView(QPointF(point.Column, point.Row));
    bool is_suspect = false;
    if (index < residuals_.size()) {
        const Tellurion::BFitResidual& residual = residuals_[index];
        is_suspect = residual.Suspect;
        painter.setPen(QPen(QColor(220, 90, 0), 2));
        painter.drawLine(at, at + QPointF(residual.DxPixels, residual.DyPixels) * Enlargement());
    }
    painter.setPen(Qt::black);
    painter.setBrush(is_suspect ? Qt::red : point.Enabled ? Qt::yellow : Qt::gray);
    painter.drawEllipse(at, kRadius, kRadius);
    painter.drawText(at + QPointF(kRadius + 2, -kRadius), QString::fromStdU16String(point.Name.GetUnits()));
}

void MapView::paintEvent(QPaintEvent*) {
    if (size_.isEmpty()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF frame(ToView(QPointF(0, 0)), ToView(QPointF(size_.width(), size_.height())));
    if (!picture_.isNull()) painter.drawImage(frame, picture_);
    painter.drawRect(frame);
    for (std::size_t i = 0; i < points_.size(); ++i)
        DrawPoint(painter, i);
}

void MapView::mousePressEvent(QMouseEvent* event) {
    if (size_.isEmpty() || event->button() != Qt::LeftButton) return;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const QPointF pixel = ToPixel(event->position());
#else
    const QPointF pixel = ToPixel(event->localPos());
#endif
    const bool is_inside = QRectF(QPointF(), QSizeF(size_)).contains(pixel);
    if (is_inside && clicked_) clicked_(pixel);
}
