#pragma once

#include <Tellurion/BControlPoint.h>
#include <Tellurion/BFitReport.h>

#include <QImage>
#include <QWidget>

#include <functional>
#include <vector>

/// The raster with its control points: a click adds a point. Arrows, enlarged, lead from each
/// point to where the fit puts it; points that stand out are red.
class MapView : public QWidget {
public:
    explicit MapView(QWidget* parent = nullptr);

    /// `size` is that of the raster, of which the picture may be a smaller version.
    void SetPicture(const QImage& picture, const QSize& size);
    void SetPoints(const std::vector<Tellurion::BControlPoint>& points,
                   const std::vector<Tellurion::BFitResidual>& residuals);
    /// Called with the pixel of a click, to its fraction.
    void SetClicked(std::function<void(QPointF)> clicked) { clicked_ = std::move(clicked); }

    QPointF ToView(const QPointF& pixel) const;   ///< where a pixel is in the widget
    QPointF ToPixel(const QPointF& place) const;  ///< the inverse of ToView()

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    double Scale() const;
    double Enlargement() const;
    void DrawPoint(QPainter& painter, std::size_t index) const;

    QImage picture_;
    QSize size_;
    std::vector<Tellurion::BControlPoint> points_;
    std::vector<Tellurion::BFitResidual> residuals_;
    std::function<void(QPointF)> clicked_;
};
