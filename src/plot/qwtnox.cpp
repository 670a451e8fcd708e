#include "plot/qwtnox.h"

#include "plot/envelopecurve.h"
#include "plot/plotaxes.h"
#include "plot/plotcanvas.h"
#include "plot/plotinteraction.h"
#include "plot/plotitems.h"
#include "plot/plotsettings.h"
#include "plot/plottexts.h"
#include "plot/qwtlabelclick.h"

#include <QClipboard>
#include <QGuiApplication>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>

namespace
{

void addGrid(QwtPlot *plot)
{
    auto *grid = new QwtPlotGrid;
    grid->setMajorPen(Qt::darkGray, 0, Qt::DotLine);
    grid->attach(plot);
}

} // namespace

QwtNOX::QwtNOX(QWidget *parent)
    : QwtPlot(parent)
    , m_canvas(new PlotCanvas(this))
{
    setCanvas(m_canvas);
    // A canvas with a style sheet of its own takes its background from style sheets alone.
    setStyleSheet(QStringLiteral("QwtPlotCanvas { background: white }"));
    canvas()->setStyleSheet(QStringLiteral("border: 0"));
    plotLayout()->setCanvasMargin(0);
    plotLayout()->setSpacing(0);
    plotLayout()->setAlignCanvasToScales(true);
    addGrid(this);
    setAutoReplot(false); // painting waits for the next frame
    connect(&m_frameClock, &FrameClock::frame, this, &QwtNOX::showFrame);

    m_axes = std::make_unique<PlotAxes>(this, m_records);
    m_interaction = std::make_unique<PlotInteraction>(this, m_records, *m_axes);
    m_settings = std::make_unique<PlotSettings>(m_records, *m_axes, *m_interaction, m_frameClock);
    passSignalsOn();
}

void QwtNOX::passSignalsOn()
{
    connect(m_interaction.get(), &PlotInteraction::viewChosen, this,
            [this] { emit onChange(getDevMain()); });
    const auto pass = [this](auto signal, auto own) {
        connect(m_settings.get(), signal, this, own);
    };
    pass(&PlotSettings::changed, &QwtNOX::onChange);
    pass(&PlotSettings::mainDeviceChanged, &QwtNOX::onDevChange);
    pass(&PlotSettings::mainChannelChanged, &QwtNOX::onChMainChange);
    pass(&PlotSettings::channelShownChanged, &QwtNOX::onChShowChange);
    pass(&PlotSettings::valuesShownChanged, &QwtNOX::onMeasShowChange);
    pass(&PlotSettings::averagesShownChanged, &QwtNOX::onAverShowChange);
    pass(&PlotSettings::colorChanged, &QwtNOX::onChColorChange);
    pass(&PlotSettings::trackingModeChanged, &QwtNOX::onModeTrackChange);
    pass(&PlotSettings::modeChanged, &QwtNOX::onChModeChange);
    pass(&PlotSettings::modeXChanged, &QwtNOX::onChModeXChange);
    pass(&PlotSettings::scaleXChanged, &QwtNOX::onChScaleXChange);
    pass(&PlotSettings::scaleYChanged, &QwtNOX::onChScaleYChange);
}

QwtNOX::~QwtNOX() = default;

void QwtNOX::addDev(int qwtIndex, uchar fixedChCount)
{
    if (qwtIndex < 0 || devices().contains(qwtIndex))
        return;
    _dev device;
    device.fixedChCount = fixedChCount;
    device.startDateTime = devices().isEmpty() ? now() : devices().first().startDateTime;
    addLimitLines(device, this);
    devices().insert(qwtIndex, device);
    m_interaction->hideFrames();
    setChCount(fixedChCount, qwtIndex);
}

void QwtNOX::removeDev(int qwtIndex)
{
    if (!devices().contains(qwtIndex))
        return;
    endDifferencesAgainst(qwtIndex, devices());
    setChCount(0, qwtIndex);
    while (getChCount(qwtIndex) > 0) // a receiver has added a point
        removeLastChannel(qwtIndex);
    removeLimitLines(devices()[qwtIndex]);
    devices().remove(qwtIndex);
    if (getDevMain() == qwtIndex) {
        m_records.setMainIndex(noInstrument);
        m_axes->labelTimes();
    }
    applyScale();
}

