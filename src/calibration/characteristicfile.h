#pragma once

#include "calibration/characteristictable.h"

class QIODevice;

/**
 * Characteristic files (*.dat): what the editor of characteristics shows, as text.
 *
 * They are in Windows-1251, one item a line: the code of the type, the description, then the
 * numbers, row by row; of a thermocouple table one pair a line. Lines end with CR LF; a reader
 * takes LF too.
 */
struct CharacteristicFile {
    int type = 0; ///< as FeatureRecord::_featureIndType
    QString description;
    CellTexts rows; ///< 2 x 5, 1 x 6, 2 x 5, 2 x 56
};

/** What a file gave. */
struct CharacteristicFileReading {
    bool accepted = false;
    /** The type that the editor turns to. The first line and the count of lines decide it, so that
     *  it is there for some files that are not accepted. */
    std::optional<int> selectedType;
    CharacteristicFile file; ///< empty unless accepted
};

/** Writes cells as numbers; what is no number, and a cell that is missing, as 0. False when the
 *  type is none of the four or the device did not take everything. */
bool writeCharacteristicFile(const CharacteristicFile &file, QIODevice &device);

/** Reads to the end of the device, but never much more than 1 MiB, which is refused. So is what a
 *  device gave before it failed. */
CharacteristicFileReading readCharacteristicFile(QIODevice &device);

/** Writes a file that takes the place of an existing one only when all of it is on the disk. */
bool saveCharacteristicFile(const CharacteristicFile &file, const QString &fileName);

/** Reads a file; what is no file, or cannot be opened, is not accepted. */
CharacteristicFileReading loadCharacteristicFile(const QString &fileName);
