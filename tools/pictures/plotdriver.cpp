#include "plotdriver.h"

#include "app/mainwindow.h"
#include "mouse.h"
#include "plot/qwtnox.h"

#include <QAbstractButton>

PlotDriver::PlotDriver(MainWindow *window)
    : m_window(window)
{
}

void PlotDriver::showAllChannels()
{
    QwtNOX *plot = m_window->plot();
    for (int ch = 0; ch < plot->getChCount(); ++ch)
        plot->setChShow(true, -1, uchar(ch));
    m_window->updUI();
}

void PlotDriver::measure(const QPointF &first, const QPointF &second)
{
    press("qwtMeasBtn");
    for (const QPointF &point : {first, second})
        clickMouse(m_window->plot()->canvas(), place(point));
}

void PlotDriver::zoom(const QPointF &corner, const QPointF &oppositeCorner)
{
    press("qwtZoomBtn");
    dragMouse(m_window->plot()->canvas(), place(corner), place(oppositeCorner));
}

void PlotDriver::placeLimits(double upper, double lower)
{
    m_window->plot()->setModeTrack(TrackRange);
    for (const double height : {upper, lower})
        clickMouse(m_window->plot()->canvas(), place({0.5, height}));
}

void PlotDriver::press(const char *buttonName)
{
    auto *button = m_window->findChild<QAbstractButton *>(QLatin1String(buttonName));
    if (button)
        button->click();
}

QPoint PlotDriver::place(const QPointF &share) const
{
    const QSize canvas = m_window->plot()->canvas()->size();
    return {qRound(share.x() * canvas.width()), qRound(share.y() * canvas.height())};
}
