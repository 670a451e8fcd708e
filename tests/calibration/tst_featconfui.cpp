#include "calibration/featconfui.h"
#include "device/featurenox8.h"
#include "storage/noxsql.h"
#include "support/menukeys.h"
#include "support/seenform.h"
#include "support/useranswers.h"

#include <memory>

namespace
{

using Type = FeatureRecord::_featureIndType;

/** What is entered over another characteristic, of which the numbers not in use are kept. */
QByteArray recordOf(int type, const QString &name, const QStringList &values,
                    const QByteArray &before = {})
{
    featureNOX8 feature;
    feature.setData(before);
    feature.setFeature(Type(type), name, values);
    return encodeFeature(feature);
}

const QStringList platinum = {"100", "3.9083e-3", "-5,775e-7", "-4.183e-12", "-100", "450"};
const QStringList its90 = {"24.8", "1", "2", "3", "4", "5", "6", "7", "3.375"};

} // namespace

/** The editor of characteristics, worked with keys and clicks. */
class TestFeatConfUi : public QObject
{
    Q_OBJECT
private slots:

    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
        m_database = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
        m_feature = std::make_unique<featureNOX8>();
        m_feature->setData(recordOf(0, "A", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
        m_editor = new featconfui(nullptr, m_database.get());
        m_answers = std::make_unique<UserAnswers>();
    }

    void cleanup()
    {
        delete m_editor;
        m_feature.reset();
        m_database.reset();
        m_answers.reset();
    }

    void typedByHand_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<int>("columns");
        QTest::newRow("0") << QStringList{"-1e2", "2", "3,5", "", "-", "6", "7", "8", "9", "1e-9"}
                           << 5;
        QTest::newRow("1") << platinum << 6;
        QTest::newRow("2") << its90 << 5;
        QTest::newRow("3") << QStringList{"0", "0", "100", "0,6459", "200", "1.4"} << 0;
    }

    void typedByHand()
    {
        QFETCH(QStringList, values);
        QFETCH(int, columns);
        const int kind = QByteArray(QTest::currentDataTag()).toInt();
        m_feature->setData(recordOf(kind == 0 ? 2 : 0, "", kind == 0 ? its90 : QStringList{}));
        const bool isApplied = edit([&] {
            name("Своя №7");
            select(kind);
            QCOMPARE(find<QFrame>("reperTPFrame")->isEnabled(), kind == 3);
            for (int k = 0; k < values.size(); ++k) {
                const int place = kind == 2 && k > 3 ? k + 1 : k; // after the cell that is not used
                const QPoint at =
                    kind == 3 ? QPoint(k / 2, k % 2) : QPoint(place % columns, place / columns);
                type(at.y(), at.x(), values.at(k));
            }
            press("pushButton");
        });
        QVERIFY(isApplied);
        QCOMPARE(record(), recordOf(kind, "Своя №7", values));
        QCOMPARE(told(), QString());
    }

