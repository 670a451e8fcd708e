#include "app/plotplaces.h"

#include "plot/qwtnox.h"

int freePlotIndex(const QList<int> &used)
{
    constexpr int mostInstruments = 255;
    if (used.size() >= mostInstruments)
        return -1;
    int index = 0;
    while (used.contains(index))
        ++index;
    return index;
}

int attachToPlot(QwtNOX *plot, uchar channelCount)
{
    const int qwtIndex = freePlotIndex(plot->devices().keys());
    if (qwtIndex < 0)
        return -1;
    plot->addDev(qwtIndex, channelCount);
    if (plot->devices().size() == 1)
        plot->setDevMain(qwtIndex);
    else
        emit plot->onChange(qwtIndex);
    return qwtIndex;
}
