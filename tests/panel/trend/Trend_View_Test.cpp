// What a person sees of a trend, and what mouse and keys do to it.
#include <gtest/gtest.h>

#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>

#include <cmath>
#include <optional>

#include <qwt_scale_draw.h>
#include <qwt_text.h>

#include "panel/trend/Trend_View.h"

using namespace vornex;

namespace {

class TrendView : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static int count = 1;
        static char name[] = "trend";
        static char* words[] = {name, nullptr};
        qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!qApp) new QApplication(count, words);
    }
    void SetUp() override {
        view.resize(900, 600);
        view.addPlot();
        view.show();
    }
    QWidget& canvas() { return *view.plot(0)->canvas(); }
    int column(double time) { return qRound(view.plot(0)->transform(QwtPlot::xBottom, time)); }
    void add(const char* id, const Curve_Style& style) { ASSERT_EQ("", view.addCurve(0, id, style).toStdString()); }
    // The rows that have the first curve's colour.
    std::vector<int> rows(const QImage& picture, int x) {
        const QRgb colour = view.plot(0)->all().front()->pen().color().rgb();
        std::vector<int> found;
        for (int y = 0; y < picture.height(); ++y)
            if (picture.pixel(x, y) == colour) found.push_back(y);
        return found;
    }
    void mouse(QEvent::Type type, QPoint at, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, Qt::LeftButton, up ? Qt::NoButton : Qt::LeftButton, modifiers);
        QApplication::sendEvent(&canvas(), &event);
    }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers) {
        mouse(QEvent::MouseButtonPress, from, modifiers);
        mouse(QEvent::MouseMove, (from + to) / 2, modifiers);
        mouse(QEvent::MouseMove, to, modifiers);
        mouse(QEvent::MouseButtonRelease, to, modifiers);
        view.refresh();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&view, &event);
        view.refresh();
    }
    std::string cell(int row, int at) { return view.findChild<QTableWidget*>()->item(row, at)->text().toStdString(); }

    Trend_View view{10000};
};

}  // namespace

TEST_F(TrendView, NoCurveWhereThereIsNoValue) {
    add("Speed", {"Speed", "rpm", {}, false});
    for (int time = 1000; time <= 1100; ++time) {
        if (time == 1040) view.appendGap(time, Gap_Reason::LinkLost);
        if (time < 1040 || time > 1060) view.append("Speed", time, 50 + time % 7);
    }
    view.showRange(1000, 1100);
    view.refresh();
    const QImage picture = canvas().grab().toImage();
    for (int x = column(1002); x < column(1098); ++x) {
        const bool gap = x > column(1039) + 1 && x < column(1061) - 1;
        const bool edge = !gap && x >= column(1039) - 1 && x <= column(1061) + 1;
        if (!edge) {
            EXPECT_EQ(gap, rows(picture, x).empty()) << "column " << x;
        }
    }
}

TEST_F(TrendView, StatesAreStepsWithTheirNames) {
    add("State", {"State", "", {{0, "idle"}, {1, "<b>ready</b>"}, {2, "running"}}, false});
    for (int time = 1000; time <= 1100; time += 10)
        view.append("State", time, time < 1050 ? 0 : 2);
    view.showRange(1000, 1100);
    view.refresh();
    const QImage picture = canvas().grab().toImage();
    const int low = qRound(view.plot(0)->transform(QwtPlot::yLeft, 0));
    const int high = qRound(view.plot(0)->transform(QwtPlot::yLeft, 2));
    for (const auto& [time, row] : {std::pair{1005.0, low}, {1049.0, low}, {1051.0, high}, {1095.0, high}})
        EXPECT_EQ(std::vector<int>{row}, rows(picture, column(time))) << time;
    const QwtText name = view.plot(0)->axisScaleDraw(QwtPlot::yLeft)->label(1);
    EXPECT_EQ("<b>ready</b>", name.text().toStdString());
    EXPECT_EQ("running", cell(0, 1));
    view.appendGap(1101, Gap_Reason::LinkLost);
    view.refresh();
    EXPECT_EQ("connection lost", cell(0, 1));
}

