#pragma once

#include <QAccessible>

class QWidget;

/** Property under which a widget keeps the role that Qt does not know of it. */
constexpr char accessibleRoleProperty[] = "accessibleRole";

/** Tells assistive programs what a widget of ours is: a label that is pressed is a button. */
void setAccessibleRole(QWidget *widget, QAccessible::Role role);

/** Makes the roles known that widgets keep; once, before the first of them is made. */
void installAccessibleRoles();
