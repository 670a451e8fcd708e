#include "calibration/referenceentry.h"
#include "calibration/referencetabs.h"
#include "device/optionsnox8.h"
#include "plot/qwtnox.h"
#include "support/formtest.h"

namespace
{

constexpr quint32 noxA = 0x01;
constexpr quint32 noxC = 0x21;
constexpr quint32 noxCmRev4 = 0x0950AA0F;
constexpr quint32 noxCm1Rev4 = 0x0960AA0F;
constexpr quint32 noxDRev4 = 0x0970AA0F;

/** Bytes of the references and of the shifts. */
QByteArray bytesOf(const optionsNOX8 &image)
{
    const std::unique_ptr<QByteArray> references(image.getRefData(true));
    const std::unique_ptr<QByteArray> shifts(image.getRefShiftData());
    return (*references + *shifts).toHex();
}

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

/** The two tabs in a window that connects them as the settings dialog does. */
class TestInstrumentReferences : public FormTest
{
    Q_OBJECT
private slots:
    void init()
    {
        answers.reset();
        answers = std::make_unique<UserAnswers>();
        answers->answer = QMessageBox::Ok;
        held.reset();
        heldShifts.reset();
        window = std::make_unique<QWidget>();
        references = new ReferenceTab;
        shifts = new ShiftTab;
        auto *const layout = new QVBoxLayout(window.get());
        layout->addWidget(references);
        layout->addWidget(shifts);
        connect(find<QLineEdit>("t0Edit"), &QLineEdit::editingFinished, this,
                [this] { references->take(); });
        connect(find<QPushButton>("pushButton"), &QPushButton::clicked, references,
                &ReferenceTab::write);
        connect(find<QPushButton>("pushButton_8"), &QPushButton::clicked, shifts, &ShiftTab::write);
        connect(shifts, &ShiftTab::taken, this, [this] { heard << "taken"; });
    }
    void cleanup()
    {
        window.reset();
        image.reset();
    }

    void modelsShowTheirReferences()
    {
        QStringList shown;
        for (const quint32 model :
             {0U, noxA, 0x11U, noxC, 0x22U, 0x31U, 0x41U, noxCmRev4, noxCm1Rev4, noxDRev4}) {
            show(model);
            image->refU.a.value = -1.23456789e-5F;
            emit image->onRefChange();
            shifts->followModel();
            shown << see("refTable t0Edit ch16ShiftTable refShiftGBox");
        }
        QCOMPARE(shown, linesOf(QFINDTESTDATA("data/references.txt")));
    }

    /** What is not typed keeps all its digits; what a model lacks becomes zero. */
    void leavingChangesNothing()
    {
        show(noxC);
        const QByteArray before = bytesOf(*image);
        press("t0Edit", {Qt::Key_Tab});
        click("pushButton");
        QCOMPARE(bytesOf(*image), before);
        QCOMPARE(heard.join(' '), QString("references references write"));
        show(noxA);
        QByteArray expected = bytesOf(*image);
        for (int place = 4; place < 13; ++place) // R2 to R4 follow T0 and R1
            expected = with(expected, place, 0);
        QVERIFY(references->take());
        QCOMPARE(bytesOf(*image), expected);
    }

    void entry_data()
    {
        QTest::addColumn<int>("place"); // in the block
        QTest::addColumn<float>("number");
        const float refused = std::nanf("");
        QTest::newRow("1,5") << 1 << 1.5F;
        QTest::newRow(" 2.25e-3") << 15 << 0.00225F;
        QTest::newRow("-") << 8 << 0.0F;
        QTest::newRow("1x") << 1 << refused;
        QTest::newRow("o.5") << 15 << refused;
        QTest::newRow("nan") << 5 << refused; // C would read it
        QTest::newRow("2o") << 0 << refused;
    }

    void entry()
    {
        QFETCH(int, place);
        QFETCH(float, number);
        const QString text = QTest::currentDataTag();
        const bool isRight = !std::isnan(number);
        show(noxC);
        QTableWidgetItem *const item = cell("refTable", (place - 1) / 3, (place + 2) % 3);
        const auto shown = [&] { return place > 0 ? item->text() : see("t0Edit"); };
        const QString before = shown();
        const QByteArray bytes = bytesOf(*image);
        if (place > 0) {
            type(item, text);
            QCOMPARE(item->text(), text);
            click("pushButton");
        } else {
            enter("t0Edit", text);
            press("t0Edit", {Qt::Key_Tab}); // its end is told of again
        }
        QCOMPARE(bytesOf(*image), isRight ? with(bytes, place, number) : bytes);
        QCOMPARE(heard.count("write"), isRight ? 1 : 0);
        answers->asked.clear();
        QCOMPARE(told(), isRight ? QString()
                                 : "2 [Ошибка ввода опор] Не верные коэффициенты!\n"
                                   "Проверьте введённые значения и повторите попытку. 400/0");
        QVERIFY(isRight ? shown() != text && shown() != before : shown() == before);
    }

