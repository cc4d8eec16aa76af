// A curve of a plot: as many points as there are pixels for, broken where there is no value.
#ifndef VORNEX_PANEL_TREND_TREND_CURVE_H
#define VORNEX_PANEL_TREND_TREND_CURVE_H

#include <QtCore/QString>

#include <map>
#include <memory>
#include <vector>

#include <qwt_plot_curve.h>
#include <qwt_series_data.h>

#include "panel/trend/Sample_Series.h"

namespace vornex {

struct Curve_Style {
    QString name;                   // plain text, whatever is in it
    QString unit;                   // curves of one unit share an axis
    std::map<int, QString> states;  // names of values; such a curve is drawn as steps, on an axis with these names
    bool steps = false;             // also without names
    bool isStep() const { return steps || !states.empty(); }
    QString shown(double value) const;  // a state's name, or the number without unit
};

// What Qwt draws of a series; worked out anew when Qwt tells the part of the plot that is seen.
class Series_Points : public QwtSeriesData<QPointF> {
public:
    Series_Points(std::shared_ptr<const Sample_Series> curveSeries, Curve_Shape curveShape)
        : series(std::move(curveSeries)), shape(curveShape) {}
    void setPixels(int width) { pixels = width; }
    void setRectOfInterest(const QRectF& rect) override;
    size_t size() const override { return points.size(); }
    QPointF sample(size_t i) const override { return {points[i].time, points[i].value}; }
    QRectF boundingRect() const override { return {0, 0, -1, -1}; }  // the plot sets its axes itself
    const std::vector<Sample>& all() const { return points; }

private:
    const std::shared_ptr<const Sample_Series> series;
    const Curve_Shape shape;
    int pixels = 1000;
    std::vector<Sample> points;
};

class Trend_Curve : public QwtPlotCurve {
public:
    // The look, colour and dashes together, is that of this number: neighbours differ in both.
    Trend_Curve(const Curve_Style& curveStyle, std::shared_ptr<Sample_Series> curveSeries, int curveLook);
    void setDark(bool dark);
    void setPixels(int width) { points->setPixels(width); }

    const Curve_Style style;
    const std::shared_ptr<Sample_Series> series;

protected:
    void drawCurve(QPainter* painter, int curveForm, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                   const QRectF& canvasRect, int from, int to) const override;

private:
    const int look;
    Series_Points* const points;  // the base's
};

}  // namespace vornex

#endif
