#include "plot/qwtnox.h"

#include "plot/channelcolors.h"
#include "plot/envelopecurve.h"
#include "plot/plotmeasurement.h"
#include "plot/plotpickers.h"
#include "plot/qwtnoxscaledraw.h"
#include "plot/wrappedlabel.h"

#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_widget.h>

// Construction and the records: instruments and their channels.

namespace
{

constexpr uchar mainChannel = 255;
constexpr int axisFontPoints = 11;

void addGrid(QwtPlot *plot)
{
    auto *grid = new QwtPlotGrid;
    grid->setMajorPen(Qt::darkGray, 0, Qt::DotLine);
    grid->attach(plot);
}

QwtPlotTextLabel *addCaption(QwtPlot *plot)
{
    auto *caption = new WrappedLabel;
    caption->setZ(100); // above curves and lines
    caption->attach(plot);
    return caption;
}

QwtPlotMarker *addLimitLine(QwtPlot *plot)
{
    auto *line = new QwtPlotMarker;
    line->setLineStyle(QwtPlotMarker::HLine);
    line->setLinePen(QwtNOX::limitPen());
    line->setVisible(false);
    line->attach(plot);
    return line;
}

/** Plot index and number of every channel whose difference has that reference. */
QVector<QPair<int, uchar>> referringTo(const QMap<int, PlotDevice> &devices, int diffQwtIndex,
                                       int diffCh)
{
    QVector<QPair<int, uchar>> found;
    for (auto device = devices.cbegin(); device != devices.cend(); ++device)
        for (int ch = 0; ch < device->ch.size(); ++ch)
            if (device->ch[ch].diffQwtIndex == diffQwtIndex && device->ch[ch].diffCh == diffCh)
                found.append({device.key(), static_cast<uchar>(ch)});
    return found;
}

} // namespace

QwtNOX::QwtNOX(QWidget *parent)
    : QwtPlot(parent)
{
    // A canvas with a style sheet of its own takes its background from style sheets alone.
    setStyleSheet(QStringLiteral("QwtPlotCanvas { background: white }"));
    canvas()->setStyleSheet(QStringLiteral("border: 0"));
    plotLayout()->setCanvasMargin(0);
    plotLayout()->setSpacing(0);
    plotLayout()->setAlignCanvasToScales(true);
    addGrid(this);
    m_caption = addCaption(this);

    setAutoReplot(false); // painting waits for the next frame
    connect(&m_frameClock, &FrameClock::frame, this, &QwtNOX::paintFrame);

    for (const int axis : {xBottom, yLeft}) {
        QFont labels = axisFont(axis);
        labels.setPointSize(axisFontPoints);
        setAxisFont(axis, labels);
        setAxisAutoScale(axis, false);
    }
    installScaleXDraw();
    setAxisScaleDraw(yLeft, new QwtNOXScaleYDraw(this));
    restAxes();
    buildInteraction();
}

QwtNOX::~QwtNOX() = default;

void QwtNOX::addDev(int qwtIndex, uchar fixedChCount)
{
    if (qwtIndex < 0 || m_devices.contains(qwtIndex))
        return;
    _dev device;
    device.fixedChCount = fixedChCount;
    device.startDateTime = m_devices.isEmpty() ? now() : m_devices.first().startDateTime;
    device.upperMarker = addLimitLine(this);
    device.lowerMarker = addLimitLine(this);
    m_devices.insert(qwtIndex, device);
    m_measurement->hideFrames();
    setChCount(fixedChCount, qwtIndex);
}

void QwtNOX::attachDev(int qwtIndex, uchar fixedChCount)
{
    addDev(qwtIndex, fixedChCount);
    if (m_devices.size() == 1)
        setDevMain(qwtIndex);
    else
        emit onChange(qwtIndex);
}

void QwtNOX::removeDev(int qwtIndex)
{
    if (!m_devices.contains(qwtIndex))
        return;
    for (_dev &device : m_devices) {
        for (_ch &channel : device.ch) {
            if (channel.diffQwtIndex == qwtIndex) {
                channel.diffQwtIndex = -1;
                channel.diffCh = 255;
                showSeries(channel);
            }
        }
    }
    setChCount(0, qwtIndex);
    while (getChCount(qwtIndex) > 0) // whoever heard of it added a point
        removeLastChannel(qwtIndex);
    const _dev removed = m_devices.take(qwtIndex);
    delete removed.upperMarker;
    delete removed.lowerMarker;
    if (m_mainIndex == qwtIndex) {
        m_mainIndex = -1;
        installScaleXDraw();
    }
    applyScale();
}

