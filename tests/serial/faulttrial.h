#pragma once

#include "serial/noxserialport.h"
#include "support/linkjournal.h"
#include "support/openwatch.h"

/** The exchanges that a fault can strike. */
enum class Exchange { BlockRead, RecordRead, WordRead, BlockWrite, WordWrite };

/** How one attempt of an exchange goes: what the instrument sees and how far the transfer comes. */
struct Attempt {
    int addressings = 1; ///< address bytes on the line
    int units = -1;      ///< units transferred, which is none before the synchronisation
};

/** A fault in an exchange, and the attempts that are to follow from it. */
struct FaultRow {
    const char *name;
    Exchange exchange;
    FaultPlan faults;
    QVector<Attempt> attempts;
    int code = 0;                           ///< reported in the end; 0 for success
    noxQueryMode mode = noxQueryModeNormal; ///< of the item
    int unitTimeoutMs = 200;                ///< how long the link waits for a unit
    bool emptyReply = false;                ///< an empty reply stands for the error
};

/** Every row of the matrix. */
QVector<FaultRow> faultRows();

/** Gives the exchange of a row with an instrument of its own, and keeps what came of it. */
class FaultTrial
{
public:
    FaultTrial(InstrumentBench &bench, const FaultRow &row);

    /** Holds the stream, lets the fault begin and queues the exchange. */
    void start();
    bool isStreaming() const { return journal.measurements.size() >= 8; }
    /** Lets the stream go on after the result; whether it flows again. */
    bool isOver();

    FaultRow row;
    QString portName;

    /** What the instrument found wrong with number and times of the address bytes; else empty. */
    QString scheduleFault();
    int opens() { return openWatch.opens(); }
    /** Whether both ends saw exactly what they were to see. */
    bool isAsExpected();
    /** Every line that is to be fired, in order. */
    QStringList expectedLines() const;
    int expectedReopenings() const;
    /** What the instrument holds where the exchange reads or writes. */
    QByteArray instrumentBlock();
    /** What it is to hold in the end. */
    QByteArray expectedBlock() const;
    /** What a read is to deliver. */
    QByteArray expectedReply() const;

    static LinkTiming timing(const FaultRow &row);

private:
    SimulatedInstrumentOptions instrument() const;
    /** Times of the address bytes, ms. */
    QVector<qint64> addressedMs();
    /** The least time between the last address byte of a failed attempt (from 0) and the next. */
    int leastPauseMs(int attempt) const;
    QStringList attemptLines(const Attempt &attempt) const;
    QStringList endLines() const;
    quint8 address() const;
    int itemSize() const;
    int unitSize() const;
    bool isRead() const;
    bool isWord() const;

    InstrumentBench &bench;
    OpenWatch openWatch;
    NOXSerialPort port;
    int devIndex;
    QByteArray before; ///< the block before the exchange
    QByteArray payload;
    bool hadResult = false;

public:
    LinkJournal journal;
};
