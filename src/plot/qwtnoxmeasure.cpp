#include "plot/intervalstatistics.h"
#include "plot/measurementframe.h"
#include "plot/numbertext.h"
#include "plot/plotmeasurement.h"
#include "plot/pointframe.h"
#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"
#include "plot/timetext.h"

#include <QClipboard>
#include <QGuiApplication>

// Measuring between two points of the plot, and reading single ones.

namespace
{

QString noStatistics()
{
    return QStringLiteral("--");
}

} // namespace

void QwtNOX::startMeasurement(const QPointF &point)
{
    if (!findChannel(m_mainIndex, 255))
        return;
    setChMode(ModeMeasure);
    if (getChMode() != ModeMeasure)
        return; // whoever heard of it has taken the instrument away or chosen another mode
    m_measurement->start(point);
    addMeasPointFirst(point, m_measurement->placeOf(point));
    m_frameClock.request();
}

void QwtNOX::setMeasPoint(const QPointF &p)
{
    if (!findChannel(m_mainIndex, 255))
        return;
    m_measurement->add(p);
    m_frameClock.request();
    if (!m_measurement->markers().hasSecond())
        return addMeasPointFirst(p, m_measurement->placeOf(p));
    m_measurement->showInterval(p, measurementTexts());
    if (getChMode() != ModeMeasure)
        setChMode(ModeMeasure);
}

void QwtNOX::addMeasPointFirst(const QPointF &p, QPoint pos)
{
    m_measurement->showPoint(p, pos, timeText(timeFormat(), p.x()), valueText(p.y()));
}

MeasurementTexts QwtNOX::measurementTexts() const
{
    const QPointF first = m_measurement->markers().first();
    const QPointF second = m_measurement->markers().second();
    const TimeSpanTexts times = timeSpanTexts(timeFormat(), first.x(), second.x());
    const _ch &channel = *findChannel(m_mainIndex, 255);
    const bool diff = channel.hasDifference();
    const IntervalStatistics statistics =
        intervalStatistics(diff ? channel.diffTime : channel.time,
                           diff ? channel.diffMeas : channel.meas, first.x(), second.x());

    MeasurementTexts texts;
    texts.x1 = times.first;
    texts.x2 = times.second;
    texts.deltaX = times.between;
    texts.y1 = valueText(first.y());
    texts.y2 = valueText(second.y());
    texts.deltaY = valueText(second.y() - first.y());
    texts.count = QString::number(statistics.count);
    texts.mean = statistics.count > 0 ? valueText(statistics.mean) : noStatistics();
    texts.deviation = statistics.count > 1
                          ? QString::number(statistics.deviation, 'f', getPrecision() + 2)
                          : noStatistics();
    return texts;
}

/** Writes what is shown anew, in place: times may be written otherwise now. */
void QwtNOX::rewriteMeasurement()
{
    const PointFrame *point = m_measurement->pointFrame();
    if (!point->isHidden())
        addMeasPointFirst(point->anchor(), m_measurement->placeOf(point->anchor()));
    const MeasurementFrame *interval = m_measurement->measurementFrame();
    if (!interval->isHidden())
        m_measurement->showInterval(interval->anchor(), measurementTexts());
}

void QwtNOX::resetMeasurement()
{
    m_measurement->reset();
    m_frameClock.request();
}

void QwtNOX::copyToClipboard()
{
    auto *label = qobject_cast<QwtLabelClick *>(sender());
    if (!label)
        return;
    QGuiApplication::clipboard()->setText(label->text());
    label->setStyleSheet(QStringLiteral("color: blue"));
}

QString QwtNOX::pointText(const QPointF &point) const
{
    return timeText(timeFormat(), point.x()) + QStringLiteral(", ") + valueText(point.y());
}

/** One decimal more than the axis: between two ticks there is something to read. */
QString QwtNOX::valueText(double value) const
{
    return numberText(value, getPrecision() + 1);
}

TimeFormat QwtNOX::timeFormat() const
{
    return {getChModeX(), getStartDateTime(), now().date(), axisStepSize(xBottom)};
}
