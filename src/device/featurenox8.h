#pragma once

#include "device/featurerecord.h"

#include <QObject>
#include <QVector>

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
