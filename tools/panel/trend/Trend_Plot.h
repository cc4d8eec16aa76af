// One of the plots above each other: its curves, with a unit at each side.
#ifndef VORNEX_PANEL_TREND_TREND_PLOT_H
#define VORNEX_PANEL_TREND_TREND_PLOT_H

#include <memory>
#include <optional>
#include <vector>

#include <qwt_plot.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_marker.h>

#include "panel/trend/Trend_Curve.h"

namespace vornex {

struct Trend_Mark {
    double time;
    QString text;
};

class Trend_Plot : public QwtPlot {
public:
    explicit Trend_Plot(QWidget* parent = nullptr);
    ~Trend_Plot() override;

    // Empty, or why not: both sides have another unit.
    QString add(std::unique_ptr<Trend_Curve> curve);
    void remove(const Trend_Curve* curve);
    const std::vector<std::unique_ptr<Trend_Curve>>& all() const { return curves; }

    // Values between these for the curves of the left side, until nothing is given: then as their values need.
    void setValueRange(std::optional<QwtInterval> range) { valueRange = range; }
    void setMarks(const std::vector<Trend_Mark>& marks);
    void setCursor(int which, std::optional<double> time);
    // Lays out the axes and draws.
    void show(double from, double to);
    // Colours that the palette asks for.
    void takePalette();

private:
    void scaleValues(int axis, double from, double to);
    void nameStates(int axis, const Curve_Style& style);

    std::vector<std::unique_ptr<Trend_Curve>> curves;
    std::vector<std::unique_ptr<QwtPlotMarker>> markers;
    QwtPlotMarker cursors[2];
    QwtPlotGrid grid;
    std::optional<QwtInterval> valueRange;
};

}  // namespace vornex

#endif
