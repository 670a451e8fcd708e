#include "calibration/featconfui.h"
#include "device/featurenox8.h"
#include "support/formtest.h"

namespace
{

/** What is entered over another characteristic, of which the numbers not in use are kept. */
QByteArray recordOf(int type, const QString &name, const QString &values,
                    const QByteArray &before = {})
{
    featureNOX8 feature;
    feature.setData(before);
    feature.setFeature(FeatureRecord::_featureIndType(type), name, values.split(' '));
    return encodeFeature(feature);
}

const QString polynomial = "1 2 3 4 5 6 7 8 9 10";
const QString platinum = "100 3.9083e-3 -5,775e-7 -4.183e-12 -100 450";
const QString its90 = "24.8 1 2 3 4 5 6 7 3.375";

} // namespace

/** The editor of characteristics, worked with keys and clicks. */
class TestFeatConfUi : public FormTest
{
    Q_OBJECT
private slots:
    void init()
    {
        provideSurroundings();
        m_feature = std::make_unique<featureNOX8>();
        m_feature->setData(recordOf(0, "A", polynomial));
        m_editor = new featconfui(nullptr, database.get());
    }

    void cleanup()
    {
        delete m_editor;
        m_feature.reset();
        database.reset();
    }

    void typedByHand()
    {
        const QStringList entries = {"-1e2 2 3,5  - 6 7 8 9 1e-9", platinum, its90,
                                     "0 0 100 0,6459 200 1.4"};
        for (int kind = 0; kind < 4; ++kind) {
            m_feature->setData(recordOf(kind == 0 ? 2 : 0, "", kind == 0 ? its90 : QString()));
            QVERIFY(edit([&] {
                write("featName", "Своя №7");
                choose("featType", kind);
                QCOMPARE(find("reperTPFrame")->isEnabled(), kind == 3);
                int place = 0;
                for (const QString &value : entries.at(kind).split(' ')) {
                    place += kind == 2 && place == 4; // the cell that is not used
                    const int columns = table()->columnCount();
                    type(kind == 3 ? place % 2 : place / columns,
                         kind == 3 ? place / 2 : place % columns, value);
                    ++place;
                }
                click("pushButton");
            }));
            QCOMPARE(record(), recordOf(kind, "Своя №7", entries.at(kind)));
            QCOMPARE(told(), QString());
        }
    }

    void showsEachType()
    {
        const QByteArrayList records = {
            recordOf(0, "Полином", polynomial),
            recordOf(1, "Широкая", "100 3.9083e-3 -5.775e-7 -4.183e-12 -200 850"),
            recordOf(2, "ТС", its90), recordOf(3, "Таблица", "0 0 100 0.6 200 0.5")};
        QStringList shown;
        for (const QByteArray &one : records) {
            m_feature->setData(one);
            QVERIFY(!edit([&] {
                shown << m_editor->windowTitle() << seenForm(m_editor);
                shown << labels(table()->verticalHeader()) << labels(table()->horizontalHeader());
            }));
            QCOMPARE(record(), one);
        }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/editor.txt")));
    }

    void unedited()
    {
        QByteArray unlike = recordOf(1, "A ", platinum);
        unlike.replace(44, 4, QByteArray::fromHex("c3734321")); // C0 of another fit
        const QByteArray withoutTexts =
            recordOf(0, "A", polynomial).replace(84, 200, QByteArray(200, '\0'));
        const QByteArray unknown = QByteArray(492, '\0').replace(0, 1, "\x09");
        const QString digits = "0 0 419.527 3.44691"; // more than are shown
        for (const QByteArray &one :
             {unlike, withoutTexts, encodeFeature({}), unknown, recordOf(3, "A", digits)}) {
            m_feature->setData(one);
            const QByteArray before = record();
            QVERIFY(edit([&] {
                write("featName", m_feature->name);
                table()->setFocus();
                click("pushButton");
            }));
            QCOMPARE(record(), before);
        }
        QVERIFY(edit([&] {
            write("featName", "B");
            click("pushButton");
        }));
        QCOMPARE(record(), recordOf(3, "B", digits));
    }

    void rejectedEntry()
    {
        const QByteArray before = record();
        QVERIFY(!edit([&] {
            type(1, 4, "abc");
            click("addDBBtn");
            QCOMPARE(see("noteLabel noticeLabel"),
                     QString("Значения таблицы не приняты: введены не все или с ошибкой | В БД "
                             "сохранены последние принятые значения, а не те, что в таблице"));
            click("pushButton");
            QVERIFY(m_editor->isVisible());
            QCOMPARE(told(), QString("2 [Ошибка ввода градуировки] Не верная градуировка!\n"
                                     "Проверьте введённые значения. 400/0"));
            choose("featType", 1);
            QCOMPARE(see("ratioTable"), QString("|||||"));
        }));
        QCOMPARE(record(), before);
    }

