#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "commandline.h"
#include "picture.h"
#include "plotdriver.h"
#include "resultsdriver.h"
#include "serial/portcatalog.h"
#include "settingsdriver.h"
#include "waiting.h"
#include "windowdriver.h"
#include "windowscenes.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFile>
#include <QFont>
#include <QIcon>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTextStream>

#include <memory>

namespace
{

constexpr int settlingSeconds = 3; ///< for the curves that are switched on at the end

// as the program tells them
constexpr int buildNumber = 110;
constexpr char buildDate[] = "Mar  5 2024";

void playPlot(const QString &scene, PlotDriver &plot)
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

/** Waits until the instruments have measured for a while, the first of them the current one. */
bool awaitInstruments(const PictureOrder &order, WindowDriver &driver)
{
    if (order.instruments == 0)
        return driver.dismissSearch(order.patience);
    if (!driver.awaitMeasuring(order.instruments, order.patience))
        return false;
    waitMs(qMax(0, order.seconds - settlingSeconds) * 1000);
    driver.clickInstrument(driver.rowsByNumber().first(), InstrumentColumn::Name);
    return true;
}

bool takeScene(const PictureOrder &order, MainWindow &window, WindowDriver &driver)
{
    if (!order.window.isEmpty())
        return WindowScenes(&window, &driver, order).play(order.window);
    PlotDriver plot(&window);
    if (!order.plot.isEmpty())
        plot.showAllChannels();
    playPlot(order.plot, plot);
    waitMs(qMin(order.seconds, settlingSeconds) * 1000);
    const auto take = [&order](QWidget *seen) { return seen && savePicture(seen, order.output); };
    if (!order.settings.isEmpty())
        return SettingsDriver(&window).play(order.settings, take);
    if (order.results.isEmpty())
        return take(&window);
    ResultsDriver results(&window);
    return take(playResults(order.results, results));
}

bool takePicture(const PictureOrder &order)
{
    if (!order.portsDirectory.isEmpty())
        PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(order.portsDirectory));
    MainWindow window;
    window.setProperty("BUILD_NUMBER", buildNumber);
    window.setProperty("BUILD_DATE", QString::fromLatin1(buildDate));
    window.resize(order.size);
    window.show();
    window.activateWindow();
    QCursor::setPos(window.rect().bottomRight()); // off the plot, which would tell its place
    WindowDriver driver(&window);
    return awaitInstruments(order, driver) && takeScene(order, window, driver);
}

/** That of the program. */
void setIdentity()
{
    QCoreApplication::setOrganizationName(QStringLiteral("Tavrel"));
    QCoreApplication::setApplicationName(QStringLiteral("nox8"));
    QCoreApplication::setApplicationVersion(QStringLiteral(NOX8_VERSION));
}

/** Where no desktop says how large texts are, the letters are smaller than on most desktops. */
void setTextSize()
{
    constexpr int points = 12;
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
}

} // namespace

int main(int argc, char *argv[])
{
    setIdentity();
    // a database of its own, made anew: a picture shows nothing that the user has stored
    const QTemporaryDir dataFolder;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dataFolder.path()));

    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QApplication application(argc, argv);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/resource/images/nox8.svg")));
    setTextSize();

    const PictureOrder order = readPictureOrder();
    QDir::setCurrent(dataFolder.path()); // files of results go with it
    if (order.error.isEmpty())
        return takePicture(order) ? 0 : 1;
    QTextStream(stderr) << order.error << '\n';
    return 2;
}
