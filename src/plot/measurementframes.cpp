#include "plot/measurementframes.h"

#include "plot/qwtlabelclick.h"

#include <QFormLayout>

namespace
{

constexpr int distance = 10; // pixels between the point and the frame

int placeBeside(int point, int frame, int canvas)
{
    return point > canvas / 2 ? point - (frame + distance) : point + distance;
}

} // namespace

QPoint placeBeside(const QPoint &point, const QSize &frame, const QSize &canvas)
{
    return {placeBeside(point.x(), frame.width(), canvas.width()),
            placeBeside(point.y(), frame.height(), canvas.height())};
}

ValueFrame::ValueFrame(QWidget *plot)
    : QFrame(plot)
    , m_layout(new QFormLayout(this))
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    m_layout->setContentsMargins(8, 6, 8, 6);
    m_layout->setHorizontalSpacing(10);
    m_layout->setVerticalSpacing(2);
    hide();
}

void ValueFrame::addValue(const QString &caption, const QString &name)
{
    auto *value = new QwtLabelClick;
    value->setObjectName(name);
    value->setAccessibleDescription(tr("Пробел копирует значение"));
    m_layout->addRow(caption, value);
    m_values.append(value);
    m_names.append(caption);
}

void ValueFrame::addStatistic(const QString &caption, const QString &name)
{
    addValue(caption, name);
    auto *label = static_cast<QLabel *>(m_layout->labelForField(m_values.last()));
    label->setText(QStringLiteral("<b>") + caption + QStringLiteral("</b>"));
}

void ValueFrame::addGap()
{
    m_layout->addRow(new QWidget);
}

void ValueFrame::setTexts(const QStringList &texts)
{
    for (int i = 0; i < m_values.size(); ++i) {
        m_values[i]->setText(texts.value(i));
        m_values[i]->setAccessibleName(m_names[i] + QLatin1Char(' ') + texts.value(i));
        m_values[i]->setStyleSheet(QString());
    }
    adjustSize();
}

PointFrame::PointFrame(QWidget *plot)
    : ValueFrame(plot)
{
    setObjectName(QStringLiteral("pointFrame"));
    addValue(tr("X:"), QStringLiteral("pointX"));
    addValue(tr("Y:"), QStringLiteral("pointY"));
}

void PointFrame::setTexts(const QString &x, const QString &y)
{
    ValueFrame::setTexts({x, y});
}

MeasurementFrame::MeasurementFrame(QWidget *plot)
    : ValueFrame(plot)
{
    setObjectName(QStringLiteral("measurementFrame"));
    addValue(tr("X1:"), QStringLiteral("measurementX1"));
    addValue(tr("Y1:"), QStringLiteral("measurementY1"));
    addValue(tr("X2:"), QStringLiteral("measurementX2"));
    addValue(tr("Y2:"), QStringLiteral("measurementY2"));
    addGap();
    addValue(tr("ΔX:"), QStringLiteral("measurementDeltaX"));
    addValue(tr("ΔY:"), QStringLiteral("measurementDeltaY"));
    addGap();
    addStatistic(tr("Среднее:"), QStringLiteral("measurementMean"));
    addStatistic(tr("СКО:"), QStringLiteral("measurementDeviation"));
    addStatistic(tr("Точек:"), QStringLiteral("measurementCount"));
}

void MeasurementFrame::setTexts(const MeasurementTexts &texts)
{
    ValueFrame::setTexts({texts.x1, texts.y1, texts.x2, texts.y2, texts.deltaX, texts.deltaY,
                          texts.mean, texts.deviation, texts.count});
}