    void whatIsTypedStays()
    {
        edit([&] {
            choose("featType", 1);
            type(0, 0, "100"); // no thermometer yet
            write("featName", "Pt100");
            table()->setFocus();
            QCOMPARE(see("ratioTable"), QString("100|||||"));
            choose("featType", 3);
            typePairs("T1=0 E1=0 T3=200 E3=2 E4=3"); // the second and a T are still to come
            QCOMPARE(pairs(), QString("0||200/0||2|3 Столбцы без T не войдут: 2, 4"));
            typePairs("T2=100 E2=2.5");
            QCOMPARE(cell("ratioTable", 1, 2)->toolTip(), QString("ТЭДС не растёт с T"));
            typePairs("T4=150"); // falls
            QCOMPARE(pairs(), QString("0|100|200/0|2.5|2! T убывает, из таблицы убрано: (150; 3)\n"
                                      "ТЭДС не растёт в столбцах: 3"));
            typePairs("T4=250 E4=3 T2=300"); // more than both behind it
            QCOMPARE(pairs(),
                     QString("0|300/0|2.5 T убывает, из таблицы убрано: (200; 2) (250; 3)"));
            click("pushButton");
        });
        QCOMPARE(record().mid(44), recordOf(3, "", "0 0 300 2.5").mid(44));
    }

    void keysStayInTheirField()
    {
        QVERIFY(!edit([&] {
            QVERIFY(find<QPushButton>("pushButton_2")->isDefault());
            for (const char *field : {"featName", "searchEdit", "reperTPSpin", "dbFindCB"}) {
                press(field, {Qt::Key_Return});
                QVERIFY2(m_editor->isVisible(), field);
            }
            choose("featType", 2);
            turnWheel(find("featType")); // which would replace the table
            QCOMPARE(find<QComboBox>("featType")->currentIndex(), 2);
            table()->setFocus();
            table()->setCurrentCell(0, 4); // not in use
            QTest::keyClick(table(), Qt::Key_Return);
            QVERIFY(m_editor->isVisible());
            QTest::keyClick(table(), Qt::Key_Tab);
            QCOMPARE(m_editor->focusWidget(), find("searchEdit"));
        }));
    }

    void files()
    {
        m_feature->setData(recordOf(2, "ТС 1/2", its90));
        answers->file = directory->filePath("out.dat");
        edit([&] { click("pushButton_4"); });
        QCOMPARE(answers->files.at(0).directory, QDir::homePath());
        QCOMPARE(answers->files.at(0).name, QString("ТС 1_2.dat"));
        QFile file(answers->file);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll().replace("\r\n", "|"),
                 QByteArray("3|\xd2\xd1 1/2|24.8|1|2|3|0|4|5|6|7|3.375|"));

        m_feature->setData(recordOf(1, "", platinum));
        QVERIFY(edit([&] {
            click("pushButton_3");
            QCOMPARE(see("ratioTable"), QString("24.8|1|2|3|~-/4|5|6|7|3.375"));
            click("pushButton");
        }));
        QCOMPARE(record(), recordOf(2, "ТС 1/2", its90, recordOf(1, "", platinum)));
        QCOMPARE(answers->files.at(1).directory, directory->path());
        QCOMPARE(answers->files.at(0).title + '|' + answers->files.at(1).title,
                 QString("Сохранение градуировки в файл|Загрузка градуировки из файла"));

