#pragma once

#include <QMap>
#include <QString>
#include <QVector>

/** What the program knows of one model of the family. */
struct InstrumentModel {
    quint32 typeCode;     ///< the code in its identification
    const char *name;     ///< translated in the context optionsNOX8
    quint32 baseTypeCode; ///< the model it is shown as where revisions do not matter
    bool extended;        ///< has a name of its own, a serial-number block and zero shifts
    quint8 channels;      ///< 0, 8 or 16
    quint8 resistors;     ///< reference resistors, 0 to 4
    quint8 familyCode;    ///< byte in blocks, and the command byte of its transfers
    quint16 dataSize;     ///< bytes of its configuration block
    bool hasShortCircuit; ///< the setting "Закоротка" can be changed
};

/** The model of a type code; null when the code is not in the table. Code 0 is a row of it. */
const InstrumentModel *findModel(quint32 typeCode);

/** The name of a model as the user reads it. */
QString modelName(const InstrumentModel &model);

/** Type code to model name; extended models only when `withRev`. */
QMap<quint32, QString> typeNames(bool withRev);

/** The unit text of a letter of the measurement stream; "-" for an unknown one. */
QString streamUnit(char letter);

/** The unit text of a measurement type code (0x00, 0x10, 0x20); "-" for any other. */
QString measurementUnit(int measurementType);
