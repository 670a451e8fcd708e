#include "calibration/referenceentry.h"
#include "calibration/referencetabs.h"
#include "dialogsfixture.h"

namespace
{

/** The bytes with another number in its place, counted over both blocks. */
QByteArray with(QByteArray bytes, int place, float number)
{
    return bytes.replace(8 * place, 8, bFloat(number).getByte().toHex());
}

/** Whether each of the seen cells is marked as changed. */
QString marks(const QString &texts)
{
    QString marks;
    for (const QString &text : texts.split(QRegExp("[|/]")))
        marks += text.startsWith('*') ? 'x' : '.';
    return marks;
}

} // namespace

/** References and zero shifts in the settings of an instrument. */
class TestReferences : public DialogsTest
{
    Q_OBJECT
private slots:
    void init()
    {
        DialogsTest::init();
        answers->answer = QMessageBox::Ok;
    }

    void modelsShowTheirReferences()
    {
        QStringList shown;
        for (const quint32 model : optionsNOX8::getTypeList(true).keys()) {
            openTab(2, model);
            image->refU.a.value = -1.23456789e-5F;
            emit image->onRefChange();
            shown << see("refTable t0Edit ch16ShiftTable refShiftGBox");
        }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/references.txt")));
    }

    /** What is not typed keeps all its digits; what a model lacks becomes zero. */
    void leavingChangesNothing()
    {
        openTab(2, noxC);
        const QByteArray before = bytes();
        press("t0Edit", {Qt::Key_Tab});
        click("pushButton");
        QCOMPARE(bytes(), before);
        QCOMPARE(heard(), QString("references, references, write references"));
        openTab(2, noxA);
        QByteArray expected = bytes();
        for (int place = 4; place < 13; ++place) // R2 to R4 follow T0 and R1
            expected = with(expected, place, 0);
        QVERIFY(settings->setRef());
        QCOMPARE(bytes(), expected);
    }

    /** By its place in the block; what is no number is refused, "nan" too, which C would read. */
    void entry()
    {
        const float refused = std::nanf("");
        struct {
            int place;
            const char *text;
            float number;
        } const entries[] = {{0, "20,5", 20.5F},         {1, "1,5", 1.5F},   {8, "-", 0.0F},
                             {15, " 2.25e-3", 0.00225F}, {0, "2o", refused}, {1, "1x", refused},
                             {15, "o.5", refused},       {5, "nan", refused}};
        for (const auto &[place, text, number] : entries) {
            const bool isRight = !std::isnan(number);
            openTab(2, noxC);
            QTableWidgetItem *const item = cell("refTable", (place - 1) / 3, (place + 2) % 3);
            const QByteArray before = bytes();
            const QString shown = place > 0 ? item->text() : see("t0Edit");
            if (place > 0) {
                type(item, text);
                QCOMPARE(item->text(), QString(text));
                click("pushButton");
            } else {
                enter("t0Edit", text);
                press("t0Edit", {Qt::Key_Tab}); // its end is told of again
            }
            QCOMPARE(bytes(), isRight ? with(before, place, number) : before);
            QCOMPARE(heard().count("write"), isRight && place > 0 ? 1 : 0);
            answers->asked.clear();
            QCOMPARE(told(), isRight ? QString()
                                     : "2 [Ошибка ввода опор] Не верные коэффициенты!\n"
                                       "Проверьте введённые значения и повторите попытку. 400/0");
            const QString now = place > 0 ? item->text() : see("t0Edit");
            QVERIFY(isRight ? now != text && now != shown : now == shown);
        }
    }

    void whatIsLeftTypedIsDropped()
    {
        openTab(2, noxC);
        QTableWidgetItem *const item = cell("refTable", 0, 0);
        write("t0Edit", "o");
        openTab(2, noxC);
        QCOMPARE(see("t0Edit"), QString("33.33"));
        startTyping(item, "o");
        openTab(2, noxC);
        QVERIFY(!item->tableWidget()->isPersistentEditorOpen(item));
        write("t0Edit", "o");
        image->setDevType(0);
        QVERIFY(!find("t0Edit")->isEnabled());
        openTab(2, noxC);
        write("t0Edit", "o");
        settings->reject();
        QCOMPARE(seenCell(item) + see("t0Edit chUPB") + seenCell(cell("rShiftTable", 0, 0)),
                 QString(" {off} | > U < {off}"));
        QVERIFY(!settings->setRef());
        QCOMPARE(told(), QString());
    }

    void questionIsRefused()
    {
        answers->answer = QMessageBox::Cancel;
        for (const bool isShift : {false, true}) {
            openTab(isShift ? 3 : 2, noxDRev4);
            const QByteArray before = bytes();
            type(cell(isShift ? "rShiftTable" : "refTable", 0, 0), "5");
            click(isShift ? "pushButton_8" : "pushButton");
            QCOMPARE(told(), QString("2 [Изменение опор] ВНИМАНИЕ! Изменение опор может привести к "
                                     "поломке прибора! 400400/400000"));
            QCOMPARE(bytes(), before);
            QCOMPARE(heard(), QString());
        }
    }

