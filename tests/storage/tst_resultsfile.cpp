#include "device/windows1251.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/recmeas.h"
#include "storage/recorder.h"
#include "storage/resultsexport.h"
#include "storage/resultsreading.h"
#include "storage/savemeas.h"
#include "support/fulldisk.h"
#include "support/useranswers.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

namespace
{

const QDateTime start({2026, 11, 24}, {7, 5, 9});
const QByteArray header = toWindows1251("Начало измерений. Дата 24.11.2026 Время 07:05:09;\r\n"
                                        "\r\n"
                                        "№;dT;Канал 1;Канал 2;\r\n"
                                        " ;[c];[K];[K];\r\n");

/** The program's objects, with a recorded instrument: registry index 0, plot index 10. */
struct Bench {
    Bench()
    {
        plot.setClock([] { return start.addSecs(60); });
        addInstrument(10);
        plot.setDevMain(10);
    }

    noxList::_nox &addInstrument(int qwtIndex)
    {
        noxList::_nox *nox = registry.newNox(-1, true);
        nox->qwtIndex = qwtIndex;
        nox->recording = true;
        nox->recFileName = directory.filePath(QString("%1.csv").arg(nox->index));
        plot.addDev(qwtIndex, 2);
        plot.prepareMeas(qwtIndex, start);
        return *nox;
    }

    QTemporaryDir directory;
    noxSql database{QString()};
    NOXSerialPort port;
    noxList registry{&port, &database};
    QwtNOX plot;
    Recorder recorder{&registry, &plot};
    ResultsReading reading{&registry, &plot};
    savemeas exporting{nullptr, &plot};
};

} // namespace