        answers->file = directory->path(); // a folder cannot be written
        edit([&] { click("pushButton_4"); });
        QCOMPARE(told(),
                 QString("3 [] Ошибка записи в файл!\nВозможно файл занят другим приложением "
                         "или не доступен для записи. 400/0"));
    }

    void filesWithErrors()
    {
        provideFile("x\nB\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n");
        const QByteArray before = record();
        QVERIFY(edit([&] {
            click("pushButton_3");
            QCOMPARE(told(), QString("2 [Ошибка чтения градуировки] Не верная градуировка в "
                                     "файле!\nВозможно файл повреждён, не доступен для чтения "
                                     "или имеет не верный тип. 400/0"));
            QCOMPARE(see("featName ratioTable"), QString("A | 1|2|3|4|5/6|7|8|9|10"));
            click("pushButton");
        }));
        QCOMPARE(record(), before);

        provideFile("2\r\nTP\r\n0 0\r\n100 0.6\r\n1 2 3\r\n300 2.3\r\n250 2.4\r\n400 3.2\r\n");
        QVERIFY(edit([&] {
            click("pushButton_3");
            QCOMPARE(pairs(), QString("0|100||300||400/0|0.6||2.3||3.2 T убывает, из таблицы "
                                      "убрано: (250; 2.4)\nСтолбцы без T не войдут: 3, 5"));
            click("pushButton");
        }));
        QCOMPARE(record().mid(44, 32), recordOf(3, "", "0 0 100 0.6 300 2.3 400 3.2").mid(44, 32));
    }

    void stores()
    {
        const QString stored = "<Градуировка сохранена в БД>";
        edit([&] {
            QCOMPARE(box(),
                     QString("....[Новая градуировка]<Градуировка НЕ сохранена в БД> {off}"));
            click("addDBBtn");
            QVERIFY(box().startsWith("..ri[A от ") && box().endsWith(']' + stored));
            type(0, 1, "4");
            QCOMPARE(box().left(4), QString("!sri"));
            type(0, 1, "2");
            QCOMPARE(box().left(4), QString("..ri"));
            typeText(find("infoText"), "старая");
            QCOMPARE(box().left(4), QString("!sri"));
            type(0, 0, "5");
            click("saveDBBtn");
            QVERIFY(box().startsWith("..ri[A от ") && box().endsWith("]старая" + stored));
            write("featName", "Эталон");
            click("addDBBtn");
            QVERIFY(box().startsWith("..ri[Эталон от "));
            write("featName", "A"); // which is stored as well
            table()->setFocus();
            QVERIFY(box().startsWith("!sri[Эталон от "));
        });
        m_feature->setData(recordOf(0, "A", "5 2 3 4 5 6 7 8 9 10"));
        edit(
            [&] { QVERIFY(box().startsWith("..ri[A от ") && box().endsWith("]старая" + stored)); });
    }

    void findsAndRemoves()
    {
        const QByteArray wanted = recordOf(0, "Эталон", "5 2 3 4 5 6 7 8 9 10");
        QVERIFY(database->addFeature(&wanted, "Эталон", {}) > 0);
        const auto found = [this](const QString &text) {
            write("searchEdit", text);
            return find<QComboBox>("dbFindCB")->currentText();
        };
        m_feature->setData(recordOf(2, "Другая", its90));
        QVERIFY(edit([&] {
            QCOMPARE(found("эт"), QString("Введите не менее 3-х символов"));
            QCOMPARE(found(""), QString("Новая градуировка"));
            QCOMPARE(found("этА"), QString("Найдено: 1"));
            press("dbFindCB", {Qt::Key_Down});
            QCOMPARE(see("featName ratioTable searchEdit"),
                     QString("Эталон | 5|2|3|4|5/6|7|8|9|10 | "));
            type(0, 0, "1");
            emit find<QComboBox>("dbFindCB")->activated(0); // the same one again
            QCOMPARE(see("ratioTable"), QString("5|2|3|4|5/6|7|8|9|10"));
            click("rmDBBtn"); // No
            QCOMPARE(told(),
                     QString("2 [Ввод статической характеристики] Вы уверены? 14000/10000"));
            QVERIFY(box().startsWith("..ri[Эталон от "));
            answers->answer = QMessageBox::Yes;
            click("rmDBBtn");
            QVERIFY(box().startsWith("....[Новая градуировка]"));
            click("pushButton");
        }));
        QCOMPARE(record(), wanted);
        QCOMPARE(database->findFeature("Эталон").size(), 0);
    }

    void recalculation_data()
    {
        QTest::addColumn<bool>("isOffered");
        QTest::addColumn<QString>("result");
        const QString none = "100.0|200.0/1.0000|2.0000 ";
        QTest::newRow("3.447 5,860 10.575")
            << true
            << "100.0|200.0|300|400|500|600|700|800|900|1000|1100|1200/1.0000|2.0000|2.3199|3.2596"
               "|4.2322|5.2376|6.2758|7.3469|8.4508|9.5874|10.7569|11.9513 ";
        QTest::newRow("3.461 5.86 10.575")
            << true << none + "Пересчёт: ТЭДС вне допустимого диапазона, таблица не изменена";
        QTest::newRow("3.447 5.86 -") << false << none;
        QTest::newRow("-1 5.86 10.575") << false << none;
        QTest::newRow("3.447 цинк 10.575") << false << none;
    }

    void recalculation()
    {
        QFETCH(bool, isOffered);
        const QStringList emfs = QString(QTest::currentDataTag()).split(' ');
        m_feature->setData(recordOf(3, "", "100 1 200 2"));
        edit([&] {
            find<QSpinBox>("reperTPSpin")->setValue(3);
            QTimer::singleShot(0, m_editor, [&] {
                QWidget *const dialog = QApplication::activeModalWidget();
                const QStringList fields = {"lineEdit", "lineEdit_2", "lineEdit_3"};
                for (int i = 0; i < 3; ++i)
                    typeText(dialog->findChild<QLineEdit *>(fields.at(i)), emfs.at(i));
                QCOMPARE(dialog->findChild<QPushButton *>("pushButton_2")->isEnabled(), isOffered);
                QTest::keyClick(dialog->findChild<QLineEdit *>("lineEdit_3"), Qt::Key_Return);
                if (!isOffered)
                    QTest::keyClick(dialog, Qt::Key_Escape);
            });
            click("reperTPBtn");
            QTEST(pairs() + find<QLabel>("noticeLabel")->text(), "result");
        });
    }

    void characteristicGoes()
    {
        QVERIFY(!edit([&] {
            m_feature->setData(record());
            QCOMPARE(see("noticeLabel"), QString("Градуировка прочитана из прибора заново; "
                                                 "введённое здесь не изменилось"));
            type(0, 0, "77");
            m_feature.reset();
            QCOMPARE(see("noticeLabel pushButton"),
                     QString("Прибор удалён: применить градуировку некуда, но можно сохранить её в "
                             "БД или в файл | Применить {off}"));
            click("addDBBtn");
            QCOMPARE(cell("ratioTable", 0, 0)->text(), QString("77"));
        }));
        QCOMPARE(database->findFeature("A").size(), 1);
    }

    /** While it waits, edits a cell, asks for a file to read or to write, or about a removal, or
     *  while it recalculates. */
    void editorGoes()
    {
        for (const QByteArray meanwhile :
             {"nothing", "ratioTable", "pushButton_3", "pushButton_4", "rmDBBtn", "reperTPBtn"}) {
            cleanup();
            init();
            m_feature->setData(recordOf(3, "", "100 1 200 2"));
            const QByteArray before = record();
            answers->file = directory->filePath("out.dat");
            answers->answer = QMessageBox::Yes;
            const auto destroy = [this] { delete m_editor; };
            answers->meanwhile = destroy;
            // a button must not be destroyed while it is clicked by an event of its own
            QTimer::singleShot(0, m_editor, [this] { click("addDBBtn"); });
            QTimer::singleShot(0, this, [this, meanwhile, destroy] {
                if (meanwhile == "ratioTable")
                    startTyping(cell("ratioTable", 0, 0), "5");
                auto *const button = find<QPushButton>(meanwhile);
                if (!button)
                    return destroy();
                QTimer::singleShot(0, m_editor, destroy); // for the nested dialog
                button->click();
            });
            QVERIFY2(!m_editor->show(m_feature.get()), meanwhile);
            QVERIFY(!m_editor);
            QCOMPARE(record(), before);
            QVERIFY(!QFile::exists(directory->filePath("out.dat")));
        }
    }

