/// Prints what the time plot costs, beside the plain way and beside what cannot be avoided.

#include "averageerror.h"
#include "plainplot.h"
#include "plot/envelopecurve.h"
#include "plot/plotitems.h"
#include "plot/qwtnox.h"
#include "plothistory.h"
#include "processortime.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <cstdio>
#include <cstring>
#include <functional>
#include <malloc.h>

namespace
{

constexpr int channels = 16;
constexpr double viewSeconds = 1080000; ///< ten of the coarsest steps
constexpr int leastPoints = 1000000;    ///< that a pass appends, in as many series as it takes

const std::vector<int> lengths = {10000, 100000, 1000000, 10000000};

/** One line of the table, a number per length; NaN where there is none. */
struct Line {
    QByteArray name;
    const char *format;
    std::vector<double> numbers = {};
};

void print(const Line &line)
{
    std::printf("%-52s", line.name.constData());
    for (const double number : line.numbers) {
        if (std::isnan(number))
            std::printf(" %12s", "-");
        else
            std::printf(line.format, number);
    }
    std::printf("\n");
    std::fflush(stdout);
}

double gibibytesAvailable()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    file.open(QIODevice::ReadOnly);
    for (const QByteArray &line : file.readAll().split('\n'))
        if (line.startsWith("MemAvailable:"))
            return line.mid(13).trimmed().split(' ').first().toDouble() / (1 << 20);
    return 0;
}

double allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
}

void append(PlotChannel &channel, const PlotHistory &history)
{
    for (int i = 0; i < history.count; ++i) {
        channel.time.append(history.time(i));
        channel.meas.append(history.value(i));
        channel.aver.follow(channel.meas);
    }
}

/** Times and values as they come from the wire. */
struct Numbers {
    std::vector<double> times;
    std::vector<double> values;

    explicit Numbers(int count)
    {
        const PlotHistory history{count};
        for (int i = 0; i < count; ++i) {
            times.push_back(history.time(i));
            values.push_back(history.value(i));
        }
    }
    int size() const { return static_cast<int>(times.size()); }
};

/** Nanoseconds per point of filling containers; all of a pass live until its end. */
template<typename Container, typename Append>
double appendNanoseconds(const Numbers &numbers, Append append)
{
    const int copies = std::max(1, leastPoints / numbers.size());
    const auto work = [&](int) {
        std::vector<Container> filled(static_cast<std::size_t>(copies));
        for (Container &container : filled)
            for (std::size_t i = 0; i < numbers.times.size(); ++i)
                append(container, numbers.times[i], numbers.values[i]);
    };
    return nanosecondsOf(numbers.size() > leastPoints ? 3 : 7, work) / copies / numbers.size();
}

struct Vectors {
    QVector<double> times;
    QVector<double> values;
};

double seriesAppend(const Numbers &numbers)
{
    return appendNanoseconds<PlotChannel>(numbers,
                                          [](PlotChannel &channel, double time, double value) {
                                              channel.time.append(time);
                                              channel.meas.append(value);
                                              channel.aver.follow(channel.meas);
                                          });
}

double bareAppend(const Numbers &numbers)
{
    return appendNanoseconds<Vectors>(numbers, [](Vectors &vectors, double time, double value) {
        vectors.times.append(time);
        vectors.values.append(value);
    });
}

double copyOfNumbers(const Numbers &numbers)
{
    Numbers copy = numbers;
    const auto work = [&](int) {
        std::memcpy(copy.times.data(), numbers.times.data(), numbers.times.size() * sizeof(double));
        std::memcpy(copy.values.data(), numbers.values.data(),
                    numbers.values.size() * sizeof(double));
    };
    return nanosecondsOf(7, work) / numbers.size();
}

double bytesPerPoint(int count)
{
    const double before = allocatedBytes();
    PlotChannel channel;
    append(channel, {count});
    return (allocatedBytes() - before) / count;
}