/** Results files are recorded, exported and read, while anything may happen. */
class TestResultsFile : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        answers.reset();
        bench.reset();
        bench = std::make_unique<Bench>();
        answers = std::make_unique<UserAnswers>();
    }

    void fileIsReadIntoThePlot()
    {
        bench->plot.addPoint(1, 1, "K", 10, 1); // goes
        QSignalSpy ends(&bench->reading, &ResultsReading::finished);
        QSignalSpy steps(&bench->reading, &ResultsReading::progress);
        QVERIFY(!readIntoPlot("none.csv", 0) && !readIntoPlot("", 0));
        QVERIFY(!readIntoPlot(fileWith(3), 1) && ends.isEmpty());
        QCOMPARE(bench->plot.getChMeasCount(10, 1), 1);
        QVERIFY(readIntoPlot(fileWith(3), 0));
        QTRY_COMPARE(ends.size(), 1); // a slow machine needs a second slice
        QCOMPARE((QVariantList{bench->plot.getStartDateTime(10), bench->plot.getChMeas(10, 0),
                               bench->plot.getChDim(10, 0), bench->plot.getChTime(10, 0),
                               bench->plot.getChMeasCount(10, 1)}),
                 (QVariantList{start, 20.125, "°С", 2.0, 0}));
        QVERIFY(readIntoPlot(fileWith(1000000), 0));
        QVERIFY(readIntoPlot(fileWith(1000001), 0)); // in place of the first
        QCOMPARE(ends.size(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 3, 60000);
        const auto findings = ends.at(2).at(0).value<ResultsFindings>();
        QVERIFY(findings.isWhole && findings.points == 1000001 && !steps.isEmpty());
        QCOMPARE(bench->plot.getChMeasCount(10, 0), 1000001);
    }

    void readingIsInterrupted()
    {
        const auto replace = [this] {
            bench->registry.rmByIndex(0);
            bench->plot.removeDev(10);
            bench->addInstrument(10);
        };
        bool removesWhenHeard = false;
        connect(&bench->plot, &QwtNOX::onAddPoint, &bench->reading, [&] {
            if (removesWhenHeard && bench->plot.getChMeasCount(10, 0) >= 50)
                replace();
        });
        const QVector<std::function<void()>> interruptions{
            [this] { bench->reading.stop(); }, replace,
            [this] { bench->registry.setProccesed(0, true, true); },
            [this] { bench->plot.prepareMeas(10, start.addSecs(1)); }, [] {}};
        for (int what = 0; what < interruptions.size(); ++what) {
            removesWhenHeard = what == 4;
            bench->registry.setProccesed(0, true, false);
            bench->registry.setProccesed(0, false, true);
            QSignalSpy ends(&bench->reading, &ResultsReading::finished);
            QVERIFY(readIntoPlot(fileWith(1000000), 0));
            QCOMPARE(bench->reading.isRunning(), !removesWhenHeard);
            interruptions[what]();
            const int count = bench->plot.getChMeasCount(10, 0);
            QTRY_COMPARE(ends.size(), 1);
            QVERIFY(!ends[0][0].value<ResultsFindings>().isWhole && !bench->reading.isRunning());
            QCOMPARE(bench->plot.getChMeasCount(10, 0), count);
        }
    }

    void roundsAreRecorded()
    {
        noxList::_nox &other = bench->addInstrument(11);
        bench->plot.prepareMeas(11, start.addDays(1)); // its file names the main one's start
        other.recFieldSep = "\t";
        other.recPointSep = ",";
        other.recPrecision = 0;
        measure(0, 0, 7.03125, 0);
        measure(1, 0, 7.125, 0.5);
        measure(0, 1, 8, 1);
        QCOMPARE(content("0.csv"), QByteArray("no file")); // the round is not over
        measure(1, 0, 8.125, 2.5);
        measure(0, 0, 9, 3);
        measure(0, 1, -1300, 4);           // a broken sensor
        for (const int second : {5, 6, 7}) // at last channel 0 is left out
            measure(0, uchar(second > 5), second + 5, second);
        QCOMPARE(content("0.csv"), header + "1;0;7.0313;8.0000;\r\n"
                                            "2;3;9.0000;--;\r\n"
                                            "3;5;10.0000;11.0000;\r\n");
        QVERIFY(content("1.csv").startsWith(header.left(header.indexOf(';'))));
        QVERIFY(content("1.csv").endsWith("\t[c]\t[K]\t[]\t\r\n1\t1\t7,13\t--\t\r\n"));
    }

    void intervalsAreKept()
    {
        noxList::_nox &nox = *bench->registry.getNoxByIndex(0);
        nox.recInterval = 1;
        measureRounds({0, 30, 60, 61, 90, 130});
        bench->plot.prepareMeas(10, start); // times begin anew
        measureRounds({0, 5, 62, 70});
        QByteArray rows = header + "1;0;0.0000;0.0000;\r\n2;61;61.0000;-61.0000;\r\n"
                                   "3;0;0.0000;0.0000;\r\n4;62;62.0000;-62.0000;\r\n";
        nox.recording = false;
        nox.recRow = 0;
        measureRounds({300});
        QCOMPARE(content("0.csv"), rows);
        nox.recording = true; // with the first round that it sees
        measureRounds({301, 302});
        QCOMPARE(content("0.csv"), rows + "1;300;300.0000;-300.0000;\r\n");
        nox.recFileName.clear();
        QSignalSpy changes(&bench->registry, &noxList::onChange);
        measureRounds({303});
        QVERIFY(!nox.recording && changes.size() == 1);
    }

    void existingFileGoesOn()
    {
        const QByteArray row = "1;0;0.0000;0.0000;\r\n";
        const QVector<QPair<QByteArray, QByteArray>> files{{"", header + row},
                                                           {header + row, header + row + row},
                                                           {"9;\n", "9;\n" + row}, // by an editor
                                                           {"9;1;2.3", "9;1;2.3\r\n" + row},
                                                           {"9;1;2.3;\r", "9;1;2.3;\r\n" + row}};
        for (const auto &[before, after] : files) {
            init();
            setContent("0.csv", before);
            measureRounds({0, 1});
            QCOMPARE(content("0.csv"), after);
        }
    }

    void recordingOntoAFullDisk()
    {
        QSignalSpy faults(&bench->recorder, &Recorder::faultChanged);
        {
            const FullDisk disk(rlim_t(header.size() - 20)); // not even the header has room
            measureRounds({0, 1});
            QCOMPARE(content("0.csv"), QByteArray());
        }
        measureRounds({2});
        const QByteArray first = header + "1;1;1.0000;-1.0000;\r\n";
        for (int room = 0; room < 8; ++room) {
            const FullDisk disk(rlim_t(first.size() + room));
            measureRounds({3 + room});
            QCOMPARE(content("0.csv"), first);
        }
        QCOMPARE(recordingFaultText(bench->recorder.fault(0).value_or(RecordingFault())),
                 QString("Запись не ведётся с 24.11.2026 07:06:09: файл не записывается"));
        measureRounds({11});
        QCOMPARE(content("0.csv"), first + "2;10;10.0000;-10.0000;\r\n");
        QVERIFY(!bench->recorder.fault(0) && faults.size() == 4); // came and went twice
        QVERIFY(recordingFaultText({RecordingProblem::DiskFull, start})
                    .endsWith(": на диске нет места"));
    }

    void exportIsSetUp()
    {
        bench->exporting.showFor("NOX B_N0001_24-11-2026");
        QVERIFY(QTest::qWaitForWindowActive(&bench->exporting));
        QTest::keyClick(bench->exporting.focusWidget(), Qt::Key_Return); // "Файл"
        const FileQuestion question = answers->files.at(0);
        QCOMPARE((QVariantList{question.title, question.filter, question.directory, question.name,
                               question.defaultSuffix, question.asksToReplace, question.mode}),
                 (QVariantList{"Файл для сохранения результатов", "CSV (*.csv *.CSV);; * (*.*)",
                               QDir::homePath(), "NOX B_N0001_24-11-2026", "csv", true,
                               QFileDialog::AcceptSave}));
        for (const auto &[field, point] :
             {std::pair("Запятая", "Точка"), {"Пробел", "Системный"}}) {
            bench->exporting.findChild<QComboBox *>("deFieldCB")->setCurrentText(field);
            QCOMPARE(bench->exporting.findChild<QComboBox *>("dePointCB")->currentText(),
                     QString(point));
        }
    }

    void exportThatFails()
    {
        const QString failed = "Ошибка записи в файл!\nВозможно файл занят другим приложением или "
                               "не доступен для записи.";
        const QVector<std::tuple<QString, int, int, QString>> cases{
            {"", 3, 1000000, "Выберите файл для сохранения"},
            {".", 3, 1000000, failed}, // a folder
            {"none/1.csv", 3, 1000000, failed},
            {"1.csv", 0, 1000000, "Нет данных для сохранения"},
            {"1.csv", 3, 20, failed}, // a full disk, as in the next
            {"1.csv", 50000, 500000, failed}};
        for (const auto &[fileName, points, room, told] : cases) {
            init();
            setContent("1.csv", "before");
            addMain(points);
            bench->exporting.showFor("x");
            answers->file = fileName.isEmpty() ? QString() : path(fileName);
            press(&bench->exporting, "selectFileBtn");
            const FullDisk disk{rlim_t(room)};
            press(&bench->exporting, "saveBtn");
            QTRY_COMPARE(answers->told.size(), 1);
            QCOMPARE(seen(answers->told[0]), seen(Message{QMessageBox::Critical, "", told}));
            QCOMPARE(status(&bench->exporting), QString("Сохраняю..."));
            QCOMPARE(content("1.csv"), QByteArray("before"));
            // no other file is left
            QCOMPARE(QDir(path("")).entryList({"*csv*"}), QStringList{"1.csv"});
            QVERIFY(bench->exporting.findChild<QPushButton *>("saveBtn")->isEnabled());
        }
    }

    void longExport()
    {
        const auto *const progress = bench->exporting.findChild<QProgressBar *>("progressBar");
        bench->exporting.showFor("x");
        QVERIFY(QTest::qWaitForWindowActive(&bench->exporting));
        answers->file = path("1.csv");
        press(&bench->exporting, "selectFileBtn");
        for (const bool givesUp : {true, false}) {
            addMain(200000);
            press(&bench->exporting, "saveBtn");
            QVERIFY(!bench->exporting.findChild<QPushButton *>("saveBtn")->isEnabled());
            QTRY_VERIFY(progress->value() > 10);
            bench->plot.removeDev(10); // what it has measured is exported all the same
            if (givesUp) {
                QTest::keyClick(bench->exporting.focusWidget(), Qt::Key_Space);
                QCOMPARE(status(&bench->exporting), QString());
                QCOMPARE(bench->exporting.focusWidget()->objectName(), QString("saveBtn"));
                QCOMPARE(content("1.csv"), QByteArray("no file"));
            }
        }
        QTRY_COMPARE_WITH_TIMEOUT(status(&bench->exporting), QString("Сохранено!"), 60000);
        QVERIFY(!progress->isVisible());
        QVERIFY(content("1.csv").endsWith("\r\n200000;199999;199999.0000;\r\n"));
    }

    void recordingIsSetUp()
    {
        QVERIFY(provideDatabase(path("nox8.db")));
        noxSql database(path("nox8.db"));
        database.setAppProperty("recmeas_dir", path(""));
        noxList registry(&bench->port, &database);
        recmeas dialog(nullptr, &registry);
        noxList::_nox *nox = registry.newNox(-1, true);
        nox->recFieldSep = "\t";
        nox->recPointSep = ",";
        nox->recPrecision = 7;
        nox->recInterval = 120;
        dialog.showFor(nox->index, "name");
        press(&dialog, "saveBtn"); // without a file
        QVERIFY(!nox->recording && !dialog.findChild<QPushButton *>("saveBtn")->isChecked());
        QCOMPARE(status(&dialog), QString("Запись остановлена"));
        answers->file = path("folder.csv");
        press(&dialog, "selectFileBtn");
        QCOMPARE(answers->files.at(0).directory + answers->files.at(0).name, path("") + "name");
        QVERIFY(!answers->files.at(0).asksToReplace); // it is appended to
        QCOMPARE(database.getAppProperty("recmeas_dir").toString(), bench->directory.path());
        dialog.findChild<QSpinBox *>("timePointSB")->setValue(119);
        QSignalSpy changes(&registry, &noxList::onChange);
        press(&dialog, "saveBtn");
        QCOMPARE(status(&dialog), QString("Идёт запись..."));
        QCOMPARE((QVariantList{changes.size(), nox->recording, nox->recFileName, nox->recFieldSep,
                               nox->recPointSep, nox->recPrecision, nox->recInterval}),
                 (QVariantList{1, true, path("folder.csv"), "\t", ",", 7, 119}));
        nox->recRow = 5;
        press(&dialog, "saveBtn");
        QVERIFY(!nox->recording && nox->recRow == 0);

        const int index = nox->index;
        answers->meanwhile = [&] { registry.rmByIndex(index); };
        press(&dialog, "selectFileBtn");
        QVERIFY(!dialog.isVisible());
        QCOMPARE(registry.newNox(-1, true)->index, index); // another one
        press(&dialog, "saveBtn");
        QVERIFY(!registry.getNoxByIndex(index)->recording);
    }

private:
    QString path(const QString &name) const { return bench->directory.filePath(name); }
    QByteArray content(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    void setContent(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    void measure(int index, uchar ch, double value, double seconds)
    {
        bench->recorder.noteMeasurement(index, ch);
        bench->plot.addPoint(value, seconds, "K", 10 + index, ch);
    }
    /** Rounds of both channels, each of which ends the one before. */
    void measureRounds(std::initializer_list<int> starts)
    {
        for (const int second : starts) {
            measure(0, 0, second, second);
            measure(0, 1, -second, second + 0.4);
        }
    }
    /** Plots anew an instrument with so many points of one channel. */
    void addMain(int points)
    {
        bench->plot.removeDev(10);
        bench->plot.addDev(10, 0);
        bench->plot.setDevMain(10);
        for (int i = 0; i < points; ++i)
            bench->plot.addPoint(i, i, "K", 10, 0);
    }
    /** The name of a file with this many rows of two channels. */
    QString fileWith(int rows) const
    {
        QByteArray file = toWindows1251("Дата 24.11.2026 Время 07:05:09;\r\n\r\n№;dT;Канал 1;"
                                        "Канал 2;\r\n ;[c];[°С];[Ом];\r\n");
        for (int row = 0; row < rows; ++row)
            file += "1;" + QByteArray::number(row) + ";20.125;--;\r\n";
        const QString name = QString("%1 строк.csv").arg(rows);
        setContent(name, file);
        return name;
    }
    bool readIntoPlot(const QString &name, int index)
    {
        return bench->reading.open(path(name)) && bench->reading.start(index);
    }
    static QString status(const QDialog *dialog)
    {
        return dialog->findChild<QLabel *>("statusLabel")->text();
    }
    static void press(const QDialog *dialog, const char *button)
    {
        QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
    }

    std::unique_ptr<Bench> bench;
    std::unique_ptr<UserAnswers> answers;
};

QTEST_MAIN(TestResultsFile)
#include "tst_resultsfile.moc"
