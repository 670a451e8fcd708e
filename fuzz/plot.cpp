/// Puts points on the plot that no thermometer measures, in all modes and scales, and paints it.
///
/// Input: a byte each for the mode, the labels and the scales of the axes, and a reference channel;
/// then points, each a byte for its channel, its time and its value. A number is a byte that
/// chooses a small step from the last one, or the eight bytes of a double that follow.

#include "fuzzinput.h"
#include "plot/qwtnox.h"

#include <QApplication>
#include <QImage>

#include <cmath>
#include <cstring>

namespace
{

constexpr int channels = 3;
constexpr int mostPoints = 40;
constexpr int pointsPerFrame = 8;
constexpr double brokenSensorValue = -1300;
constexpr quint8 wholeNumber = 0xFF;

const QDateTime start({2026, 11, 24}, {7, 5, 9});

void startQt()
{
    static int argc = 1;
    static char name[] = "fuzz-plot";
    static char *argv[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static auto *const application = new QApplication(argc, argv); // until the process ends
    Q_UNUSED(application)
}

double numberFrom(FuzzInput &input, double last)
{
    const quint8 step = input.byte();
    if (step != wholeNumber)
        return last + (step - 100) / 10.0;
    double number = 0;
    const QByteArray bytes = input.bytes(sizeof number).leftJustified(sizeof number, '\0');
    std::memcpy(&number, bytes.constData(), sizeof number);
    return number;
}

QwtNOX &emptyPlot()
{
    static QwtNOX plot;
    plot.resize(160, 120);
    plot.show(); // what nobody sees is not painted
    plot.setClock([] { return start; });
    plot.removeDev(0);
    plot.attachDev(0, channels);
    return plot;
}

void choose(QwtNOX &plot, FuzzInput &input)
{
    const quint8 modes = input.byte();
    plot.setChMode(TmcMode(modes % 6));
    plot.setAverShow(modes & 0x40);
    plot.changeModeX(input.byte());
    plot.changeScaleX(input.byte());
    plot.changeScaleY(input.byte());
    if (const quint8 reference = input.byte(); reference < channels)
        plot.setChDiff(reference, 0);
}

/** What points have added to a picture that is there. */
void paintFrame(QwtNOX &plot)
{
    plot.frameClock().flush();
    plot.canvas()->grab();
}

void addPoints(QwtNOX &plot, FuzzInput &input)
{
    double seconds = 0;
    double value = 20;
    int acceptable = 0;
    for (int i = 0; i < mostPoints && !input.atEnd(); ++i) {
        const uchar channel = input.byte() % channels;
        seconds = numberFrom(input, seconds);
        value = numberFrom(input, value);
        const bool isAcceptable = value > brokenSensorValue && std::isfinite(value) &&
                                  seconds >= 0 && std::isfinite(seconds);
        acceptable += isAcceptable ? 1 : 0;
        require(!plot.addPoint(value, seconds, QStringLiteral("K"), 0, channel) || isAcceptable);
        if (i % pointsPerFrame == 0)
            paintFrame(plot);
    }
    int kept = 0;
    for (uchar channel = 0; channel < channels; ++channel)
        kept += plot.getChMeasCount(0, channel, false);
    require(kept == acceptable);
}

/** Whatever was measured, there are axes to paint it in. */
void paint(QwtNOX &plot)
{
    plot.applyScale();
    plot.frameClock().flush();
    plot.replot();
    QImage image(plot.size(), QImage::Format_RGB32);
    plot.render(&image);
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        const QwtInterval shown = plot.axisInterval(axis);
        require(std::isfinite(shown.minValue()) && std::isfinite(shown.maxValue()));
        require(shown.width() > 0);
    }
}

void tell(const QwtNOX &plot)
{
    for (uchar channel = 0; channel < channels; ++channel) {
        require(!plot.getChMeasStr(0, channel).isEmpty());
        plot.getChAverStr(0, channel);
        plot.getChTimeStr(0, channel);
        plot.getChDXStr(0, channel);
        plot.getChDYStr(0, channel);
        plot.pointText({plot.getChTime(0, channel), plot.getChMeas(0, channel)});
    }
    require(!plot.getScaleXLabel().isEmpty() && !plot.getScaleYLabel().isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    startQt();
    FuzzInput input(data, size);
    QwtNOX &plot = emptyPlot();
    choose(plot, input);
    addPoints(plot, input);
    paint(plot);
    tell(plot);
    return 0;
}
