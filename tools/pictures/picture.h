#pragma once

#include <QString>

class QWidget;

/** Saves a picture of a widget with the dialogs and menus that it has opened; false, with a
 *  message, when that fails. */
bool savePicture(QWidget *seen, const QString &fileName);
