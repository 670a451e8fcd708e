#include "windowfixture.h"

#include <QtEndian>
#include <qwt_plot_marker.h>

#include <cmath>

/** Values on their way from the registry to the tables, the panels and the ear. */
class TestValues : public WindowTest
{
    Q_OBJECT

private slots:
    void showsPoints()
    {
        add(0x11, 1234);
        measure(0, 20.5, 0);
        now = now.addMSecs(1500);
        measure(0, 21.5, 0);
        QCOMPARE(channel(0),
                 "1[current]|21.50[fresh]|°С[fresh]|1.5[fresh]|1.0[fresh]|-[fresh]|<[current]");
        measure(0, 23.25, 2);
        QCOMPARE(panels(), "21.50|21.00|°С");
        QCOMPARE(instrument(1), "[gray current]|NOX B[gray current]|1234[gray current]|23.25|°С|3|"
                                "<[gray current]");
        QCOMPARE(channel(0), "1[current]|21.50|°С|1.5|1.0|-|<[current]");
        QCOMPARE(channel(2), "3|23.25[fresh]|°С[fresh]|[fresh]|[fresh]|-[fresh]|");
        QCOMPARE(channels()->item(3, ChannelColumn::Value)->toolTip(), "Принято: 23.25 °С");
    }

    void showsOneInstrumentOnly()
    {
        addSome(2);
        deliver(0, -1300, 1);
        measure(1, 21.5, 0);
        QVERIFY(instrument(2).contains("|21.50|°С|1|"));
        QCOMPARE(channel(0) + panels(), "1[current]|--|Ω|||-|<[current]--|--|");
        choose(2); // what marks the channels of one says nothing of the other
        QCOMPARE(channel(0), "1[current]|21.500000|°С|||-|<[current]");
        QCOMPARE(channel(1) + panels(), "2|--|Ω|||-|21.500000|21.500000|°С");
    }

    void keepsTheOrderOfWhatCame()
    {
        const struct {
            const char *events;   ///< "channel:value"; "lost" is the link, "main" chosen again
            const char *value;    ///< of channel 4
            const char *reported; ///< value and channel, in the row of the instrument
            int sounds;
        } cases[] = {{"3:21", "21.00[fresh]", "21.00 4", 0},
                     {"3:21 refresh", "21.00[fresh]", "21.00[current] 4[current]", 0},
                     {"3:21 4:21", "21.00", "21.00 5", 0},
                     {"3:-1300", "--[yellow]", "--[yellow] 4[yellow]", 0},
                     {"3:21 3:-1300", "--[yellow]", "--[yellow] 4[yellow]", 0},
                     {"3:-1300 4:21", "--[yellow]", "21.00 5", 0},
                     {"3:-1300 3:21", "21.00[fresh]", "21.00 4", 0},
                     {"3:-1300 refresh", "--[yellow]", "--[yellow] 4[yellow]", 0},
                     {"3:-1300 lost", "--", "--[gray current] 4[gray current]", 0},
                     {"3:-1300 main", "--", "--[yellow] 4[yellow]", 0},
                     {"3:31", "31.00[red fresh]", "31.00[red] 4 (!)[red]", 1},
                     {"3:31 4:21", "31.00[red]", "21.00 5", 1},
                     {"3:31 refresh", "31.00[red fresh]", "31.00[red] 4 (!)[red]", 1},
                     {"3:31 lost", "31.00", "31.00[gray current] 4[gray current]", 1},
                     {"3:31 main", "31.00[red]", "31.00[red] 4 (!)[red]", 1},
                     {"3:31 3:31 3:31", "31.00[red fresh]", "31.00[red] 4 (!)[red]", 1},
                     {"3:31 3:21", "21.00[fresh]", "21.00 4", 1},
                     {"3:31 3:-1300", "--[yellow]", "--[yellow] 4[yellow]", 1}};
        for (const auto &one : cases) {
            add(0x11, 1);
            record(0).devIndex = 0; // as if it were connected
            window->updUI();
            QwtNOX::_dev &device = plot().devices()[0];
            device.modeTrack = TrackUpper;
            device.upperMarker->setYValue(30);
            device.upperMarker->setVisible(true);
            soundsPlayed = 0;
            for (const QString &event : QString(one.events).split(' ')) {
                const QStringList parts = event.split(':');
                if (parts.size() > 1) {
                    deliver(0, parts.at(1).toDouble(), quint8(parts.at(0).toInt()));
                    continue;
                }
                showFrame();
                record(0).devIndex = event == "lost" ? -1 : 0;
                event == "main" ? plot().setDevMain(0) : window->updUI();
            }
            showFrame();
            record(0).devIndex = -1;
            const QStringList row = cells(instruments(), 1);
            QCOMPARE(words({one.events, cells(channels(), 4).at(ChannelColumn::Value),
                            row.at(InstrumentColumn::Value), row.at(InstrumentColumn::Channel),
                            soundsPlayed}),
                     words({one.events, one.value, one.reported, one.sounds}));
            registry().rmByIndex(0);
        }
    }

