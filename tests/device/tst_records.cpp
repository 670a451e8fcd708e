#include "device/callendarvandusen.h"
#include "device/featurenox8.h"
#include "device/instrumentblocks.h"
#include "device/loggerrecords.h"
#include "device/windows1251.h"

#include <QSignalSpy>
#include <QtTest>

#include <ctime>

using Record = FeatureRecord;
using Numbers = QVector<float>;

namespace
{

QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QStringList repeated(const QString &text, int count)
{
    return QVector<QString>(count, text).toList();
}

const QByteArray loggerStart("00110517091e0000"); // 17.05.2023 09:30:00

} // namespace

/** Numbers, texts, records of loggers and characteristics. */
class TestRecords : public QObject
{
    Q_OBJECT
private slots:
    void numbersInTexts()
    {
        QStringList read;
        for (const char *text :
             {"12.5", "12,5", " 7\t", "-5,775e-7", "  ", " - ", "abc", "1 2", "1.000,5", "1e39"}) {
            bFloat number(99.0F);
            const bool isNumber = number.setFloat(QString(text));
            QCOMPARE(bFloat::str2Float(text), number.value);
            read << QString::number(double(number.value)) + (isNumber ? "" : "?");
        }
        QCOMPARE(read, (QStringList{"12.5", "12.5", "7", "-5.775e-07", "0", "0", "0?", "0?", "0?",
                                    "0?"}));
    }

    void textsAndMoments()
    {
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all += char(byte);
        QCOMPARE(toWindows1251(fromWindows1251(all)), all);
        QCOMPARE(toWindows1251("№ °Ё☃"), bytes("b920b0a83f"));
        QCOMPARE(toFixedText("Баня", 3), bytes("c1e0ed"));
        QCOMPARE(toCountedText("Баня", 6), bytes("04c1e0edff0000"));
        QCOMPARE(toCountedText("Баня", 3), bytes("03c1e0ed"));
        QCOMPARE(fromCountedText("\xFF\x61\x62\x63", 0, 3), "abc");
        // a Sunday of the year before 2000
        QCOMPARE(encodeDateTime(QDateTime({1999, 12, 26}, {0, 0, 59})), bytes("00003b001a0cff07"));
    }

    void loggerIsRead()
    {
        LoggerReadout readout;
        QVERIFY(decodeLoggerRecords(bytes(loggerStart + "020741ac00002000"   // before any mark
                                                        "0100000041200000"   // 10 s
                                                        "020041ac00001000"   // 21.5 °С
                                                        "0000000000000000"   // empty
                                                        "0100000041a00000"   // 20 s
                                                        "020041ae00000000"   // 21.75 Ω
                                                        "020041ae00001100"), // 21.75 of no unit
                                    8, readout));
        QStringList items{readout.start.toString(Qt::ISODate)};
        for (const quint8 channel : readout.items.keys())
            for (const LoggerItem &item : readout.items.value(channel))
                items << QString("%1: %2 s %3 %4")
                             .arg(QString::number(channel), QString::number(double(item.time)),
                                  QString::number(double(item.value)), item.dim);
        QCOMPARE(items, (QStringList{"2023-05-17T09:30:00", "0: 10 s 21.5 °С", "0: 20 s 21.75 Ω",
                                     "0: 20 s 21.75 -", "7: 0 s 21.5 мВ"}));

        qputenv("TZ", "Europe/Berlin"); // summer time skips the hour of 26.03.2023 02:30
        tzset();
        QVERIFY(decodeLoggerRecords(bytes("001a0317021e0000"), 8, readout));
        QCOMPARE(readout.start, QDateTime({2023, 3, 26}, {3, 30}));
        qunsetenv("TZ");
        tzset();
    }

    void loggerIsRefused()
    {
        for (const QByteArray &hex :
             {QByteArray(),
              loggerStart + "01000000",         // half a record
              QByteArray("00110d17091e0000"),   // month 13
              QByteArray("001e0217091e0000"),   // 30 February
              QByteArray("0011051718000000"),   // hour 24
              QByteArray("ffffffffffffffff"),   // erased memory
              QByteArray("02110517091e0000"),   // at once of a channel that is none
              loggerStart + "0300000000000000", // type 3
              loggerStart + "020041ac00001000" + "020841ac00001000"}) { // channel 9 of 8
            LoggerReadout readout;
            QVERIFY2(!decodeLoggerRecords(bytes(hex), 8, readout), hex);
            QVERIFY(readout.items.isEmpty() && readout.start.isNull());
        }
    }

    void longTexts()
    {
        featureNOX8 feature;
        QSignalSpy changes(&feature, &featureNOX8::onChange);
        feature.setData(QByteArray(491, '\1'));
        feature.setData(QByteArray());
        QCOMPARE(changes.count(), 0);
        feature.name = QString(60, QChar(u'Ж'));
        feature.type = Record::polynomial;
        feature.ratioStr = repeated(QString(30, '7'), 15);
        feature.setData(taken(feature.getData()));
        QCOMPARE(changes.count(), 1);
        QCOMPARE(feature.name, QString(39, QChar(u'Ж')));
        QCOMPARE(feature.ratioStr, repeated(QString(19, '7'), 10));
        QCOMPARE(feature.getRatioStr(9) + feature.getRatioStr(10), QString(19, '7'));
        QCOMPARE(feature.getFeatureTypeStr().mid(2).join("; "),
                 "МТШ-90 от 54.3584 К до 961.78 °C; Таблица T от U (для термопар)");
    }

