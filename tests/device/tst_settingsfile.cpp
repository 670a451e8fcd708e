#include "device/filereplacement.h"
#include "device/settingsfile.h"
#include "devicebench.h"
#include "support/fulldisk.h"

#include <QBuffer>
#include <QTemporaryDir>
#include <QtTest>

#include <sys/stat.h>

using Image = optionsNOX8;

namespace
{

/** The lines of a model's file, some of them changed: "line=text|line=text". */
QStringList linesOf(quint32 type, const QString &changes = {})
{
    QStringList lines = settingsLines(ImageOf(type));
    for (const QString &change : changes.split('|', Qt::SkipEmptyParts))
        lines[change.section('=', 0, 0).toInt()] = change.section('=', 1);
    return lines;
}

/** The operating settings, then the record of the first channel. */
QByteArray settingsOf(const Image &image)
{
    return (encodeOperatingSettings(image) + encodeChannel(image.channels.at(0))).toHex();
}

} // namespace

// Of a NOX CM the lines of channels begin at 9, names at 49, entries at 57, coefficients at 505 and
// forms at 585; its model stands in line 634, its time in 635, T0 in 636, corrections from 637,
// reversal in 647, compensation from 648, the short circuit in 656, units from 657.
class TestSettingsFile : public QObject
{
    Q_OBJECT
private slots:
    void codes()
    {
        // line = its text = what comes of it, nothing where it is refused
        const QString same("0220010001000000");
        const QString codes("0=COM7=0220010001000000|"
                            "6=1=0120010001000000|6=16=|6=cyclic=|"
                            "7=1=0210010001000000|7=-1=|"
                            "8=2=0222010001000000|8=16=|"
                            "9=Выкл=0220010000000000|9=Вкл =0220010000000000|"
                            "10=°C=0220010001100000|10=mV=0220010001200000|10=Ohm=0220010001000000|"
                            "11=2 [0.2mA]=0220010001010000|11=16=02200100010f0000|"
                            "11=0=|11=17=|11=-2147483648=|"
                            "12=Rr 3=0220010001002000|12=3=|12=Rr 17=|"
                            "13=16=0220010001000f00|13=21=0220010001000040|13=33=0220010001000c40|"
                            "13=45=0220010001000480|13=53=0220010001000c80|13=54=0220010001000000|"
                            "13=0=|13=17=|13=34=|13=-3=|"
                            "635=\t=8220010001000000|635=\v=|635=Ж=|635==|"
                            "647=1=0220110001000000|"
                            "648=3=0220010001000002|648=33=022001000100001c|648==0220010001000030|"
                            "648=34=0220010001000000|648=17=|"
                            "656=1=0220000001000000");
        for (const QString &code : codes.split('|')) {
            const QStringList row = code.split('=');
            ImageOf image(0x22);
            const bool isTaken = applySettings(linesOf(0x22, code.section('=', 0, 1)), image);
            QVERIFY2(isTaken == !row.at(2).isEmpty(), qPrintable(code));
            QCOMPARE(code + ": " + settingsOf(image), code + ": " + (isTaken ? row.at(2) : same));
        }
    }

    void loadingAnnounces()
    {
        ImageOf saved(0x0950AA0F);
        saved.devMeasMode = 1;
        saved.devMeasTime = 3;
        saved.channels[2].measType = measTemperatureCustom;
        saved.channels[2].dimCust = "K";
        saved.channels[2].current = 4;
        saved.channels[5].featureTypeCompensTP = compensResistanceThermometer;
        saved.devZakorotka = 0;

        Image image;
        ImageLog log(image);
        QVERIFY(applySettings(settingsLines(saved), image));
        QCOMPARE(log.take(), // the base model; the mode; temperature, then current;
                 "ident dev ref dev ch2 ch2 " + QString("dev dev ").repeated(8) +
                     // ... each characteristic twice; time, compensation, short circuit; all
                     // numbers are in; the unit; the model itself
                     "dev ch5 dev ref ch2 ident dev ref");
        QCOMPARE(settingsLines(image), settingsLines(saved));
    }

