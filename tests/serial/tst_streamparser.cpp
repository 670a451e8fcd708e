#include "serial/streamparser.h"

#include <QtTest>

namespace
{

/** What a batch gave, one line per token: kind, raw text, and what it says. */
QStringList tokensOf(StreamParser &parser, const QByteArray &bytes)
{
    QStringList lines;
    parser.feed(bytes, [&lines](const StreamToken &token) {
        const QString source = QString::fromLatin1(token.source.constData(), token.source.size());
        switch (token.kind) {
        case StreamToken::Raw:
            lines << QStringLiteral("raw <%1>").arg(source);
            break;
        case StreamToken::Status:
            lines << QStringLiteral("status <%1> %2")
                         .arg(source, token.status.join(QLatin1Char('|')));
            break;
        case StreamToken::Measurement:
            lines << QStringLiteral("meas <%1> %2 ch%3 %4")
                         .arg(source)
                         .arg(token.value)
                         .arg(token.ch)
                         .arg(QLatin1Char(token.dim));
            break;
        }
    });
    return lines;
}

} // namespace

class TestStreamParser : public QObject
{
    Q_OBJECT
private slots:
    void token_data();
    void token();
    void batches();
    void batchesCutAnywhereGiveTheSameTokens();
    void tailWithoutSpaceIsBounded();
    void cutTokensAreNeverJoined();
    void numbersIgnoreTheLocale();
};

void TestStreamParser::token_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");

    QTest::newRow("measurement") << QByteArray("3:21.5B ") << "meas <3:21.5B > 21.5 ch3 B";
    QTest::newRow("negative") << QByteArray("12:-0.75C ") << "meas <12:-0.75C > -0.75 ch12 C";
    QTest::newRow("exponent") << QByteArray("1:1.5e2A ") << "meas <1:1.5e2A > 150 ch1 A";
    QTest::newRow("plus sign") << QByteArray("1:+2.5A ") << "meas <1:+2.5A > 2.5 ch1 A";
    QTest::newRow("several colons: the last channel counts")
        << QByteArray("7:9:2:20.1B ") << "meas <7:9:2:20.1B > 20.1 ch2 B";
    QTest::newRow("channel 8 has its raw text one up")
        << QByteArray("8:10.0C ") << "meas <8:10.1C > 10 ch8 C";
    QTest::newRow("highest channel") << QByteArray("255:1B ") << "meas <255:1B > 1 ch255 B";
    QTest::newRow("channel beyond a byte") << QByteArray("257:1.5B ") << "raw <257:1.5B >";
    QTest::newRow("channel negative") << QByteArray("-1:1.5B ") << "raw <-1:1.5B >";
    QTest::newRow("channel 0") << QByteArray("0:1.5C ") << "raw <0:1.5C >";
    QTest::newRow("channel no number") << QByteArray("A:1.5C ") << "raw <A:1.5C >";
    QTest::newRow("no channel") << QByteArray("1.5C ") << "raw <1.5C >";
    QTest::newRow("no value") << QByteArray("3:B ") << "raw <3:B >";
    QTest::newRow("value no number") << QByteArray("3:2x.5B ") << "raw <3:2x.5B >";
    QTest::newRow("decimal comma") << QByteArray("3:21,5B ") << "raw <3:21,5B >";
    QTest::newRow("a single byte") << QByteArray("B ") << "raw <B >";
    QTest::newRow("only a colon") << QByteArray(": ") << "raw <: >";
    QTest::newRow("unit byte zero")
        << QByteArray("3:21.5\0 ", 8) << QString(QLatin1String("raw <3:21.5\0 >", 14));
    QTest::newRow("bytes beyond ASCII")
        << QByteArray("3:\xFF\xC0.5B ") << QString::fromLatin1("raw <3:\xFF\xC0.5B >");
    QTest::newRow("status") << QByteArray("2:#E1#E2X ") << "status <2:#E1#E2X > E1|E2";
    QTest::newRow("status without channel") << QByteArray("##E7##X ") << "status <##E7##X > E7";
    QTest::newRow("infinity is for the plot to refuse")
        << QByteArray("1:infB ") << "meas <1:infB > inf ch1 B";
}

