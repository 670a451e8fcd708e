#include "calibration/referenceentry.h"
#include "calibration/referencetabs.h"
#include "device/optionsnox8.h"
#include "plot/qwtnox.h"
#include "widgets/rowdelegate.h"
#include "widgets/userdialogs.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>
#include <QVBoxLayout>

#include <memory>

namespace
{

constexpr quint32 noxC = 0x21;
constexpr quint32 noxCm1Rev4 = 0x0960AA0F;
constexpr quint32 noxDRev4 = 0x0970AA0F;

/** Bytes of the references and of the shifts. */
QByteArray bytesOf(const optionsNOX8 &image)
{
    const std::unique_ptr<QByteArray> references(image.getRefData(true));
    const std::unique_ptr<QByteArray> shifts(image.getRefShiftData());
    return *references + *shifts;
}

/** Places of the shifts on the screen: table, row, column, and the name of the number there. */
struct ShiftPlace {
    const char *table;
    int row;
    int column;
    QString name;
};

QVector<ShiftPlace> shiftPlaces()
{
    const QStringList ranges = {"U1 U4 - - - U11 - - -", "U2 U5 U6 U8 - U12 U13 U15 -",
                                "U3 - U7 U9 U10 - U14 U16 U17"};
    QVector<ShiftPlace> places;
    for (int i = 0; i < 27; ++i)
        places.append({"uShiftTable", i / 9, i % 9, ranges.at(i / 9).split(' ').at(i % 9)});
    for (int i = 0; i < 16; ++i)
        places.append(
            {i < 8 ? "ch8ShiftTable" : "ch16ShiftTable", 0, i % 8, QString("C%1").arg(i + 1)});
    for (int i = 0; i < 4; ++i)
        places.append({"rShiftTable", 0, i, QString("R%1").arg(i + 1)});
    return places;
}

/** A number of its own for each name. */
float numberNamed(const QString &name)
{
    const float hundreds = name.startsWith('U') ? 100 : name.startsWith('C') ? 200 : 300;
    return hundreds + name.mid(1).toFloat() + 0.125F;
}

} // namespace

/** The two tabs in a window that connects them as the settings dialog does. */
class TestInstrumentReferences : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void modelsShowTheirReferences_data();
    void modelsShowTheirReferences();
    void leavingT0ChangesNothing();
    void resistorsThatTheModelLacksBecomeZero();
    void entry_data();
    void entry();
    void mistakeInT0IsToldOnce();
    void whatIsLeftTypedIsDropped();
    void refusedQuestion();
    void goneDuringTheQuestion();
    void marksWhatDiffers();
    void refreshLeavesWhatIsBeingTyped();
    void everythingIsReachedByTab();
    void shiftsAreTakenFromTheirCells();
    void firstWrongShiftStops_data();
    void firstWrongShiftStops();
    void shiftsNeverShownAreRefused();
    void channelsAreZeroed_data();
    void channelsAreZeroed();

private:
    void show(quint32 type);
    void refresh();
    QTableWidgetItem *cell(const char *table, int row, int column) const
    {
        return find<QTableWidget>(table)->item(row, column);
    }
    QLineEdit *startTyping(QTableWidgetItem *item, const QString &text) const;
    void type(QTableWidgetItem *item, const QString &text) const;
    void click(const char *button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    template<typename Widget>
    Widget *find(const char *name) const
    {
        return window->findChild<Widget *>(QString::fromLatin1(name));
    }

    std::unique_ptr<optionsNOX8> image;
    std::unique_ptr<QWidget> window;
    ReferenceTab *references = nullptr;
    ShiftTab *shifts = nullptr;
    std::optional<ReferenceData> held;
    std::optional<ZeroShifts> heldShifts;
    QVector<Message> questions;
    QVector<Message> messages;
    QMessageBox::StandardButton answer = QMessageBox::Ok;
    int referenceWrites = 0;
    int shiftWrites = 0;
};