    void marksWhatDiffers()
    {
        openTab(2, noxDRev4);
        const auto marked = [this] {
            return QString(see("t0Edit").endsWith("{changed}") ? "T0 " : "") +
                   marks(see("refTable")) + ' ' + marks(see("ch8ShiftTable")) +
                   marks(see("uShiftTable")).right(9);
        };
        const QString none = "............... .................";
        QCOMPARE(marked(), none); // nothing is known
        noteHeld();
        image->refR[1].b.value *= 1.0000001F; // the shown digits are the same
        emit image->onRefChange();
        QCOMPARE(marked(), QString(none).replace(5, 1, 'x'));
        image->refT0.value = 20;
        image->refU.a.value = 1;
        image->shiftU[16].value = image->shiftCh[2].value = 1;
        emit image->onRefShiftChange();
        QCOMPARE(marked(), QString("T0 .....x.......x. ..x.............x"));
        openTab(2, noxDRev4);
        QCOMPARE(marked(), none);
    }

    void refreshLeavesWhatIsBeingTyped()
    {
        openTab(2, noxC);
        press("t0Edit", {Qt::Key_1});
        emit image->onRefChange();
        QCOMPARE(see("t0Edit"), QString("33.331"));

        QTableWidgetItem *const item = cell("refTable", 0, 0);
        QLineEdit *const editor = startTyping(item, "12");
        image->refR[0].value.value = 7;
        emit image->onRefChange();
        QCOMPARE(editor->text(), QString("12"));
        QTest::keyClick(editor, Qt::Key_Escape);
        QCOMPARE(item->text(), QString("7.0000")); // not what was there before the change
        QLineEdit *const opened = startTyping(cell("refTable", 1, 0), {});
        image->refR[1].value.value = 8;
        emit image->onRefChange();
        emit image->onRefChange();
        QCOMPARE(opened->text(), QString("8.0000"));
        QTest::keyClicks(opened, "9"); // over the whole text, as before the refresh
        QCOMPARE(opened->text(), QString("9"));
    }

    void everythingIsReachedByTab()
    {
        const QStringList orders = {
            "refGBox t0Edit refTable pushButton_2 pushButton rmDevBtn",
            "refShiftGBox rShiftTable ch8ShiftTable uShiftTable pushButton_7 chUPB pushButton_8"};
        for (const QString &order : orders) {
            openTab(2 + orders.indexOf(order), noxDRev4);
            press(order.section(' ', 0, 0), {});
            QStringList reached;
            for (int i = 0; i <= order.count(' '); ++i) {
                reached << settings->focusWidget()->objectName();
                QTest::keyClick(settings->focusWidget(), Qt::Key_Tab);
            }
            QCOMPARE(reached.join(' '), order);
        }
    }

    /** A wrong one shows by what was taken before it at which place of the order it stands. */
    void shiftsAreTakenInTheirOrder()
    {
        QVector<int> order(37, -1);
        for (int wrong = 0; wrong < 37; ++wrong) {
            QStringList texts = shownShifts(ZeroShifts()).replaceInStrings(QRegExp("$"), "1");
            texts[wrong] = "x";
            ZeroShifts entered;
            QVERIFY(!enterShifts(texts, entered));
            int taken = 0;
            forEachShift(entered, [&taken](const bFloat &shift) { taken += shift.value != 0.0F; });
            order[taken] = wrong;
        }
        QVector<int> expected{0};
        for (int k = 1; k <= 16; ++k)
            expected += k <= 4 ? QVector<int>{16 + k, 32 + k, k} : QVector<int>{16 + k, k};
        QCOMPARE(order, expected);
        ZeroShifts some;
        QVERIFY(!enterShifts(shownShifts(some).mid(1), some));
    }