void QwtNOX::setDevMain(int qwtIndex)
{
    m_settings->setMainDevice(qwtIndex);
}

void QwtNOX::setChCount(uchar count, int qwtIndex)
{
    qwtIndex = m_records.resolve(qwtIndex);
    if (!devices().contains(qwtIndex) || count == mainChannel)
        return;
    const int before = getChCount(qwtIndex);
    while (getChCount(qwtIndex) < count)
        appendChannel(devices()[qwtIndex], qwtIndex == getDevMain(), this);
    for (int ch = count - 1; ch >= before; --ch)
        emit onAddCh(qwtIndex, static_cast<uchar>(ch));
    while (getChCount(qwtIndex) > count)
        removeLastChannel(qwtIndex);
    const _dev *device = m_records.findDevice(qwtIndex);
    if (device && count > 0 && device->mainCh >= count)
        setChMain(0, qwtIndex);
    if (count == 0 && qwtIndex == getDevMain())
        m_interaction->reset();
    applyScale();
    emit onChange(qwtIndex);
}

void QwtNOX::removeLastChannel(int qwtIndex)
{
    _dev &device = devices()[qwtIndex];
    ::removeLastChannel(device);

    // Whoever hears that a difference ended may change the records: all are found before.
    const auto removed = static_cast<uchar>(device.ch.size());
    for (const ChannelNumber &number : m_records.differencesAgainst(qwtIndex, removed)) {
        const _ch *channel = m_records.findChannel(number.qwtIndex, number.ch);
        if (channel && channel->diffQwtIndex == qwtIndex && channel->diffCh == removed)
            endDifference(number);
    }
}

bool QwtNOX::ensureChannel(int qwtIndex, uchar ch)
{
    const _dev *device = m_records.findDevice(qwtIndex);
    if (!device || ch == mainChannel)
        return false;
    if (ch >= device->ch.size() && device->fixedChCount == 0)
        setChCount(static_cast<uchar>(ch + 1), qwtIndex);
    return ch < getChCount(qwtIndex);
}

void QwtNOX::setChMain(uchar ch, int qwtIndex)
{
    m_settings->setMainChannel(ch, qwtIndex);
}

bool QwtNOX::addPoint(double val, const QString &dim, int qwtIndex, uchar ch)
{
    const _dev *device = m_records.findDevice(qwtIndex);
    if (!device)
        return false;
    const qint64 moment =
        m_clock ? m_clock().toMSecsSinceEpoch() : QDateTime::currentMSecsSinceEpoch();
    return addPoint(val, device->secondsTo(moment), dim, qwtIndex, ch);
}

bool QwtNOX::addPoint(double val, double time, const QString &dim, int qwtIndex, uchar ch)
{
    qwtIndex = m_records.resolve(qwtIndex);
    if (!ensureChannel(qwtIndex, ch))
        return false;
    _ch &channel = *m_records.findChannel(qwtIndex, ch);
    if (!m_records.storePoint(channel, val, time, dim)) {
        emit onErrorAddPoint(qwtIndex, ch);
        return false;
    }
    const bool isContinued = showSeries(channel);
    if (m_records.isMain({qwtIndex, ch}))
        m_axes->followPoints();
    m_frameClock.request(isContinued ? FrameExtent::NewPoints : FrameExtent::WholePlot);

    // Whoever hears of the point may change the records: nothing found before holds after this.
    emit onAddPoint(qwtIndex, ch);
    if (m_records.device(qwtIndex).isBeyondLimit(m_records.channel(qwtIndex, ch)))
        emit onPointTrackOff(qwtIndex, ch);
    return true;
}

int QwtNOX::addPoints(int qwtIndex, const QVector<PlotPoint> &points, const QVector<QString> &units)
{
    qwtIndex = m_records.resolve(qwtIndex);
    const auto ensure = [=](uchar ch) { return ensureChannel(qwtIndex, ch); };
    const PointBatch batch = m_records.storePoints(qwtIndex, points, units, ensure);
    if (devices().contains(qwtIndex))
        announce(qwtIndex, batch);
    return batch.accepted();
}