void TestInstrumentReferences::init()
{
    questions.clear();
    messages.clear();
    referenceWrites = shiftWrites = 0;
    answer = QMessageBox::Ok;
    held.reset();
    heldShifts.reset();
    UserDialogs::current().ask = [this](QWidget *, const Message &question) {
        questions << question;
        return answer;
    };
    UserDialogs::current().tell = [this](QWidget *, const Message &message) {
        messages << message;
    };
    window = std::make_unique<QWidget>();
    references = new ReferenceTab;
    shifts = new ShiftTab;
    auto *const layout = new QVBoxLayout(window.get());
    layout->addWidget(references);
    layout->addWidget(shifts);
    connect(find<QLineEdit>("t0Edit"), &QLineEdit::editingFinished, this,
            [this] { references->take(); });
    connect(find<QPushButton>("pushButton"), &QPushButton::clicked, this,
            [this] { references->write(); });
    connect(find<QPushButton>("pushButton_8"), &QPushButton::clicked, this,
            [this] { shifts->write(); });
}

void TestInstrumentReferences::cleanup()
{
    window.reset();
    image.reset();
    UserDialogs::current() = UserDialogs::onScreen();
}

/** Opens an instrument whose numbers have more digits than are shown, and unlocks the tabs. */
void TestInstrumentReferences::show(quint32 type)
{
    image = std::make_unique<optionsNOX8>();
    image->setDevType(type);
    float number = 100.0F / 3;
    image->refT0.value = number;
    for (ReferenceTriple *triple :
         {&image->refR[0], &image->refR[1], &image->refR[2], &image->refR[3], &image->refU}) {
        for (bFloat *const part : {&triple->value, &triple->a, &triple->b})
            part->value = number *= 1.1F;
    }
    forEachShift(*image, [&number](bFloat &shift) { shift.value = (number *= 1.1F) / 1e6F; });
    connect(image.get(), &optionsNOX8::onRefChange, this, &TestInstrumentReferences::refresh);
    connect(image.get(), &optionsNOX8::onRefShiftChange, this, &TestInstrumentReferences::refresh);
    connect(image.get(), &optionsNOX8::onRefApply, this, [this] { ++referenceWrites; });
    connect(image.get(), &optionsNOX8::onRefShiftApply, this, [this] { ++shiftWrites; });
    references->setImage(image.get());
    shifts->setImage(image.get());
    shifts->setServiceVisible(true);
    refresh();
    for (const char *group : {"refGBox", "refShiftGBox"})
        find<QWidget>(group)->setProperty("checked", true);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void TestInstrumentReferences::refresh()
{
    references->refresh();
    references->setHeld(held);
    shifts->refresh();
    shifts->setHeld(heldShifts);
}

/** Types over the text of a cell: the editor, still open. */
QLineEdit *TestInstrumentReferences::startTyping(QTableWidgetItem *item, const QString &text) const
{
    QTableWidget *const table = item->tableWidget();
    table->setFocus();
    table->setCurrentItem(item);
    QTest::keyClick(table, Qt::Key_F2);
    auto *const editor = table->viewport()->findChildren<QLineEdit *>().last();
    editor->selectAll();
    QTest::keyClicks(editor, text);
    return editor;
}

void TestInstrumentReferences::type(QTableWidgetItem *item, const QString &text) const
{
    QTest::keyClick(startTyping(item, text), Qt::Key_Return);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QCOMPARE(item->text(), text);
}

void TestInstrumentReferences::modelsShowTheirReferences_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<QString>("values"); // R1 to R4, Uref

    const QString six = "100.0000 100.0000 100.000 100.0000 100.000";
    const QString resistorsOfD = "100.000000 100.00000 100.0000 100.00000 100.000";
    QTest::newRow("A") << 0x01U << "100.0000 - - - 100.000";
    QTest::newRow("B") << 0x11U << "100.0000 100.000 - - 100.000";
    QTest::newRow("C") << 0x21U << six;
    QTest::newRow("CM") << 0x22U << six;
    QTest::newRow("CM1") << 0x41U << six;
    QTest::newRow("D") << 0x31U << resistorsOfD;
    QTest::newRow("CM rev.4") << 0x0950AA0FU << six;
    QTest::newRow("CM1 rev.4") << noxCm1Rev4 << six;
    QTest::newRow("D rev.4") << noxDRev4 << resistorsOfD;
    QTest::newRow("unknown") << 0U << "100.0000 100.0000 100.0000 100.0000 100.000";
}

