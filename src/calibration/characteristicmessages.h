#pragma once

#include "calibration/characteristictable.h"
#include "widgets/userdialogs.h"

class noxSql;

// What the editor of characteristics remarks, asks and tells.

/** A remark of the editor on what is entered. */
struct CharacteristicNote {
    QString text;
    bool isWarning = false;
};

/** The pairs of entered values that are not among those that were kept. */
QStringList droppedPairs(const QStringList &entered, const QStringList &kept);

/**
 * What there is to say of the working copy and of the cells: that they were not accepted, which
 * pairs were dropped, what will be cut or left out, where the EMF does not rise, and how far the
 * polynomial of a thermometer lies from it. Empty when there is nothing.
 */
CharacteristicNote noteOn(const FeatureRecord &copy, const CellTexts &cells,
                          const QStringList &dropped, bool isAccepted);

/** Asks for a characteristic file to be read. */
FileQuestion characteristicToLoad();
/** Asks for one to be written, named after the description of the characteristic. */
FileQuestion characteristicToSave(const QString &description);

/**
 * The file that the operator chooses; empty when he chooses none. The dialog begins in the folder
 * from which he took the last one, which the database (may be null) remembers.
 */
QString chooseCharacteristic(QWidget *parent, noxSql *database, FileQuestion question);

/** Asks whether something stored is to be removed; `title` is that of the dialog. */
Message removalQuestion(const QString &title);

/** That what was entered is no characteristic. */
Message rejectedEntry();
/** That a file could not be read. */
Message unreadableCharacteristic();
/** That a file could not be written. */
Message unwritableCharacteristic();
