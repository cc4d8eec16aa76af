#include "panel/trend/Trend_Curve.h"

#include <QtGui/QPainter>

#include <cmath>
#include <iterator>

#include <qwt_painter.h>
#include <qwt_scale_map.h>
#include <qwt_text.h>

#include "text/Number.h"

namespace vornex {
namespace {

// Told apart with all common kinds of colour vision; on white, and on black.
const QRgb Light[] = {0x0072B2, 0xD55E00, 0x007A5A, 0xA0447C, 0x7A6000, 0x3A3A3A, 0x5B4BC4};
const QRgb Dark[] = {0x56B4E9, 0xFF9F40, 0x3CD6A8, 0xF09CCB, 0xF0E442, 0xE0E0E0, 0xB0A4FF};
const Qt::PenStyle Dashes[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine};

void drawRun(QPainter* painter, QPolygonF& run) {
    if (run.size() == 1) painter->drawPoint(run.front());
    if (run.size() > 1) QwtPainter::drawPolyline(painter, run);
    run.clear();
}

}  // namespace

QString Curve_Style::shown(double value) const {
    const auto state = states.find(static_cast<int>(std::lround(value)));
    if (state != states.end() && state->first == value) return state->second;
    return QString::fromStdString(shortestNumber(value));
}

void Series_Points::setRectOfInterest(const QRectF& rect) {
    series->points(rect.left(), rect.right(), pixels, shape, points);
}

Trend_Curve::Trend_Curve(const Curve_Style& curveStyle, std::shared_ptr<Sample_Series> curveSeries, int curveLook)
    : style(curveStyle),
      series(std::move(curveSeries)),
      look(curveLook),
      points(new Series_Points(series, curveStyle.isStep() ? Curve_Shape::Step : Curve_Shape::Line)) {
    setTitle(QwtText(style.name, QwtText::PlainText));
    setItemInterest(QwtPlotItem::ScaleInterest, true);
    setItemAttribute(QwtPlotItem::AutoScale, false);
    setSamples(points);
    setDark(false);
}

void Trend_Curve::setDark(bool dark) {
    const QRgb colour = (dark ? Dark : Light)[static_cast<std::size_t>(look) % std::size(Light)];
    setPen(QColor(colour), 0, Dashes[static_cast<std::size_t>(look) % std::size(Dashes)]);
}

void Trend_Curve::drawCurve(QPainter* painter, int, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF&,
                            int, int) const {
    const bool aligned = QwtPainter::roundingAlignment(painter);
    QPolygonF run;
    run.reserve(static_cast<int>(2 * points->size()));
    for (const Sample& point : points->all()) {
        QPointF place(xMap.transform(point.time), point.isGap() ? 0 : yMap.transform(point.value));
        if (aligned) place = place.toPoint();
        const bool held = style.isStep() && !run.empty();  // up to here, also when a gap begins
        if (held && run.back().x() != place.x()) run.push_back({place.x(), run.back().y()});
        if (point.isGap()) {
            drawRun(painter, run);
        } else {
            run.push_back(place);
        }
    }
    drawRun(painter, run);
}

}  // namespace vornex
