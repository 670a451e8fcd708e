#include "examples/blockexamples.h"

#include "device/configuration.h"
#include "device/instrumentblocks.h"
#include "examples/blockdump.h"
#include "examples/exampleimage.h"

#include <memory>

namespace
{

using Builder = QByteArray *(InstrumentRecord::*)() const;

QByteArray take(QByteArray *block)
{
    return *std::unique_ptr<QByteArray>(block);
}

QByteArray exampleBlock(Builder build)
{
    optionsNOX8 image;
    fillExampleImage(image);
    return take((image.*build)());
}

QString code(int number)
{
    return QStringLiteral("0x%1").arg(number, 2, 16, QLatin1Char('0'));
}

QString namedCode(const char *name, int number)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(name), code(number));
}

QString namedIndex(const char *name, int number)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(number);
}

/** What each byte of a channel record says. */
QStringList channelMeanings(const ChannelSettings &channel)
{
    return {namedIndex("onOff", channel.onOff),
            namedCode("measType", channel.measType) + ", " + namedIndex("current", channel.current),
            namedIndex("resist", channel.resist) + ", " + namedIndex("feature", channel.feature),
            namedCode("featureType", channel.featureType) + ", " +
                namedCode("featureTypeCompensTP", channel.featureTypeCompensTP) + ", " +
                namedIndex("featureCompensTP", channel.featureCompensTP)};
}

ChannelSettings channelIn(const QByteArray &block, int offset)
{
    ChannelSettings channel;
    decodeChannel(block, offset, channel);
    return channel;
}

void showOperatingSettings(BlockDump &dump, const QByteArray &bytes)
{
    OperatingSettings settings;
    decodeOperatingSettings(bytes, settings);
    dump.show(1, namedIndex("devMeasTime", settings.devMeasTime) + ", " +
                     namedIndex("devMeasMode", settings.devMeasMode));
    dump.show(1, namedCode("devMeasRound", settings.devMeasRound) + ", " +
                     namedIndex("devCompensTP", settings.devCompensTP));
    dump.show(1, namedCode("devChRevers", settings.devChRevers) + ", " +
                     namedIndex("devZakorotka", settings.devZakorotka));
    dump.show(1, "0");
}

void showTriple(BlockDump &dump, const QString &name)
{
    dump.showNumber(name + " value");
    dump.showNumber(name + " a");
    dump.showNumber(name + " b");
}

void showMoment(BlockDump &dump)
{
    dump.show(3, "hour, minute, second");
    dump.show(1, "0");
    dump.show(3, "day, month, year");
    dump.show(1, "day of the week, 1 is Monday");
}

/** The first of several numbers with one name, and that there are more. */
void showNumbers(BlockDump &dump, const QString &name, int count)
{
    dump.showNumber(name + " 0");
    dump.skip(4 * (count - 1), QStringLiteral("%1 1 to %2").arg(name).arg(count - 1));
}

/** A record as an instrument stores it. */
QByteArray loggerRecord(const char *bytesBefore, float number, const char *bytesAfter)
{
    return QByteArray::fromHex(bytesBefore) + bFloat(number).getByte() +
           QByteArray::fromHex(bytesAfter);
}

} // namespace

QStringList configurationExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const QByteArray block = take(image.getData());
    const ConfigurationLayout layout(image.getDevChCount());
    optionsNOX8 read;
    read.setDevType(image.devType);
    read.setData(block, 2);

    BlockDump dump(block);
    showOperatingSettings(dump, block);
    for (const quint8 ch : {0, 1, 2})
        dump.show(channelRecordSize,
                  QStringLiteral("channel %1: ").arg(ch) + QStringList{read.getChMeasTypeName(ch),
                                                                       read.getChCurrentStr(ch),
                                                                       read.getChFeatureName(ch)}
                                                               .join(", "));
    dump.skip(layout.familyOffset() - layout.channelOffset(3), "channels 3 to 7");
    dump.show(1, "family code");
    dump.show(3, "0");
    for (const int ch : {0, 1})
        dump.skip(featureRecordSize, QStringLiteral("characteristic of channel %1").arg(ch));
    dump.skip(6 * featureRecordSize, "characteristics of channels 2 to 7");
    return dump.lines();
}