private:
    QWidget *form() const override { return m_editor; }
    /** Does some work in the open editor and cancels; whether it was applied before. */
    bool edit(const std::function<void()> &work)
    {
        QTimer::singleShot(0, m_editor, [this, work] {
            if (QTest::qWaitForWindowActive(m_editor))
                work();
            if (m_editor && m_editor->isVisible())
                click("pushButton_2");
        });
        return m_editor->show(m_feature.get());
    }
    QTableWidget *table() const { return find<QTableWidget>("ratioTable"); }
    void type(int row, int column, const QString &text) const
    {
        FormTest::type(cell("ratioTable", row, column), text, Qt::Key_Return);
    }
    /** Types into the cells of pairs: "T2=100" the temperature of the second. */
    void typePairs(const QString &entries) const
    {
        for (const QString &entry : entries.split(' '))
            type(entry.at(0) == 'E', entry.mid(1, 1).toInt() - 1, entry.mid(3));
    }
    /** The pairs up to the last one, and what is noted on them. */
    QString pairs() const
    {
        const QRegExp rest("\\|+$");
        return seenRow(table(), 0).remove(rest) + '/' + seenRow(table(), 1).remove(rest) + ' ' +
               find<QLabel>("noteLabel")->text();
    }
    /** What stands in a header of the table. */
    static QString labels(const QHeaderView *header)
    {
        QStringList texts;
        for (int i = 0; i < header->count() && header->isVisible(); ++i)
            texts << header->model()->headerData(i, header->orientation()).toString();
        return texts.join('|') + '.';
    }
    void provideFile(const QByteArray &content) const
    {
        answers->file = directory->filePath("in.dat");
        QFile file(answers->file);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    QByteArray record() const { return encodeFeature(*m_feature); }

    std::unique_ptr<featureNOX8> m_feature;
    QPointer<featconfui> m_editor;
};

QTEST_MAIN(TestFeatConfUi)
#include "tst_featconfui.moc"
