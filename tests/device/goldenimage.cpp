#include "goldenimage.h"

namespace
{

struct Entry {
    QString text;
    double number;
};

const QStringList instrumentNames = {"Эталонный прибор", "Ёмкий щуп № 0007", "Печь «Юг», °C µ±"};
const QStringList units = {"K", "°F", "мкК", "градус.№10"};
const QStringList featureNames = {"Термопара платинородиевая № 1234 (Юг-2)", "", "A",
                                  "Градуировка «№ 7», °C", "Ё µ±0.01"};
const QStringList callendarEntries = {"100", "3.9083E-3", "-5.775E-7", "-4.183E-12", "-50", "850"};
const QVector<Entry> entries = {{"1", 1},
                                {"-0.0039083", -0.0039083},
                                {"5.775E-7", 5.775e-7},
                                {"-4.183e-12", -4.183e-12},
                                {"12,5", 12.5},
                                {"", 0},
                                {"-1234567890.1234567", -1234567890.1234567},
                                {"+7", 7},
                                {"-", 0},
                                {"0.00000000000000001", 1e-17}};

/** `number`, or its opposite for an odd index. */
double alternating(int index, double number)
{
    return index % 2 == 0 ? number : -number;
}

void makeReferenceData(ReferenceData &data, int k)
{
    const double coefficients[][2] = {{3.9083e-3, -5.775e-7},
                                      {1e-5, -1.25e-4},
                                      {123456.5, -1234567},
                                      {1e-4, -1e-30},
                                      {1.5e10, 0}};
    const double values[] = {200 + (2 * k + 1) / 64.0, -1500.1 - k, 1.0 / (k + 3),
                             3.000005 + 0.1 * k, 299.99999 + 100 * k};
    for (std::size_t i = 0; i < 5; ++i) {
        ReferenceTriple &triple = i < 4 ? data.refR.at(i) : data.refU;
        triple.value.value = float(values[i]);
        triple.a.value = float(coefficients[i][0] * (k + 1));
        triple.b.value = float(coefficients[i][1] * (k + 1));
    }
    data.refT0.value = float(alternating(k, k + 0.125));
}

void makeZeroShifts(ZeroShifts &shifts, int k)
{
    const double scales[] = {1e-7, 0.001, 1, 12345.5, 1e9};
    const auto shift = [&](int s) { return float((s - 10 - k) * scales[s % 5]); };
    for (int i = 0; i < 17; ++i)
        shifts.shiftU[std::size_t(i)].value = shift(i);
    for (int i = 0; i < 16; ++i)
        shifts.shiftCh[std::size_t(i)].value = shift(17 + i);
    for (int i = 0; i < 4; ++i)
        shifts.shiftR[std::size_t(i)].value = shift(33 + i);
}

ChannelSettings goldenChannel(int k, int c, const GoldenModel &model)
{
    static const MeasurementType measurements[] = {measResistance, measTemperature,
                                                   measTemperatureCustom, measVoltage};
    static const CharacteristicSource sources[] = {featureIndividual, featureResistanceThermometer,
                                                   featureThermocouple, featureNone};
    static const CompensationSource compensations[] = {
        compensIndividual, compensResistanceThermometer, compensThermocouple, compensNone};
    const auto limit = [](int source) { return source == 1 || source == 2 ? 13 : 16; };

    const int source = (c / 2 + k) % 4;
    const int compensation = (c + c / 4 + k) % 4;
    ChannelSettings channel;
    channel.onOff = (c + k) % 3 == 0 ? 0 : 1;
    channel.measType = measurements[(c + k) % 4];
    if (channel.measType == measTemperatureCustom)
        channel.dimCust = units.at((c / 4 + k) % 4);
    channel.current = quint8((3 * c + k) % model.currents);
    channel.resist = quint8((c + 2 * k) % model.resistors);
    channel.featureType = sources[source];
    channel.feature = quint8((7 * c + 3 * k) % limit(source));
    channel.featureTypeCompensTP = compensations[compensation];
    channel.featureCompensTP = quint8((6 * c + 3 * k) % limit(compensation));
    return channel;
}

void makeTable(FeatureRecord &feature, int k, int c)
{
    const int last = 55 - 6 * k;
    auto ratio = feature.ratio.begin();
    for (int i = 0; i < 56; ++i) {
        const int p = qMin(i, last);
        const double first = (1990 * p - 9999 + c) / 10.0;
        const double second = (100 * p * p - 99999 + c) / 10000.0;
        (ratio++)->value = float(first);
        (ratio++)->value = float(second);
        if (i <= last)
            feature.ratioStr << QString::number(first, 'f', 1) << QString::number(second, 'f', 4);
    }
}

void makeFeature(FeatureRecord &feature, int k, int c)
{
    feature.type = FeatureRecord::_featureIndType((c + k) % 4);
    feature.name = featureNames.at((c + k) % 5);
    if (feature.type == FeatureRecord::temperatureOfVoltage)
        return makeTable(feature, k, c);

    const bool isFitted = feature.type == FeatureRecord::callendarVanDusen;
    for (int i = 0; i < 10; ++i) {
        const Entry &entry = entries.at((i + c) % 10);
        const double number = isFitted ? alternating(i, (i + 1) * (c + 1) / 8.0) : entry.number;
        feature.ratio[std::size_t(i)].value = float(number);
        if (!isFitted && (feature.type == FeatureRecord::polynomial || i < 9))
            feature.ratioStr << entry.text;
    }
    if (isFitted)
        feature.ratioStr = callendarEntries;
}

} // namespace

const QVector<GoldenModel> &goldenModels()
{
    // time, rounding, mode, compensation, reversal, short circuit
    static const QVector<GoldenModel> models = {
        {0x01, "01", 2, 1, {0, 0x00, 0, 0, 0x00, 0}},
        {0x11, "11", 4, 2, {1, 0x10, 1, 1, 0x10, 0}},
        {0x21, "21", 8, 4, {2, 0x20, 2, 1, 0x00, 0}},
        {0x22, "22", 8, 4, {3, 0x00, 1, 2, 0x10, 1}},
        {0x31, "31", 8, 4, {4, 0x10, 2, 0, 0x00, 0}},
        {0x41, "41", 8, 4, {5, 0x20, 0, 1, 0x10, 1}},
        {0x0950AA0F, "0950AA0F", 8, 4, {6, 0x00, 2, 2, 0x10, 0}},
        {0x0960AA0F, "0960AA0F", 8, 4, {7, 0x10, 0, 0, 0x00, 1}},
        {0x0970AA0F, "0970AA0F", 8, 4, {8, 0x20, 1, 1, 0x10, 1}},
    };
    return models;
}

void makeGoldenImage(optionsNOX8 &image, int row)
{
    const GoldenModel &model = goldenModels().at(row);
    image.setDevType(model.type);
    static_cast<OperatingSettings &>(image) = model.settings;
    image.devNumber = quint16(1000 + 257 * row);
    makeReferenceData(image, row);
    if (image.getDevRev() != 0) {
        image.devName = instrumentNames.at(row - 6);
        makeZeroShifts(image, row);
    }
    for (int c = 0; c < image.getDevChCount(); ++c) {
        image.channels[c] = goldenChannel(row, c, model);
        makeFeature(*image.features.at(c), row, c);
    }
}
