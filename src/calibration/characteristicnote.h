#pragma once

#include "calibration/characteristictable.h"

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
