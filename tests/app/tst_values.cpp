#include "windowfixture.h"

#include <QtEndian>
#include <qwt_plot_marker.h>

#include <cmath>

/** Values on their way from the registry to the tables, the panels and the ear. */
class TestValues : public WindowTest
{
    Q_OBJECT
    /** What the first instrument measures above a value is an alarm. */
    void limitFirst(double highest) const
    {
        QwtNOX::_dev &device = plot().devices()[0];
        device.modeTrack = TrackUpper;
        device.upperMarker->setYValue(highest);
        device.upperMarker->setVisible(true);
    }
private slots:
    void showsPoints()
    {
        add(0x11, 1234);
        measure(0, 20.5, 0);
        now = now.addMSecs(1500);
        measure(0, 21.5, 0);
        QCOMPARE(channel(0),
                 "1[current]|21.50[fresh]|°С[fresh]|1.5[fresh]|1.0[fresh]|-[fresh]|<[current]");
        record(0).opt->setChOnOff(2, 0); // what is not measured any more is dim
        measure(0, 23.25, 2);
        QCOMPARE(panels(), "21.50|21.00|°С");
        QCOMPARE(instrument(1), "[gray current]|NOX B[gray current]|1234[gray current]|23.25|°С|3|"
                                "<[gray current]");
        QCOMPARE(channel(0), "1[current]|21.50|°С|1.5|1.0|-|<[current]");
        QCOMPARE(channel(2), "3|23.25[gray fresh]|°С[gray fresh]|[gray fresh]|[gray fresh]|"
                             "-[gray fresh]|");
        QCOMPARE(channels()->item(3, ChannelColumn::Value)->toolTip(), "Принято: 23.25 °С");
    }

    void showsOneInstrumentOnly()
    {
        addSome(2);
        limitFirst(30);
        deliver(0, 31, 1);
        measure(1, 21.5, 0);
        QVERIFY(instrument(2).contains("|21.50|°С|1|"));
        QCOMPARE(channel(0) + panels(), "1[current]|--|Ω|||-|<[current]--|--|");
        choose(2); // what marks the channels of one says nothing of the other
        QCOMPARE(channel(0), "1[current]|21.500000|°С|||-|<[current]");
        QCOMPARE(channel(1) + panels(), "2|--|Ω|||-|21.500000|21.500000|°С");
    }

    void keepsTheOrderOfWhatCame()
    {
        // measurements ("channel:value"), "lost": the link, "main": chosen again; then channel 4
        // and the row of the instrument (value, unit and channel), and how often the alarm sounded
        const QPair<QString, QString> cases[] = {
            {"3:21 refresh", "21.00[fresh], 21.00[current]|°С[current]|4[current], 0"},
            {"3:-1300 refresh", "--[yellow], --[yellow]|Ω[yellow]|4[yellow], 0"},
            {"3:-1300 lost", "--, --[gray current]|Ω[gray current]|4[gray current], 0"},
            {"3:-1300 main", "--, --[yellow]|Ω[yellow]|4[yellow], 0"},
            {"3:31 4:21", "31.00[red], 21.00|°С|5, 1"},
            {"3:31 refresh", "31.00[red fresh], 31.00[red]|°С[red]|4 (!)[red], 1"},
            {"3:31 lost", "31.00, 31.00[gray current]|°С[gray current]|4[gray current], 1"},
            {"3:31 main", "31.00[red], 31.00[red]|°С[red]|4 (!)[red], 1"},
            {"3:31 3:31 3:31", "31.00[red fresh], 31.00[red]|°С[red]|4 (!)[red], 1"},
            {"3:31 3:21", "21.00[fresh], 21.00|°С|4, 1"},
            {"3:31 3:-1300", "--[yellow], --[yellow]|°С[yellow]|4[yellow], 1"}};
        for (const auto &[events, shown] : cases) {
            add(0x11, 1);
            record(0).devIndex = 0; // as if it were connected
            window->updUI();
            limitFirst(30);
            soundsPlayed = 0;
            for (const QString &event : events.split(' ')) {
                if (event.contains(':')) {
                    deliver(0, event.mid(2).toDouble(), quint8(event.left(1).toInt()));
                    continue;
                }
                showFrame();
                record(0).devIndex = event == "lost" ? -1 : 0;
                event == "main" ? plot().setDevMain(0) : window->updUI();
            }
            showFrame();
            record(0).devIndex = -1;
            QCOMPARE(events + ": " + channel(3).section('|', 1, 1) + ", " +
                         instrument(1).section('|', 3, 5) + QString(", %1").arg(soundsPlayed),
                     events + ": " + shown);
            registry().rmByIndex(0);
        }
    }

    void touchesEachRowOnceAFrame()
    {
        addSome(2);
        showFrame();
        int changes = 0;
        for (const QTableWidget *table : {channels(), instruments()})
            connect(table, &QTableWidget::itemChanged, this, [&] { ++changes; });
        for (int i = 0; i < 1000; ++i)
            deliver(i % 2, 20 + i * 0.01, quint8(i % 8));
        QCOMPARE(changes, 0);
        QTRY_VERIFY(changes > 0); // by itself; the current one has the even channels
        QCOMPARE(column(channels(), ChannelColumn::Value), "29.92 -- 29.94 -- 29.96 -- 29.98 --");
        QCOMPARE(column(instruments(), InstrumentColumn::Value), "29.98 29.99");
        QCOMPARE(panels(), "29.92|29.56|°С");
        const int before = changes;
        showFrame();
        QCOMPARE(changes, before);
    }

