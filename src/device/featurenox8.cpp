#include "device/featurenox8.h"

#include "device/featureentry.h"

featureNOX8::featureNOX8(QObject *parent)
    : QObject(parent)
    , m_typeNames{tr("T=f(R); Полином 9 степени.  Коэфф. C0-C9"),
                  tr("R=f(T); Каллендар-Ван Дюзен. Коэфф. R0, A, B, C"),
                  tr("МТШ-90 от 54.3584 К до 961.78 °C"), tr("Таблица T от U (для термопар)")}
{
}

QByteArray *featureNOX8::getData() const
{
    return new QByteArray(encodeFeature(*this));
}

void featureNOX8::setData(const QByteArray *buf)
{
    if (decodeFeature(*buf, *this))
        emit onChange();
}

void featureNOX8::setData(const QByteArray &buf)
{
    setData(&buf);
}

void featureNOX8::assign(const FeatureRecord &record)
{
    FeatureRecord::operator=(record);
    emit onChange();
}

int featureNOX8::setFeature(_featureIndType featureType, const QString &featureName,
                            const QStringList &values)
{
    const EntryResult result = enterFeature(*this, featureType, featureName, values);
    if (result == EntryResult::Stored)
        emit onChange();
    return result == EntryResult::Rejected ? 0 : 1;
}

QVector<float> featureNOX8::getRatio() const
{
    QVector<float> numbers;
    numbers.reserve(ratioCount);
    for (const bFloat &number : ratio)
        numbers << number.value;
    return numbers;
}

QString featureNOX8::getRatioStr(quint8 i) const
{
    return ratioStr.value(i);
}
