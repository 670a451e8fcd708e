#include "plotbench.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>

/** The plot worked without a mouse. */
class TestQwtNOXKeys : public PlotTest
{
    Q_OBJECT

    static constexpr auto ctrl = Qt::ControlModifier;
    static constexpr auto fine = Qt::ControlModifier | Qt::ShiftModifier;

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, int times = 1)
    {
        for (int i = 0; i < times; ++i)
            QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /** Where the lines meet that are drawn across the canvas for the keyboard; -1 of none. */
    QPoint seenCross()
    {
        const QImage picture = grabbed();
        const QColor color(0x1b, 0x74, 0x88);
        QPoint place(-1, -1);
        for (int y = 0; y < picture.height(); ++y)
            if (picture.pixelColor(0, y) == color)
                place.setY(y);
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixelColor(x, 0) == color)
                place.setX(x);
        return place;
    }
    QString said() const
    {
        return QAccessible::queryAccessibleInterface(plot().canvas())->text(QAccessible::Name);
    }

private slots:
    void init()
    {
        renew(), withRamp();
        QApplication::setActiveWindow(&plot());
        QVERIFY(QTest::qWaitForWindowActive(&plot()));
        plot().canvas()->setAccessibleName("plot");
        plot().canvas()->setFocus(Qt::TabFocusReason);
        plot().setZoomScale({100, 20, 90, 0.5});
        told();
    }

    void viewIsMovedAndZoomed()
    {
        QCOMPARE(seenX(), "100 to 200 by 10");
        const QPointF middle = middleOfView();
        press(Qt::Key_Right, {}, 2);
        QCOMPARE(plot().getChMode(), ModeScroll);
        QCOMPARE(seenX(), "120 to 220 by 10");
        press(Qt::Key_Up);
        press(Qt::Key_Left, {}, 30);
        press(Qt::Key_Down, {}, 2);
        QCOMPARE(seenX(), "0 to 100 by 10");
        QVERIFY(qAbs(middleOfView().y() - (middle.y() - stepY())) < 1e-9);
        press(Qt::Key_Escape); // as the right button
        QCOMPARE(plot().getChMode(), ModeFollow);

        plot().setZoomScale({100, 20, 90, 0.5});
        const QPointF centre = middleOfView();
        press(Qt::Key_Minus);
        QCOMPARE(stepX(), 15.0);
        press(Qt::Key_Plus, Qt::ShiftModifier);
        press(Qt::Key_Equal);
        QCOMPARE(stepX(), 5.0);
        QVERIFY(qAbs(middleOfView().x() - centre.x()) < 1e-6);
        plot().setChMode(ModeZoom);
        press(Qt::Key_Home);
        QCOMPARE(plot().getChMode(), ModeFollow);
        plot().setChMode(ModeAuto);
        press(Qt::Key_Home);
        QCOMPARE(plot().getChMode(), ModeAuto); // follows already
    }

    void crossMeasuresAndIsReadOut()
    {
        QCOMPARE(seenCross(), QPoint(-1, -1));
        press(Qt::Key_Right, ctrl);
        const QPoint start = seenCross();
        QCOMPARE(start, mouse().middle());
        QCOMPARE(said(), "plot: " + plot().pointText(mouse().point(start)));
        press(Qt::Key_Right, ctrl, 3);
        press(Qt::Key_Up, fine, 4);
        const QPoint place = seenCross();
        QCOMPARE(place.y(), start.y() - 4);
        QVERIFY(place.x() > start.x() + 30);
        QCOMPARE(said(), "plot: " + plot().pointText(mouse().point(place)));

        press(Qt::Key_Return);
        QCOMPARE(state(), "ИЗМЕРЕНИЕ 1 point");
        QCOMPARE(seenCrosses(), QVector<QPointF>{mouse().point(place)});
        press(Qt::Key_Left, ctrl, 9);
        press(Qt::Key_Space);
        QCOMPARE(state(), "ИЗМЕРЕНИЕ 2 point interval");
        QCOMPARE(seenCrosses()[0], mouse().point(seenCross()));

        press(Qt::Key_Tab); // to the values, which are copied
        press(Qt::Key_Space);
        auto *value = qobject_cast<QLabel *>(QApplication::focusWidget());
        QCOMPARE(QGuiApplication::clipboard()->text(), value->text());
        QCOMPARE(value->styleSheet(), "color: blue");
        QCOMPARE(value->accessibleName(), "X: " + value->text());
        QCOMPARE(seenCross(), QPoint(-1, -1));
        QCOMPARE(said(), "plot");
        press(Qt::Key_Up, ctrl); // leads back to the canvas
        press(Qt::Key_Tab);
        QVERIFY(qobject_cast<QLabel *>(QApplication::focusWidget()));
        QCOMPARE(said(), "plot");
        press(Qt::Key_Escape);
        QCOMPARE(state(), "ИЗМЕРЕНИЕ 0");
        QVERIFY(plot().canvas()->hasFocus());
        press(Qt::Key_Escape);
        QCOMPARE(state(), "СЛЕЖЕНИЕ 0");
    }

    void crossPullsRectanglesAndPlacesLimits()
    {
        plot().setChMode(ModeZoom);
        press(Qt::Key_Left, ctrl, 11);
        const double left = mouse().point(seenCross()).x();
        press(Qt::Key_Return);
        press(Qt::Key_Right, ctrl, 10);
        press(Qt::Key_Down, ctrl, 10);
        const QString views = seenViews();
        press(Qt::Key_Escape); // gives the rectangle up, and stays
        QCOMPARE(seenViews() + plot().getChModeLabel(), views + "УВЕЛИЧЕНИЕ");
        press(Qt::Key_Return);
        press(Qt::Key_Left, ctrl, 10);
        press(Qt::Key_Up, ctrl, 10);
        press(Qt::Key_Return);
        QVERIFY(stepX() < 10);
        const QString zoomed = seenViews();
        press(Qt::Key_Return);
        plot().setChMode(ModeMeasure); // while one corner is set
        plot().setChMode(ModeZoom);
        press(Qt::Key_Left, ctrl, 5);
        press(Qt::Key_Return); // is the first again
        press(Qt::Key_Left, ctrl, 5);
        plot().canvas()->clearFocus(); // away from a pulled rectangle
        plot().canvas()->setFocus();
        press(Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(seenViews() + plot().getChModeLabel(), zoomed + "УВЕЛИЧЕНИЕ");
        QCOMPARE(plot().axisInterval(QwtPlot::xBottom).minValue(), left);

        plot().setModeTrack(TrackUpper);
        press(Qt::Key_Up, ctrl);
        const double value = mouse().point(seenCross()).y();
        press(Qt::Key_Return);
        QCOMPARE(seenLimits(), QString::number(value, 'f', 2) + " -");
        mouse().moveTo({40, 40}); // the mouse takes over
        QCOMPARE(seenCross(), QPoint(-1, -1));
        press(Qt::Key_Up, ctrl);
        press(Qt::Key_Home, ctrl); // means nothing here
        QCOMPARE(plot().getChMode(), ModeLimits);
        plot().removeDev(0); // of which it told
        QCOMPARE(seenCross(), QPoint(-1, -1));
        QCOMPARE(said(), "plot");
    }
};

QTEST_MAIN(TestQwtNOXKeys)
#include "tst_qwtnox_keys.moc"