    void whatFollowsABadNumberStays()
    {
        ImageOf image(0x22);
        for (ReferenceTriple &resistor : image.refR)
            resistor.value.value = resistor.a.value = 99.0F;
        image.refU.value.value = 99.0F;
        image.features[0]->name = "before";
        QVERIFY(!applySettings(linesOf(0x22, "1=-|2=12,5|3=R3|4=4.5|5=-|6=1|9=Выкл|637=7|657=K"),
                               image));
        QVector<float> numbers{image.refU.value.value, image.refR[0].a.value};
        for (const ReferenceTriple &resistor : image.refR)
            numbers << resistor.value.value;
        QCOMPARE(numbers, (QVector<float>{99, 99, 99, 12.5F, 0, 99}));
        QCOMPARE(image.features.at(0)->name + image.getChDimCust(0), "beforeK");
        QCOMPARE(settingsOf(image), QByteArray("0120010000100000"));

        // nor is any characteristic taken after a bad one; 77 is a form that none has
        Image other;
        QVERIFY(!applySettings(linesOf(0x22, "49=new|50=new|51=new|52=new|56=new|586=77|"
                                             "169=a word|636=21.5|647=1"),
                               other));
        QCOMPARE(other.getFeatureInfStrList().join(','), "new,,,,,,,");
        QCOMPARE(other.refT0.value, 0.0F);
        QCOMPARE(int(other.devChRevers), 0x10);
    }

    void textsAreTakenAsTheyStand()
    {
        // two of the zero shifts; Callendar and Van Dusen stand in the coefficient lines alone
        Image image;
        QVERIFY(applySettings(linesOf(0x0950AA0F, "657= a long unit of a file |668=junk|669=1,5|"
                                                  "505=100|506=3.9083e-3|507=-5.775e-7|508=0|"
                                                  "509=|510=100|585=1"),
                              image));
        QCOMPARE(image.getChDimCust(0), " a long unit of a file ");
        QCOMPARE(QPointF(image.shiftU[0].value, image.shiftU[1].value), QPointF(0.0, 1.5));
        QCOMPARE(image.features.at(0)->ratioStr.join(' '), "100 3.9083e-3 -5.775e-7 0  100");
    }

    void lineEndsInTextsBecomeSpaces()
    {
        ImageOf image(0x0950AA0F);
        image.devName = "two\nlines";
        image.features[3]->name = "a\r\nb";
        image.devMeasTime = 9; // as a character it would be a line end
        Image read;
        QVERIFY(applySettings(settingsLines(image), read));
        QCOMPARE(settingsLines(image).filter(QRegularExpression("[\r\n]")), QStringList());
        QCOMPARE(read.devName + read.features.at(3)->name, "two linesa  b");
        QCOMPARE(int(read.devMeasTime), 8);
    }

    void filesThatEndEarly()
    {
        for (const quint32 type : {0x11u, 0x22u, 0x0960AA0Fu}) {
            const QStringList whole = linesOf(type);
            const int channels = type == 0x0960AA0F ? 16 : 8;
            const int extendedPart = type == 0x0960AA0F ? 1265 : whole.size();
            for (int count = 0; count < whole.size(); ++count) {
                ImageOf image(0x41);
                const bool accepted = applySettings(whole.mid(0, count), image);
                // a file may lack the units, and what makes an extended model of its base
                QVERIFY2(accepted == (count == extendedPart - channels || count == extendedPart),
                         qPrintable(QString("%1 lines of type %2").arg(count).arg(type)));
                QCOMPARE(image.devType == 0, count <= (channels == 8 ? 634 : 1218));
            }
            // behind the last end of a line nothing begins
            const QString text = whole.mid(0, extendedPart - channels).join('\n') + '\n';
            QByteArray content = text.toUtf8();
            QBuffer device(&content);
            ImageOf image(0x41);
            QVERIFY(device.open(QIODevice::ReadOnly) && readSettings(device, image));
        }
        for (const char *size :
             {"0", "rubbish", "-5", "85", "4294967296"}) { // of the extended part
            Image image;
            QVERIFY2(!applySettings(linesOf(0x0950AA0F, QString("667=name|666=") + size), image),
                     size);
            QCOMPARE(image.getDevName(true), QString("NOX CM № --"));
        }
        Image image; // a model of 16 channels where only 8 can stand
        QVERIFY(!applySettings(linesOf(0x22, "634=NOX CM1 rev3"), image));
        QCOMPARE(image.devType, 0x41u);
    }

