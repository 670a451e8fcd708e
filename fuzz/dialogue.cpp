/// Answers the byte dialogue of the link as no instrument should.
///
/// Input: a byte that chooses the exchange, its address, its size in a word; then an answer to each
/// write of the dialogue: a byte whose lower three bits choose it, whose next one lets go what has
/// not been read yet, and whose upper half is a count of bytes or units, which follow.

#include "fuzzinput.h"
#include "serial/bytedialogue.h"

#include <QCoreApplication>
#include <QSerialPort>

#include <cstdlib>
#include <fcntl.h>

namespace
{

constexpr char confirmation = 0x0F;
constexpr int unitLength = 4;
constexpr int recordLength = 8;
constexpr int extendedIdentificationRest = 16;
constexpr int mostWritten = 256;
constexpr quint8 kindBits = 0x07;
constexpr quint8 clearingBit = 0x08;
constexpr int mostReads = 500; ///< of an exchange that transfers nothing: all its attempts

const QByteArray pattern = QByteArray::fromHex("AA0FFF00");

/** The port of an instrument that answers what the input says, at once or never. It is opened on a
 *  terminal that nobody uses, so that clearing it succeeds. */
class HostileInstrument : public QSerialPort
{
public:
    HostileInstrument()
    {
        const int master = posix_openpt(O_RDWR | O_NOCTTY); // open until the end
        require(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
        setPortName(QString::fromLocal8Bit(ptsname(master)));
        require(setBaudRate(4000000) && open(ReadWrite));
    }

    void begin(FuzzInput &answers)
    {
        m_answers = &answers;
        setOpenMode(ReadWrite | Unbuffered);
        isRunning = true;
        clearError();
        m_toRead.clear();
        m_unit.clear();
        m_isEchoed = m_isConfirmable = false;
        units.clear();
        echoed.clear();
        reads = 0;
    }

    /** Once it does not, what an exchange returns means nothing. */
    bool goesOn() const { return isRunning && isOpen(); }

    qint64 bytesAvailable() const override { return m_toRead.size(); }
    qint64 bytesToWrite() const override { return 0; }
    bool waitForReadyRead(int) override { return false; }

    std::atomic<bool> isRunning{true};
    QByteArray units;  ///< units that the instrument has confirmed after they came back
    QByteArray echoed; ///< units that the dialogue has confirmed after they came back
    int reads = 0;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        ++reads;
        const QByteArray given = m_toRead.left(int(size));
        m_toRead.remove(0, given.size());
        std::copy(given.begin(), given.end(), data);
        if (m_isConfirmable && size == 1 && given == QByteArray(1, confirmation))
            units += m_unit;
        m_isEchoed = m_isConfirmable && size == unitLength && given == m_unit;
        m_isConfirmable = false;
        return given.size();
    }

    qint64 writeData(const char *data, qint64 size) override
    {
        const QByteArray written(data, int(size));
        if (m_isEchoed && written == QByteArray(1, confirmation))
            echoed += m_unit;
        m_isEchoed = false;
        m_isConfirmable = size == unitLength;
        m_unit = written;
        answer(written);
        return size;
    }

private:
    void answer(const QByteArray &written)
    {
        const quint8 choice = m_answers->byte();
        const bool areUnits = (choice & kindBits) == 4;
        const QByteArray bytes = m_answers->bytes((choice >> 4) * (areUnits ? unitLength : 1));
        if (choice & clearingBit)
            m_toRead.clear();
        switch (choice & kindBits) {
        case 1:
            m_toRead += written + bytes;
            break;
        case 2:
            m_toRead += pattern + bytes;
            break;
        case 3:
            m_toRead += confirmation + bytes;
            break;
        case 5:
            m_toRead += confirmation + written + bytes;
            break;
        case 6:
            isRunning = false;
            break;
        case 7:
            setOpenMode(NotOpen);
            break;
        default: // none at all is silence
            m_toRead += bytes;
        }
    }