/** Shows what points have changed, and tells of it in the order of the channels' last points. */
void QwtNOX::announce(int qwtIndex, const PointBatch &batch)
{
    const QVector<uchar> channels = batch.channels();
    bool hasMain = false;
    bool isContinued = true;
    for (const uchar ch : channels) {
        // a receiver of a new channel may have removed this one
        if (_ch *const channel = m_records.findChannel(qwtIndex, ch))
            isContinued = showSeries(*channel) && isContinued;
        hasMain = hasMain || m_records.isMain({qwtIndex, ch});
    }
    if (hasMain)
        m_axes->followPoints();
    m_frameClock.request(isContinued ? FrameExtent::NewPoints : FrameExtent::WholePlot);

    for (const uchar ch : channels)
        for (const PointBatch::Event event : batch.eventsOf(ch))
            announce(event, qwtIndex, ch);
}

void QwtNOX::announce(PointBatch::Event event, int qwtIndex, uchar ch)
{
    switch (event) {
    case PointBatch::Event::Accepted:
        return emit onAddPoint(qwtIndex, ch);
    case PointBatch::Event::Rejected:
        return emit onErrorAddPoint(qwtIndex, ch);
    case PointBatch::Event::BeyondLimit:
        return emit onPointTrackOff(qwtIndex, ch);
    }
}

void QwtNOX::showFrame(FrameExtent extent)
{
    if (extent == FrameExtent::Texts)
        return;
    if (window()->isMinimized())
        return m_canvas->replot(); // paints when it is seen again
    m_axes->labelNewDay();
    const ValueRange newTimes = takeNewTimes(devices());
    if (extent == FrameExtent::WholePlot) {
        replot();
        m_canvas->bringUpToDate();
    } else if (!newTimes.isEmpty()) {
        m_canvas->repaintStretch(newTimes.min, newTimes.max);
    }
}

void QwtNOX::clear(int qwtIndex)
{
    _dev *device = m_records.findDevice(qwtIndex);
    if (!device)
        return;
    for (_ch &channel : device->ch) {
        channel.clearPoints();
        showSeries(channel);
    }
    applyScale();
}

void QwtNOX::prepareMeas(int qwtIndex, const QDateTime &start)
{
    qwtIndex = m_records.resolve(qwtIndex);
    _dev *device = m_records.findDevice(qwtIndex);
    if (!device)
        return;
    clear(qwtIndex);
    device->startDateTime = start;
    m_axes->labelTimes();
    emit onChange(qwtIndex);
    applyScale();
}

void QwtNOX::setChDiff(uchar diffCh, int diffQwtIndex, int qwtIndex, uchar ch)
{
    const ChannelNumber number = m_records.resolve(qwtIndex, ch);
    _ch *channel = m_records.findChannel(number.qwtIndex, number.ch);
    if (!channel)
        return;
    if (diffCh == noChannel && diffQwtIndex == noInstrument)
        return endDifference(number);
    const auto reference = std::as_const(*this).devices().constFind(diffQwtIndex);
    if (reference != devices().cend() && diffCh < reference->ch.size()) {
        channel->startDifference(reference->ch.at(diffCh), diffQwtIndex, diffCh);
        showSeries(*channel);
    }
    setChMode(ModeFollow, number.qwtIndex, number.ch);
}

void QwtNOX::endDifference(const ChannelNumber &number)
{
    _ch &channel = *m_records.findChannel(number.qwtIndex, number.ch);
    channel.endDifference();
    showSeries(channel);
    setChMode(ModeFollow, number.qwtIndex, number.ch);
}

void QwtNOX::setDevShow(bool show, int qwtIndex)
{
    m_settings->setDeviceShown(show, qwtIndex);
}

void QwtNOX::setChShow(bool show, int qwtIndex, uchar ch)
{
    m_settings->setChannelShown(show, qwtIndex, ch);
}

