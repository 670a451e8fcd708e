#include "plot/channelcolors.h"

#include <iterator>

QColor defaultChannelColor(int ch)
{
    static const QColor colors[] = {
        Qt::red,         Qt::blue,    Qt::green,      Qt::darkGray,  "#c6c600",     Qt::darkCyan,
        Qt::darkMagenta, Qt::black,   Qt::darkRed,    Qt::darkBlue,  Qt::darkGreen, "#00c6c6",
        Qt::gray,        Qt::magenta, Qt::darkYellow, Qt::lightGray,
    };
    return ch < static_cast<int>(std::size(colors)) ? colors[ch] : QColor("red");
}
