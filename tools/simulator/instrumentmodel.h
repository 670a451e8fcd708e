#pragma once

#include <QString>
#include <QVector>

/** One model of the instrument family, as its own firmware knows itself. */
struct InstrumentModel {
    QString name;             ///< name on the front panel, for example "NOX CM1 rev.4"
    quint32 typeCode;         ///< 0x01 to 0x41, or a 32-bit code with 0xAA0F in its low half
    quint8 familyCode;        ///< 0 to 4, the code in the configuration and identification blocks
    int channelCount;         ///< 8 or 16
    quint8 currentCode;       ///< index of the 1 mA excitation current
    quint8 resistCode;        ///< index of the reference resistor used with a 100 Ω sensor
    float refVoltage;         ///< nominal reference voltage, mV
    QVector<float> resistors; ///< nominal values of the reference resistors R1 to R4, Ω

    /** True for revision 4: a name, a serial-number block and zero shifts. */
    bool isExtended() const { return (typeCode & 0xFFFF) == 0xAA0F; }
    /** True for the models whose "short-circuit" setting is fixed at 0. */
    bool isBasic() const { return typeCode <= 0x21; }
    /** Size of the configuration block: 3976 or 7944 bytes. */
    int configurationSize() const { return 8 + channelCount * (4 + 492); }
};

/** The nine models in the order of their type codes. */
const QVector<InstrumentModel> &instrumentModels();

/** The model with this name (upper or lower case), or null. */
const InstrumentModel *findInstrumentModel(const QString &name);