double plainBytesPerPoint(int count)
{
    const PlotHistory history{count};
    const double before = allocatedBytes();
    QVector<double> vectors[3];
    for (int i = 0; i < count; ++i)
        for (QVector<double> &vector : vectors)
            vector.append(history.value(i));
    return (allocatedBytes() - before) / count;
}

/** Windows of all lengths, anywhere. */
QVector<QPair<int, int>> windowsOf(int count, int windows)
{
    QRandomGenerator random(1);
    QVector<QPair<int, int>> found;
    for (int i = 0; i < windows; ++i) {
        const int one = random.bounded(count);
        const int other = random.bounded(count);
        found.append({std::min(one, other), std::max(one, other) + 1});
    }
    return found;
}

template<typename Range>
double nanosecondsOfRange(int count, int windows, Range range)
{
    double sum = 0;
    const QVector<QPair<int, int>> asked = windowsOf(count, windows);
    const auto work = [&](int) {
        for (const auto &window : asked)
            sum += range(window.first, window.second).max;
    };
    const double nanoseconds = nanosecondsOf(3, work) / windows;
    return sum == 0 ? 0 : nanoseconds; // uses what was found
}

/**
 * Painting without any plot, the numbers being ready: for each of 32 curves a bar in every column
 * of a picture of that size.
 */
double barsMilliseconds(const QSize &size)
{
    const Numbers numbers(size.width());
    QImage image(size, QImage::Format_RGB32);
    const auto work = [&](int) {
        QPainter painter(&image);
        painter.setPen(Qt::NoPen);
        for (int curve = 0; curve < 2 * channels; ++curve) {
            QVector<QRect> bars;
            for (int column = 0; column < size.width(); ++column) {
                const double value = numbers.values[static_cast<std::size_t>(column)] + curve / 2;
                const double fromTop = (45 - value) / 30;
                bars.append({column, qRound(size.height() * fromTop), 1, size.height() / 60});
            }
            painter.setBrush(defaultChannelColor(curve / 2));
            painter.drawRects(bars);
        }
    };
    return nanosecondsOf(7, work) / 1e6;
}

/** The time plot with 16 channels of a history on show, and what it costs. */
class FullPlot
{
public:
    explicit FullPlot(int count)
    {
        m_plot.addDev(0, channels);
        m_plot.setDevMain(0);
        for (int channel = 0; channel < channels; ++channel) {
            m_plot.setChShow(true, 0, static_cast<uchar>(channel));
            PlotChannel &record = m_plot.devices()[0].ch[channel];
            const PlotHistory history{count, channel};
            append(record, history);
            for (int i = 0; i < count; ++i)
                record.dims.append(m_unit);
            record.error = false;
            showSeries(record);
        }
        m_plot.setChMode(ModeAuto);
        m_plot.resize(1280, 800);
        m_plot.show();
        paint();
    }

    QSize canvasSize() const { return m_plot.canvas()->size(); }
    const Series &values() { return m_plot.devices()[0].ch[0].meas; }
    const MovingAverages &averages() { return m_plot.devices()[0].ch[0].aver; }

    double addPointNanoseconds()
    {
        constexpr int points = 20000;
        return nanosecondsOf(5, [this](int) { add(points, 0); }) / points;
    }
    double newPointsMilliseconds()
    {
        return frameMilliseconds([this](int) { addToAll(); },
                                 [this] { m_plot.frameClock().flush(); });
    }
    double unchangedViewMilliseconds()
    {
        const auto prepare = [this](int) {
            addToAll();
            m_plot.frameClock().flush(); // or it would come in between
        };
        return frameMilliseconds(prepare, [this] { paint(); });
    }
    double newViewMilliseconds()
    {
        return viewMilliseconds(
            [](int frame) { return QPointF(0, viewSeconds + (frame + 1) * 777.7); });
    }
    double newestMilliseconds()
    {
        const double last = PlotHistory::seconds;
        return viewMilliseconds(
            [=](int frame) { return QPointF(last * 0.999 - frame * 0.7, last); });
    }

private:
    void paint()
    {
        m_plot.replot();
        QCoreApplication::processEvents();
    }