QDateTime QwtNOX::getStartDateTime(int qwtIndex) const
{
    const _dev *device = findDevice(qwtIndex);
    return device ? device->startDateTime : QDateTime();
}

void QwtNOX::setClock(std::function<QDateTime()> clock)
{
    m_clock = std::move(clock);
}

QPen QwtNOX::limitPen()
{
    return QPen(Qt::red, 2, Qt::DotLine);
}

void QwtNOX::setChCount(uchar count, int qwtIndex)
{
    qwtIndex = resolveIndex(qwtIndex);
    if (!m_devices.contains(qwtIndex) || count == 255)
        return;
    const int before = getChCount(qwtIndex);
    while (getChCount(qwtIndex) < count)
        appendChannel(qwtIndex);
    for (int ch = count - 1; ch >= before; --ch)
        emit onAddCh(qwtIndex, static_cast<uchar>(ch));
    while (getChCount(qwtIndex) > count)
        removeLastChannel(qwtIndex);
    const _dev *device = findDevice(qwtIndex);
    if (device && count > 0 && device->mainCh >= count)
        setChMain(0, qwtIndex);
    if (count == 0 && qwtIndex == m_mainIndex)
        restMouse();
    applyScale();
    emit onChange(qwtIndex);
}

void QwtNOX::appendChannel(int qwtIndex)
{
    _dev &device = *findDevice(qwtIndex);
    const bool shown = device.devShow && qwtIndex == m_mainIndex;
    const QColor color = defaultChannelColor(device.ch.size());
    const auto times = std::make_shared<TimeRuns>(); // those of values and of averages are the same
    _ch channel;
    channel.averCurve = new EnvelopeCurve(color, 2, times);
    channel.averCurve->setVisible(shown && device.averShow);
    channel.averCurve->attach(this);
    channel.measCurve = new EnvelopeCurve(color, 1, times);
    channel.measCurve->setVisible(shown && device.measShow);
    channel.measCurve->attach(this);
    device.ch.append(channel);
}

void QwtNOX::removeLastChannel(int qwtIndex)
{
    _dev &device = *findDevice(qwtIndex);
    const int removed = device.ch.size() - 1;
    delete device.ch.last().measCurve;
    delete device.ch.last().averCurve;
    device.ch.removeLast();

    // Whoever hears that a difference ended may change the records: all are found before.
    for (const auto &[index, ch] : referringTo(m_devices, qwtIndex, removed)) {
        const _ch *channel = findChannel(index, ch);
        if (channel && channel->diffQwtIndex == qwtIndex && channel->diffCh == removed)
            endDifference(index, ch);
    }
}

QwtNOX::_dev *QwtNOX::findDevice(int qwtIndex)
{
    const auto device = m_devices.find(resolveIndex(qwtIndex));
    return device == m_devices.end() ? nullptr : &*device;
}

const QwtNOX::_dev *QwtNOX::findDevice(int qwtIndex) const
{
    const auto device = m_devices.constFind(resolveIndex(qwtIndex));
    return device == m_devices.cend() ? nullptr : &*device;
}

QwtNOX::_ch *QwtNOX::findChannel(int qwtIndex, uchar ch)
{
    _dev *device = findDevice(qwtIndex);
    ch = resolveChannel(qwtIndex, ch);
    return device && ch < device->ch.size() ? &device->ch[ch] : nullptr;
}

const QwtNOX::_ch *QwtNOX::findChannel(int qwtIndex, uchar ch) const
{
    const _dev *device = findDevice(qwtIndex);
    ch = resolveChannel(qwtIndex, ch);
    return device && ch < device->ch.size() ? &device->ch[ch] : nullptr;
}

/** 255 is the main channel, and channel 0 when the stored main channel does not exist. */
uchar QwtNOX::resolveChannel(int qwtIndex, uchar ch) const
{
    const _dev *device = findDevice(qwtIndex);
    if (ch != mainChannel || !device)
        return ch;
    return device->mainCh < device->ch.size() ? device->mainCh : 0;
}

bool QwtNOX::isMainChannel(int qwtIndex, uchar ch) const
{
    return qwtIndex == m_mainIndex && ch == resolveChannel(qwtIndex, mainChannel);
}