    /** From their cells, up to the first wrong one. */
    void shiftsAreWritten()
    {
        openTab(3, noxCm1Rev4);
        noteHeld();
        QByteArray expected = bytes();
        for (int i = 0; i < 37; ++i)
            shiftCells().at(i)->setText(i == 1 ? "x" : QString("%1,25").arg(i + 1));
        for (const int taken : {0, 17, 33})
            expected = with(expected, 18 + taken, float(taken) + 1.25F);
        click("pushButton_8");
        QCOMPARE(bytes(), expected);
        QVERIFY(!heard().contains("write"));
        answers->asked.clear();
        QVERIFY(told().startsWith("2 [Ошибка ввода опор] Не верные коэффициенты!"));
        QCOMPARE(marks(see("uShiftTable") + '|' + see("ch8ShiftTable") + '|' + see("rShiftTable")),
                 'x' + QString(26, '.') + "x.......x...");
        shiftCells().at(1)->setText("2.25");
        for (int i = 0; i < 37; ++i)
            expected = with(expected, 18 + i, float(i) + 1.25F);
        click("pushButton_8");
        QCOMPARE(bytes(), expected);
        QCOMPARE(heard(), QString("write shifts"));
        QVERIFY(answers->told.isEmpty());
        QCOMPARE(see("uShiftTable").remove(QRegExp("\\.250+|\\*")),
                 QString("1|4|~|~|~|11|~|~|~/2|5|6|8|~|12|13|15|~/3|~|7|9|10|~|14|16|17"));
        QCOMPARE(see("uShiftTable").left(18) + see("ch16ShiftTable").section('|', 7) + ' ' +
                     see("rShiftTable").left(10),
                 QString("*1.25000|*4.250000*33.250000 *34.250000"));
        click("pushButton_8"); // unchanged texts
        QCOMPARE(bytes(), expected);
    }

    void shiftsNeverShownAreRefused()
    {
        openTab(3, noxDRev4);
        openTab(3, noxC); // no cell of another instrument stays
        const QByteArray before = bytes();
        find<QPushButton>("pushButton_8")->click();
        QCOMPARE(bytes(), before);
        QCOMPARE(answers->told.size(), 1);
    }

    void channelsAreZeroed()
    {
        int qwtIndex = 0;
        for (const auto &[model, channels] :
             {std::pair(noxDRev4, 8), std::pair(noxCmRev4, 8), std::pair(noxDRev4, 7)}) {
            openTab(3, model);
            plot->addDev(++qwtIndex, uchar(channels));
            plot->setDevMain(qwtIndex);
            QByteArray expected = bytes();
            const bool isZeroed = model == noxDRev4 && channels == 8;
            for (uchar ch = 0; ch < channels; ++ch) {
                plot->addPoint(5, 0.0, "мВ", qwtIndex, ch);
                plot->addPoint(0.001 * (ch + 1), 1.0, "мВ", qwtIndex, ch);
                const double old = double(image->shiftCh[ch].value);
                if (isZeroed)
                    expected = with(expected, 35 + ch, float(old - 0.001 * (ch + 1)));
            }
            plot->setChDiff(0, qwtIndex, qwtIndex, 1); // a difference is no reading
            find<ShiftTab>("shiftTab")->zeroChannels(nullptr, qwtIndex);
            click("chUPB"); // it is not in the plot
            QCOMPARE(heard(), QString());
            nox->qwtIndex = qwtIndex;
            click("chUPB");
            QCOMPARE(bytes(), expected);
            QCOMPARE(heard(), QString(isZeroed ? "shifts" : ""));
        }
    }

private:
    /** Opens a tab of an instrument whose numbers have more digits than are shown, and unlocks. */
    void openTab(int tab, quint32 type)
    {
        add(type);
        float number = 100.0F / 3;
        image->refT0.value = number;
        for (ReferenceTriple *triple :
             {&image->refR[0], &image->refR[1], &image->refR[2], &image->refR[3], &image->refU})
            for (bFloat *const part : {&triple->value, &triple->a, &triple->b})
                part->value = number *= 1.1F;
        forEachShift(*image, [&number](bFloat &shift) { shift.value = (number *= 1.1F) / 1e6F; });
        settings->show(nox->index);
        find<QTabWidget>("tabWidget")->setCurrentIndex(tab);
        find<ShiftTab>("shiftTab")->setServiceVisible(true);
        for (const char *group : {"refGBox", "refShiftGBox"})
            find<QGroupBox>(group)->setChecked(true);
        QVERIFY(QTest::qWaitForWindowActive(settings.get()));
        heard();
    }
    /** Bytes of the references and of the shifts. */
    QByteArray bytes() const
    {
        return (taken(image->getRefData(true)) + taken(image->getRefShiftData())).toHex();
    }
    /** What the instrument holds is known, and is what is shown. */
    void noteHeld() const
    {
        nox->held.noteRead(3, taken(image->getRefData(true)));
        nox->held.noteRead(9, taken(image->getRefShiftData()));
        emit registry->onHeldChange(nox->index);
    }
    /** The cells in which a shift can be entered, in the order of the block. */
    QVector<QTableWidgetItem *> shiftCells() const
    {
        QVector<QTableWidgetItem *> cells;
        for (const char *table : {"uShiftTable", "ch8ShiftTable", "ch16ShiftTable", "rShiftTable"})
            for (int column = 0; column < find<QTableWidget>(table)->columnCount(); ++column)
                for (int row = 0; row < find<QTableWidget>(table)->rowCount(); ++row)
                    if (cell(table, row, column)->flags() & Qt::ItemIsEnabled)
                        cells << cell(table, row, column);
        return cells;
    }
};

QTEST_MAIN(TestReferences)
#include "tst_references.moc"
