#include "commandline.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRegularExpression>

namespace
{

QSize readSize(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{2,5})x(\\d{2,5})$"));
    const auto match = pattern.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

} // namespace

PictureOrder readPictureOrder()
{
    const QCommandLineOption output("output", "Where the picture goes.", "file");
    const QCommandLineOption size("size", "Size of the window (default: 1280x800).", "WxH",
                                  "1280x800");
    const QCommandLineOption seconds("seconds", "How long to measure (default: 45).", "count",
                                     "45");
    const QCommandLineOption connect(
        "connect", "Ports to connect, further ones as arguments (default: all).", "name");
    const QCommandLineOption showAll("show-all", "Show the curves of all instruments.");

    QCommandLineParser parser;
    parser.setApplicationDescription("Takes a picture of nox8 with its instruments connected.");
    parser.addHelpOption();
    parser.addOptions({output, size, seconds, connect, showAll});
    parser.addPositionalArgument("port", "Further ports to connect.", "[port...]");
    parser.process(*QCoreApplication::instance());

    bool secondsValid = false;
    PictureOrder order;
    order.output = parser.value(output);
    order.size = readSize(parser.value(size));
    order.seconds = parser.value(seconds).toInt(&secondsValid);
    order.ports = parser.values(connect) + parser.positionalArguments();
    order.showAll = parser.isSet(showAll);
    if (order.output.isEmpty())
        order.error = QStringLiteral("--output is missing");
    else if (!order.size.isValid())
        order.error = QStringLiteral("--size is not of the form 1280x800");
    else if (!secondsValid || order.seconds < 1)
        order.error = QStringLiteral("--seconds is not a positive number");
    return order;
}