    void growsAndMarksInOneFrame()
    {
        addSome(1);
        const int unknown = add();
        choose(2);
        deliver(unknown, -1300, 1);
        deliver(unknown, 21, 4);
        QCOMPARE(channels()->rowCount(), 1);
        showFrame();
        QCOMPARE(column(channels(), ChannelColumn::Value), "-- -- -- -- 21.00");
        QVERIFY(channel(1).startsWith("2|--[yellow]") && channel(4).startsWith("5|21.00[fresh]"));
        deliver(0, 21, 0);
        deliver(unknown, 22, 1);
        registry().rmByIndex(0); // who measured leaves before the frame
        showFrame();
        QCOMPARE(column(instruments(), InstrumentColumn::Value), "22.00");
        QVERIFY(channel(1).startsWith("2|22.00"));
        deliver(unknown, 21, 1);
        window.reset(); // and so may the window
    }

    void readsTheLoggerBack()
    {
        add(0x11, 1);
        for (const quint8 ch : {1, 2})
            measure(0, 1, ch);
        const QDateTime start({2024, 3, 5}, {12, 0});
        const QMap<quint8, QVector<optionsNOX8::_recItem>> records = {
            {0, {{0, 20, "°С"}, {10, -2000, "°С"}, {20, 22, "°С"}}}, {3, {{5, 19, "мВ"}}}};
        for (const int index : {0, 7}) // nobody has the second one
            emit registry().onReadRec(index, records, start);
        showFrame();
        QCOMPARE(plot().getStartDateTime(0), start);
        QCOMPARE(channel(0), "1[current]|22.00|°С|20.0|2.0|-|<[current]");
        QVERIFY(channel(1).startsWith("2|--|"));
        QCOMPARE(channel(3), "4|19.00[fresh]|мВ[fresh]|[fresh]|[fresh]|-[fresh]|");
        for (const bool on : {true, false, true}) // the last one clears what was shown meanwhile
            registry().setProccesed(0, on, !on);
        QCOMPARE(plot().getChMeasCount(0, 0), 0);
    }

    void oldNumbersLookOld()
    {
        add(0x11, 1);
        for (const int devIndex : {-1, 0, -1}) { // 0: as if it were connected
            record(0).devIndex = devIndex;
            emit registry().onChange();
            for (const char *name : {"frameMainLCDMeas", "frameMainLCDAver"}) {
                const QColor ground = find(name)->grab().toImage().pixelColor(6, 20);
                QCOMPARE(words({ground.name(), find(name)->toolTip()}),
                         devIndex < 0 ? "#dde3e6 Нет связи с прибором: значения старые"
                                      : "#ffffff ");
            }
        }
    }

    void minimisedWindowOnlySounds()
    {
        add(0x11, 1);
        limitFirst(30);
        measure(0, 20, 0);
        const QString seen = channel(0) + panels();
        const int before = soundsPlayed;
        window->showMinimized();
        measure(0, 31, 0);
        QCOMPARE(soundsPlayed - before, 1);
        QCOMPARE(channel(0) + panels(), seen);
        window->showNormal();
        showFrame();
        QVERIFY(channel(0).startsWith("1[current]|31.00[red fresh]|"));
        QCOMPARE(panels(), "31.00|25.50|°С");
    }

    void alarmPlaysOneAtATime()
    {
        AlarmSound sound;
        QStringList journal;
        for (const bool finished : {true, false, false, true}) {
            sound.setPlayer({[&] { journal << "play"; }, [&] { return finished; }});
            journal << (finished ? "finished" : "playing");
            sound.play();
        }
        QCOMPARE(journal.join(' '), "finished play playing playing finished play");
    }

    /** The file that is built in: two tones of half scale, neither of which clicks. */
    void alarmIsTwoCleanTones()
    {
        QFile file(":/resource/alert.wav");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray header = file.read(44);
        const QByteArray samples = file.readAll();
        QCOMPARE(header.left(4) + header.mid(8, 8) + header.mid(36, 4), "RIFFWAVEfmt data");
        QCOMPARE(header.mid(20, 4).toHex() + header.mid(34, 2).toHex(), "010001001000"); // 16 bits
        const auto number = [&](int at) { return qFromLittleEndian<qint32>(&header.data()[at]); };
        QVERIFY(number(4) == samples.size() + 36 && number(40) == samples.size());
        QVector<int> loudest; // of each hundredth of a second
        int steepest = 0;
        int before = 0;
        for (int i = 0; i < samples.size() / 2; ++i) {
            const int sample = qFromLittleEndian<qint16>(&samples.data()[2 * i]);
            steepest = qMax(steepest, std::abs(sample - std::exchange(before, sample)));
            loudest.resize(i * 100 / number(24) + 1);
            loudest.last() = qMax(loudest.last(), std::abs(sample));
        }
        // the second one starts where the first has faded
        QVERIFY(qMin(loudest.value(0), loudest.value(22)) > 32767 / 2 - 1000);
        QVERIFY(loudest.value(20) < loudest.value(0) / 3 && loudest.last() < 30);
        QVERIFY(steepest < 2 * M_PI * 1200 / number(24) * 32767 / 2); // that of the tone, no jump
    }
};

QTEST_MAIN(TestValues)
#include "tst_values.moc"