    void tableTexts()
    {
        FeatureRecord table;
        table.type = Record::temperatureOfVoltage;
        std::size_t i = 0;
        for (const float number : {100.0F, 0.6F, 200.0F, 1.4405F, 150.0F, 9.0F, 160.0F, 10.0F})
            table.ratio[i++].value = number;
        featureNOX8 feature;
        feature.setData(encodeFeature(table));
        QCOMPARE(feature.ratioStr, // each beside its predecessor in the record, shown or not
                 (QStringList{"100.0", "0.6000", "200.0", "1.4405", "160.0", "10.0000"}));
    }

    void entries()
    {
        enum Outcome { Rejected, Ignored, Stored };
        const struct {
            int type;
            QStringList texts;
            Outcome outcome;
        } table[] = {{0, repeated("1", 10), Stored},
                     {0, repeated("1", 9), Ignored},
                     {0, repeated("one", 10), Rejected},
                     {0, repeated("nan", 10), Rejected},
                     {1, repeated("1", 7), Ignored},
                     {1, {"100", "3.9e-3", "0", "0", "5", "5"}, Rejected}, // no range
                     {2, repeated("1", 10), Ignored},
                     {2, repeated(" ", 9), Stored},
                     {3, {"0", "0"}, Rejected},
                     {3, {"0", "0", "1"}, Rejected}, // a pair and a half
                     {3, {"0", "0", "1", "1"}, Stored},
                     {3, {"1", "0", "0.9", "1"}, Rejected}, // it falls at once
                     {3, {"1", "0", "1", "1"}, Stored},
                     {3, repeated("1", 113), Ignored},
                     {3, {"1"}, Ignored},
                     {7, repeated("1", 10), Ignored}, // no such types
                     {-1, {}, Ignored}};
        for (const auto &[type, texts, outcome] : table) {
            featureNOX8 feature;
            const QByteArray before = taken(feature.getData());
            QSignalSpy changes(&feature, &featureNOX8::onChange);
            const auto entered = Record::_featureIndType(type);
            QCOMPARE(feature.setFeature(entered, " new ", texts), outcome == Rejected ? 0 : 1);
            QCOMPARE(changes.count(), outcome == Stored ? 1 : 0);
            QCOMPARE(taken(feature.getData()) != before, outcome == Stored);
            QCOMPARE(feature.name, QString(outcome == Stored ? "new" : ""));
        }
    }

    void tableIsContinued()
    {
        featureNOX8 feature;
        const auto enter = [&feature](const char *numbers) {
            feature.setFeature(Record::temperatureOfVoltage, "S", QString(numbers).split(' '));
            return feature.ratioStr.join('|');
        };
        QCOMPARE(enter("0 0 100 0.646 200 1.441 300 2.323 250 2 400 3.259"),
                 "0|0|100|0.646|200|1.441|300|2.323|||400|3.259");
        QCOMPARE(feature.getRatio().mid(6, 8),
                 (Numbers{300, 2.323F, 0, 0, 400, 3.259F, 400, 3.259F}));
        QCOMPARE(feature.getRatio().mid(110), (Numbers{400, 3.259F}));
        QCOMPARE(enter("0 1 5 3 4"), "0|1|5|3|"); // it falls in half a pair
        QCOMPARE(feature.getRatio().mid(2, 6), (Numbers{5, 3, 0, 0, 4, 3}));
        QCOMPARE(enter("0 1 2 3 4"), "0|1|2|3|4");
        QCOMPARE(feature.getRatio().mid(4, 6), (Numbers{4, 3, 4, 3, 4, 3}));
        feature.setFeature(Record::polynomial, "P", repeated("0", 10)); // which has ten numbers
        feature.setData(taken(feature.getData()));
        QCOMPARE(feature.getRatio().mid(8, 4), (Numbers{0, 0, 4, 3}));
    }

    void fitIsOverAHundredPoints()
    {
        // how far the fit is off, as exact fractions give it for -1, -0.98 ... 0.98 °C; with the
        // highest temperature among the points it would be off by half as much there
        const CallendarVanDusen bent{1.0, 1.0, 0.0, -0.01, -1.0, 1.0};
        const TemperaturePolynomial fitted = fitTemperaturePolynomial(bent);
        const QVector<QPair<double, double>> errors = {
            {-1.0, -0.0000847092}, {-0.5, -0.0013404193}, {1.0, -0.0055031381}};
        for (const auto &[celsius, error] : errors)
            QVERIFY(qAbs(evaluate(fitted, bent.resistance(celsius)) - celsius - error) < 1e-7);
    }
};

QTEST_GUILESS_MAIN(TestRecords)
#include "tst_records.moc"