    void addToAll()
    {
        for (int channel = 0; channel < channels; ++channel)
            add(10, static_cast<uchar>(channel));
    }

    void add(int points, uchar channel)
    {
        for (int i = 0; i < points; ++i)
            m_plot.addPoint(20 + (i & 1), PlotHistory::seconds + 0.001 * m_added++, m_unit, 0,
                            channel);
    }

    /** Milliseconds of processor time that `frame` takes; `prepare` is not counted. */
    double frameMilliseconds(const std::function<void(int)> &prepare,
                             const std::function<void()> &frame)
    {
        constexpr int frames = 7;
        double best = std::numeric_limits<double>::infinity();
        for (int number = 0; number < frames; ++number) {
            prepare(number);
            best = std::min(best, nanosecondsOf(1, [&](int) { frame(); }));
        }
        return best / 1e6;
    }

    template<typename View>
    double viewMilliseconds(View view)
    {
        m_plot.setChMode(ModeZoom); // the axes stay where they are put
        m_plot.frameClock().flush();
        const auto prepare = [&](int frame) {
            m_plot.setAxisScale(QwtPlot::xBottom, view(frame).x(), view(frame).y());
        };
        return frameMilliseconds(prepare, [this] { paint(); });
    }

    const QString m_unit = QStringLiteral("°С");
    int m_added = 0;
    QwtNOX m_plot;
};

/** The whole table; lines fill up from the shortest length to the longest. */
class Table
{
public:
    void measure(int count)
    {
        measureSeries(count);
        const double memory = 20.0 * count * channels / (1 << 30); // gibibytes, and some to spare
        if (memory * 1.5 < gibibytesAvailable())
            measurePlot(count);
        else
            for (Line *line :
                 {&addPoint, &newPoints, &newView, &unchangedView, &newest, &range, &averageRange})
                line->numbers.push_back(std::nan(""));
        measurePlain(count);
    }

    void print() const
    {
        for (const Line *line : {&bytes, &plainBytes, &append, &bare, &copy, &addPoint,
                                 &plainAddPoint, &newPoints, &newView, &unchangedView, &plainFrame,
                                 &bars, &newest, &plainNewest, &range, &averageRange, &plainRange})
            ::print(*line);
    }

    void printRatios() const
    {
        const auto ratio = [](const char *name, double measured, double target) {
            std::printf("%-62s %10.4g %10.4g\n", name, measured, target);
        };
        std::printf("\n%-62s %10s %10s\n", "", "measured", "at most");
        ratio("append at 10^7 over append at 10^4", append.numbers[3] / append.numbers[0], 1.5);
        ratio("append over bare append, at 10^4", append.numbers[0] / bare.numbers[0], 3);
        ratio("append over bare append, at 10^7", append.numbers[3] / bare.numbers[3], 3);
        ratio("addPoint at 10^6, microseconds", addPoint.numbers[2] / 1e3, 1);
        ratio("frame on a new view over the plain way, at 10^6",
              newView.numbers[2] / plainFrame.numbers[2], 1.0 / 200);
        ratio("frame on an unchanged view over the plain way, at 10^6",
              unchangedView.numbers[2] / plainFrame.numbers[2], 1.0 / 500);
        ratio("frame on a new view over its limit, at 10^7", newView.numbers[3] / bars.numbers[3],
              10);
        ratio("frame on an unchanged view over its limit, at 10^7",
              unchangedView.numbers[3] / bars.numbers[3], 3);
        ratio("range of a window at 10^7, microseconds", range.numbers[3] / 1e3, 1);
        ratio("range of averages at 10^7, microseconds", averageRange.numbers[3] / 1e3, 1);
        ratio("bytes a point at 10^7", bytes.numbers[3], 9);
    }

private:
    void measureSeries(int count)
    {
        const Numbers numbers(count);
        bytes.numbers.push_back(bytesPerPoint(count));
        plainBytes.numbers.push_back(plainBytesPerPoint(count));
        append.numbers.push_back(seriesAppend(numbers));
        bare.numbers.push_back(bareAppend(numbers));
        copy.numbers.push_back(copyOfNumbers(numbers));
    }

