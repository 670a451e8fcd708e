#include "registry/foundinstrument.h"
#include "registrybench.h"

namespace
{

/** What the operator sees of an instrument that has an identity of its own (i), that is stored (s),
 *  or after answers: digits choose models, + and - say whether it is to be connected. */
QString asked(quint32 type, quint16 number, const QString &story = QString())
{
    optionsNOX8 image;
    image.setDevType(type);
    image.setDevNumber(number);
    image.identValid = story.contains('i');
    FoundInstrument instrument(image, story.contains('s'));
    for (const QChar answer : story) {
        if (answer.isDigit())
            instrument.chooseModel(answer.digitValue());
        else if (!answer.isLetter())
            instrument.check(answer == '+');
    }
    QStringList models;
    for (const ModelChoice &model : instrument.models())
        models << (model.typeCode == instrument.typeCode() ? "*" : "") + model.name;
    return QString("%1; %2; %3%4%5%6")
        .arg(models.join(','), instrument.number(),
             instrument.isChecked() ? "checked" : "unchecked",
             instrument.isCheckEnabled() ? "" : ", fixed",
             instrument.isNumberEditable() ? ", number open" : "",
             instrument.isUnambiguous() ? ", sure" : "");
}

} // namespace

/** What the operator is asked about an instrument that has been found. */
class TestFoundInstrument : public QObject
{
    Q_OBJECT
private slots:
    void whatTheOperatorIsAsked()
    {
        const QString isB = "--,NOX A,*NOX B,NOX C,NOX CM,NOX D,NOX CM1; --; ";
        const QVector<QPair<QString, QString>> seen{
            {asked(0, 0), "*--,NOX A,NOX B,NOX C,NOX CM,NOX D,NOX CM1; --; unchecked, fixed"},
            {asked(0, 0, "2"), isB + "unchecked, number open"},
            {asked(0, 0, "1+"),
             "--,*NOX A,NOX B,NOX C,NOX CM,NOX D,NOX CM1; --; checked, number open"},
            {asked(0, 0, "2+-"), isB + "unchecked, fixed"},
            {asked(0, 0, "2+-+"), isB + "checked, number open"}, // by the header
            {asked(0, 0, "2+0"), asked(0, 0)},
            {asked(0x31, 0), "*NOX D; --; checked, number open"},
            {asked(0x31, 5, "s"), "*NOX D; 0005; checked, sure"},
            {asked(typeB, 0, "i"), "*NOX B; --; checked"},
            {asked(typeB, 0, "i-+"), "*NOX B; --; checked, fixed"},
            {asked(typeCM, 5), "*--,NOX C,NOX CM; 0005; checked"}, // two alike
            {asked(typeCM, 5, "s"), "*NOX CM; 0005; checked, sure"},
            {asked(0x21, 5, "i"), "*NOX C; 0005; checked, sure"},
            {asked(0x0950AA0F, 5), "*--,NOX C,NOX CM; 0005; checked, number open"},
            {asked(typeCM1Extended, 0, "i"), "*NOX CM1 rev.4; --; checked, number open"}};
        for (const auto &[asked, expected] : seen)
            QCOMPARE(asked, expected);
    }
};

QTEST_GUILESS_MAIN(TestFoundInstrument)
#include "tst_foundinstrument.moc"
