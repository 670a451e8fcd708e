#pragma once

#include <QString>

#include <memory>

struct InstrumentModel;
class optionsNOX8;

/** What distinguishes one simulated instrument's memory from another's. */
struct InstrumentIdentity {
    QString modelName = QStringLiteral("NOX B"); ///< an unknown name stands for a "NOX B"
    quint16 serialNumber = 1234;
    QString name;                      ///< own name, extended models only; 16 characters are kept
    int loggerMarks = 40;              ///< time marks in the recorded log; 0: nothing recorded
    bool answersIdentification = true; ///< false: an older instrument without address 51
};

/** The model with this name (upper or lower case), or null. */
const InstrumentModel *findPlayableModel(const QString &name);
/** The model that an identity names. */
const InstrumentModel &modelOf(const InstrumentIdentity &identity);

/**
 * The image with which an instrument leaves the factory.
 *
 * Every channel is on and measures a temperature with 1 mA and the resistor for a sensor of 100 Ω,
 * after a characteristic of its own: a platinum thermometer by Callendar and Van Dusen from -100 to
 * 450 °C; on the last channel but one a standard thermometer by ITS-90; on the last a thermocouple
 * of type S by its table. Extended models have zero shifts. The clock stands at the moment when the
 * reference data were written, 12:00:00, 15.03.2021.
 */
std::unique_ptr<optionsNOX8> factoryImage(const InstrumentIdentity &identity);
