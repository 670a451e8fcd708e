#include "commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

namespace
{

struct NumberOption {
    const char *name;
    const char *description;
    int least;
    int PictureOrder::*value; ///< which has the default as well
};

const NumberOption numberOptions[] = {
    {"instruments", "How many instruments have to be found; 0 ends the search as it begins", 0,
     &PictureOrder::instruments},
    {"patience", "How many seconds may pass until what is waited for comes", 1,
     &PictureOrder::patience},
    {"seconds", "How many seconds to measure then", 1, &PictureOrder::seconds}};

struct SceneOption {
    const char *name;
    const char *description;
    QStringList scenes;
    QString PictureOrder::*value;
};

QVector<SceneOption> sceneOptions()
{
    return {
        {"window",
         "Take the window and what opens over it",
         {"empty", "instruments", "manual", "discovery", "difference", "lost", "logger", "about"},
         &PictureOrder::window},
        {"plot",
         "Show all channels of the first instrument and do this on the plot",
         {"live", "measure", "zoom", "limits"},
         &PictureOrder::plot},
        {"results",
         "Take results of the first instrument",
         {"recording", "export", "reading"},
         &PictureOrder::results},
        {"settings",
         "Take settings of the first instrument",
         {"general", "snapshots", "channels", "references", "shifts", "service", "platinum",
          "thermocouple", "instrument-card", "channel-card"},
         &PictureOrder::settings}};
}

void addOptions(QCommandLineParser &parser)
{
    parser.addOptions(
        {{"output", "Where the picture goes.", "file"},
         {"size", "Size of the window (default: 1280x800).", "WxH", "1280x800"},
         {"ports-directory", "Look for instruments nowhere but in this directory.", "path"}});
    const PictureOrder defaults;
    for (const NumberOption &option : numberOptions)
        parser.addOption({option.name,
                          QStringLiteral("%1 (default: %2).")
                              .arg(option.description)
                              .arg(defaults.*option.value),
                          "count", QString::number(defaults.*option.value)});
    for (const SceneOption &option : sceneOptions())
        parser.addOption({option.name,
                          QStringLiteral("%1: %2.").arg(option.description,
                                                        option.scenes.join(QStringLiteral(", "))),
                          "scene"});
}

QSize readSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{2,5})x(\\d{2,5})$"));
    const auto match = pattern.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

QString readPath(const QString &text)
{
    return text.isEmpty() ? text : QFileInfo(text).absoluteFilePath();
}

void readNumbers(const QCommandLineParser &parser, PictureOrder &order)
{
    for (const NumberOption &option : numberOptions) {
        bool isNumber = false;
        order.*option.value = parser.value(option.name).toInt(&isNumber);
        if (!isNumber || order.*option.value < option.least)
            order.error =
                QStringLiteral("--%1 is no number from %2 on").arg(option.name).arg(option.least);
    }
}

void readScenes(const QCommandLineParser &parser, PictureOrder &order)
{
    for (const SceneOption &option : sceneOptions()) {
        order.*option.value = parser.value(option.name);
        if (parser.isSet(option.name) && !option.scenes.contains(order.*option.value))
            order.error = QStringLiteral("--%1 is none of: %2")
                              .arg(option.name, option.scenes.join(QStringLiteral(", ")));
    }
}

} // namespace

PictureOrder readPictureOrder()
{
    QCommandLineParser parser;
    parser.setApplicationDescription("Takes a picture of nox8 with the instruments it has found.");
    parser.addHelpOption();
    addOptions(parser);
    parser.process(*QCoreApplication::instance());

    PictureOrder order;
    order.output = readPath(parser.value("output"));
    order.size = readSize(parser.value("size"));
    order.portsDirectory = readPath(parser.value("ports-directory"));
    readNumbers(parser, order);
    readScenes(parser, order);
    if (order.output.isEmpty())
        order.error = QStringLiteral("--output is missing");
    else if (!order.size.isValid())
        order.error = QStringLiteral("--size is not of the form 1280x800");
    return order;
}