    void whatIsLeftTypedIsDropped()
    {
        show(noxC);
        write("t0Edit", "o");
        references->setImage(image.get());
        QCOMPARE(see("t0Edit"), QString("33.33"));
        QTableWidgetItem *const item = cell("refTable", 0, 0);
        startTyping(item, "o");
        references->setImage(image.get());
        QVERIFY(!item->tableWidget()->isPersistentEditorOpen(item));
        for (const bool isLocked : {true, false}) {
            find<QGroupBox>("refGBox")->setChecked(true);
            references->setAvailable(true);
            write("t0Edit", "o");
            if (isLocked)
                references->lock();
            else
                references->setAvailable(false);
            QVERIFY(!find("t0Edit")->isEnabled());
        }
        shifts->lock();
        QVERIFY(!find("chUPB")->isEnabled() && answers->told.isEmpty());
        references->setImage(nullptr);
        shifts->setImage(nullptr);
        QCOMPARE(seenCell(item) + see("t0Edit") + seenCell(cell("rShiftTable", 0, 0)),
                 QString(" {off}"));
        QVERIFY(!references->take());
    }

    void questionIsRefused()
    {
        show(noxDRev4);
        answers->answer = QMessageBox::Cancel;
        const QByteArray before = bytesOf(*image);
        type(cell("refTable", 0, 0), "5");
        type(cell("rShiftTable", 0, 0), "5");
        for (const char *button : {"pushButton", "pushButton_8"}) {
            click(button);
            QCOMPARE(told(), QString("2 [Изменение опор] ВНИМАНИЕ! Изменение опор может привести к "
                                     "поломке прибора! 400400/400000"));
        }
        QCOMPARE(bytesOf(*image), before);
        QCOMPARE(heard, QStringList());
    }

    void goneDuringTheQuestion()
    {
        for (const char *button : {"pushButton", "pushButton_8"})
            for (const bool another : {true, false}) {
                show(noxDRev4);
                answers->meanwhile = [this, another] {
                    image.reset();
                    if (another)
                        show(noxDRev4);
                };
                click(button);
                QCOMPARE(answers->told.size() + heard.size(), 0);
            }
        refresh();
        show(noxC);
        answers->meanwhile = [this] { window.reset(); };
        references->write();
        QCOMPARE(heard.size(), 0);
    }

    void marksWhatDiffers()
    {
        show(noxDRev4);
        const auto marked = [this] {
            return QString(see("t0Edit").endsWith("{changed}") ? "T0 " : "") +
                   marks(see("refTable")) + ' ' + marks(see("ch8ShiftTable")) +
                   marks(see("uShiftTable")).right(9);
        };
        const QString none = "............... .................";
        QCOMPARE(marked(), none); // nothing is known
        held = *image;
        held->refR[1].b.value *= 1.0000001F; // the shown digits are the same
        emit image->onRefChange();
        QCOMPARE(marked(), QString(none).replace(5, 1, 'x'));
        held->refT0.value = 20;
        held->refU.a.value = 1;
        heldShifts = *image;
        heldShifts->shiftU[16].value = heldShifts->shiftCh[2].value = 1;
        emit image->onRefChange();
        QCOMPARE(marked(), QString("T0 .....x.......x. ..x.............x"));
        shifts->setImage(image.get());
        references->setImage(image.get());
        QCOMPARE(marked(), none);
    }

    void refreshLeavesWhatIsBeingTyped()
    {
        show(noxC);
        press("t0Edit", {Qt::Key_1});
        refresh();
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
        refresh();
        QTest::keyClicks(opened, "9"); // over the whole text, as before the refresh
        QCOMPARE(opened->text(), QString("9"));
    }

    void everythingIsReachedByTab()
    {
        show(noxDRev4);
        find("refGBox")->setFocus();
        QStringList order;
        for (int i = 0; i < 12; ++i) {
            QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
            order << window->focusWidget()->objectName();
        }
        QCOMPARE(order.join(' '),
                 QString("t0Edit refTable pushButton_2 pushButton rmDevBtn refShiftGBox "
                         "rShiftTable ch8ShiftTable uShiftTable pushButton_7 chUPB pushButton_8"));
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
        show(noxCm1Rev4);
        heldShifts = *image;
        refresh();
        QByteArray expected = bytesOf(*image);
        for (int i = 0; i < 37; ++i)
            shiftCells().at(i)->setText(i == 1 ? "x" : QString("%1,25").arg(i + 1));
        for (const int taken : {0, 17, 33})
            expected = with(expected, 18 + taken, float(taken) + 1.25F);
        click("pushButton_8");
        QCOMPARE(bytesOf(*image), expected);
        QCOMPARE(heard.join(' ') + QString::number(answers->told.size()), QString("taken1"));
        const auto seenMarks = [this] {
            QStringList texts;
            for (const QTableWidgetItem *item : shiftCells())
                texts << seenCell(item);
            return marks(texts.join('|'));
        };
        QCOMPARE(seenMarks(), QString("x................x...............x..."));
        shiftCells().at(1)->setText("2.25");
        for (int i = 0; i < 37; ++i)
            expected = with(expected, 18 + i, float(i) + 1.25F);
        click("pushButton_8");
        QCOMPARE(bytesOf(*image), expected);
        QCOMPARE(heard.join(' ') + QString::number(answers->told.size()),
                 QString("taken taken write1"));
        QCOMPARE(seenMarks(), QString(37, 'x'));
        QCOMPARE(see("uShiftTable").remove(QRegExp("\\.250+|\\*")),
                 QString("1|4|~|~|~|11|~|~|~/2|5|6|8|~|12|13|15|~/3|~|7|9|10|~|14|16|17"));
        QCOMPARE(see("uShiftTable").left(18) + see("ch16ShiftTable").section('|', 7) + ' ' +
                     see("rShiftTable").left(10),
                 QString("*1.25000|*4.250000*33.250000 *34.250000"));
        click("pushButton_8"); // unchanged texts
        QCOMPARE(bytesOf(*image), expected);
    }

