#include "panel/trend/Trend_View.h"

#include <QtCore/QEvent>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>
#include <limits>

#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

namespace vornex {
namespace {

constexpr int FrameMilliseconds = 50;  // a picture is drawn at most this often
constexpr std::size_t MostMarks = 500;
constexpr double ShortestSpan = 1e-3;  // times since 1970 are exact to a quarter of a microsecond
constexpr double LongestSpan = 10.0 * 366 * 86400;

}  // namespace

Trend_View::Trend_View(std::size_t samplesOfACurve, QWidget* parent)
    : QWidget(parent),
      mostSamples(samplesOfACurve),
      stack(new QSplitter(Qt::Vertical)),
      table(new QTableWidget(0, 8)),
      box(new QRubberBand(QRubberBand::Rectangle, this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(stack, 3);
    layout->addWidget(table, 1);
    table->setHorizontalHeaderLabels({"Curve", "Now", "Unit", "A", "B", "B - A", "Min / mean / max", "Look"});
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setAccessibleName(tr("Curves: values now, at the cursors, between them"));
    setAccessibleName(tr("Trend"));
    setFocusPolicy(Qt::StrongFocus);
    frame.setSingleShot(true);
    frame.setInterval(FrameMilliseconds);
    connect(&frame, &QTimer::timeout, this, &Trend_View::refresh);
}

int Trend_View::addPlot() {
    auto* plot = new Trend_Plot;
    plot->setAccessibleName(tr("Plot %1").arg(plotCount() + 1));
    plot->canvas()->installEventFilter(this);
    plot->canvas()->setAcceptDrops(true);
    plot->canvas()->setFocusPolicy(Qt::NoFocus);
    plot->setMarks(marks);
    for (const int which : {0, 1})
        plot->setCursor(which, cursors[which]);
    plots.push_back(plot);
    stack->addWidget(plot);
    later();
    return plotCount() - 1;
}

QString Trend_View::addCurve(int plotNumber, const QString& id, const Curve_Style& style) {
    if (curves.count(id) != 0) return tr("%1 is shown already").arg(style.name);
    auto curve = std::make_unique<Trend_Curve>(style, std::make_shared<Sample_Series>(mostSamples), nextLook);
    Trend_Curve* const added = curve.get();
    Trend_Plot* const at = plot(plotNumber);
    QString whyNot = at->add(std::move(curve));
    if (!whyNot.isEmpty()) return whyNot;
    ++nextLook;
    curves[id] = {at, added};
    order.push_back(id);
    later();
    return {};
}

void Trend_View::removeCurve(const QString& id) {
    const auto entry = curves.find(id);
    if (entry == curves.end()) return;
    entry->second.plot->remove(entry->second.curve);
    curves.erase(entry);
    order.erase(std::find(order.begin(), order.end(), id));
    later();
}

void Trend_View::append(const QString& id, double time, double value) {
    const auto entry = curves.find(id);
    if (entry == curves.end()) return;
    entry->second.curve->series->append(time, value);
    liveEnd = std::max(liveEnd, time);
    later();
}

void Trend_View::appendGap(const QString& id, double time, Gap_Reason reason) {
    const auto entry = curves.find(id);
    if (entry == curves.end()) return;
    entry->second.curve->series->appendGap(time, reason);
    liveEnd = std::max(liveEnd, time);
    later();
}

void Trend_View::appendGap(double time, Gap_Reason reason) {
    for (const auto& entry : curves)
        appendGap(entry.first, time, reason);
}

void Trend_View::addMark(double time, const QString& text) {
    const auto after = std::upper_bound(marks.begin(), marks.end(), time,
                                        [](double at, const Trend_Mark& mark) { return at < mark.time; });
    marks.insert(after, {time, text});
    if (marks.size() > MostMarks) marks.erase(marks.begin());
    for (Trend_Plot* plot : plots)
        plot->setMarks(marks);
    later();
}

void Trend_View::later() {
    if (!frame.isActive()) frame.start();
}

void Trend_View::follow(bool on) {
    if (following == on) return;
    following = on;
    Q_EMIT followChanged(on);
    later();
}

void Trend_View::moveRange(double from, double width, bool standStill) {
    const double middle = from + width / 2;
    span = std::clamp(width, ShortestSpan, LongestSpan);
    start = middle - span / 2;
    if (standStill) follow(false);
    later();
    Q_EMIT rangeChanged(start, start + span);
}

void Trend_View::showRange(double from, double to) {
    if (from < to) moveRange(from, to - from, true);
}

void Trend_View::zoom(double factor, double around) {
    if (following) around = start + span;  // the live end stays where it is
    moveRange(around - (around - start) * factor, span * factor, false);
}

std::optional<double> Trend_View::firstTime() const {
    std::optional<double> first;
    for (const auto& entry : curves) {
        const Sample_Series& series = *entry.second.curve->series;
        if (series.isEmpty()) continue;
        const double time = series.at(series.begin()).time;
        if (!first || time < *first) first = time;
    }
    return first;
}

void Trend_View::fit() {
    for (Trend_Plot* plot : plots)
        plot->setValueRange(std::nullopt);
    const std::optional<double> first = firstTime();
    if (first && *first < liveEnd) showRange(*first, liveEnd);
    later();
}

void Trend_View::showMark(bool next) {
    const double middle = start + span / 2;
    const double least = span * 1e-6;
    const Trend_Mark* found = nullptr;
    for (const Trend_Mark& mark : marks) {
        if (next && mark.time > middle + least) {
            found = &mark;
            break;
        }
        if (!next && mark.time < middle - least) found = &mark;
    }
    if (found) showTime(found->time);
}

void Trend_View::setCursor(int which, std::optional<double> time) {
    cursors[which] = time;
    for (Trend_Plot* plot : plots)
        plot->setCursor(which, time);
    later();
    Q_EMIT cursorsChanged();
}

void Trend_View::refresh() {
    frame.stop();
    if (following && liveEnd != 0 && start != liveEnd - span) {
        start = liveEnd - span;
        Q_EMIT rangeChanged(start, liveEnd);
    }
    for (Trend_Plot* plot : plots)
        plot->show(start, start + span);
    alignAxes();
    fillTable();
}

// So that a time is at the same place in all plots.
void Trend_View::alignAxes() {
    const bool right = std::any_of(plots.begin(), plots.end(), [](auto* p) { return p->axisEnabled(QwtPlot::yRight); });
    for (const int axis : {QwtPlot::yLeft, QwtPlot::yRight}) {
        double widest = 0;
        for (const Trend_Plot* plot : plots) {
            const QwtScaleWidget* scale = plot->axisWidget(axis);
            widest = std::max(widest, scale->scaleDraw()->extent(scale->font()));
        }
        for (Trend_Plot* plot : plots) {
            if (axis == QwtPlot::yRight && plot->axisEnabled(axis) != right) plot->enableAxis(axis, right);
            QwtScaleDraw* draw = plot->axisScaleDraw(axis);
            if (draw->minimumExtent() >= widest) continue;
            draw->setMinimumExtent(widest);
            plot->updateLayout();
        }
    }
}

void Trend_View::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    for (Trend_Plot* plot : plots) {
        plot->takePalette();
        plot->setMarks(marks);
    }
    later();
}

void Trend_View::setCell(int row, int column, const QString& text) {
    QTableWidgetItem* item = table->item(row, column);
    if (!item) table->setItem(row, column, item = new QTableWidgetItem);
    if (item->text() != text) item->setText(text);
}

void Trend_View::fillTable() {
    table->setRowCount(static_cast<int>(order.size()));
    for (int row = 0; row < table->rowCount(); ++row)
        fillRow(row, *curves.at(order[static_cast<std::size_t>(row)]).curve);
}

void Trend_View::fillRow(int row, const Trend_Curve& curve) {
    const auto text = [&](std::optional<double> value) { return value ? curve.style.shown(*value) : QString("?"); };
    const auto at = [&](int which) {
        return cursors[which] ? curve.series->valueAt(*cursors[which]) : std::optional<double>();
    };
    const Sample_Series& series = *curve.series;
    setCell(row, 0, curve.style.name);
    if (!series.isEmpty() && series.at(series.end() - 1).isGap()) {
        setCell(row, 1, gapText(series.at(series.end() - 1).reason()));
    } else {
        setCell(row, 1, series.isEmpty() ? "?" : text(series.at(series.end() - 1).value));
    }
    setCell(row, 2, curve.style.unit);
    for (const int which : {0, 1})
        setCell(row, 3 + which, cursors[which] ? text(at(which)) : QString());
    QString difference, between;
    if (at(0) && at(1)) difference = Curve_Style().shown(*at(1) - *at(0));
    if (cursors[0] && cursors[1]) {
        const Sample_Summary all =
            series.between(std::min(*cursors[0], *cursors[1]), std::max(*cursors[0], *cursors[1]));
        if (all.values != 0)
            between =
                QStringLiteral("%1 / %2 / %3").arg(text(all.minimum), QString::number(all.mean()), text(all.maximum));
    }
    setCell(row, 5, difference);
    setCell(row, 6, between);
    if (!table->item(row, 7)) setCell(row, 7, QString());
    table->item(row, 7)->setIcon(QIcon(curve.legendIcon(0, QSizeF(28, 12)).toPixmap()));
}

}  // namespace vornex
