#include "device/featurenox8.h"
#include "device/heldblocks.h"
#include "device/optionsnox8.h"
#include "dialogs/settingscontent.h"
#include "dialogs/snapshotbox.h"

#include <QtTest>

/** What the settings of an instrument show, told from its image alone. */
class TestSettingsContent : public QObject
{
    Q_OBJECT
private slots:
    void models()
    {
        const QMap<QString, QVector<quint32>> types = {
            {"Да Да", {0}},
            {"Канал 7 Канал 7", {1, 17, 33}},
            {"Канал 7 Канал 8", {34, 49, 156281359, 158378511}},
            {"Канал 15 Канал 16", {65, 157329935}}};
        for (auto texts = types.begin(); texts != types.end(); ++texts)
            for (const quint32 type : texts.value()) {
                QCOMPARE(compensatingChannelText(type, 0) + ' ' + compensatingChannelText(type, 1),
                         texts.key());
                optionsNOX8 image;
                image.setDevType(type);
                QCOMPARE(fieldStates(image, 0).isExtended, type > 65);
                QCOMPARE(fieldStates(image, 0).isKnown, type != 0);
                QVERIFY(fieldStates(image, 0).isTypeOpen && !fieldStates(image, 0).isStored);
                QVERIFY(!fieldStates(image, 1).isTypeOpen && fieldStates(image, 1).isStored);
                image.identValid = true;
                QVERIFY(!fieldStates(image, -1).isTypeOpen);
            }
    }

    void compensationNeedsThermocouple()
    {
        for (const quint32 type : {33, 34})
            for (const quint8 compensation : {1, 2, 3})
                for (const auto source : {featureIndividual, featureResistanceThermometer,
                                          featureThermocouple, featureNone})
                    for (const auto own :
                         {FeatureRecord::temperatureOfVoltage, FeatureRecord::polynomial}) {
                        optionsNOX8 image;
                        image.setDevType(type);
                        image.devCompensTP = compensation;
                        image.channels[0].featureType = source;
                        image.channels[0].feature = 5;
                        image.channels[0].featureTypeCompensTP = compensResistanceThermometer;
                        image.features[5]->type = own;
                        const bool isExpected = type == 34 && compensation == 2 &&
                                                (source == featureThermocouple ||
                                                 (source == featureIndividual &&
                                                  own == FeatureRecord::temperatureOfVoltage));
                        const ChannelCells cells = channelCells(image, 0);
                        QCOMPARE(cells.isCompensated, isExpected);
                        QCOMPARE(cells.texts.at(CompensationSetting),
                                 isExpected ? image.getChFeatureCompesTPName(0) : QString("-"));
                    }
    }

    /** Each change of the image is marked in its place and in no other. */
    void changesAreThoseOfTheBlock()
    {
        optionsNOX8 image;
        image.setDevType(65);
        HeldBlocks held;
        QVERIFY(configurationChanges(held, image).channels.isEmpty()); // nothing is known yet
        const QByteArray block = taken(image.getData());
        held.noteRead(2, block);
        image.setData(block, 2);
        const auto marks = [&held, &image] {
            const ConfigurationChanges changes = configurationChanges(held, image);
            QString marks;
            for (const bool isChanged :
                 {changes.rounding, changes.measurementTime, changes.mode, changes.compensation,
                  changes.reversal, changes.shortCircuit, changes.identity})
                marks += isChanged ? 'x' : '.';
            for (int ch = 0; ch < changes.channels.size(); ++ch)
                for (int column = 0; column < channelSettings; ++column)
                    if (changes.channels.at(ch).at(std::size_t(column)))
                        marks += QString(" %1:%2").arg(ch).arg(column);
            for (int i = 0; i < changes.characteristics.size(); ++i)
                marks += changes.characteristics.at(i) ? QString(" c%1").arg(i) : QString();
            return marks;
        };
        QCOMPARE(marks(), QString("......."));
        image.devMeasRound = 0;
        image.devMeasTime = 5;
        image.devCompensTP = 2;
        image.identApplyPending = true; // the model has no name to be written
        QCOMPARE(marks(), QString("xx.x..."));
        image.devMeasMode = 0;
        image.devChRevers = 16;
        image.setDevZakorotka(image.devZakorotka == 0);
        QCOMPARE(marks(), QString("xxxxxx."));
        image.setChMeasType(0, measTemperature, QString());
        held.noteWritten(0, taken(image.getData()));
        image.setChMeasType(0, measTemperatureCustom, "бар"); // an instrument knows of no units
        QCOMPARE(marks(), QString("......."));
        image.setChOnOff(1, 0);
        image.setChMeasType(2, measVoltage, QString());
        image.setChCurrent(3, 3);
        image.setChResist(4, 2);
        image.setChFeature(5, featureThermocouple, 0);
        image.channels[6].feature = 2;
        image.channels[14].featureTypeCompensTP = compensThermocouple;
        image.channels[15].featureCompensTP = 2;
        image.getFeature(15)->name = "Эталон";
        QCOMPARE(marks(), QString("....... 1:0 2:1 3:2 4:3 5:4 6:4 14:5 15:5 c15"));
        image.setDevType(34); // of which no block is known
        QCOMPARE(marks(), QString("......."));
    }

    /** Ids of the snapshots: as the record names it, negative a factory one; those that equal. */
    void snapshots()
    {
        const auto signs = [](int named, const QVector<int> &equal) {
            const auto item = [](int id) {
                return noxSql::noxSqlItem{qAbs(id), "name", "info", id < 0};
            };
            QVector<noxSql::noxSqlItem> others;
            for (const int id : equal)
                others << item(id);
            const SnapshotMatch match =
                matchSnapshot(named ? std::optional(item(named)) : std::nullopt, others);
            return QString::number(match.id) + (match.isFound ? " found" : "") +
                   (match.isChanged ? " changed" : "") + (match.canBeSaved ? " save" : "") +
                   (match.canBeRemoved ? " remove" : "");
        };
        QCOMPARE(signs(0, {}), QString("0"));
        QCOMPARE(signs(0, {7, 8}), QString("7 found remove"));
        QCOMPARE(signs(8, {8}), QString("8 found remove"));
        QCOMPARE(signs(8, {}), QString("8 found changed save remove"));
        QCOMPARE(signs(8, {7, 8}), QString("8 found changed save remove"));
        QCOMPARE(signs(-8, {-8}), QString("8 found"));
        QCOMPARE(signs(-8, {}), QString("8 found changed"));
    }
};

QTEST_GUILESS_MAIN(TestSettingsContent)
#include "tst_settingscontent.moc"
