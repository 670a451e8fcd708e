#include "commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

namespace
{

QSize readSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{2,5})x(\\d{2,5})$"));
    const auto match = pattern.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

QString listed(const QStringList &scenes)
{
    return scenes.join(QStringLiteral(", "));
}

} // namespace

QStringList windowScenes()
{
    return {QStringLiteral("empty"),     QStringLiteral("instruments"), QStringLiteral("manual"),
            QStringLiteral("discovery"), QStringLiteral("difference"),  QStringLiteral("lost"),
            QStringLiteral("logger"),    QStringLiteral("about")};
}

QStringList plotScenes()
{
    return {QStringLiteral("live"), QStringLiteral("measure"), QStringLiteral("zoom"),
            QStringLiteral("limits")};
}

QStringList resultsScenes()
{
    return {QStringLiteral("recording"), QStringLiteral("export"), QStringLiteral("reading")};
}

QStringList settingsScenes()
{
    return {QStringLiteral("instrument-card"), QStringLiteral("channel-card"),
            QStringLiteral("general"),         QStringLiteral("snapshots"),
            QStringLiteral("channels"),        QStringLiteral("references"),
            QStringLiteral("shifts"),          QStringLiteral("service"),
            QStringLiteral("platinum"),        QStringLiteral("thermocouple")};
}

PictureOrder readPictureOrder()
{
    const QCommandLineOption output("output", "Where the picture goes.", "file");
    const QCommandLineOption size("size", "Size of the window (default: 1280x800).", "WxH",
                                  "1280x800");
    const QCommandLineOption instruments(
        "instruments",
        "How many instruments have to be found; 0 ends the search as soon as it begins "
        "(default: 1).",
        "count", "1");
    const QCommandLineOption patience(
        "patience", "How long they may take until they measure (default: 120).", "seconds", "120");
    const QCommandLineOption seconds("seconds", "How long to measure then (default: 45).", "count",
                                     "45");
    const QCommandLineOption ports("ports-directory",
                                   "Look for instruments nowhere but in this directory.", "path");
    const QCommandLineOption window(
        "window", "Take the window and what opens over it: " + listed(windowScenes()), "scene");
    const QCommandLineOption plot(
        "plot",
        "Show all channels of the first instrument and do this on the plot: " +
            listed(plotScenes()),
        "scene");
    const QCommandLineOption results(
        "results", "Take results of the first instrument: " + listed(resultsScenes()), "scene");
    const QCommandLineOption settings(
        "settings", "Take settings of the first instrument: " + listed(settingsScenes()), "scene");

    QCommandLineParser parser;
    parser.setApplicationDescription("Takes a picture of nox8 with the instruments it has found.");
    parser.addHelpOption();
    parser.addOptions(
        {output, size, instruments, patience, seconds, ports, window, plot, results, settings});
    parser.process(*QCoreApplication::instance());

    PictureOrder order;
    const auto readCount = [&parser, &order](const QCommandLineOption &option, int least) {
        bool isNumber = false;
        const int count = parser.value(option).toInt(&isNumber);
        if (!isNumber || count < least)
            order.error = QStringLiteral("--%1 is no number from %2 upwards")
                              .arg(option.names().first())
                              .arg(least);
        return count;
    };
    const auto readPath = [&parser](const QCommandLineOption &option) {
        const QString path = parser.value(option);
        return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
    };
    order.output = readPath(output);
    order.size = readSize(parser.value(size));
    order.instruments = readCount(instruments, 0);
    order.patience = readCount(patience, 1);
    order.seconds = readCount(seconds, 1);
    order.portsDirectory = readPath(ports);
    order.window = parser.value(window);
    order.plot = parser.value(plot);
    order.results = parser.value(results);
    order.settings = parser.value(settings);
    if (order.output.isEmpty())
        order.error = QStringLiteral("--output is missing");
    else if (!order.size.isValid())
        order.error = QStringLiteral("--size is not of the form 1280x800");
    else if (parser.isSet(window) && !windowScenes().contains(order.window))
        order.error = QStringLiteral("--window is none of: ") + listed(windowScenes());
    else if (parser.isSet(plot) && !plotScenes().contains(order.plot))
        order.error = QStringLiteral("--plot is none of: ") + listed(plotScenes());
    else if (parser.isSet(results) && !resultsScenes().contains(order.results))
        order.error = QStringLiteral("--results is none of: ") + listed(resultsScenes());
    else if (parser.isSet(settings) && !settingsScenes().contains(order.settings))
        order.error = QStringLiteral("--settings is none of: ") + listed(settingsScenes());
    return order;
}
