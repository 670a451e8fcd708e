/// Prints what loading a long record costs, point by point and many points at once, while the
/// window goes on answering.

#include "app/mainwindow.h"
#include "plot/qwtnox.h"
#include "processortime.h"
#include "serial/portcatalog.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <atomic>
#include <cstdio>
#include <thread>

namespace
{

constexpr int rows = 1000000;
constexpr int channels = 16;
constexpr int sliceMilliseconds = 10;
constexpr auto clickInterval = std::chrono::milliseconds(7);
constexpr quint32 extendedModel = 0x0960AA0F; ///< 16 channels

class NoPorts : public PortCatalog
{
public:
    QVector<SerialPortEntry> ports() const override { return {}; }
};

double valueOf(int row, int channel)
{
    const unsigned noise = (static_cast<unsigned>(row) * channels + channel) * 2654435761u;
    return 20 + channel + (noise >> 8) * 0x1p-25;
}

QByteArray makeText()
{
    QByteArray text;
    for (int row = 0; row < rows; ++row) {
        text += QByteArray::number(row);
        for (int channel = 0; channel < channels; ++channel)
            text += '\t' + QByteArray::number(valueOf(row, channel), 'f', 4);
        text += '\n';
    }
    return text;
}

/** Seconds of processor time that Qt's own classes need to read the text, storing nothing. */
double parseSeconds()
{
    const QByteArray text = makeText();
    double sum = 0;
    const double nanoseconds = nanosecondsOf(1, [&](int) {
        QTextStream stream(text);
        QString line;
        while (stream.readLineInto(&line))
            for (const QString &field : line.split('\t'))
                sum += field.toDouble();
    });
    return sum > 0 ? nanoseconds / 1e9 : 0;
}

/** Clicks a button of its own from another thread and keeps the longest wait for an answer. */
class Clicks
{
public:
    explicit Clicks(QWidget *window)
        : m_button(window)
    {
        m_clock.start();
        m_button.show();
        QObject::connect(&m_button, &QPushButton::clicked, &m_button, [this] { answer(); });
        m_thread = std::thread([this] { click(); });
    }
    ~Clicks() { stop(); }
    Clicks(const Clicks &) = delete;
    Clicks &operator=(const Clicks &) = delete;

    void stop()
    {
        m_isStopping = true;
        if (m_thread.joinable())
            m_thread.join();
    }
    int count() const { return m_count; }
    double longestMilliseconds() const { return double(m_longest) / 1e6; }

private:
    void click()
    {
        while (!m_isStopping) {
            qint64 none = -1;
            if (m_posted.compare_exchange_strong(none, m_clock.nsecsElapsed()))
                for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
                    QCoreApplication::postEvent(&m_button,
                                                new QMouseEvent(type, {1, 1}, Qt::LeftButton,
                                                                Qt::LeftButton, Qt::NoModifier));
            std::this_thread::sleep_for(clickInterval);
        }
    }
    void answer()
    {
        m_longest = std::max(m_longest, m_clock.nsecsElapsed() - m_posted.exchange(-1));
        ++m_count;
    }

    QPushButton m_button;
    QElapsedTimer m_clock;
    std::atomic<qint64> m_posted{-1}; ///< when the click under way was posted, -1 for none
    std::atomic<bool> m_isStopping{false};
    qint64 m_longest = 0;
    int m_count = 0;
    std::thread m_thread;
};

enum class Step { Point, Rows };

/** Adds all points in slices that return to the event loop. */
class Loading
{
public:
    Loading(QwtNOX *plot, int qwtIndex, Step step)
        : m_plot(plot)
        , m_qwtIndex(qwtIndex)
        , m_step(step)
    {
    }

    void run()
    {
        QTimer slices;
        QObject::connect(&slices, &QTimer::timeout, &m_loop, [this] { addSlice(); });
        slices.start(0);
        m_loop.exec();
    }

private:
    void addSlice()
    {
        QElapsedTimer timer;
        timer.start();
        while (m_row < rows && timer.elapsed() < sliceMilliseconds)
            m_step == Step::Point ? addRow() : addRows();
        if (m_row == rows)
            m_loop.quit();
    }
    void addRow()
    {
        for (int channel = 0; channel < channels; ++channel)
            m_plot->addPoint(valueOf(m_row, channel), m_row, m_unit, m_qwtIndex,
                             static_cast<uchar>(channel));
        ++m_row;
    }

