#include "serial/exchangequeue.h"
#include "serial/linkschedule.h"
#include "serial/streamparser.h"

#include <QtTest>

#include <clocale>

namespace
{

/** Each token of some batches with what it says, such as `3:21.5B > 21.5 ch3 B`. */
template<typename... Batches>
QStringList tokensOf(StreamParser &parser, const Batches &...batches)
{
    QStringList lines;
    const auto note = [&lines](const StreamToken &token) {
        lines << QString::fromLatin1(token.source.constData(), token.source.size());
        if (token.kind == StreamToken::Status)
            lines.last() += "> " + token.status.join('|');
        if (token.kind == StreamToken::Measurement)
            lines.last() +=
                QString("> %1 ch%2 %3").arg(token.value).arg(token.ch).arg(QLatin1Char(token.dim));
    };
    (parser.feed(batches, note), ...);
    return lines;
}

/** Tokens, and what each says: nothing where it is none. */
const QVector<QPair<QByteArray, QString>> tokenRows = {
    {"3:21.5B ", "> 21.5 ch3 B"},
    {"12:-0.75C ", "> -0.75 ch12 C"},
    {"1:1.5e2A ", "> 150 ch1 A"},
    {"1:+2.5A ", "> 2.5 ch1 A"},
    {"7:9:2:20.1B ", "> 20.1 ch2 B"}, // the last channel counts
    {"255:1B ", "> 1 ch255 B"},
    {"1:infB ", "> inf ch1 B"}, // for the plot to refuse
    {"1:infinityB ", ""},
    {"2:#E1#E2X ", "> E1|E2"},
    {"##E7##X ", "> E7"},
    {"257:1.5B ", ""},
    {"-1:1.5B ", ""},
    {"0:1.5C ", ""},
    {"A:1.5C ", ""},
    {"1.5C ", ""},
    {"3:B ", ""},
    {"3:2x.5B ", ""},
    {"3:21,5B ", ""},
    {"B ", ""},
    {": ", ""},
    {{"3:21.5\0 ", 8}, ""},
    {"3:\xFF\xC0.5B ", ""},
};

noxSerialPortQueryItem readOf(char address)
{
    noxSerialPortQueryItem item;
    item.address = quint8(address);
    return item;
}

/**
 * Plays a queue: a small letter is pushed unless it waits, a capital one in any
 * case; `<` takes the head, `>` finishes it, `!` fails it of mode normal, `?`
 * of another, `-` abandons. Gives what was taken and finished (a dot for
 * nothing), and what is left.
 */
QString played(const QString &script)
{
    ExchangeQueue<noxSerialPortQueryItem> queue;
    QString seen;
    const auto note = [&seen](const std::optional<noxSerialPortQueryItem> &item) {
        seen += item ? QChar(item->address) : QChar('.');
    };
    for (const QChar step : script) {
        if (step == '<')
            note(queue.takeHead());
        else if (step == '>')
            note(queue.finish());
        else if (step == '!' || step == '?')
            queue.fail(step == '!' ? noxQueryModeNormal : noxQueryModeFast);
        else if (step == '-')
            queue.abandon();
        else if (step.isUpper())
            queue.push(readOf(step.toLower().toLatin1()));
        else
            queue.pushUnlessWaiting(readOf(step.toLatin1()));
    }
    seen += QString("|%1%2%3")
                .arg(queue.size())
                .arg(queue.isHandedOver() ? " out" : "", queue.wasUsed() ? "" : " unused");
    while (!queue.isEmpty())
        note(queue.finish());
    return seen;
}

} // namespace

/** What the link decides without port and thread: its queues, its schedule, its
 * tokens. */
