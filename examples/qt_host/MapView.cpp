#include "MapView.h"

#include <QPainter>

#include <algorithm>

MapView::MapView(QWidget* parent) : QWidget(parent) {
    setMinimumSize(320, 240);
}

void MapView::Show(const QPixmap& picture, const QSize& size,
                   const std::vector<Tellurion::BPointPair>& points) {
    picture_ = picture;
    size_ = size;
    points_ = points;
    update();
}

void MapView::paintEvent(QPaintEvent*) {
    if (size_.isEmpty()) return;
    QPainter painter(this);
    const double scale = std::min((width() - 20.0) / size_.width(), (height() - 20.0) / size_.height());
    painter.translate(10, 10);
    painter.scale(scale, scale);
    if (!picture_.isNull()) painter.drawPixmap(QRect(QPoint(), size_), picture_);
    QPen pen(Qt::red, 2);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawRect(QRect(QPoint(), size_));
    for (const Tellurion::BPointPair& point : points_) {
        painter.setBrush(point.Enabled ? Qt::yellow : Qt::gray);
        painter.drawEllipse(QPointF(point.Column, point.Row), 4 / scale, 4 / scale);
    }
}
