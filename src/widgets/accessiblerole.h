#pragma once

#include <QAccessible>

class QComboBox;
class QWidget;

/** Property under which a widget keeps the role that Qt does not know of it. */
constexpr char accessibleRoleProperty[] = "accessibleRole";

/** Tells assistive programs what a widget of ours is: a label that is pressed is a button. */
void setAccessibleRole(QWidget *widget, QAccessible::Role role);

/** Lets a list without a label be heard by its accessible name, by a label that is not seen: on
 * Unix Qt tells of such a list its choice alone. Once it has its parent. */
void sayName(QComboBox *list);

/** Makes the roles known that widgets keep; once, before the first of them is made. */
void installAccessibleRoles();
