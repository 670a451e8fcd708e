#pragma once

#include <QString>

/**
 * How the settings call the cold-junction compensation by one channel (code 1): by the channel that
 * carries the sensor. That is the model's last one, or the one before when the short circuit (code
 * 0) occupies the last; models without a short circuit have it in channel 7.
 */
QString compensatingChannelText(quint32 typeCode, quint8 shortCircuitCode);