void TestInstrumentReferences::modelsShowTheirReferences()
{
    QFETCH(quint32, type);
    show(type);
    for (ReferenceTriple &resistor : image->refR)
        resistor.value.value = 100;
    image->refU = {bFloat(100), bFloat(-1.23456789e-5F), bFloat(0.5F)};
    emit image->onRefChange();

    QStringList values;
    for (int row = 0; row < 5; ++row) {
        values << cell("refTable", row, 0)->text();
        QCOMPARE(cell("refTable", row, 2)->flags().testFlag(Qt::ItemIsEnabled),
                 values.last() != "-");
    }
    QTEST(values.join(' '), "values");
    QCOMPARE(cell("refTable", 4, 1)->text(), QString("-1.23457e-05"));
    QCOMPARE(find<QLineEdit>("t0Edit")->text(), QString("33.33"));
    QCOMPARE(find<QWidget>("ch16ShiftTable")->isVisible(), type == noxCm1Rev4);
}

void TestInstrumentReferences::leavingT0ChangesNothing()
{
    show(noxC);
    const QByteArray before = bytesOf(*image);
    find<QLineEdit>("t0Edit")->setFocus();
    QTest::keyClick(find<QLineEdit>("t0Edit"), Qt::Key_Tab);
    click("pushButton");
    QCOMPARE(bytesOf(*image).toHex(), before.toHex());
    QCOMPARE(referenceWrites, 1);
}

void TestInstrumentReferences::resistorsThatTheModelLacksBecomeZero()
{
    show(0x01);
    QByteArray expected = bytesOf(*image);
    expected.replace(4 * 4, 9 * 4, QByteArray(9 * 4, '\0')); // R2 to R4 follow T0 and R1
    QVERIFY(references->take());
    QCOMPARE(bytesOf(*image).toHex(), expected.toHex());
}

void TestInstrumentReferences::entry_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("number"); // none: refused

    QTest::newRow("comma") << 0 << 0 << "1,5" << 1.5F;
    QTest::newRow("point, last cell") << 4 << 2 << " 2.25e-3" << 0.00225F;
    QTest::newRow("dash") << 2 << 1 << "-" << 0.0F;
    QTest::newRow("letter in the first cell") << 0 << 0 << "1x" << float(qQNaN());
    QTest::newRow("letter in the last cell") << 4 << 2 << "o.5" << float(qQNaN());
    QTest::newRow("letters that C reads") << 1 << 1 << "nan" << float(qQNaN());
}

void TestInstrumentReferences::entry()
{
    QFETCH(int, row);
    QFETCH(int, column);
    QFETCH(float, number);
    QFETCH(QString, text);
    show(noxC);
    const QString shown = cell("refTable", row, column)->text();
    QByteArray expected = bytesOf(*image);
    if (!std::isnan(number))
        expected.replace(4 * (1 + 3 * row + column), 4, bFloat(number).getByte());

    type(cell("refTable", row, column), text);
    click("pushButton");
    QCOMPARE(bytesOf(*image).toHex(), expected.toHex());
    QCOMPARE(referenceWrites, std::isnan(number) ? 0 : 1);
    QCOMPARE(messages.size(), std::isnan(number) ? 1 : 0);
    QCOMPARE(cell("refTable", row, column)->text() == shown, std::isnan(number));
    QVERIFY(cell("refTable", row, column)->text() != text);
}

void TestInstrumentReferences::mistakeInT0IsToldOnce()
{
    show(noxC);
    auto *const field = find<QLineEdit>("t0Edit");
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "2o");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(field->text(), QString("33.33"));
    QTest::keyClick(field, Qt::Key_Tab);
    QCOMPARE(messages.size(), 1);
    QCOMPARE(messages.first().icon, QMessageBox::Warning);
    QCOMPARE(messages.first().title, QString("Ошибка ввода опор"));
    QCOMPARE(messages.first().text, QString("Не верные коэффициенты!\nПроверьте введённые "
                                            "значения и повторите попытку."));
    QCOMPARE(messages.first().buttons, QMessageBox::Ok);
}

void TestInstrumentReferences::whatIsLeftTypedIsDropped()
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

    field->setFocus();
    QTest::keyClicks(field, "o");
    references->lock();
    QVERIFY(!field->isEnabled());
    QVERIFY(messages.isEmpty());
}

