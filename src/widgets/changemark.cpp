#include "widgets/changemark.h"

#include <QEvent>
#include <QPainter>

QColor accentColor()
{
    return {27, 116, 136};
}

void paintChange(QPainter *painter, const QRect &place)
{
    constexpr int legLength = 8;
    const QPoint corner = place.topLeft();
    const QPoint triangle[] = {corner, corner + QPoint(legLength, 0),
                               corner + QPoint(0, legLength)};
    painter->setPen(Qt::NoPen);
    painter->setBrush(accentColor());
    painter->drawPolygon(triangle, 3);
}

ChangeMark::ChangeMark(QWidget *field)
    : QWidget(field)
    , m_description(field->accessibleDescription())
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    field->installEventFilter(this);
    resize(field->size());
    hide();
}

void ChangeMark::setChanged(bool isChanged)
{
    setVisible(isChanged);
    parentWidget()->setAccessibleDescription(
        isChanged ? tr("Отличается от настройки прибора. ") + m_description : m_description);
}

bool ChangeMark::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        resize(parentWidget()->size());
    return QWidget::eventFilter(watched, event);
}

void ChangeMark::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintChange(&painter, rect());
}
