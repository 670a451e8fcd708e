#pragma once

#include <QPoint>

class QWidget;

/** Presses the left button at one place of a widget, in pixels, and releases it at another. */
void dragMouse(QWidget *target, const QPoint &from, const QPoint &to);

/** Clicks a place of a widget, in pixels, with the left button. */
void clickMouse(QWidget *target, const QPoint &place);