TEST_F(TrendView, ThePictureStandsStillAndTheRecordGoesOn) {
    add("Speed", {"Speed", "rpm", {}, false});
    view.append("Speed", 1000, 1);
    view.refresh();
    EXPECT_EQ(1000, view.visibleTo());
    press(Qt::Key_Space);
    view.append("Speed", 1010, 2);
    view.refresh();
    EXPECT_EQ(1000, view.visibleTo());
    press(Qt::Key_F);
    EXPECT_EQ(1010, view.visibleTo());
    press(Qt::Key_Home);
    EXPECT_EQ(1000, view.visibleFrom());
    EXPECT_EQ(1010, view.visibleTo());
}

TEST_F(TrendView, WheelBoxDragAndMarksMoveTheRange) {
    view.showRange(1000, 1100);
    view.refresh();
    const QPointF quarter((canvas().width() - 1) / 4.0, 20);
    QWheelEvent wheel(quarter, quarter, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas(), &wheel);
    view.refresh();
    EXPECT_NEAR(1005, view.visibleFrom(), 1e-6);
    EXPECT_NEAR(1085, view.visibleTo(), 1e-6);

    view.showRange(1000, 1100);
    view.refresh();
    drag({column(1050), 40}, {column(1100), 80}, Qt::ShiftModifier);
    EXPECT_NEAR(1050, view.visibleFrom(), 0.2);
    EXPECT_NEAR(1100, view.visibleTo(), 0.2);

    view.showRange(1000, 1100);
    view.refresh();
    drag({column(1050), 40}, {column(1025), 40}, Qt::NoModifier);
    EXPECT_NEAR(1025, view.visibleFrom(), 0.2);

    view.addMark(1200, "short reply");
    view.addMark(1150, "link lost");
    for (const auto& [key, middle] : {std::pair{Qt::Key_N, 1150.0}, {Qt::Key_N, 1200.0}, {Qt::Key_P, 1150.0}}) {
        press(key);
        EXPECT_DOUBLE_EQ(middle, (view.visibleFrom() + view.visibleTo()) / 2);
    }
}

TEST_F(TrendView, CursorsTellValuesAndWhatIsBetween) {
    add("Speed", {"Speed", "rpm", {}, false});
    for (int time = 1000; time <= 1100; ++time)
        view.append("Speed", time, time == 1050 ? 500 : time - 1000);
    view.showRange(1000, 1100);
    view.refresh();
    mouse(QEvent::MouseButtonPress, {column(1020.5), 30});
    mouse(QEvent::MouseButtonRelease, {column(1020.5), 30});
    view.setCursor(1, 1060);
    view.refresh();
    // 21 to 60, of which 50 is 500: 1620 + 450 over 40 samples
    const std::vector<std::string> expected = {"Speed", "100", "rpm", "20", "60", "40", "21 / 51.75 / 500"};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i], cell(0, static_cast<int>(i)));
    press(Qt::Key_Escape);
    EXPECT_EQ("", cell(0, 3));
}

TEST_F(TrendView, AThirdUnitNeedsAnotherPlot) {
    add("Speed", {"Speed", "rpm", {}, false});
    add("Heat", {"Heat", "C", {}, false});
    add("Other speed", {"Other speed", "rpm", {}, false});
    EXPECT_NE("", view.addCurve(0, "Load", {"Load", "%", {}, false}).toStdString());
    EXPECT_EQ("", view.addCurve(view.addPlot(), "Load", {"Load", "%", {}, false}).toStdString());
    view.removeCurve("Heat");
    add("Current", {"Current", "A", {}, false});
    view.append("Heat", 1000, 1);  // gone: left alone
    view.refresh();
    EXPECT_EQ("Current", cell(3, 0));
}