void TestStreamParser::token()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    StreamParser parser;
    QCOMPARE(tokensOf(parser, bytes), QStringList{expected});
}

void TestStreamParser::batches()
{
    StreamParser parser;
    QCOMPARE(tokensOf(parser, "1:20.1B 2:20."), QStringList{"meas <1:20.1B > 20.1 ch1 B"});
    QCOMPARE(tokensOf(parser, "5"), QStringList());
    QCOMPARE(tokensOf(parser, "B   3:1B "),
             (QStringList{"meas <2:20.5B > 20.5 ch2 B", "meas <3:1B > 1 ch3 B"}));
    // line ends between rounds are no part of a token
    QCOMPARE(tokensOf(parser, " \r\n"), QStringList());
    QCOMPARE(tokensOf(parser, "4:7B "), QStringList{"meas <4:7B > 7 ch4 B"});
}

void TestStreamParser::batchesCutAnywhereGiveTheSameTokens()
{
    const QByteArray stream = "1:20.123B 2:#E1X 8:10.0C x 3:-1.5A 16:0.25B ";
    StreamParser whole;
    const QStringList expected = tokensOf(whole, stream);
    QCOMPARE(expected.size(), 6);
    for (int first = 0; first <= stream.size(); ++first) {
        for (int second = first; second <= stream.size(); ++second) {
            StreamParser parser;
            QStringList tokens = tokensOf(parser, stream.left(first));
            tokens += tokensOf(parser, stream.mid(first, second - first));
            tokens += tokensOf(parser, stream.mid(second));
            QCOMPARE(tokens, expected);
        }
    }
}

void TestStreamParser::tailWithoutSpaceIsBounded()
{
    StreamParser parser;
    const auto nothing = [](const StreamToken &) {};
    QVERIFY(!parser.feed(QByteArray(4096, 'x'), nothing));
    QCOMPARE(parser.tailLength(), 4096);
    QVERIFY(!parser.feed(QByteArray(1, 'x'), nothing));
    QCOMPARE(parser.tailLength(), 0);
    QVERIFY(!parser.feed(QByteArray(5000, 'x'), nothing));
    QCOMPARE(parser.tailLength(), 0);
    QCOMPARE(tokensOf(parser, "1:20.1B "), QStringList{"meas <1:20.1B > 20.1 ch1 B"});
}

void TestStreamParser::cutTokensAreNeverJoined()
{
    StreamParser parser;
    // held up in the middle of "1:20.0B": its rest is dropped with it
    tokensOf(parser, "3:5B 1");
    parser.dropOpenToken();
    QCOMPARE(tokensOf(parser, ":20.0B 1:20.1B "), QStringList{"meas <1:20.1B > 20.1 ch1 B"});

    // held up between two tokens: nothing is lost
    parser.dropOpenToken();
    QCOMPARE(tokensOf(parser, "2:20.2B "), QStringList{"meas <2:20.2B > 20.2 ch2 B"});

    // bytes thrown away: the rest of some token would read as channel 1
    parser.skipToNextToken();
    QCOMPARE(tokensOf(parser, "1:2"), QStringList());
    QCOMPARE(tokensOf(parser, "0.1B 5:9B "), QStringList{"meas <5:9B > 9 ch5 B"});

    // begun anew by the instrument: tail and skipping are forgotten, the first token counts
    tokensOf(parser, "1");
    parser.dropOpenToken();
    parser.restart();
    QCOMPARE(tokensOf(parser, "1:20.1B "), QStringList{"meas <1:20.1B > 20.1 ch1 B"});
}

void TestStreamParser::numbersIgnoreTheLocale()
{
    QLocale::setDefault(QLocale(QLocale::Russian));
    const char *const names[] = {"ru_RU.UTF-8", "C.UTF-8"};
    for (const char *name : names) {
        setlocale(LC_ALL, name);
        StreamParser parser;
        QCOMPARE(tokensOf(parser, "1:20.1B 1:20,1B "),
                 (QStringList{"meas <1:20.1B > 20.1 ch1 B", "raw <1:20,1B >"}));
    }
    setlocale(LC_ALL, "C");
    QLocale::setDefault(QLocale::c());
}

QTEST_GUILESS_MAIN(TestStreamParser)
#include "tst_streamparser.moc"