    void addRows()
    {
        constexpr int rowsAtOnce = 250;
        m_points.resize(0);
        for (const int end = m_row + rowsAtOnce; m_row < end; ++m_row)
            for (int channel = 0; channel < channels; ++channel)
                m_points.append({channel, double(m_row), valueOf(m_row, channel)});
        m_plot->addPoints(m_qwtIndex, m_points, m_units);
    }

    const QString m_unit = QStringLiteral("°С");
    const QVector<QString> m_units = QVector<QString>(channels, m_unit);
    QwtNOX *m_plot;
    int m_qwtIndex;
    Step m_step;
    int m_row = 0;
    QVector<PlotPoint> m_points;
    QEventLoop m_loop;
};

/** A line of the table: all points into the plot of `window`. */
void load(const char *name, QWidget *window, QwtNOX *plot, int qwtIndex, Step step, double parse)
{
    Clicks clicks(window);
    QElapsedTimer wall;
    wall.start();
    const double seconds =
        nanosecondsOf(1, [&](int) { Loading(plot, qwtIndex, step).run(); }) / 1e9;
    clicks.stop();
    int stored = 0;
    for (int channel = 0; channel < channels; ++channel)
        stored += plot->getChMeasCount(qwtIndex, static_cast<uchar>(channel));
    std::printf("%-34s %10d %8.2f %8.2f %8.2f %8d %12.1f\n", name, stored, seconds,
                wall.elapsed() / 1e3, seconds / parse, clicks.count(),
                clicks.longestMilliseconds());
    std::fflush(stdout);
}

void loadPlotAlone(const char *name, Step step, double parse)
{
    QwtNOX plot;
    plot.addDev(0, channels);
    plot.setDevMain(0);
    for (int channel = 0; channel < channels; ++channel)
        plot.setChShow(true, 0, static_cast<uchar>(channel));
    plot.setChMode(ModeAuto);
    plot.resize(1280, 800);
    plot.show();
    load(name, &plot, &plot, 0, step, parse);
}

void loadWindow(const char *name, Step step, double parse)
{
    PortCatalog::setCurrent(std::make_unique<NoPorts>());
    MainWindow window;
    window.resize(1280, 800);
    window.show();
    const noxList::_nox *nox = window.registry()->newNox(-1, true);
    nox->opt->setDevType(extendedModel);
    const int index = nox->index;
    QCoreApplication::processEvents();
    const int qwtIndex = window.registry()->getQWTIndex(index);
    window.plot()->setChCount(channels, qwtIndex);
    window.plot()->setDevMain(qwtIndex);
    for (int channel = 0; channel < channels; ++channel)
        window.plot()->setChShow(true, qwtIndex, static_cast<uchar>(channel));
    load(name, &window, window.plot(), qwtIndex, step, parse);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir data;
    qputenv("XDG_DATA_HOME", data.path().toLocal8Bit());
    const QApplication application(argc, argv);
    std::printf("loading %d rows of %d channels; at most 3 times the parsing, answers in 50 ms\n",
                rows, channels);
    std::printf("%-34s %10s %8s %8s %8s %8s %12s\n", "", "points", "cpu, s", "wall, s", "multiple",
                "clicks", "longest, ms");
    const double parse = parseSeconds();
    std::printf("%-34s %10d %8.2f\n", "parse the text with Qt's classes", rows * channels, parse);
    loadPlotAlone("plot alone, 16 channels on show", Step::Point, parse);
    loadWindow("window, 16 channels on show", Step::Point, parse);
    loadPlotAlone("plot alone, 250 rows at once", Step::Rows, parse);
    loadWindow("window, 250 rows at once", Step::Rows, parse);
    return 0;
}
