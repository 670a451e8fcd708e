#pragma once

#include "device/bfloat.h"

#include <QObject>
#include <QStringList>
#include <QVector>

#include <array>
#include <memory>
#include <optional>

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

/** What became of a characteristic that was entered as text. */
enum class EntryResult {
    Stored,
    Rejected,   ///< a text is no number, or a table or thermometer makes no sense
    WrongCount, ///< not the number of values that the type has, or no such type
};

/**
 * Stores a characteristic from the texts of its values: 10 for a polynomial, 6 for Callendar and
 * Van Dusen, 9 for ITS-90, 4 to 112 for a table. Unless it is stored, `feature` does not change.
 *
 * An empty text means 0. A table is continued with its last pair. A pair of it whose first number
 * is below that of the pair before becomes 0 and loses its texts; if it is the second pair, the
 * table is rejected. Numbers that the instrument could not hold are rejected.
 */
EntryResult enterFeature(FeatureRecord &feature, FeatureRecord::_featureIndType type,
                         const QString &name, const QStringList &texts);

/** How far the stored polynomial lies from its thermometer at most, in mK (see largestDeviation()).
 *  Nothing for another type, and where the texts are no thermometer with a range. */
std::optional<double> fitDeviation(const FeatureRecord &feature);

/** The bytes of an array that a getData() has given away; the array itself is released. */
inline QByteArray taken(QByteArray *given)
{
    return *std::unique_ptr<QByteArray>(given);
}

/** The calibration characteristic of a channel, which announces when it changes. */
class featureNOX8 : public QObject, public FeatureRecord
{
    Q_OBJECT
public:
    explicit featureNOX8(QObject *parent = nullptr);

    /** The record of 492 bytes; the caller owns it. */
    QByteArray *getData() const;
    /** Reads a record; one that has not 492 bytes is ignored. */
    void setData(const QByteArray *buf);
    void setData(const QByteArray &buf);
    /** Becomes equal to a record. */
    void assign(const FeatureRecord &record);

    /** Takes a characteristic as entered (see enterFeature()). 0 when it is rejected. A number of
     *  values that the type does not have changes nothing either, but gives 1. */
    int setFeature(_featureIndType featureType, const QString &featureName,
                   const QStringList &values);

    QVector<float> getRatio() const;
    /** The value as entered; empty beyond the last. */
    QString getRatioStr(quint8 i) const;
    /** The names of the four types in the order of their codes. */
    QStringList getFeatureTypeStr() const { return m_typeNames; }

signals:
    /** The characteristic was read or entered, be it the same as before. */
    void onChange();

private:
    QStringList m_typeNames;
};