    void filesWithoutAModel()
    {
        QStringList lines = linesOf(0x41);
        lines.removeAt(100);
        QByteArrayList contents = {{},
                                   QByteArray(5000, '\n'),
                                   QByteArray(100000, '\0'),
                                   lines.join('\n').toUtf8(),
                                   linesOf(0x11).join('\n').toUtf8() + QByteArray(1 << 21, ' ')};
        for (const char *model : {"634=NOX Z rev3", "634=-- rev3", "634=NOX B", "634=rev3"})
            contents << linesOf(0x11, model).join('\n').toUtf8();
        for (QByteArray &content : contents) {
            QBuffer device(&content);
            QVERIFY(device.open(QIODevice::ReadOnly));
            ImageOf image(0x31);
            ImageLog log(image);
            QVERIFY2(!readSettings(device, image) && image.devType == 0, content.left(20));
            QCOMPARE(log.take(), "ident dev ref");
            QVERIFY(device.pos() <= 1024 * 1024 + 1);
        }
    }

    void unreadableFiles()
    {
        QTemporaryDir directory;
        const QString fifo = directory.filePath("fifo");
        QCOMPARE(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        ImageOf image(0x31);
        for (const QString &path : {directory.filePath("none.ust"), directory.path(), fifo,
                                    QString(), QString("/dev/zero")})
            QVERIFY2(!image.loadFromFile(path), qPrintable(path));
        QCOMPARE(image.devType, 0x31u);
        for (const QString &path : {directory.filePath("none/x.ust"), directory.path(), fifo})
            QVERIFY2(!image.saveToFile(path, "COM1"), qPrintable(path));
        QVERIFY(!QFileInfo(fifo).isFile());
    }

    void whatCannotBeSavedLeavesTheOldFile()
    {
        QTemporaryDir directory;
        const QString path = directory.filePath("x.ust");
        ImageOf image(0x11);
        QVERIFY(image.saveToFile(path, "COM1"));
        const QByteArray before = contentOf(path);

        FeatureRecord &table = *image.features[7];
        table.type = FeatureRecord::temperatureOfVoltage;
        const auto isSavedWith = [&](std::size_t i, float number) {
            table.ratio[i].value = number;
            const bool saved = image.saveToFile(path, "COM1");
            table.ratio[i].value = 0.0F;
            return saved;
        };
        for (const float number : {10000.0F, 9999.95F, -1000.0F})
            QVERIFY(!isSavedWith(110, number));
        QVERIFY(!isSavedWith(111, std::numeric_limits<float>::infinity()));
        QVERIFY(!Image().saveToFile(path, "COM1")); // no model: it could never be loaded
        {
            const FullDisk disk(2000); // less than a file, more or less than a buffer
            QVERIFY(!image.saveToFile(path, "COM1"));
            QVERIFY(!replaceFile(path, QByteArray(3000, 'x')));
            QVERIFY(!replaceFile(path, QByteArray(100000, 'x')));
            QVERIFY(replaceFile(directory.filePath("short"), QByteArray(1000, 'x')));
        }
        QCOMPARE(contentOf(path), before);
        QCOMPARE(QDir(directory.path()).entryList(QDir::Files), (QStringList{"short", "x.ust"}));
        QVERIFY(isSavedWith(110, 9999.9F) && isSavedWith(110, -999.9F));
        QVERIFY(isSavedWith(111, -12345.0F));
        QVERIFY(contentOf(path) != before);
    }
};

QTEST_GUILESS_MAIN(TestSettingsFile)
#include "tst_settingsfile.moc"
