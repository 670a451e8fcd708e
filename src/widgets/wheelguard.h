#pragma once

class QWidget;

/**
 * Keeps the mouse wheel from changing the lists of a window that only lie under the mouse: a list
 * turns when it has the keyboard focus, and no other does.
 */
void guardFromWheel(QWidget *window);
