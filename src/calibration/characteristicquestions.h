#pragma once

#include "widgets/userdialogs.h"

class noxSql;

// What the editor of characteristics asks and tells.

/** Asks for a characteristic file to be read. */
FileQuestion characteristicToLoad();
/** Asks for one to be written, named after the description of the characteristic. */
FileQuestion characteristicToSave(const QString &description);

/**
 * The file that the operator chooses; empty when he chooses none. The dialog begins in the folder
 * from which he took the last one, which the database (may be null) remembers.
 */
QString chooseCharacteristic(QWidget *parent, noxSql *database, FileQuestion question);

/** Asks whether a stored characteristic is to be removed; `title` is that of the dialog. */
Message removalQuestion(const QString &title);

/** That what was entered is no characteristic. */
Message rejectedEntry();
/** That a file could not be read. */
Message unreadableCharacteristic();
/** That a file could not be written. */
Message unwritableCharacteristic();
