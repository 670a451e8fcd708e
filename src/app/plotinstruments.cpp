#include "app/plotplaces.h"

#include "plot/qwtnox.h"
#include "registry/noxlist.h"

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

optionsNOX8 *imageOnPlot(const noxList &registry, int qwtIndex)
{
    const noxList::_nox *nox = qwtIndex < 0 ? nullptr : registry.getNoxByQwtIndex(qwtIndex);
    return nox ? nox->opt.get() : nullptr;
}

std::optional<double> receivedValue(const QwtNOX &plot, int qwtIndex, uchar ch)
{
    constexpr bool diff = false;
    if (plot.getChMeasCount(qwtIndex, ch, diff) == 0)
        return std::nullopt;
    return plot.getChMeas(qwtIndex, ch, -1, diff);
}
