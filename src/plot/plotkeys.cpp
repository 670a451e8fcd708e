#include "plot/plotkeys.h"

#include "plot/plotinteraction.h"
#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <qwt_widget_overlay.h>

/** Two lines across the canvas that meet where the keyboard points to. */
class KeyCross : public QwtWidgetOverlay
{
public:
    explicit KeyCross(QWidget *canvas)
        : QwtWidgetOverlay(canvas)
    {
        setObjectName(QStringLiteral("keyCross"));
        hide();
    }

    QPoint place() const { return m_place; }
    /** Moves to a place, or to the edge of the canvas nearest to it. */
    void moveTo(const QPoint &place)
    {
        const QSize size = parentWidget()->size();
        m_place = {qBound(0, place.x(), size.width() - 1), qBound(0, place.y(), size.height() - 1)};
        resize(size);
        updateOverlay();
    }

protected:
    void drawOverlay(QPainter *painter) const override
    {
        painter->setPen(keyboardColor());
        painter->drawLine(0, m_place.y(), width() - 1, m_place.y());
        painter->drawLine(m_place.x(), 0, m_place.x(), height() - 1);
    }
    QRegion maskHint() const override
    {
        return QRegion(0, m_place.y() - 1, width(), 3) + QRegion(m_place.x() - 1, 0, 3, height());
    }

private:
    QPoint m_place;
};

namespace
{

constexpr int waysAcross = 50; ///< presses of an arrow key that take the cross across the canvas

/** Where an arrow key points to, X to the right and Y downwards; null of another key. */
QPoint directionOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

} // namespace

PlotKeys::PlotKeys(QwtNOX *plot, PlotInteraction &interaction)
    : m_plot(plot)
    , m_interaction(interaction)
    , m_cross(new KeyCross(plot->canvas()))
{
    listenTo(plot->canvas());
}

void PlotKeys::listenTo(QWidget *widget)
{
    widget->installEventFilter(this);
}

bool PlotKeys::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        return press(static_cast<QKeyEvent *>(event));
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::FocusOut:
        if (watched == m_plot->canvas() && !m_isSending)
            takeCrossAway();
        return false;
    case QEvent::Resize:
        if (m_cross->isVisible()) // moving shows it
            m_cross->moveTo(m_cross->place());
        return false;
    default:
        return false;
    }
}

bool PlotKeys::press(const QKeyEvent *event)
{
    if (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier))
        return false; // of the desktop
    const QPoint direction = directionOf(event->key());
    if (!direction.isNull()) {
        pressArrow(direction, event->modifiers());
        return true;
    }
    if (event->modifiers() & Qt::ControlModifier)
        return false; // of whoever gives it a meaning
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: // the same key without Shift
        zoom(false);
        return true;
    case Qt::Key_Minus:
        zoom(true);
        return true;
    case Qt::Key_Home:
        if (m_plot->getChMode() != ModeAuto) // which follows already
            m_plot->setChMode(ModeFollow);
        return true;
    case Qt::Key_Escape:
        stepBack();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!m_plot->canvas()->hasFocus())
            return false; // a value beside a point is clicked itself
        if (!event->isAutoRepeat())
            click();
        return true;
    default:
        return false;
    }
}

void PlotKeys::pressArrow(const QPoint &direction, Qt::KeyboardModifiers modifiers)
{
    if (!modifiers.testFlag(Qt::ControlModifier)) {
        m_interaction.panBySteps(direction.x(), -direction.y());
        if (m_cross->isVisible())
            showCrossAt(m_cross->place()); // which is another point now
        return;
    }
    const QSize size = m_plot->canvas()->size();
    const bool isFine = modifiers.testFlag(Qt::ShiftModifier);
    moveCross({direction.x() * (isFine ? 1 : qMax(1, size.width() / waysAcross)),
               direction.y() * (isFine ? 1 : qMax(1, size.height() / waysAcross))});
}

/** Zooms around the cross, where there is one, or else around the mouse. */
void PlotKeys::zoom(bool coarser)
{
    if (m_cross->isVisible())
        showCrossAt(m_cross->place()); // the data may have moved below it
    const bool isPointed = m_cross->isVisible() || m_plot->canvas()->underMouse();
    m_interaction.zoom(coarser, isPointed ? m_interaction.cursor() : m_interaction.middleOfView());
    if (m_cross->isVisible())
        showCrossAt(m_interaction.placeOf(m_interaction.cursor()));
}

void PlotKeys::stepBack()
{
    m_plot->canvas()->setFocus(Qt::TabFocusReason); // the values beside a point may go
    if (m_interaction.isPullingRectangle())
        m_interaction.giveUpRectangle();
    else
        m_interaction.stepBack();
}

void PlotKeys::moveCross(const QPoint &way)
{
    QWidget *const canvas = m_plot->canvas();
    canvas->setFocus(
        Qt::TabFocusReason); // from a value beside a point: the cross goes when the canvas loses it
    if (m_cross->isVisible())
        return showCrossAt(m_cross->place() + way);
    showCrossAt(canvas->underMouse() ? canvas->mapFromGlobal(QCursor::pos())
                                     : canvas->rect().center());
}

void PlotKeys::showCrossAt(const QPoint &place)
{
    QWidget *const canvas = m_plot->canvas();
    if (!m_cross->isVisible())
        m_canvasName = canvas->accessibleName();
    m_cross->moveTo(place);
    m_cross->show();
    send(QEvent::MouseMove, Qt::NoButton);
    canvas->setAccessibleName(m_canvasName + QStringLiteral(": ") +
                              m_plot->pointText(m_interaction.cursor()));
}

void PlotKeys::takeCrossAway()
{
    if (!m_cross->isVisible())
        return;
    QWidget *const canvas = m_plot->canvas();
    m_interaction.giveUpRectangle();
    m_cross->hide();
    canvas->setAccessibleName(m_canvasName);
    if (canvas->underMouse())
        return;
    QEvent leave(QEvent::Leave); // nobody points to what is read out
    QCoreApplication::sendEvent(canvas, &leave);
}

/** Clicks where the cross is; a rectangle is pulled from one click to the next. */
void PlotKeys::click()
{
    if (!m_cross->isVisible())
        return moveCross({}); // so that it is seen where a click will be
    const bool isSecond = m_interaction.isPullingRectangle();
    if (!isSecond)
        send(QEvent::MouseButtonPress, Qt::LeftButton);
    if (isSecond || !m_interaction.isPullingRectangle())
        send(QEvent::MouseButtonRelease, Qt::LeftButton);
}

void PlotKeys::send(QEvent::Type type, Qt::MouseButton button)
{
    const QScopedValueRollback<bool> sending(m_isSending, true);
    QWidget *const canvas = m_plot->canvas();
    const QPoint place = m_cross->place();
    const bool isDown = type == QEvent::MouseButtonPress ||
                        (type == QEvent::MouseMove && m_interaction.isPullingRectangle());
    QMouseEvent event(type, place, canvas->mapTo(canvas->window(), place),
                      canvas->mapToGlobal(place), button, isDown ? Qt::LeftButton : Qt::NoButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(canvas, &event);
}