class TestLinkRules : public QObject
{
    Q_OBJECT
private slots:
    void queues()
    {
        const QVector<QPair<QString, QString>> rows = {
            {"<>!?", "..|0 unused"},
            {"aaabbc", "|4aabc"},     // equal ones wait once behind the head
            {"ab<<", "a.|2 outab"},   // the head is handed over once,
            {"ab<><", "aab|1 outb"},  // and the next one after its result
            {"a<>", "aa|0"},          // what was done is used
            {"abc<!<", "a.|0"},       // a failure takes all,
            {"abc<?<", "ab|2 outbc"}, // or the failed one
            {"ab<-c<", "a.|1 out.c"}, // abandoned, but still to be done
            {"ab<-c><>", "a.cc|0"},   // its result is not that of the new head,
            {"ab<-c!<", "ac|1 outc"}, // nor is its failure
            {"ab-c<>", "cc|0"},       // abandoned before it began
            {"-", "|0"},              // abandoning is a use
        };
        for (const auto &[script, seen] : rows)
            QCOMPARE(script + ' ' + played(script), script + ' ' + seen);
    }

    void startsAreSpread()
    {
        LinkTiming timing;
        QSet<int> delays;
        for (int i = 0; i < 20000; ++i)
            delays += startDelay(timing, timing.attemptDelay);
        const auto [earliest, latest] = std::minmax_element(delays.begin(), delays.end());
        QCOMPARE(QSize(*earliest, *latest), QSize(3400, 3899));
        timing.startSpread = 0;
        QCOMPARE(startDelay(timing, 0), 400);
    }

    void tokens()
    {
        // the raw text of channel 8 has its last digit one up
        QByteArray stream = "8:10.0C ";
        QStringList expected{"8:10.1C > 10 ch8 C"};
        for (const auto &[source, meaning] : tokenRows) {
            stream += source;
            expected << QString::fromLatin1(source.constData(), source.size()) + meaning;
            stream += ' '; // one more than needed
        }
        QLocale::setDefault(QLocale(QLocale::Russian));
        for (const char *locale : {"ru_RU.UTF-8", "C"}) {
            setlocale(LC_ALL, locale);
            for (int cut = 0; cut <= stream.size(); ++cut) {
                StreamParser parser;
                QCOMPARE(tokensOf(parser, stream.left(cut), stream.mid(cut)), expected);
            }
        }
        QLocale::setDefault(QLocale::c());
        StreamParser parser;
        QStringList byteByByte;
        for (const char byte : stream)
            byteByByte += tokensOf(parser, QByteArray(1, byte));
        QCOMPARE(byteByByte, expected);
        // a line end between rounds is no part of a token
        QCOMPARE(tokensOf(parser, " \r\n", "4:7B "), QStringList("4:7B > 7 ch4 B"));
    }

    void cutTokensAreNeverJoined()
    {
        StreamParser parser;
        // held up in the middle of "1:20.0B": its rest is dropped with it
        tokensOf(parser, "3:5B 1");
        parser.dropOpenToken();
        QCOMPARE(tokensOf(parser, ":20.0B 1:20.1B "), QStringList("1:20.1B > 20.1 ch1 B"));
        // held up between two tokens: nothing is lost
        parser.dropOpenToken();
        QCOMPARE(tokensOf(parser, "2:20.2B "), QStringList("2:20.2B > 20.2 ch2 B"));
        // bytes thrown away: the rest of some token would read as channel 1
        tokensOf(parser, "4");
        parser.skipToNextToken();
        QCOMPARE(tokensOf(parser, "1:2"), QStringList());
        QCOMPARE(tokensOf(parser, "0.1B 5:9B "), QStringList("5:9B > 9 ch5 B"));
        // begun anew by the instrument: tail and skipping are forgotten, the first
        // token counts
        tokensOf(parser, "1");
        parser.dropOpenToken();
        parser.restart();
        QCOMPARE(tokensOf(parser, "1:20.1B "), QStringList("1:20.1B > 20.1 ch1 B"));
        tokensOf(parser, "1");
        parser.restart();
        QCOMPARE(tokensOf(parser, "1:20.1B "), QStringList("1:20.1B > 20.1 ch1 B"));
        // a tail without an end is kept up to a length; one byte more, and all is gone
        const QByteArray longest(4096, 'x');
        QCOMPARE(tokensOf(parser, longest, " "), QStringList(longest + ' '));
        QCOMPARE(tokensOf(parser, longest, "x", "1:20.1B "), QStringList("1:20.1B > 20.1 ch1 B"));
    }
};

QTEST_GUILESS_MAIN(TestLinkRules)
#include "tst_linkrules.moc"