QStringList channelRecordExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const QByteArray record = encodeChannel(image.getCh(1));
    BlockDump dump(record);
    for (const QString &meaning : channelMeanings(channelIn(record, 0)))
        dump.show(1, meaning);
    return dump.lines();
}

QStringList channelBlockExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    const QByteArray block = image.channelBlock(1);
    BlockDump dump(block);
    dump.show(1, "channel");
    dump.show(3, "0");
    showOperatingSettings(dump, block.mid(4));
    for (const QString &meaning : channelMeanings(channelIn(block, 8)))
        dump.show(1, meaning);
    return dump.lines();
}

QStringList referenceDataExample()
{
    optionsNOX8 image;
    fillExampleImage(image);
    BlockDump dump(take(image.getRefData(false)));
    dump.showNumber("T0");
    showTriple(dump, "R1");
    dump.skip(36, "R2, R3, R4");
    showTriple(dump, "Uref");
    showMoment(dump);
    return dump.lines();
}

QStringList dateTimeExample()
{
    BlockDump dump(encodeDateTime(QDateTime(QDate(2026, 11, 29), QTime(23, 59, 7))));
    showMoment(dump);
    return dump.lines();
}

QStringList zeroShiftsExample()
{
    BlockDump dump(exampleBlock(&optionsNOX8::getRefShiftData));
    showNumbers(dump, "shiftU", 17);
    showNumbers(dump, "shiftCh", 16);
    showNumbers(dump, "shiftR", 4);
    return dump.lines();
}

QStringList identificationExample()
{
    optionsNOX8 image;
    image.setDevType(0x11);
    image.setDevNumber(1234);
    const QByteArray block = take(image.getIdentData());
    optionsNOX8 read;
    read.setData(block, 51);
    BlockDump dump(block);
    dump.show(1, "family code");
    dump.show(3, "0");
    dump.show(1, "type code of " + read.getDevTypeStr(true));
    dump.show(1, "0");
    dump.show(2, "serial number " + read.getDevNumberStr());
    return dump.lines();
}

QStringList extendedIdentificationReadExample()
{
    // it is read as the two blocks that are written, one after the other
    const QByteArray block =
        exampleBlock(&optionsNOX8::getIdentData) + exampleBlock(&optionsNOX8::getSNData);
    optionsNOX8 read;
    read.setData(block, 51);
    BlockDump dump(block);
    dump.show(4, "type code of " + read.getDevTypeStr(true));
    dump.show(16, "own name \"" + read.getDevName(false) + '"');
    dump.show(4, "serial number " + read.getDevNumberStr());
    return dump.lines();
}

QStringList extendedIdentificationWrittenExample()
{
    BlockDump dump(exampleBlock(&optionsNOX8::getIdentData));
    dump.show(4, "type code");
    dump.show(16, "own name");
    return dump.lines();
}

QStringList serialNumberExample()
{
    BlockDump dump(exampleBlock(&optionsNOX8::getSNData));
    dump.show(2, "serial number");
    dump.show(2, "0");
    return dump.lines();
}

QStringList loggerExample()
{
    const QByteArray records =
        QByteArray::fromHex("0009031a0e051e00") + loggerRecord("01000000", 10.0F, "") +
        loggerRecord("0200", 21.5F, "1000") + loggerRecord("0203", 0.125F, "2000") +
        loggerRecord("01000000", 20.0F, "") + loggerRecord("0200", 21.625F, "1000");
    LoggerReadout readout;
    decodeLoggerRecords(records, 8, readout);
    const auto item = [&readout](quint8 ch, int index) {
        const LoggerItem stored = readout.items.value(ch).value(index);
        return QStringLiteral("channel %1 at %2: %3 %4")
            .arg(ch)
            .arg(double(stored.time))
            .arg(double(stored.value))
            .arg(stored.dim);
    };
    BlockDump dump(records);
    dump.show(8, "start: " + readout.start.toString("yyyy-MM-dd HH:mm:ss"));
    dump.show(8, "time mark");
    dump.show(8, item(0, 0));
    dump.show(8, item(3, 0));
    dump.show(8, "time mark");
    dump.show(8, item(0, 1));
    return dump.lines();
}