void QwtNOX::setMeasShow(bool show, int qwtIndex)
{
    m_settings->setValuesShown(show, qwtIndex);
}

void QwtNOX::setAverShow(bool show, int qwtIndex)
{
    m_settings->setAveragesShown(show, qwtIndex);
}

void QwtNOX::setChColor(const QColor &color, int qwtIndex, uchar ch)
{
    m_settings->setColor(color, qwtIndex, ch);
}

QColor QwtNOX::getChColor(int qwtIndex, uchar ch) const
{
    const _ch *channel = m_records.findChannel(qwtIndex, ch);
    return channel ? channel->measCurve->pen().color() : QColor(Qt::white);
}

void QwtNOX::setModeTrack(TmcTrackingMode mode, int qwtIndex)
{
    m_settings->setTrackingMode(mode, qwtIndex);
}

void QwtNOX::calcPrecision(uchar scaleY, int qwtIndex, uchar ch)
{
    m_settings->setPrecisionFor(scaleY, qwtIndex, ch);
}

void QwtNOX::setChMode(TmcMode mode, int qwtIndex, uchar ch)
{
    m_settings->setMode(mode, qwtIndex, ch);
}

void QwtNOX::setChModeX(TmcModeX mode, int qwtIndex, uchar ch)
{
    m_settings->setModeX(mode, qwtIndex, ch);
}

void QwtNOX::setChScaleX(uchar scale, int qwtIndex, uchar ch)
{
    m_settings->setScaleX(scale, qwtIndex, ch);
}

void QwtNOX::setChScaleY(uchar scale, int qwtIndex, uchar ch)
{
    m_settings->setScaleY(scale, qwtIndex, ch);
}

QString QwtNOX::getScaleXLabel() const
{
    return m_records.findDevice(mainInstrument) ? m_axes->stepLabel(xBottom) : QStringLiteral("-");
}

QString QwtNOX::getScaleYLabel() const
{
    return m_records.findDevice(mainInstrument) ? m_axes->stepLabel(yLeft) : QStringLiteral("-");
}

QString QwtNOX::getChModeLabel() const
{
    return m_records.findDevice(mainInstrument) ? modeText(getChMode()) : QStringLiteral("-");
}

QString QwtNOX::getChModeXLabel() const
{
    return m_records.findDevice(mainInstrument) ? modeXText(getChModeX()) : QStringLiteral("-");
}

void QwtNOX::setDivX(uchar divisions)
{
    m_axes->setDivisions(xBottom, divisions);
}

void QwtNOX::setDivY(uchar divisions)
{
    m_axes->setDivisions(yLeft, divisions);
}

void QwtNOX::applyScale()
{
    m_settings->rescale();
}

void QwtNOX::updLabelScale()
{
    m_axes->refreshLabels();
}

void QwtNOX::addMeasPointFirst(const QPointF &p, QPoint pos)
{
    m_interaction->showFirstPoint(p, pos);
}

void QwtNOX::setMeasPoint(const QPointF &p)
{
    m_interaction->addPoint(p);
}

QString QwtNOX::pointText(const QPointF &point) const
{
    return m_interaction->pointText(point);
}

void QwtNOX::setZoomScale(const QRectF &rect)
{
    m_interaction->zoomTo(rect);
}

void QwtNOX::scrollCanvas(const QPointF &p)
{
    m_interaction->panTo(p);
}

void QwtNOX::copyToClipboard()
{
    auto *label = qobject_cast<QwtLabelClick *>(sender());
    if (!label)
        return;
    QGuiApplication::clipboard()->setText(label->text());
    label->setStyleSheet(QStringLiteral("color: blue"));
}

void QwtNOX::updateLayout()
{
    QwtPlot::updateLayout();
    if (m_interaction)
        m_interaction->followAxes();
}

void QwtNOX::mousePressEvent(QMouseEvent *event)
{
    m_interaction->mousePressed(event);
}

void QwtNOX::mouseMoveEvent(QMouseEvent *event)
{
    m_interaction->mouseMoved(event);
}

void QwtNOX::mouseReleaseEvent(QMouseEvent *event)
{
    m_interaction->mouseReleased(event);
}
