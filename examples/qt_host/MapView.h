#pragma once

#include <Tellurion/BGeoReference.h>

#include <QPixmap>
#include <QWidget>

#include <vector>

/// The raster as it is, with its outline and control points, or without a picture the
/// outline alone.
class MapView : public QWidget {
public:
    explicit MapView(QWidget* parent = nullptr);

    void Show(const QPixmap& picture, const QSize& size, const std::vector<Tellurion::BPointPair>& points);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap picture_;
    QSize size_;
    std::vector<Tellurion::BPointPair> points_;
};