    void measurePlot(int count)
    {
        FullPlot plot(count);
        addPoint.numbers.push_back(plot.addPointNanoseconds());
        newPoints.numbers.push_back(plot.newPointsMilliseconds());
        unchangedView.numbers.push_back(plot.unchangedViewMilliseconds());
        newView.numbers.push_back(plot.newViewMilliseconds());
        newest.numbers.push_back(plot.newestMilliseconds());
        bars.numbers.push_back(barsMilliseconds(plot.canvasSize()));
        const auto rangeIn = [count](const auto &values) {
            return nanosecondsOfRange(count, 20000,
                                      [&](int first, int end) { return values.range(first, end); });
        };
        range.numbers.push_back(rangeIn(plot.values()));
        averageRange.numbers.push_back(rangeIn(plot.averages()));
    }

    void measurePlain(int count)
    {
        if (count == lengths.back()) { // too long to wait for: ten times that of the tenth
            for (Line *line : {&plainAddPoint, &plainFrame, &plainNewest, &plainRange})
                line->numbers.push_back(10 * line->numbers.back());
            return;
        }
        const int passes = count < leastPoints ? 3 : 1;
        const std::vector<double> scanned = Numbers(count).values;
        plainRange.numbers.push_back(nanosecondsOfRange(count, 100, [&](int first, int end) {
            const auto found =
                std::minmax_element(scanned.cbegin() + first, scanned.cbegin() + end);
            return ValueRange{*found.first, *found.second};
        }));

        PlainPlot plain(channels, viewSeconds);
        plain.fill(count);
        plainFrame.numbers.push_back(nanosecondsOf(passes, [&](int) { plain.paint(); }) / 1e6);
        plainAddPoint.numbers.push_back(nanosecondsOf(
            passes, [&](int pass) { plain.addPoint(20, PlotHistory::seconds + pass); }));
        plain.showSpan(PlotHistory::seconds * 0.999, PlotHistory::seconds);
        plainNewest.numbers.push_back(nanosecondsOf(passes, [&](int) { plain.paint(); }) / 1e6);
    }

    Line bytes{"bytes a point: times, values, averages, levels", " %12.1f"};
    Line plainBytes{"  plain: times, values, averages", " %12.1f"};
    Line append{"append to the series, ns", " %12.2f"};
    Line bare{"  plain: append to vectors without averages, ns", " %12.2f"};
    Line copy{"  limit: copy the numbers, ns", " %12.2f"};
    Line addPoint{"addPoint of the main channel, same axes, ns", " %12.0f"};
    Line plainAddPoint{"  plain: append, setSamples, replot, ns *", " %12.0f"};
    Line newPoints{"frame of 10 new points a channel, ms", " %12.2f"};
    Line newView{"frame of all, new view, ms", " %12.2f"};
    Line unchangedView{"frame of all, unchanged view, ms", " %12.2f"};
    Line plainFrame{"  plain: frame of all, ms *", " %12.2f"};
    Line bars{"  limit: 32 curves of one bar per column, ms", " %12.2f"};
    Line newest{"frame of the last 0.1 %, new view, ms", " %12.2f"};
    Line plainNewest{"  plain: frame of the last 0.1 %, ms *", " %12.2f"};
    Line range{"range of a window of values, ns", " %12.0f"};
    Line averageRange{"range of a window of averages, ns", " %12.0f"};
    Line plainRange{"  plain: scan the window, ns *", " %12.0f"};
};

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--average-error"))) {
        printAverageError(100000000);
        return 0;
    }
    std::printf("time plot, 16 channels with values and averages; processor time, best of some\n");
    std::printf("* at 10^7 ten times that at 10^6, not measured\n");
    std::printf("%-52s %12s %12s %12s %12s\n", "points per channel", "10^4", "10^5", "10^6",
                "10^7");
    Table table;
    for (const int count : lengths)
        table.measure(count);
    table.print();
    table.printRatios();
    return 0;
}