    void shiftsNeverShownAreRefused()
    {
        show(noxDRev4);
        show(noxC); // no cell of another instrument stays
        const QByteArray before = bytesOf(*image);
        click("pushButton_8");
        QCOMPARE(bytesOf(*image), before);
        QCOMPARE(answers->told.size(), 1);
        shifts->setServiceVisible(false);
        QVERIFY(find("uShiftGBox")->isHidden() && find("chUPB")->isHidden());
    }

    void channelsAreZeroed()
    {
        for (const auto &[model, channels] :
             {std::pair(noxDRev4, 8), std::pair(noxCmRev4, 8), std::pair(noxDRev4, 7)}) {
            show(model);
            QwtNOX plot;
            plot.addDev(3, uchar(channels));
            plot.setDevMain(3);
            QByteArray expected = bytesOf(*image);
            const bool isZeroed = model == noxDRev4 && channels == 8;
            for (uchar ch = 0; ch < channels; ++ch) {
                plot.addPoint(5, 0.0, "мВ", 3, ch);
                plot.addPoint(0.001 * (ch + 1), 1.0, "мВ", 3, ch);
                const double old = double(image->shiftCh[ch].value);
                if (isZeroed)
                    expected = with(expected, 35 + ch, float(old - 0.001 * (ch + 1)));
            }
            plot.setChDiff(0, 3, 3, 1); // a difference is no reading
            shifts->zeroChannels(nullptr, 3);
            shifts->zeroChannels(&plot, -1);
            QCOMPARE(heard.size(), 0);
            shifts->zeroChannels(&plot, 3);
            QCOMPARE(bytesOf(*image), expected);
            QCOMPARE(heard.join(' '), QString(isZeroed ? "shifts" : ""));
        }
    }

private:
    QWidget *form() const override { return window.get(); }
    /** Opens an instrument whose numbers have more digits than are shown, and unlocks the tabs. */
    void show(quint32 type)
    {
        image = std::make_unique<optionsNOX8>();
        image->setDevType(type);
        float number = 100.0F / 3;
        image->refT0.value = number;
        for (ReferenceTriple *triple :
             {&image->refR[0], &image->refR[1], &image->refR[2], &image->refR[3], &image->refU})
            for (bFloat *const part : {&triple->value, &triple->a, &triple->b})
                part->value = number *= 1.1F;
        forEachShift(*image, [&number](bFloat &shift) { shift.value = (number *= 1.1F) / 1e6F; });
        const auto hear = [this](const char *what) {
            return [this, what] {
                heard << what;
                refresh();
            };
        };
        connect(image.get(), &optionsNOX8::onRefChange, this, hear("references"));
        connect(image.get(), &optionsNOX8::onRefShiftChange, this, hear("shifts"));
        connect(image.get(), &optionsNOX8::onRefApply, this, hear("write"));
        connect(image.get(), &optionsNOX8::onRefShiftApply, this, hear("write"));
        references->setImage(image.get());
        shifts->setImage(image.get());
        shifts->setServiceVisible(true);
        refresh();
        for (const char *group : {"refGBox", "refShiftGBox"})
            find<QGroupBox>(group)->setChecked(true);
        heard.clear();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    void refresh()
    {
        references->refresh();
        references->setHeld(held);
        shifts->refresh();
        shifts->setHeld(heldShifts);
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

    std::unique_ptr<optionsNOX8> image;
    std::unique_ptr<QWidget> window;
    ReferenceTab *references = nullptr;
    ShiftTab *shifts = nullptr;
    std::optional<ReferenceData> held;
    std::optional<ZeroShifts> heldShifts;
    QStringList heard; ///< what the image and the tabs announced
};

QTEST_MAIN(TestInstrumentReferences)
#include "tst_instrumentreferences.moc"
