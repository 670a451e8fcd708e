#pragma once

#include "device/bfloat.h"

#include <QStringList>

#include <array>

/** A calibration characteristic ("градуировка"): how a raw measurement becomes a temperature. */
struct FeatureRecord {
    enum _featureIndType : qint8 {
        polynomial = 0,          ///< T = Σ Ck·R^k, C0 to C9
        callendarVanDusen = 1,   ///< R0, A, B, C, Tmin, Tmax; `ratio` holds the fitted polynomial
        its90 = 2,               ///< nine values of the ITS-90 form
        temperatureOfVoltage = 3 ///< a table of 56 pairs
    };
    static constexpr int ratioCount = 112;

    _featureIndType type = its90;
    QString name;                         ///< of it 39 characters are stored
    std::array<bFloat, ratioCount> ratio; ///< the numbers that the instrument uses
    QStringList ratioStr; ///< the numbers as entered; 19 characters of each are stored
};

constexpr int featureRecordSize = 492;

/** The record of 492 bytes. A type that is none of the four is stored as it is. */
QByteArray encodeFeature(const FeatureRecord &feature);

/**
 * Reads a record; false, and nothing read, unless it has 492 bytes. Numbers that the record does
 * not hold stay: all but the first ten, unless it is a table.
 *
 * The texts of a table are made from its pairs: the first, and each whose first number is greater
 * than that of the pair before it in the record.
 */
bool decodeFeature(const QByteArray &record, FeatureRecord &feature);