    void showsEachType()
    {
        const QVector<QByteArray> records = {
            recordOf(0, "Полином", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}),
            recordOf(1, "Широкая", {"100", "3.9083e-3", "-5.775e-7", "-4.183e-12", "-200", "850"}),
            recordOf(2, "ТС", its90),
            recordOf(3, "Таблица", {"0", "0", "100", "0.6", "200", "0.5"})};
        QStringList shown;
        for (const QByteArray &one : records) {
            m_feature->setData(one);
            QVERIFY(!edit([&] {
                shown << m_editor->windowTitle() << seenForm(m_editor);
                shown << QString("%1 headers")
                             .arg(int(table()->verticalHeader()->isVisible()) +
                                  2 * int(table()->horizontalHeader()->isVisible()));
            }));
            QCOMPARE(record(), one);
        }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/editor.txt")));
    }

    void unedited_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QByteArray unlike = recordOf(1, "A ", platinum);
        unlike.replace(44, 4, QByteArray::fromHex("c3734321")); // C0 of another fit
        QTest::newRow("another fit, a blank in the name") << unlike;
        QTest::newRow("more digits than are shown")
            << recordOf(3, "A", {"0", "0", "419.527", "3.44691"});
        QTest::newRow("numbers without texts")
            << recordOf(0, "A", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"})
                   .replace(84, 200, QByteArray(200, '\0'));
        QTest::newRow("none yet") << encodeFeature({});
        QByteArray unknown(492, '\0');
        unknown[0] = 9;
        QTest::newRow("of an unknown type") << unknown;
    }

    void unedited()
    {
        QFETCH(QByteArray, bytes);
        m_feature->setData(bytes);
        const QByteArray before = record();
        QVERIFY(edit([&] {
            name(m_feature->name);
            table()->setFocus();
            press("pushButton");
        }));
        QCOMPARE(record(), before);
    }

    void anotherNameAlone()
    {
        m_feature->setData(recordOf(3, "A", {"0", "0", "419.527", "3.44691"}));
        QVERIFY(edit([&] {
            name("B");
            press("pushButton");
        }));
        QCOMPARE(record(), recordOf(3, "B", {"0", "0", "419.527", "3.44691"}));
    }

    void rejectedEntry()
    {
        const QByteArray before = record();
        QVERIFY(!edit([&] {
            type(1, 4, "abc");
            press("addDBBtn");
            QVERIFY(label("noticeLabel").contains("последние принятые значения"));
            press("pushButton");
            QVERIFY(m_editor->isVisible());
            QCOMPARE(told(),
                     QString("2 [Ошибка ввода градуировки] Не верная градуировка!\nПроверьте "
                             "введённые значения. 400/0"));
            select(1);
            QCOMPARE(table()->columnCount(), 6);
            QCOMPARE(cell(0, 0), QString());
        }));
        QCOMPARE(record(), before);
    }

    void whatIsTypedStays()
    {
        edit([&] {
            select(1);
            type(0, 0, "100"); // no thermometer yet
            name("Pt100");
            table()->setFocus();
            QCOMPARE(cell(0, 0), QString("100"));

            select(3);
            type(0, 0, "0");
            type(1, 0, "0");
            type(0, 2, "200"); // the second column is still to come
            type(1, 2, "2");
            type(1, 3, "3"); // as is the T of the fourth
            QCOMPARE(cell(0, 2) + ' ' + cell(1, 2) + ' ' + cell(1, 3), QString("200 2 3"));
            QVERIFY(label("noteLabel").contains("2, 4"));
            type(0, 1, "100");
            type(1, 1, "2.5");
            QCOMPARE(table()->item(1, 2)->toolTip(), QString("ТЭДС не растёт с T"));
            type(0, 3, "150"); // falls
            QCOMPARE(cell(0, 3) + cell(1, 3), QString());
            QVERIFY(label("noteLabel").contains("(150; 3)"));
            type(0, 3, "250");
            type(1, 3, "3");
            type(0, 1, "300"); // more than both behind it
            QCOMPARE(cell(0, 2) + cell(0, 3), QString());
            QVERIFY(label("noteLabel").contains("(200; 2) (250; 3)"));
            press("pushButton");
        });
        QCOMPARE(record().mid(44, 448), recordOf(3, "", {"0", "0", "300", "2.5"}).mid(44, 448));
    }

    void keysStayInTheirField()
    {
        QVERIFY(!edit([&] {
            QVERIFY(find<QPushButton>("pushButton_2")->isDefault());
            for (const char *field : {"featName", "searchEdit", "reperTPSpin", "dbFindCB"}) {
                QWidget *const widget = find<QWidget>(field);
                widget->setFocus();
                QTest::keyClick(widget, Qt::Key_Return);
                QVERIFY2(m_editor->isVisible(), field);
            }
            select(2);
            table()->setFocus();
            table()->setCurrentCell(0, 4); // not in use
            QTest::keyClick(table(), Qt::Key_Return);
            QVERIFY(m_editor->isVisible());
            QTest::keyClick(table(), Qt::Key_Tab);
            QCOMPARE(m_editor->focusWidget(), find<QWidget>("searchEdit"));
        }));
    }

    void savedFile()
    {
        m_feature->setData(recordOf(2, "ТС 1/2", its90));
        m_answers->file = m_directory->filePath("out.dat");
        edit([&] { press("pushButton_4"); });
        QCOMPARE(m_answers->files.at(0).directory, QDir::homePath());
        QCOMPARE(m_answers->files.at(0).name, QString("ТС 1_2.dat"));
        QFile file(m_answers->file);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(
            file.readAll(),
            QByteArray(
                "3\r\n\xd2\xd1 1/2\r\n24.8\r\n1\r\n2\r\n3\r\n0\r\n4\r\n5\r\n6\r\n7\r\n3.375\r\n"));

        m_feature->setData(recordOf(1, "", platinum));
        QVERIFY(edit([&] {
            press("pushButton_3");
            QCOMPARE(cell(0, 4), QString("-"));
            press("pushButton");
        }));
        QCOMPARE(record(), recordOf(2, "ТС 1/2", its90, recordOf(1, "", platinum)));
        QCOMPARE(m_answers->files.at(1).directory, m_directory->path());

        m_answers->file = m_directory->path(); // a folder cannot be written
        edit([&] { press("pushButton_4"); });
        QCOMPARE(told(),
                 QString("3 [] Ошибка записи в файл!\nВозможно файл занят другим приложением "
                         "или не доступен для записи. 400/0"));
    }

    void tableOutlivesItsFile_data()
    {
        QTest::addColumn<QStringList>("pairs");
        QTest::newRow("above 0") << QStringList{"0", "0", "100", "1", "200", "2", "300", "3"};
        QTest::newRow("up to 0") << QStringList{"-200", "-3", "-100", "-2", "0", "0"};
    }

    void tableOutlivesItsFile()
    {
        QFETCH(QStringList, pairs);
        m_answers->file = m_directory->filePath("table.dat");
        m_feature->setData(recordOf(3, "Т", pairs));
        const QByteArray before = record();
        edit([&] { press("pushButton_4"); });
        m_feature->setData(recordOf(3, "", {"1", "1", "2", "2"}));
        QVERIFY(edit([&] {
            press("pushButton_3");
            QCOMPARE(cell(0, pairs.size() / 2), QString());
            press("pushButton");
        }));
        QCOMPARE(record(), before);
    }

    void fileWithBadLines()
    {
        m_answers->file =
            write("2\r\nTP\r\n0 0\r\n100 0.6\r\n1 2 3\r\n300 2.3\r\n250 2.4\r\n400 3.2\r\n");
        QVERIFY(edit([&] {
            press("pushButton_3");
            QCOMPARE(cell(0, 2) + cell(1, 2), QString());
            QCOMPARE(cell(0, 3) + ' ' + cell(1, 3), QString("300 2.3"));
            QCOMPARE(cell(0, 5) + ' ' + cell(1, 5), QString("400 3.2"));
            QVERIFY(label("noteLabel").contains("(250; 2.4)"));
            press("pushButton");
        }));
        QCOMPARE(record().mid(44, 32),
                 recordOf(3, "", {"0", "0", "100", "0.6", "300", "2.3", "400", "3.2"}).mid(44, 32));
    }

    void unreadableFile()
    {
        m_answers->file = write("x\nB\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n");
        const QByteArray before = record();
        QVERIFY(edit([&] {
            press("pushButton_3");
            QCOMPARE(told(), QString("2 [Ошибка чтения градуировки] Не верная градуировка в "
                                     "файле!\nВозможно файл повреждён, не доступен для чтения "
                                     "или имеет не верный тип. 400/0"));
            QCOMPARE(find<QLineEdit>("featName")->text(), QString("A"));
            QCOMPARE(cell(1, 4), QString("10"));
            press("pushButton");
        }));
        QCOMPARE(record(), before);
    }

    void storedCharacteristics()
    {
        const auto state = [this] {
            return QStringList{find<QPlainTextEdit>("infoText")->placeholderText(),
                               find<QLabel>("dbStatusLabel")->isVisible() ? "[!]" : "",
                               find<QPushButton>("saveDBBtn")->isEnabled() ? "save" : "",
                               find<QPushButton>("rmDBBtn")->isEnabled() ? "rm" : ""}
                .join(' ');
        };
        QComboBox *const list = find<QComboBox>("dbFindCB");
        QLineEdit *const search = find<QLineEdit>("searchEdit");
        edit([&] {
            QCOMPARE(state(), QString("Градуировка НЕ сохранена в БД   "));
            QCOMPARE(list->currentText(), QString("Новая градуировка"));
            press("addDBBtn");
            QCOMPARE(state(), QString("Градуировка сохранена в БД   rm"));
            type(0, 1, "4");
            QCOMPARE(state(), QString("Градуировка сохранена в БД [!] save rm"));
            type(0, 1, "2");
            QCOMPARE(state(), QString("Градуировка сохранена в БД   rm"));
            typeText(find<QPlainTextEdit>("infoText"), "старая");
            type(0, 0, "5");
            QCOMPARE(state(), QString("Градуировка сохранена в БД [!] save rm"));
            press("saveDBBtn");
            QCOMPARE(state(), QString("Градуировка сохранена в БД   rm"));
            QCOMPARE(find<QPlainTextEdit>("infoText")->toPlainText(), QString("старая"));
            name("Эталон");
            press("addDBBtn");
        });
        QCOMPARE(m_database->findFeature("A").at(0).info, QString("старая"));

        m_feature->setData(recordOf(2, "Другая", its90));
        QVERIFY(edit([&] {
            typeText(search, "эт");
            QCOMPARE(list->currentText(), QString("Введите не менее 3-х символов"));
            typeText(search, "АЛ");
            QCOMPARE(list->currentText(), QString("Найдено: 1"));
            QTest::keyClick(list, Qt::Key_Down);
            QCOMPARE(find<QLineEdit>("featName")->text(), QString("Эталон"));
            QCOMPARE(cell(0, 0), QString("5"));
            QVERIFY(list->currentText().startsWith("Эталон от "));
            press("rmDBBtn"); // No
            QCOMPARE(seen(m_answers->asked.takeLast()),
                     QString("2 [Ввод статической характеристики] Вы уверены? 14000/10000"));
            QVERIFY(state().endsWith("rm"));
            m_answers->answer = QMessageBox::Yes;
            press("rmDBBtn");
            QCOMPARE(state(), QString("Градуировка НЕ сохранена в БД   "));
            press("pushButton");
        }));
        QCOMPARE(record(),
                 recordOf(0, "Эталон", {"5", "2", "3", "4", "5", "6", "7", "8", "9", "10"}));
        QCOMPARE(m_database->findFeature("Эталон").size(), 0);
        QCOMPARE(m_database->findFeature("A").size(), 1);
    }

    void recalculation_data()
    {
        QTest::addColumn<QStringList>("emfs");
        QTest::addColumn<bool>("isOffered");
        QTest::addColumn<QString>("result");
        const QString all = "100.0 200.0 300 400 500 600 700 800 900 1000 1100 1200 |"
                            "1.0000 2.0000 2.3199 3.2596 4.2322 5.2376 6.2758 7.3469 8.4508 9.5874 "
                            "10.7569 11.9513 ";
        const QString none = "100.0 200.0           |1.0000 2.0000           ";
        QTest::newRow("point and comma") << QStringList{"3.447", "5,860", "10.575"} << true << all;
        QTest::newRow("between keys") << QStringList{"3.4469", "5.8601", "10.5748"} << true << all;
        QTest::newRow("zinc out of range")
            << QStringList{"3.461", "5.86", "10.575"} << true << none;
        QTest::newRow("nothing") << QStringList{"3.447", "5.86", "-"} << false << none;
        QTest::newRow("negative") << QStringList{"-1", "5.86", "10.575"} << false << none;
        QTest::newRow("a word") << QStringList{"3.447", "цинк", "10.575"} << false << none;
    }

    void recalculation()
    {
        QFETCH(QStringList, emfs);
        QFETCH(bool, isOffered);
        QFETCH(QString, result);
        m_feature->setData(recordOf(3, "", {"100", "1", "200", "2"}));
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
            press("reperTPBtn");
            QString shown;
            for (int row = 0; row < 2; ++row)
                for (int column = 0; column < 13; ++column)
                    shown += cell(row, column) + (row == 0 && column == 12 ? "|"
                                                  : column == 12           ? ""
                                                                           : " ");
            QCOMPARE(shown, result);
        });
    }

    void characteristicGoes()
    {
        QVERIFY(!edit([&] {
            m_feature->setData(record());
            QVERIFY(label("noticeLabel").contains("прочитана из прибора заново"));
            type(0, 0, "77");
            m_feature.reset();
            QVERIFY(label("noticeLabel").contains("Прибор удалён"));
            QVERIFY(!find<QPushButton>("pushButton")->isEnabled());
            press("addDBBtn");
            QCOMPARE(cell(0, 0), QString("77"));
        }));
        QCOMPARE(m_database->findFeature("A").size(), 1);
    }

    void editorGoes_data()
    {
        QTest::addColumn<QByteArray>("button");
        QTest::newRow("while it waits") << QByteArray("");
        QTest::newRow("while a cell is edited") << QByteArray("ratioTable");
        QTest::newRow("while it asks for a file to read") << QByteArray("pushButton_3");
        QTest::newRow("while it asks for a file to write") << QByteArray("pushButton_4");
        QTest::newRow("while it asks about a removal") << QByteArray("rmDBBtn");
        QTest::newRow("while it recalculates") << QByteArray("reperTPBtn");
    }

    void editorGoes()
    {
        QFETCH(QByteArray, button);
        m_feature->setData(recordOf(3, "", {"100", "1", "200", "2"}));
        const QByteArray before = record();
        m_answers->file = m_directory->filePath("out.dat");
        const auto destroy = [this] { delete m_editor; };
        m_answers->answer = QMessageBox::Yes;
        m_answers->meanwhile = destroy;
        // a button must not be destroyed while it is clicked by an event of its own
        QTimer::singleShot(0, m_editor, [this] { press("addDBBtn"); });
        QTimer::singleShot(0, this, [this, button, destroy] {
            if (button.isEmpty())
                return destroy();
            if (QTableWidget *const cells = find<QTableWidget>(button.constData())) {
                cells->setCurrentCell(0, 0);
                typeText(cells, "5");
                return destroy();
            }
            QTimer::singleShot(0, m_editor, destroy); // for the nested dialog
            find<QPushButton>(button.constData())->click();
        });
        QVERIFY(!m_editor->show(m_feature.get()));
        QVERIFY(!m_editor);
        QCOMPARE(record(), before);
        QVERIFY(!QFile::exists(m_directory->filePath("out.dat")));
    }

