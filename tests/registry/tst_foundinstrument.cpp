#include "device/optionsnox8.h"
#include "registry/foundinstrument.h"

#include <QtTest>

class TestFoundInstrument : public QObject
{
    Q_OBJECT
private slots:
    void whatTheOperatorIsAsked_data();
    void whatTheOperatorIsAsked();
    void choosingAModel();
    void checkingAndUnchecking();
};

namespace
{

FoundInstrument found(quint32 type, quint16 number, bool hasOwnIdentity, bool isStored)
{
    optionsNOX8 image;
    image.setDevType(type);
    image.setDevNumber(number);
    image.identValid = hasOwnIdentity;
    return {image, isStored};
}

QString stateOf(const FoundInstrument &instrument)
{
    return QString("%1%2%3").arg(instrument.isChecked() ? "checked" : "unchecked",
                                 instrument.isCheckEnabled() ? "" : " fixed",
                                 instrument.isNumberEditable() ? ", number open" : "");
}

} // namespace

void TestFoundInstrument::whatTheOperatorIsAsked_data()
{
    QTest::addColumn<quint32>("type");
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("hasOwnIdentity");
    QTest::addColumn<bool>("isStored");
    QTest::addColumn<QString>("models");
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("isUnambiguous");

    const QString all = "--,NOX A,NOX B,NOX C,NOX CM,NOX D,NOX CM1";
    QTest::newRow("no model") << 0u << 0 << false << false << all << "unchecked fixed" << false;
    QTest::newRow("model without a number") << 0x31u << 0 << false << false << "NOX D"
                                            << "checked, number open" << false;
    QTest::newRow("known from the database") << 0x31u << 5 << false << true << "NOX D"
                                             << "checked" << true;
    QTest::newRow("own identity without a number") << 0x11u << 0 << true << false << "NOX B"
                                                   << "checked" << false;
    QTest::newRow("two models alike") << 0x22u << 5 << false << false << "--,NOX C,NOX CM"
                                      << "checked" << false;
    QTest::newRow("two models alike, stored") << 0x22u << 5 << false << true << "NOX CM"
                                              << "checked" << true;
    QTest::newRow("two models alike, own identity") << 0x21u << 5 << true << false << "NOX C"
                                                    << "checked" << true;
    QTest::newRow("extended, alike without its identity")
        << 0x0950AA0Fu << 5 << false << false << "--,NOX C,NOX CM"
        << "checked, number open" << false;
    QTest::newRow("extended without a number")
        << 0x0960AA0Fu << 0 << true << false << "NOX CM1 rev.4"
        << "checked, number open" << false;
}

void TestFoundInstrument::whatTheOperatorIsAsked()
{
    QFETCH(quint32, type);
    QFETCH(int, number);
    QFETCH(bool, hasOwnIdentity);
    QFETCH(bool, isStored);
    const FoundInstrument instrument = found(type, quint16(number), hasOwnIdentity, isStored);
    QStringList models;
    for (const ModelChoice &model : instrument.models())
        models << model.name;
    QTEST(models.join(','), "models");
    QTEST(stateOf(instrument), "state");
    QTEST(instrument.isUnambiguous(), "isUnambiguous");
    QCOMPARE(instrument.number(), number == 0 ? QString("--") : QString("0005"));
}

void TestFoundInstrument::choosingAModel()
{
    FoundInstrument instrument = found(0, 0, false, false);
    instrument.chooseModel(2);
    QCOMPARE(instrument.typeCode(), 0x11u);
    QCOMPARE(stateOf(instrument), QStringLiteral("unchecked, number open"));
    instrument.check(true);
    QCOMPARE(stateOf(instrument), QStringLiteral("checked, number open"));
    instrument.chooseModel(0);
    QCOMPARE(stateOf(instrument), QStringLiteral("unchecked fixed"));
}

void TestFoundInstrument::checkingAndUnchecking()
{
    FoundInstrument unnamed = found(0, 0, false, false);
    unnamed.chooseModel(3);
    unnamed.check(true);
    unnamed.check(false);
    QCOMPARE(stateOf(unnamed), QStringLiteral("unchecked fixed"));
    unnamed.check(true); // by the header, which reaches every row
    QCOMPARE(stateOf(unnamed), QStringLiteral("checked, number open"));

    FoundInstrument named = found(0x11, 0, true, false);
    named.check(false);
    named.check(true);
    QCOMPARE(stateOf(named), QStringLiteral("checked fixed"));
}

QTEST_GUILESS_MAIN(TestFoundInstrument)
#include "tst_foundinstrument.moc"