void TestInstrumentReferences::refusedQuestion()
{
    show(noxDRev4);
    answer = QMessageBox::Cancel;
    const QByteArray before = bytesOf(*image);
    type(cell("refTable", 0, 0), "5");
    type(cell("rShiftTable", 0, 0), "5");
    click("pushButton");
    click("pushButton_8");
    QCOMPARE(bytesOf(*image), before);
    QCOMPARE(referenceWrites + shiftWrites, 0);
    QCOMPARE(questions.size(), 2);
    for (const Message &question : qAsConst(questions)) {
        QCOMPARE(question.icon, QMessageBox::Warning);
        QCOMPARE(question.title, QString("Изменение опор"));
        QCOMPARE(question.text,
                 QString("ВНИМАНИЕ! Изменение опор может привести к поломке прибора!"));
        QCOMPARE(question.buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QCOMPARE(question.defaultButton, QMessageBox::Cancel);
    }
}

void TestInstrumentReferences::goneDuringTheQuestion()
{
    for (const char *button : {"pushButton", "pushButton_8"}) {
        for (const bool another : {true, false}) {
            show(noxDRev4);
            UserDialogs::current().ask = [this, another](QWidget *, const Message &) {
                image.reset();
                if (another)
                    show(noxDRev4);
                return QMessageBox::Ok;
            };
            click(button);
            QCOMPARE(messages.size() + referenceWrites + shiftWrites, 0);
        }
    }
    QVERIFY(!references->take());
    refresh();

    show(noxC);
    UserDialogs::current().ask = [this](QWidget *, const Message &) {
        window.reset();
        return QMessageBox::Ok;
    };
    references->write();
    QCOMPARE(referenceWrites, 0);
}

void TestInstrumentReferences::marksWhatDiffers()
{
    show(noxDRev4);
    QVERIFY(!cell("refTable", 1, 2)->data(changedRole).toBool());
    held = *image;
    held->refR[1].b.value *= 1.0000001F; // the shown digits are the same
    emit image->onRefChange();
    for (int i = 0; i < 15; ++i)
        QCOMPARE(cell("refTable", i / 3, i % 3)->data(changedRole).toBool(), i == 5);
    QVERIFY(find<QLineEdit>("t0Edit")->accessibleDescription().isEmpty());
    held->refT0.value = 20;
    heldShifts = *image;
    heldShifts->shiftU[16].value = 1;
    emit image->onRefChange();
    QVERIFY(cell("uShiftTable", 2, 8)->data(changedRole).toBool());
    QVERIFY(!find<QLineEdit>("t0Edit")->accessibleDescription().isEmpty());
}

void TestInstrumentReferences::refreshLeavesWhatIsBeingTyped()
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
    QCOMPARE(opened->text(), QString("8.0000"));
    refresh();
    QTest::keyClicks(opened, "9"); // over the whole text, as before the refresh
    QCOMPARE(opened->text(), QString("9"));
}

void TestInstrumentReferences::everythingIsReachedByTab()
{
    show(noxDRev4);
    find<QWidget>("refGBox")->setFocus();
    QStringList order;
    for (int i = 0; i < 12; ++i) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        order << window->focusWidget()->objectName();
    }
    QCOMPARE(order.join(' '),
             QString("t0Edit refTable pushButton_2 pushButton rmDevBtn refShiftGBox rShiftTable "
                     "ch8ShiftTable uShiftTable pushButton_7 chUPB pushButton_8"));
}

void TestInstrumentReferences::shiftsAreTakenFromTheirCells()
{
    show(noxCm1Rev4);
    QByteArray expected;
    for (const QString &kind : QStringList{"U17", "C16", "R4"}) {
        for (int i = 1; i <= kind.mid(1).toInt(); ++i)
            expected += bFloat(numberNamed(kind.left(1) + QString::number(i))).getByte();
    }
    for (const ShiftPlace &place : shiftPlaces()) {
        QTableWidgetItem *const item = cell(place.table, place.row, place.column);
        QCOMPARE(item->flags().testFlag(Qt::ItemIsEnabled), place.name != "-");
        QCOMPARE(item->text().isEmpty(), place.name == "-");
        if (place.name != "-")
            item->setText(QString::number(numberNamed(place.name)).replace('.', ','));
    }
    click("pushButton_8");
    QCOMPARE(bytesOf(*image).mid(72).toHex(), expected.toHex());
    QCOMPARE(shiftWrites, 1);
    QCOMPARE(cell("uShiftTable", 0, 0)->text(), QString("101.12500"));
    QCOMPARE(cell("uShiftTable", 2, 8)->text(), QString("117.1250000"));
    QCOMPARE(cell("ch16ShiftTable", 0, 0)->text(), QString("209.125000"));
    click("pushButton_8"); // unchanged texts
    QCOMPARE(bytesOf(*image).mid(72).toHex(), expected.toHex());
    QVERIFY(messages.isEmpty());
}

