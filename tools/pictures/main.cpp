#include "app/mainwindow.h"
#include "commandline.h"
#include "plotdriver.h"
#include "registry/findnox.h"
#include "resultsdriver.h"
#include "serial/portcatalog.h"
#include "settingsdriver.h"
#include "windowdriver.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPixmap>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <functional>
#include <memory>

namespace
{

constexpr int settlingSeconds = 3; ///< for the curves that are switched on at the end
constexpr int placingMs = 200;

void waitMs(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

/** Waits until there are so many; false when they do not come in time. */
bool waitFor(int expected, const std::function<int()> &count, int patienceSeconds)
{
    constexpr int periodMs = 100;
    QElapsedTimer waited;
    waited.start();
    while (count() < expected && waited.elapsed() < patienceSeconds * 1000)
        waitMs(periodMs);
    if (count() >= expected)
        return true;
    QTextStream(stderr) << count() << " of " << expected << " instruments came within "
                        << patienceSeconds << " s\n";
    return false;
}

/** What has just been shown gets its place first. */
bool save(QWidget *widget, const QString &fileName)
{
    waitMs(placingMs);
    if (widget && widget->grab().save(fileName, "PNG"))
        return true;
    QTextStream(stderr) << fileName << ": cannot be written\n";
    return false;
}

bool takeDiscovery(const PictureOrder &order, MainWindow &window, const WindowDriver &driver)
{
    return waitFor(
               order.instruments, [&driver] { return driver.waitingInstruments(); },
               order.patience) &&
           save(window.discovery(), order.output);
}

void playScene(const QString &scene, PlotDriver &plot)
{
    if (scene == QLatin1String("measure"))
        plot.measure({0.08, 0.55}, {0.36, 0.3});
    else if (scene == QLatin1String("zoom"))
        plot.zoom({0.3, 0.3}, {0.45, 0.5});
    else if (scene == QLatin1String("limits"))
        plot.placeLimits(0.25, 0.6);
}

QWidget *playResults(const QString &scene, ResultsDriver &results)
{
    if (scene == QLatin1String("recording"))
        return results.record();
    return scene == QLatin1String("export") ? results.exportTable() : results.readBack();
}

bool takeWindow(const PictureOrder &order, MainWindow &window, WindowDriver &driver)
{
    if (!waitFor(
            order.instruments, [&driver] { return driver.measuringInstruments(); }, order.patience))
        return false;
    waitMs(qMax(0, order.seconds - settlingSeconds) * 1000);
    driver.clickFirstInstrument();
    if (order.showAll)
        driver.showAllInstruments();
    PlotDriver plot(&window);
    if (!order.plot.isEmpty())
        plot.showAllChannels();
    playScene(order.plot, plot);
    waitMs(qMin(order.seconds, settlingSeconds) * 1000);
    if (!order.settings.isEmpty())
        return SettingsDriver(&window).play(
            order.settings, [&order](QWidget *seen) { return save(seen, order.output); });
    if (order.results.isEmpty())
        return save(&window, order.output);
    ResultsDriver results(&window);
    return save(playResults(order.results, results), order.output);
}

bool takePicture(const PictureOrder &order)
{
    if (!order.portsDirectory.isEmpty())
        PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(order.portsDirectory));
    MainWindow window;
    window.resize(order.size);
    window.show();
    WindowDriver driver(&window);
    return order.discovery ? takeDiscovery(order, window, driver)
                           : takeWindow(order, window, driver);
}

} // namespace

int main(int argc, char *argv[])
{
    // a database of its own, made anew: a picture shows nothing that the user has stored
    const QTemporaryDir dataFolder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dataFolder.path()));

    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QApplication application(argc, argv);

    const PictureOrder order = readPictureOrder();
    QDir::setCurrent(dataFolder.path()); // files of results go with it
    if (order.error.isEmpty())
        return takePicture(order) ? 0 : 1;
    QTextStream(stderr) << order.error << '\n';
    return 2;
}
