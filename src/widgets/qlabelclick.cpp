#include "widgets/qlabelclick.h"

#include <QFontMetrics>
#include <QKeyEvent>

void QLabelClick::mousePressEvent(QMouseEvent *event)
{
    QLabel::mousePressEvent(event);
    emit clicked();
}

void QLabelClick::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
        return QLabel::keyPressEvent(event);
    if (!event->isAutoRepeat())
        emit clicked();
}

FittedLabel::FittedLabel(int smallestPoints, int largestPoints, QWidget *parent)
    : QLabelClick(parent)
    , m_smallestPoints(smallestPoints)
    , m_largestPoints(largestPoints)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void FittedLabel::showText(const QString &text)
{
    if (text == this->text())
        return;
    setText(text);
    fit();
}

QSize FittedLabel::minimumSizeHint() const
{
    return {0, QFontMetrics(fontOf(m_largestPoints)).height()};
}

void FittedLabel::resizeEvent(QResizeEvent *event)
{
    QLabelClick::resizeEvent(event);
    fit();
}

QFont FittedLabel::fontOf(int points) const
{
    QFont sized = font();
    sized.setPointSize(points);
    return sized;
}

void FittedLabel::fit()
{
    const int needed = QFontMetrics(fontOf(m_largestPoints)).horizontalAdvance(text());
    const int available = contentsRect().width();
    int points = m_largestPoints;
    if (needed > available && needed > 0)
        points = qMax(m_smallestPoints, m_largestPoints * available / needed);
    if (points != font().pointSize())
        setFont(fontOf(points));
}
