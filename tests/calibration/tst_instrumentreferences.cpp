#include "calibration/referenceentry.h"
#include "calibration/referencetabs.h"
#include "device/optionsnox8.h"
#include "plot/qwtnox.h"
#include "support/menukeys.h"
#include "support/seenform.h"
#include "support/useranswers.h"

#include <memory>

namespace
{

constexpr quint32 noxA = 0x01;
constexpr quint32 noxC = 0x21;
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

/** Whether each of the texts is marked as changed. */
QString marks(const QString &texts)
{
    QString marks;
    for (const QString &text : texts.split(QRegExp("[|/]")))
        marks += text.startsWith('*') ? 'x' : '.';
    return marks;
}

} // namespace

/** The two tabs in a window that connects them as the settings dialog does. */
class TestInstrumentReferences : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        answers = std::make_unique<UserAnswers>();
        answers->answer = QMessageBox::Ok;
        heard.clear();
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
        answers.reset();
    }

    void modelsShowTheirReferences()
    {
        const QString six = "100.0000 100.0000 100.000 100.0000 100.000";
        const QString resistorsOfD = "100.000000 100.00000 100.0000 100.00000 100.000";
        const QMap<quint32, QString> values = {{noxA, "100.0000 - - - 100.000"},
                                               {0x11, "100.0000 100.000 - - 100.000"},
                                               {noxC, six},
                                               {0x22, six},
                                               {0x41, six},
                                               {0x31, resistorsOfD},
                                               {0x0950AA0F, six},
                                               {noxCm1Rev4, six},
                                               {noxDRev4, resistorsOfD},
                                               {0, "100.0000 100.0000 100.0000 100.0000 100.000"}};
        for (auto model = values.begin(); model != values.end(); ++model) {
            show(model.key());
            for (ReferenceTriple &resistor : image->refR)
                resistor.value.value = 100;
            image->refU = {bFloat(100), bFloat(-1.23456789e-5F), bFloat(0.5F)};
            emit image->onRefChange();
            QStringList shown;
            for (int row = 0; row < 5; ++row) {
                shown << cell("refTable", row, 0)->text();
                const bool isInUse = shown.last() != "-";
                for (int column = 0; column < 3; ++column)
                    QCOMPARE(seenCell(cell("refTable", row, column)) != "~-", isInUse);
            }
            QCOMPARE(shown.join(' '), model.value());
            QCOMPARE(cell("refTable", 4, 1)->text(), QString("-1.23457e-05"));
            QCOMPARE(find<QLineEdit>("t0Edit")->text(), QString("33.33"));
            QCOMPARE(find("ch16ShiftTable")->isVisible(), model.key() == noxCm1Rev4);
            shifts->followModel();
            QCOMPARE(find("refShiftGBox")->isEnabled(), model.key() != 0);
        }
    }

    /** What is not typed keeps all its digits; what a model lacks becomes zero. */
    void leavingChangesNothing()
    {
        show(noxC);
        const QByteArray before = bytesOf(*image);
        find("t0Edit")->setFocus();
        QTest::keyClick(find("t0Edit"), Qt::Key_Tab);
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
        QTest::addColumn<int>("place");
        QTest::addColumn<float>("number"); // none: refused
        QTest::newRow("1,5") << 1 << 1.5F;
        QTest::newRow(" 2.25e-3") << 15 << 0.00225F;
        QTest::newRow("-") << 8 << 0.0F;
        QTest::newRow("1x") << 1 << float(qQNaN());
        QTest::newRow("o.5") << 15 << float(qQNaN());
        QTest::newRow("nan") << 5 << float(qQNaN()); // C would read it
        QTest::newRow("2o") << 0 << float(qQNaN());
    }

    void entry()
    {
        QFETCH(int, place);
        QFETCH(float, number);
        const QString text = QTest::currentDataTag();
        show(noxC);
        auto *const field = find<QLineEdit>("t0Edit");
        QTableWidgetItem *const item = cell("refTable", (place - 1) / 3, (place + 2) % 3);
        const QString before = place > 0 ? item->text() : field->text();
        QByteArray expected = bytesOf(*image);
        const bool isRight = !std::isnan(number);
        if (isRight)
            expected = with(expected, place, number);
        if (place > 0) {
            type(item, text);
            click("pushButton");
        } else {
            field->setFocus();
            field->selectAll();
            typeText(field, text);
            QTest::keyClick(field, Qt::Key_Return);
            QTest::keyClick(field, Qt::Key_Tab); // its end is told of again
        }
        QCOMPARE(bytesOf(*image), expected);
        QCOMPARE(heard.count("write"), isRight ? 1 : 0);
        QStringList told;
        for (const Message &message : qAsConst(answers->told))
            told << seen(message);
        QCOMPARE(told.join('|'), isRight
                                     ? QString()
                                     : "2 [Ошибка ввода опор] Не верные коэффициенты!\n"
                                       "Проверьте введённые значения и повторите попытку. 400/0");
        const QString after = place > 0 ? item->text() : field->text();
        QVERIFY(isRight ? after != text && after != before : after == before);
    }

    void whatIsLeftTypedIsDropped()
    {
        show(noxC);
        auto *const field = find<QLineEdit>("t0Edit");
        field->setFocus();
        QTest::keyClicks(field, "o");
        references->setImage(image.get());
        QCOMPARE(field->text(), QString("33.33"));
        QTableWidgetItem *const item = cell("refTable", 0, 0);
        startTyping(item, "o");
        references->setImage(image.get());
        QVERIFY(!item->tableWidget()->isPersistentEditorOpen(item));
        for (const bool isLocked : {true, false}) {
            find<QGroupBox>("refGBox")->setChecked(true);
            references->setAvailable(true);
            field->setFocus();
            QTest::keyClicks(field, "o");
            if (isLocked)
                references->lock();
            else
                references->setAvailable(false);
            QVERIFY(!field->isEnabled());
        }
        shifts->lock();
        QVERIFY(!find("chUPB")->isEnabled() && answers->told.isEmpty());
        references->setImage(nullptr);
        shifts->setImage(nullptr);
        QCOMPARE(seenCell(item) + field->text() + seenCell(cell("rShiftTable", 0, 0)), QString());
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
            QCOMPARE(seen(answers->asked.takeLast()),
                     QString("2 [Изменение опор] ВНИМАНИЕ! Изменение опор может привести к "
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
            return QString(find("t0Edit")->accessibleDescription().isEmpty() ? "" : "T0 ") +
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
        auto *const field = find<QLineEdit>("t0Edit");
        field->setFocus();
        QTest::keyClicks(field, "1");
        refresh();
        QCOMPARE(field->text(), QString("33.331"));

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

    /** From their cells, in the order of the block; the first wrong one ends it. */
    void shiftsAreTaken()
    {
        QVector<int> order{0}; // in which they are taken
        for (int k = 1; k <= 16; ++k)
            order += k <= 4 ? QVector<int>{16 + k, 32 + k, k} : QVector<int>{16 + k, k};
        show(noxCm1Rev4);
        for (int wrong = 0; wrong <= order.size(); ++wrong) { // the last time none is
            heldShifts = *image;
            refresh();
            heard.clear();
            answers->told.clear();
            QByteArray expected = bytesOf(*image);
            QString changed(order.size(), '.');
            for (int i = 0; i < order.size(); ++i) {
                const float number = float(order.at(i) + 1000 * wrong) + 0.125F;
                shiftCells()
                    .at(order.at(i))
                    ->setText(i == wrong ? "x" : QString::number(number, 'f', 3).replace('.', ','));
                if (i < wrong)
                    expected = with(expected, 18 + order.at(i), number);
                if (i < wrong)
                    changed[order.at(i)] = 'x';
            }
            click("pushButton_8");
            QCOMPARE(bytesOf(*image), expected);
            const bool isRight = wrong == order.size();
            QCOMPARE(heard.join(' '), QString(isRight ? "taken write" : "taken"));
            QCOMPARE(answers->told.size(), isRight ? 0 : 1);
            QStringList texts;
            for (const QTableWidgetItem *item : shiftCells())
                texts << seenCell(item);
            QCOMPARE(marks(texts.join('|')), changed);
        }
        int number = 0;
        forEachShift(*image, [&number](bFloat &shift) { shift.value = float(++number); });
        refresh();
        QCOMPARE(see("uShiftTable").remove('*').remove(QRegExp("\\.0+")),
                 QString("1|4|~|~|~|11|~|~|~/2|5|6|8|~|12|13|15|~/3|~|7|9|10|~|14|16|17"));
        QCOMPARE(shiftCells().at(2)->text() + ' ' + shiftCells().at(3)->text() + ' ' +
                     see("ch16ShiftTable").section('|', 7) + ' ' + see("rShiftTable").left(10),
                 QString("3.00000 4.0000000 *33.000000 *34.000000"));
        const QByteArray before = bytesOf(*image);
        click("pushButton_8"); // unchanged texts
        QCOMPARE(bytesOf(*image), before);
    }

    void shiftsNeverShownAreRefused()
    {
        show(noxDRev4);
        show(noxC); // no cell of another instrument stays
        const QByteArray before = bytesOf(*image);
        click("pushButton_8");
        QCOMPARE(bytesOf(*image), before);
        QCOMPARE(answers->told.size(), 1);
        ZeroShifts some = *image;
        QVERIFY(!enterShifts(shownShifts(some).mid(1), some));
        shifts->setServiceVisible(false);
        QVERIFY(find("uShiftGBox")->isHidden() && find("chUPB")->isHidden());
    }

    void channelsAreZeroed_data()
    {
        QTest::addColumn<quint32>("type");
        QTest::addColumn<int>("channels");
        QTest::newRow("zeroed") << noxDRev4 << 8;
        QTest::newRow("another model") << 0x0950AA0FU << 8;
        QTest::newRow("a plot of fewer channels") << noxDRev4 << 7;
    }

    void channelsAreZeroed()
    {
        QFETCH(quint32, type);
        QFETCH(int, channels);
        show(type);
        QwtNOX plot;
        plot.addDev(3, uchar(channels));
        plot.setDevMain(3);
        QByteArray expected = bytesOf(*image);
        const bool isZeroed = QTest::currentDataTag() == QByteArray("zeroed");
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

private:
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
    template<typename Widget = QWidget>
    Widget *find(const QString &name) const
    {
        return window->findChild<Widget *>(name);
    }
    QTableWidgetItem *cell(const QString &table, int row, int column) const
    {
        return find<QTableWidget>(table)->item(row, column);
    }
    QString see(const QString &name) const { return seen(find<QTableWidget>(name)); }
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
    void click(const QString &button) const { QTest::mouseClick(find(button), Qt::LeftButton); }
    /** Types over the text of a cell: the editor, still open. */
    QLineEdit *startTyping(QTableWidgetItem *item, const QString &text) const
    {
        QTableWidget *const table = item->tableWidget();
        table->setFocus();
        table->setCurrentItem(item);
        QTest::keyClick(table, Qt::Key_F2);
        auto *const editor = table->viewport()->findChildren<QLineEdit *>().last();
        editor->selectAll();
        typeText(editor, text);
        return editor;
    }
    void type(QTableWidgetItem *item, const QString &text) const
    {
        QTest::keyClick(startTyping(item, text), Qt::Key_Return);
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
        QCOMPARE(item->text(), text);
    }

    std::unique_ptr<UserAnswers> answers;
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