private:
    /** Does some work in the open editor and cancels; whether it was applied before. */
    bool edit(const std::function<void()> &work)
    {
        QTimer::singleShot(0, m_editor, [this, work] {
            if (QTest::qWaitForWindowActive(m_editor))
                work();
            if (m_editor && m_editor->isVisible())
                press("pushButton_2");
        });
        return m_editor->show(m_feature.get());
    }
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return m_editor->findChild<Widget *>(name);
    }
    QTableWidget *table() const { return find<QTableWidget>("ratioTable"); }
    QString cell(int row, int column) const { return table()->item(row, column)->text(); }
    QString label(const char *name) const { return find<QLabel>(name)->text(); }
    void press(const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    void select(int type) const
    {
        QTest::keyClick(find<QComboBox>("featType"), Qt::Key_Home);
        for (int i = 0; i < type; ++i)
            QTest::keyClick(find<QComboBox>("featType"), Qt::Key_Down);
    }

    void type(int row, int column, const QString &text) const
    {
        table()->setFocus();
        table()->setCurrentCell(row, column);
        QTest::keyClick(table(), Qt::Key_Return);
        QWidget *const editor = table()->indexWidget(table()->currentIndex());
        QVERIFY(editor);
        QTest::keyClick(editor, Qt::Key_Delete);
        typeText(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        QCoreApplication::processEvents();
    }

    void name(const QString &text) const
    {
        auto *const field = find<QLineEdit>("featName");
        field->setFocus();
        field->selectAll();
        QTest::keyClick(field, Qt::Key_Delete);
        typeText(field, text);
    }

    QString write(const QByteArray &content) const
    {
        QFile file(m_directory->filePath("in.dat"));
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
                   ? file.fileName()
                   : QString();
    }
    /** What was told, a message a line. */
    QString told() const
    {
        QStringList texts;
        for (const Message &message : qAsConst(m_answers->told))
            texts << seen(message);
        return texts.join('\n');
    }
    QByteArray record() const { return encodeFeature(*m_feature); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<featureNOX8> m_feature;
    QPointer<featconfui> m_editor;
    std::unique_ptr<UserAnswers> m_answers;
};

QTEST_MAIN(TestFeatConfUi)
#include "tst_featconfui.moc"
