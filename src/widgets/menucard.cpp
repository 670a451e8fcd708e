#include "widgets/menucard.h"

#include "widgets/accessiblerole.h"
#include "widgets/wheelguard.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QWidgetAction>

MenuCard::MenuCard(QMenu *menu)
    : QFrame(menu)
    , m_menu(menu)
{
}

void MenuCard::place()
{
    auto *const entry = new QWidgetAction(m_menu);
    entry->setDefaultWidget(this);
    m_menu->addAction(entry);
    setAccessibleRole(m_menu, QAccessible::Dialog); // a menu would tell of no control in it
    guardFromWheel(this);
    connect(m_menu, &QMenu::aboutToShow, this, [this] { setFocus(); });
}

void MenuCard::showTitle(QLabel *label, const QString &text)
{
    label->setText(text);
    for (QWidget *widget : {static_cast<QWidget *>(this), static_cast<QWidget *>(m_menu)})
        widget->setAccessibleName(text);
}

bool MenuCard::takesFocus(const QWidget *widget) const
{
    const bool isStop = (widget->focusPolicy() & Qt::TabFocus) && !widget->focusProxy();
    return isStop && isAncestorOf(widget) && widget->isVisible() && widget->isEnabled();
}

/** Goes along the chain of the focus, which is the whole window's, to the next control. */
bool MenuCard::focusNextPrevChild(bool next)
{
    QWidget *const current = focusWidget() ? focusWidget() : this;
    QWidget *candidate = current;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
    } while (candidate != current && !takesFocus(candidate));
    candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

/** What no control has taken; the menu gets Escape alone, or it would take the card for an entry.
 */
void MenuCard::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        return event->ignore();
    case Qt::Key_Down:
    case Qt::Key_Up:
        focusNextPrevChild(event->key() == Qt::Key_Down);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (auto *const button = qobject_cast<QAbstractButton *>(focusWidget()))
            if (!event->isAutoRepeat())
                button->click();
        break;
    default:
        break;
    }
}

void MenuCard::mousePressEvent(QMouseEvent *event)
{
    event->accept(); // the menu would take it for a choice, and close
}

void MenuCard::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}