    FuzzInput *m_answers = nullptr;
    QByteArray m_toRead;
    QByteArray m_unit; ///< what was written last
    bool m_isEchoed = false;
    bool m_isConfirmable = false; ///< nothing has been read since the unit was written
};

/** Nobody waits: what is not there at once never comes. */
LinkTiming noWaits()
{
    LinkTiming timing;
    timing.initDelay = timing.unitTimeout = timing.confirmTimeout = timing.commandPause = 0;
    timing.leavingSlack = 0;
    return timing;
}

/** Watches the progress of a transfer: from nothing upwards, in steps, to no more than the last
 *  unit beyond the end. */
class ProgressWatch
{
public:
    ByteDialogue::Progress function()
    {
        return [this](int done, int total) {
            require(done == (last < 0 ? 0 : last + step) && total >= 0);
            require(done < total + step);
            last = done;
        };
    }

    int step = unitLength;
    int last = -1;
};

void readBlock(ByteDialogue &dialogue, HostileInstrument &port, quint8 address, int size)
{
    QByteArray reply = "untouched";
    ProgressWatch progress;
    if (dialogue.readBlock(address, size, '\2', &reply, progress.function()) != LinkResult::Done) {
        require(reply == "untouched");
        return;
    }
    if (!port.goesOn())
        return;
    const bool isExtended =
        size > 0 && port.units.startsWith("\x0F\xAA") && port.units.at(unitLength - 1) == 9;
    require(reply == port.units.left(size + (isExtended ? extendedIdentificationRest : 0)));
    require(progress.last == port.units.size() && progress.last >= reply.size());
}

void readRecords(ByteDialogue &dialogue, quint8 address, int size)
{
    QByteArray reply = "untouched";
    ProgressWatch progress;
    progress.step = recordLength;
    if (dialogue.readRecords(address, size, '\2', &reply, progress.function()) !=
        LinkResult::Done) {
        require(reply == "untouched");
        return;
    }
    require(reply.size() % recordLength == 0 && progress.last == reply.size());
    for (int i = 0; i < reply.size(); i += recordLength)
        require(reply.at(i) != char(0xFF));
}

void writeBlock(ByteDialogue &dialogue, HostileInstrument &port, quint8 address, int size)
{
    QByteArray data(size % mostWritten, '\0');
    for (int i = 0; i < data.size(); ++i)
        data[i] = char(i / unitLength + i);
    ProgressWatch progress;
    const LinkResult result = dialogue.writeBlock(address, data, '\2', progress.function());
    require(data.startsWith(port.echoed));
    require(result != LinkResult::Done || !port.goesOn() || port.echoed == data);
}

void exchange(ByteDialogue &dialogue, HostileInstrument &port, int kind, quint8 address, int size)
{
    QByteArray word;
    switch (kind) {
    case 0:
        return readBlock(dialogue, port, address, size);
    case 1:
        return readRecords(dialogue, address, size);
    case 2:
        require(dialogue.readWord(address, &word) != LinkResult::Done || word.size() == unitLength);
        return;
    case 3:
        return writeBlock(dialogue, port, address, size);
    case 4:
        dialogue.writeWord(address, QByteArray(size % recordLength, 'w'));
        return;
    default:
        dialogue.clear();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz-dialogue";
    static char *argv[] = {name, nullptr};
    static QCoreApplication application(argc, argv);
    static HostileInstrument port;
    static const LinkTiming timing = noWaits();

    FuzzInput input(data, size);
    const int kind = input.byte() % 6;
    const quint8 address = input.byte();
    const int length = input.word();
    port.begin(input);
    ByteDialogue dialogue(port, port.isRunning, timing);
    exchange(dialogue, port, kind, address, length);
    require(port.error() == QSerialPort::NoError);
    require(port.reads < mostReads + 4 * int(size));
    return 0;
}
