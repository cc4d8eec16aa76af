// What mouse and keys do in a trend.
#include <QtCore/QMimeData>
#include <QtGui/QDropEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cmath>

#include "panel/trend/Trend_View.h"

namespace vornex {
namespace {

constexpr double WheelStep = 0.8;  // of the span, for a notch
constexpr double PanStep = 0.1;

QStringList labelsIn(const QMimeData& data) {
    return QString::fromUtf8(data.data(Trend_View::labelsMimeType())).split('\n', Qt::SkipEmptyParts);
}

}  // namespace

QStringList Trend_View::keys() {
    return {tr("F or Space  follow the live end, or stand still"),
            tr("Home  all there is"),
            tr("Left, Right  move"),
            tr("+, -  zoom"),
            tr("N, P  next and previous mark"),
            tr("A, B  put a cursor into the middle"),
            tr("Shift+Left, Shift+Right  move cursor A; with Ctrl cursor B"),
            tr("Escape  no cursors")};
}

double Trend_View::timeAt(const Trend_Plot& at, double x) const {
    return start + span * x / std::max(1, at.canvas()->width() - 1);
}

bool Trend_View::eventFilter(QObject* watched, QEvent* event) {
    const auto place = std::find_if(plots.begin(), plots.end(), [&](auto* p) { return p->canvas() == watched; });
    if (place == plots.end()) return QWidget::eventFilter(watched, event);
    Trend_Plot& at = **place;
    switch (event->type()) {
        case QEvent::Wheel: {
            const auto* wheel = static_cast<QWheelEvent*>(event);
            zoom(std::pow(WheelStep, wheel->angleDelta().y() / 120.0), timeAt(at, wheel->position().x()));
            return true;
        }
        case QEvent::MouseButtonPress: mousePressed(at, *static_cast<QMouseEvent*>(event)); return true;
        case QEvent::MouseMove: mouseMoved(at, *static_cast<QMouseEvent*>(event)); return true;
        case QEvent::MouseButtonRelease: mouseReleased(at, *static_cast<QMouseEvent*>(event)); return true;
        case QEvent::DragEnter: {
            auto* drag = static_cast<QDragEnterEvent*>(event);
            if (drag->mimeData()->hasFormat(labelsMimeType())) drag->acceptProposedAction();
            return true;
        }
        case QEvent::Drop: {
            auto* drop = static_cast<QDropEvent*>(event);
            drop->acceptProposedAction();
            Q_EMIT curvesWanted(static_cast<int>(place - plots.begin()), labelsIn(*drop->mimeData()));
            return true;
        }
        default: return QWidget::eventFilter(watched, event);
    }
}

void Trend_View::mousePressed(Trend_Plot& at, const QMouseEvent& event) {
    setFocus(Qt::MouseFocusReason);
    pressedAt = event.pos();
    pressedStart = start;
    dragged = false;
    if ((event.modifiers() & Qt::ShiftModifier) == 0) return;
    box->setGeometry(QRect(at.canvas()->mapTo(this, pressedAt), QSize()));
    box->show();
}

void Trend_View::mouseMoved(Trend_Plot& at, const QMouseEvent& event) {
    if ((event.buttons() & Qt::LeftButton) == 0) return;
    const QPoint way = event.pos() - pressedAt;
    dragged = dragged || way.manhattanLength() >= QApplication::startDragDistance();
    if (!dragged) return;
    if (box->isVisible()) {
        const QPoint corner = at.canvas()->mapTo(this, pressedAt);
        box->setGeometry(QRect(corner, corner + way).normalized());
    } else {
        moveRange(pressedStart - span * way.x() / std::max(1, at.canvas()->width() - 1), span, true);
    }
}

void Trend_View::mouseReleased(Trend_Plot& at, const QMouseEvent& event) {
    const bool boxed = box->isVisible();
    box->hide();
    if (dragged && boxed) {
        zoomTo(at, QRect(pressedAt, event.pos()).normalized());
    } else if (!dragged && event.button() == Qt::LeftButton) {
        setCursor((event.modifiers() & Qt::ControlModifier) != 0 ? 1 : 0, timeAt(at, event.pos().x()));
    }
}

void Trend_View::zoomTo(Trend_Plot& at, const QRect& area) {
    const double top = at.invTransform(QwtPlot::yLeft, area.top());
    const double bottom = at.invTransform(QwtPlot::yLeft, area.bottom());
    if (bottom < top) at.setValueRange(QwtInterval(bottom, top));
    showRange(timeAt(at, area.left()), timeAt(at, area.right()));
}

void Trend_View::keyPressEvent(QKeyEvent* event) {
    const double middle = start + span / 2;
    const int key = event->key();
    const bool right = key == Qt::Key_Right;
    switch (key) {
        case Qt::Key_F:
        case Qt::Key_Space: return follow(!following);
        case Qt::Key_Home: return fit();
        case Qt::Key_Plus: return zoom(WheelStep, middle);
        case Qt::Key_Minus: return zoom(1 / WheelStep, middle);
        case Qt::Key_N:
        case Qt::Key_P: return showMark(key == Qt::Key_N);
        case Qt::Key_A:
        case Qt::Key_B: return setCursor(key == Qt::Key_A ? 0 : 1, middle);
        case Qt::Key_Escape: setCursor(0, std::nullopt); return setCursor(1, std::nullopt);
        case Qt::Key_Left:
        case Qt::Key_Right:
            if ((event->modifiers() & Qt::ShiftModifier) == 0)
                return moveRange(start + (right ? PanStep : -PanStep) * span, span, true);
            {
                const int which = (event->modifiers() & Qt::ControlModifier) != 0 ? 1 : 0;
                const double step = span / std::max(1, plots.empty() ? 1 : plots.front()->canvas()->width() - 1);
                return setCursor(which, cursors[which].value_or(middle) + (right ? step : -step));
            }
        default: return QWidget::keyPressEvent(event);
    }
}

}  // namespace vornex
