#pragma once

#include "simulator/instrumentmodel.h"

#include <QByteArray>

/**
 * The memory blocks with which an instrument leaves the factory.
 *
 * Floats are single precision, most significant byte first, throughout.
 */

/** 3976 or 7944 bytes: all channels on, temperature, each with a characteristic of its own. */
QByteArray factoryConfiguration(const InstrumentModel &model);
/** 72 bytes: T0, R1 to R4 and Uref as triples, and the date of the last writing. */
QByteArray factoryReferenceData(const InstrumentModel &model);
/** 148 bytes: 17 voltage, 16 channel and 4 resistance offsets. */
QByteArray factoryZeroShifts();
/** 8 bytes, or 24 for extended models; of `name` 16 characters of Windows-1251 are kept. */
QByteArray factoryIdentification(const InstrumentModel &model, quint16 serialNumber,
                                 const QString &name);
/** Records of 8 bytes: a start record, then `marks` time marks 10 s apart, each followed by one
 *  temperature of every channel; empty when `marks` is 0. */
QByteArray factoryLog(const InstrumentModel &model, int marks);
/** 492 bytes: a platinum sensor of 100 Ω as a polynomial of degree 9, distinct for each channel
 *  (0-based) by its name. */
QByteArray factoryCharacteristic(int channel);