void TestInstrumentReferences::firstWrongShiftStops_data()
{
    QTest::addColumn<QString>("wrong");
    QTest::addColumn<QString>("taken");

    QTest::newRow("the very first") << "U1"
                                    << "";
    QTest::newRow("a channel") << "C2"
                               << "U1 C1 R1 U2";
    QTest::newRow("a resistor") << "R2"
                                << "U1 C1 R1 U2 C2";
    QTest::newRow("a range") << "U3"
                             << "U1 C1 R1 U2 C2 R2";
    QTest::newRow("after the resistors") << "C6"
                                         << "U1 C1 R1 U2 C2 R2 U3 C3 R3 U4 C4 R4 U5 C5 U6";
}

void TestInstrumentReferences::firstWrongShiftStops()
{
    QFETCH(QString, wrong);
    QFETCH(QString, taken);
    show(noxCm1Rev4);
    heldShifts = *image;
    refresh();
    for (const ShiftPlace &place : shiftPlaces()) {
        const QString text = QString::number(numberNamed(place.name));
        if (place.name != "-")
            cell(place.table, place.row, place.column)->setText(place.name == wrong ? "x" : text);
    }
    QByteArray expected = bytesOf(*image);
    for (const QString &name : taken.split(' ', Qt::SkipEmptyParts)) {
        const int first = name.startsWith('U') ? 0 : name.startsWith('C') ? 17 : 33;
        expected.replace(72 + 4 * (first + name.mid(1).toInt() - 1), 4,
                         bFloat(numberNamed(name)).getByte());
    }
    click("pushButton_8");
    QCOMPARE(bytesOf(*image).toHex(), expected.toHex());
    QCOMPARE(messages.size(), 1);
    QCOMPARE(shiftWrites, 0);
    for (const ShiftPlace &place : shiftPlaces())
        QCOMPARE(cell(place.table, place.row, place.column)->data(changedRole).toBool(),
                 taken.split(' ').contains(place.name));
}

void TestInstrumentReferences::shiftsNeverShownAreRefused()
{
    show(noxDRev4);
    show(noxC); // no cell of another instrument stays
    const QByteArray before = bytesOf(*image);
    click("pushButton_8");
    QCOMPARE(bytesOf(*image), before);
    QCOMPARE(messages.size(), 1);

    ZeroShifts some = *image;
    QVERIFY(!enterShifts(shownShifts(some).mid(1), some));
}

void TestInstrumentReferences::channelsAreZeroed_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("qwtIndex");
    QTest::addColumn<bool>("zeroed");

    QTest::newRow("NOX D rev.4") << noxDRev4 << 8 << 3 << true;
    QTest::newRow("another model") << 0x0950AA0FU << 8 << 3 << false;
    QTest::newRow("a plot of fewer channels") << noxDRev4 << 7 << 3 << false;
    QTest::newRow("not on the plot") << noxDRev4 << 8 << -1 << false;
}

void TestInstrumentReferences::channelsAreZeroed()
{
    QFETCH(int, channels);
    QFETCH(int, qwtIndex);
    QFETCH(bool, zeroed);
    QFETCH(quint32, type);
    show(type);
    QwtNOX plot;
    plot.addDev(3, uchar(channels));
    plot.setDevMain(3);
    QByteArray expected = bytesOf(*image);
    for (uchar ch = 0; ch < channels; ++ch) {
        plot.addPoint(5, 0.0, "мВ", 3, ch);
        plot.addPoint(0.001 * (ch + 1), 1.0, "мВ", 3, ch);
        const float old = image->shiftCh[ch].value;
        if (zeroed)
            expected.replace(72 + 4 * (17 + ch), 4,
                             bFloat(float(double(old) - 0.001 * (ch + 1))).getByte());
    }
    plot.setChDiff(0, 3, 3, 1); // a difference is no reading
    shifts->zeroChannels(nullptr, qwtIndex);
    shifts->zeroChannels(&plot, qwtIndex);
    QCOMPARE(bytesOf(*image).toHex(), expected.toHex());
    QCOMPARE(cell("ch8ShiftTable", 0, 7)->text(), QString::number(image->shiftCh[7].value, 'f', 6));
    QCOMPARE(shiftWrites, 0);
}

QTEST_MAIN(TestInstrumentReferences)
#include "tst_instrumentreferences.moc"
