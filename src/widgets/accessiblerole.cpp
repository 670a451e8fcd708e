#include "widgets/accessiblerole.h"

#include <QAccessibleWidget>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QVariant>
#include <QWidget>

namespace
{

/** A widget with a role of its own; one that is a button is pressed as by Space. */
class WidgetOfRole : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QStringList actionNames() const override
    {
        QStringList names = QAccessibleWidget::actionNames();
        if (isButton() && widget()->isEnabled())
            names.prepend(pressAction());
        return names;
    }
    void doAction(const QString &name) override
    {
        if (name != pressAction() || !actionNames().contains(name))
            return QAccessibleWidget::doAction(name);
        QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
        QCoreApplication::sendEvent(widget(), &press);
    }

private:
    bool isButton() const
    {
        return role() == QAccessible::Button || role() == QAccessible::ButtonMenu;
    }
};

/** The interface of a widget that keeps a role of its own; null of any other object. */
QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    auto *const widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget ? widget->property(accessibleRoleProperty) : QVariant();
    return role.isValid() ? new WidgetOfRole(widget, QAccessible::Role(role.toInt())) : nullptr;
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    widget->setProperty(accessibleRoleProperty, int(role));
}

void sayName(QComboBox *list)
{
    auto *const label = new QLabel(list->accessibleName(), list->parentWidget());
    label->hide();
    label->setBuddy(list);
    QObject::connect(list, &QObject::destroyed, label, &QObject::deleteLater);
}

void installAccessibleRoles()
{
    QAccessible::installFactory(interfaceOf);
}