    void touchesEachRowOnceAFrame()
    {
        addSome(2);
        showFrame();
        int changes = 0;
        QStringList given; // to the cells of the values
        for (const QTableWidget *table : {channels(), instruments()}) {
            const int column =
                table == channels() ? int(ChannelColumn::Value) : int(InstrumentColumn::Value);
            connect(table, &QTableWidget::itemChanged, this, [&, column](QTableWidgetItem *item) {
                ++changes;
                const QString text = words({item->row(), item->text()});
                if (item->column() == column && !given.contains(text))
                    given << text;
            });
        }
        for (int i = 0; i < 1000; ++i)
            deliver(i % 2, 20 + i * 0.01, quint8(i % 8));
        QCOMPARE(changes, 0);
        QTRY_VERIFY(changes >
                    0); // the frame comes by itself; the current one has the even channels
        QCOMPARE(given.join(", "), "1 29.98, 2 29.99, 1 29.92, 3 29.94, 5 29.96, 7 29.98");
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
    }

    void survivesWhoLeavesBeforeTheFrame()
    {
        addSome(2);
        deliver(0, 21, 0);
        deliver(1, 22, 1);
        registry().rmByIndex(0);
        showFrame();
        QCOMPARE(column(instruments(), InstrumentColumn::Value), "22.00");
        QVERIFY(channel(1).startsWith("2|22.00"));
        deliver(1, 21, 1);
        window.reset(); // and so may the window
    }

    void dimsWhatTheInstrumentDoesNotMeasure()
    {
        add(0x11, 1);
        record(0).opt->setChOnOff(1, 0);
        measure(0, 21, 1);
        QVERIFY(channel(1).startsWith("2|21.00[gray fresh]|°С[gray fresh]|[gray fresh]|"));
        measure(0, 21, 0);
        QVERIFY(channel(0).contains("|°С[fresh]|"));
    }

    void readsTheLoggerBack()
    {
        add(0x11, 1);
        measure(0, 1, 1);
        const QDateTime start({2024, 3, 5}, {12, 0});
        for (const int index : {0, 7}) // nobody has the second one
            emit registry().onReadRec(
                index,
                {{0, {{0, 20, "°С"}, {10, -2000, "°С"}, {20, 22, "°С"}}}, {3, {{5, 19, "мВ"}}}},
                start);
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
                QCOMPARE(ground, devIndex < 0 ? QColor("#dde3e6") : QColor(Qt::white));
                QCOMPARE(find(name)->toolTip(),
                         devIndex < 0 ? "Нет связи с прибором: значения старые" : "");
            }
        }
    }

    void alarmPlaysOneAtATime()
    {
        AlarmSound sound;
        int plays = 0;
        bool finished = true;
        sound.setPlayer({[&] { plays += finished ? 1 : 100; }, [&] { return finished; }});
        for (const bool ended : {true, false, false, true}) {
            finished = ended;
            sound.play();
        }
        QCOMPARE(plays, 2);
    }

    /** The file that is built in: two tones of half scale, neither of which clicks. */
    void alarmIsTwoCleanTones()
    {
        QFile file(":/resource/alert.wav");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        constexpr int headerSize = 44;
        const auto rate = qFromLittleEndian<qint32>(bytes.constData() + 24);
        QCOMPARE(bytes.left(4) + bytes.mid(8, 8) + bytes.mid(36, 4), "RIFFWAVEfmt data");
        QCOMPARE(bytes.mid(20, 4) + bytes.mid(34, 2),
                 QByteArray("\1\0\1\0\20\0", 6)); // one of 16 bits
        QCOMPARE(qFromLittleEndian<qint32>(bytes.constData() + 4), bytes.size() - 8);
        QCOMPARE(qFromLittleEndian<qint32>(bytes.constData() + 40), bytes.size() - headerSize);
        const int count = (bytes.size() - headerSize) / 2;
        QVERIFY(count > 0.4 * rate && count < 1.5 * rate);
        const auto sample = [&bytes](int i) {
            return int(qFromLittleEndian<qint16>(bytes.constData() + headerSize + 2 * i));
        };
        const auto peak = [&](double from, double to) {
            int loudest = 0;
            for (int i = int(from * rate); i < int(to * rate); ++i)
                loudest = qMax(loudest, std::abs(sample(i)));
            return loudest;
        };
        // the second one starts where the first has faded
        QVERIFY(qMax(peak(0, 0.05), peak(0.22, 0.27)) > 32767 / 2 - 1000);
        QVERIFY(peak(0.18, 0.21) < qMin(peak(0, 0.05), peak(0.22, 0.27)) / 3);
        QVERIFY(peak(0, 1.0 / rate) < 30 &&
                peak((count - 100.0) / rate, double(count) / rate) < 30);
        int steepest = 0; // that of the tone itself, not a jump
        for (int i = 1; i < count; ++i)
            steepest = qMax(steepest, std::abs(sample(i) - sample(i - 1)));
        QVERIFY(steepest < 2 * M_PI * 1200 / rate * 32767 / 2);
    }
};

QTEST_MAIN(TestValues)
#include "tst_values.moc"
