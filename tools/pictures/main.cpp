#include "app/mainwindow.h"
#include "commandline.h"
#include "windowdriver.h"

#include <QApplication>
#include <QEventLoop>
#include <QPixmap>
#include <QStyleFactory>
#include <QTextStream>
#include <QTimer>

namespace
{

constexpr int settlingSeconds = 3; ///< for the curves that are switched on at the end

void wait(int seconds)
{
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
}

int takePicture(const PictureOrder &order)
{
    MainWindow window;
    window.resize(order.size);
    window.show();

    WindowDriver driver(&window);
    driver.connectPorts(order.ports);
    wait(qMax(0, order.seconds - settlingSeconds));
    driver.clickFirstInstrument();
    if (order.showAll)
        driver.showAllInstruments();
    wait(qMin(order.seconds, settlingSeconds));

    QTextStream complaints(stderr);
    if (!window.grab().save(order.output, "PNG")) {
        complaints << order.output << ": cannot be written\n";
        return 1;
    }
    const QStringList silent = driver.silentPorts();
    for (const QString &name : silent)
        complaints << name << ": no measurements\n";
    return silent.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QApplication application(argc, argv);

    const PictureOrder order = readPictureOrder();
    if (order.error.isEmpty())
        return takePicture(order);
    QTextStream(stderr) << order.error << '\n';
    return 2;
}
