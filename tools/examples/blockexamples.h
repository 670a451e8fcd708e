#pragma once

#include <QStringList>

/** Blocks of the example image as annotated lines, one function for each. */

QStringList configurationExample();
QStringList channelRecordExample();
QStringList channelBlockExample();
QStringList referenceDataExample();
QStringList dateTimeExample();
QStringList zeroShiftsExample();
/** Of a NOX B, as it is read and written. */
QStringList identificationExample();
QStringList extendedIdentificationReadExample();
QStringList extendedIdentificationWrittenExample();
QStringList serialNumberExample();
QStringList loggerExample();
