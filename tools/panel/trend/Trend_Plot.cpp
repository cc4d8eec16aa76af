#include "panel/trend/Trend_Plot.h"

#include <QtCore/QDateTime>

#include <algorithm>

#include <qwt_plot_canvas.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_draw.h>
#include <qwt_text.h>

namespace vornex {
namespace {

class Time_Scale : public QwtScaleDraw {
public:
    QwtText label(double time) const override {
        const bool fine = scaleDiv().range() < 10;
        const QDateTime shown = QDateTime::fromMSecsSinceEpoch(qRound64(time * 1000));
        return {shown.toString(fine ? "HH:mm:ss.zzz" : "HH:mm:ss"), QwtText::PlainText};
    }
};

class State_Scale : public QwtScaleDraw {
public:
    explicit State_Scale(const Curve_Style& curveStyle) : style(curveStyle) {}
    QwtText label(double value) const override { return {style.shown(value), QwtText::PlainText}; }

private:
    const Curve_Style style;
};

bool sharesAxis(const Curve_Style& a, const Curve_Style& b) { return a.unit == b.unit && a.states == b.states; }

}  // namespace

Trend_Plot::Trend_Plot(QWidget* parent) : QwtPlot(parent) {
    setAxisScaleDraw(xBottom, new Time_Scale);
    setAutoReplot(false);
    plotLayout()->setAlignCanvasToScales(true);
    static_cast<QwtPlotCanvas*>(canvas())->setFrameStyle(QFrame::NoFrame);
    grid.attach(this);
    for (QwtPlotMarker& cursor : cursors) {
        cursor.setLineStyle(QwtPlotMarker::VLine);
        cursor.setLabelAlignment(Qt::AlignRight | Qt::AlignBottom);
        cursor.setVisible(false);
        cursor.attach(this);
    }
    cursors[0].setLabel(QwtText("A", QwtText::PlainText));
    cursors[1].setLabel(QwtText("B", QwtText::PlainText));
    takePalette();
}

// What is ours leaves the plot before the plot would delete it.
Trend_Plot::~Trend_Plot() { detachItems(QwtPlotItem::Rtti_PlotItem, false); }

QString Trend_Plot::add(std::unique_ptr<Trend_Curve> curve) {
    for (const int axis : {yLeft, yRight}) {
        const auto other = std::find_if(curves.begin(), curves.end(), [&](auto& c) { return c->yAxis() == axis; });
        if (other != curves.end() && !sharesAxis((*other)->style, curve->style)) continue;
        curve->setYAxis(axis);
        curve->attach(this);
        enableAxis(axis);
        setAxisTitle(axis, QwtText(curve->style.unit, QwtText::PlainText));
        nameStates(axis, curve->style);
        curves.push_back(std::move(curve));
        takePalette();
        return {};
    }
    return QStringLiteral("%1 needs a plot of its own: both axes of this one have other units").arg(curve->style.name);
}

void Trend_Plot::nameStates(int axis, const Curve_Style& style) {
    setAxisScaleDraw(axis, style.states.empty() ? new QwtScaleDraw : new State_Scale(style));
}

void Trend_Plot::remove(const Trend_Curve* curve) {
    const auto place = std::find_if(curves.begin(), curves.end(), [&](auto& c) { return c.get() == curve; });
    if (place == curves.end()) return;
    const int axis = curve->yAxis();
    curves.erase(place);
    const bool used = std::any_of(curves.begin(), curves.end(), [&](auto& c) { return c->yAxis() == axis; });
    if (!used) {
        setAxisTitle(axis, QString());
        if (axis == yRight) enableAxis(axis, false);
    }
}

void Trend_Plot::setMarks(const std::vector<Trend_Mark>& marks) {
    markers.clear();
    for (const Trend_Mark& mark : marks) {
        auto marker = std::make_unique<QwtPlotMarker>();
        marker->setLineStyle(QwtPlotMarker::VLine);
        marker->setLinePen(palette().color(QPalette::Text), 0, Qt::DashDotDotLine);
        marker->setLabel(QwtText(mark.text, QwtText::PlainText));
        marker->setLabelOrientation(Qt::Vertical);
        marker->setLabelAlignment(Qt::AlignRight | Qt::AlignTop);
        marker->setXValue(mark.time);
        marker->attach(this);
        markers.push_back(std::move(marker));
    }
}

void Trend_Plot::setCursor(int which, std::optional<double> time) {
    cursors[which].setVisible(time.has_value());
    cursors[which].setXValue(time.value_or(0));
}

void Trend_Plot::scaleValues(int axis, double from, double to) {
    Sample_Summary seen;
    const Curve_Style* style = nullptr;
    for (const auto& curve : curves) {
        if (curve->yAxis() != axis) continue;
        seen.add(curve->series->between(from, to));
        style = &curve->style;
    }
    if (style && !style->states.empty()) {
        QList<double> ticks;
        for (const auto& state : style->states)
            ticks.push_back(state.first);
        QwtScaleDiv scale(ticks.front() - 0.5, ticks.back() + 0.5);
        scale.setTicks(QwtScaleDiv::MajorTick, ticks);
        setAxisScaleDiv(axis, scale);
    } else if (axis == yLeft && valueRange) {
        setAxisScale(axis, valueRange->minValue(), valueRange->maxValue());
    } else if (seen.values != 0) {
        const double margin = seen.maximum > seen.minimum ? (seen.maximum - seen.minimum) * 0.05 : 1;
        setAxisScale(axis, seen.minimum - margin, seen.maximum + margin);
    }
}

void Trend_Plot::show(double from, double to) {
    setAxisScale(xBottom, from, to);
    for (const int axis : {yLeft, yRight})
        scaleValues(axis, from, to);
    for (const auto& curve : curves)
        curve->setPixels(std::max(1, canvas()->width()));
    replot();
}

void Trend_Plot::takePalette() {
    const bool dark = palette().color(QPalette::Base).lightness() < 128;
    setCanvasBackground(palette().brush(QPalette::Base));
    QColor lines = palette().color(QPalette::Text);
    for (QwtPlotMarker& cursor : cursors)
        cursor.setLinePen(lines);
    lines.setAlpha(50);
    grid.setPen(lines, 0);
    for (const auto& curve : curves)
        curve->setDark(dark);
}

}  // namespace vornex
