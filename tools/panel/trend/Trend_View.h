// Plots above each other with one time axis, and a table of their curves below: values now, at two cursors, between
// them.
#ifndef VORNEX_PANEL_TREND_TREND_VIEW_H
#define VORNEX_PANEL_TREND_TREND_VIEW_H

#include <QtCore/QStringList>
#include <QtCore/QTimer>
#include <QtWidgets/QRubberBand>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QWidget>

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "panel/trend/Trend_Plot.h"

namespace vornex {

// The GUI thread's. Times are seconds since 1970. The record goes on whatever is looked at.
//
// Wheel: zoom; drag: move; Shift and drag: zoom to the box; click: cursor A; Ctrl and click: cursor B. Keys: see
// keys().
class Trend_View : public QWidget {
    Q_OBJECT

public:
    // Each curve keeps so many samples, the newest.
    explicit Trend_View(std::size_t samplesOfACurve, QWidget* parent = nullptr);

    // What dragged labels are, one text a line.
    static const char* labelsMimeType() { return "application/x-vornex-labels"; }
    // "F  follow the live end", ...: for a list of keys.
    static QStringList keys();

    // The number of the new plot, from 0.
    int addPlot();
    int plotCount() const { return static_cast<int>(plots.size()); }
    Trend_Plot* plot(int number) { return plots.at(static_cast<std::size_t>(number)); }
    // Empty, or why not: the plot has two other units, or there is such a curve. `id` is the caller's.
    QString addCurve(int plotNumber, const QString& id, const Curve_Style& style);
    void removeCurve(const QString& id);

    // A value of the curve, that it has none from here on, and that none has. Unknown ids are left alone.
    void append(const QString& id, double time, double value);
    void appendGap(const QString& id, double time, Gap_Reason reason);
    void appendGap(double time, Gap_Reason reason);
    // A line with a text in all plots. The newest 500 are kept.
    void addMark(double time, const QString& text);

    void follow(bool on);
    bool isFollowing() const { return following; }
    void showRange(double from, double to);
    // In the middle, as wide as before; the picture stands still.
    void showTime(double time) { showRange(time - span / 2, time + span / 2); }
    double visibleFrom() const { return start; }
    double visibleTo() const { return start + span; }
    // All samples there are, values as they need.
    void fit();
    // To the mark after or before the middle.
    void showMark(bool next);
    // 0: A, 1: B.
    void setCursor(int which, std::optional<double> time);
    std::optional<double> cursor(int which) const { return cursors[which]; }
    // Now, and not with the next frame.
    void refresh();

Q_SIGNALS:
    void rangeChanged(double from, double to);
    void followChanged(bool on);
    void cursorsChanged();
    // Labels were dropped on a plot.
    void curvesWanted(int plotNumber, const QStringList& labels);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Curve_Entry {
        Trend_Plot* plot;
        Trend_Curve* curve;
    };
    void moveRange(double from, double width, bool standStill);
    void zoom(double factor, double around);
    void later();
    void alignAxes();
    void fillTable();
    void fillRow(int row, const Trend_Curve& curve);
    void setCell(int row, int column, const QString& text);
    double timeAt(const Trend_Plot& at, double x) const;
    void mousePressed(Trend_Plot& at, const QMouseEvent& event);
    void mouseMoved(Trend_Plot& at, const QMouseEvent& event);
    void mouseReleased(Trend_Plot& at, const QMouseEvent& event);
    void zoomTo(Trend_Plot& at, const QRect& box);
    std::optional<double> firstTime() const;

    const std::size_t mostSamples;
    QSplitter* stack;
    QTableWidget* table;
    std::vector<Trend_Plot*> plots;  // the stack's
    std::map<QString, Curve_Entry> curves;
    std::vector<QString> order;  // of the rows
    std::vector<Trend_Mark> marks;
    int nextLook = 0;
    double liveEnd = 0;
    double start = 0;
    double span = 60;
    bool following = true;
    std::optional<double> cursors[2];
    QTimer frame;
    QPoint pressedAt;
    double pressedStart = 0;
    bool dragged = false;
    QRubberBand* box;
};

}  // namespace vornex

#endif
