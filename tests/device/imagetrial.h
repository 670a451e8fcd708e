#pragma once

#include "device/optionsnox8.h"

class QRandomGenerator;

/**
 * Fills an image of a type with values drawn at random: every code that the blocks can carry, every
 * index within the list it selects from, numbers of any magnitude.
 */
void fillAtRandom(optionsNOX8 &image, quint32 type, QRandomGenerator &random);

/** What of an image differs from another, in words; empty when they are equal. Numbers are compared
 *  bit by bit. The identity's flags are not compared. */
QString differenceOf(const optionsNOX8 &one, const optionsNOX8 &other);
