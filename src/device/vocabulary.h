#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

struct ReferenceData;

/** What the program knows of one model of the family. */
struct InstrumentModel {
    quint32 typeCode;     ///< the code in its identification
    const char *name;     ///< translated in the context optionsNOX8
    quint32 baseTypeCode; ///< the model it is shown as where revisions do not matter
    bool extended;        ///< has a name of its own, a serial-number block and zero shifts
    quint8 channels;      ///< 0, 8 or 16
    quint8 resistors;     ///< reference resistors, 0 to 4
    quint8 familyCode;    ///< byte in blocks, and the command byte of its transfers
    bool hasShortCircuit; ///< "Закоротка" can be changed, and compensation can be for all channels
    const char *const *currents;      ///< excitation currents, ended by null
    const char *const *resistorNames; ///< reference resistors as a channel chooses them, likewise
};

/** A value of a setting and the text under which the user chooses it. */
struct SettingChoice {
    quint8 code;
    QString text;
};
using SettingChoices = QVector<SettingChoice>;

/** The models of the family by type code, without the row of code 0. */
QVector<const InstrumentModel *> instrumentModels();

/** The model of a type code; null when the code is not in the table. Code 0 is a row of it. */
const InstrumentModel *findModel(quint32 typeCode);

/** The model of a type code; that of code 0, which has nothing, when the code is not in the table.
 */
const InstrumentModel &modelOrNone(quint32 typeCode);

/** The model of a name as modelName() gives it, the first in the order of the codes; null if none.
 */
const InstrumentModel *findModelNamed(const QString &name);

/** The type code that reference data tell, as far as they can: 0x01, 0x11, 0x31, or 0. */
quint32 typeCodeFromReferenceData(const ReferenceData &data);

/** The base models that reference data cannot tell from each other, this one's included; empty when
 *  they can. */
QVector<quint32> modelsWithSameReferenceData(quint32 typeCode);

/** The name of a model as the user reads it. */
QString modelName(const InstrumentModel &model);

/** Type code to model name; extended models only when `withRev`. */
QMap<quint32, QString> typeNames(bool withRev);

/** Excitation currents in the order of their indices; empty for an unknown type. */
QStringList excitationCurrents(quint32 typeCode);

/** Reference resistors in the order of their indices; empty for an unknown type. */
QStringList resistorChoices(quint32 typeCode);

/** The unit text of a letter of the measurement stream; "-" for an unknown one. */
QString streamUnit(char letter);

/** The unit text of a measurement type code (0x00, 0x10, 0x20); "-" for any other. */
QString measurementUnit(int measurementType);

/** Standard characteristics of resistance thermometers, 13 names in the order of their indices. */
QStringList standardResistanceThermometers();

/** Standard characteristics of thermocouples, 13 names in the order of their indices. */
QStringList standardThermocouples();

/** Measurement times in seconds, codes 0 to 8. */
SettingChoices measurementTimeChoices();

/** Rounding of temperatures in °C; codes are high nibbles. */
SettingChoices roundingChoices();

/** Measurement modes; the texts are resource paths of their icons. */
SettingChoices measurementModeChoices();

/** Cold-junction compensation as the model offers it. The channel whose sensor compensates is the
 *  model's last one, or the one before when the short circuit (code 0) occupies the last. */
SettingChoices compensationChoices(quint32 typeCode, quint8 shortCircuitCode);

/** Channel reversal; codes are high nibbles. */
SettingChoices reversalChoices();

/** The setting "Закоротка". */
SettingChoices shortCircuitChoices();
