#include "widgets/accessiblerole.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace
{

/** The interface of a widget that keeps a role of its own; null of any other object. */
QAccessibleInterface *interfaceOf(const QString &, QObject *object)
{
    auto *const widget = qobject_cast<QWidget *>(object);
    const QVariant role = widget ? widget->property(accessibleRoleProperty) : QVariant();
    return role.isValid() ? new QAccessibleWidget(widget, QAccessible::Role(role.toInt()))
                          : nullptr;
}

} // namespace

void setAccessibleRole(QWidget *widget, QAccessible::Role role)
{
    widget->setProperty(accessibleRoleProperty, int(role));
}

void installAccessibleRoles()
{
    QAccessible::installFactory(interfaceOf);
}
