#include "calibration/characteristicmessages.h"

#include "device/featurenox8.h"
#include "storage/noxsql.h"

#include <QCoreApplication>
#include <QDir>
#include <QLocale>
#include <QPointer>

#include <cmath>

namespace
{

constexpr double largestGoodDeviation = 1.0; // mK
constexpr int storedCharacters = 19;

struct NoteTexts {
    Q_DECLARE_TR_FUNCTIONS(CharacteristicNote)
};

QString numbersOf(const QVector<int> &columns)
{
    QStringList numbers;
    for (const int column : columns)
        numbers << QString::number(column + 1);
    return numbers.join(QStringLiteral(", "));
}

QString deviationText(double millikelvins)
{
    if (!std::isfinite(millikelvins))
        return NoteTexts::tr("Отклонение полинома: не вычисляется");
    constexpr double shown = 0.1;
    if (millikelvins < shown)
        return NoteTexts::tr("Отклонение полинома: менее 0,1 мК");
    const QLocale russian(QLocale::Russian);
    return NoteTexts::tr("Отклонение полинома: %1 мК").arg(russian.toString(millikelvins, 'f', 1));
}

QString fitWarning(double millikelvins)
{
    return deviationText(millikelvins) + NoteTexts::tr(" — больше 1 мК");
}

bool isAnyCut(const QStringList &values)
{
    for (const QString &value : values)
        if (value.trimmed().size() > storedCharacters)
            return true;
    return false;
}

QStringList warningsOnPairs(const CellTexts &cells, const QStringList &dropped)
{
    QStringList warnings;
    if (!dropped.isEmpty())
        warnings << NoteTexts::tr("T убывает, из таблицы убрано: %1").arg(dropped.join(' '));
    const QVector<int> leftOut = columnsLeftOut(cells);
    if (!leftOut.isEmpty())
        warnings << NoteTexts::tr("Столбцы без T не войдут: %1").arg(numbersOf(leftOut));
    const QVector<int> notRising = columnsNotRising(cells);
    if (!notRising.isEmpty())
        warnings << NoteTexts::tr("ТЭДС не растёт в столбцах: %1").arg(numbersOf(notRising));
    return warnings;
}

struct QuestionTexts {
    Q_DECLARE_TR_FUNCTIONS(CharacteristicQuestion)
};

FileQuestion characteristicFile(QFileDialog::AcceptMode mode)
{
    FileQuestion question;
    question.mode = mode;
    question.filter = QuestionTexts::tr("DAT (*.dat *.DAT);; All (*.*)");
    question.defaultSuffix = QStringLiteral("dat");
    return question;
}

Message warning(const QString &title, const QString &text)
{
    Message message;
    message.icon = QMessageBox::Warning;
    message.title = title;
    message.text = text;
    return message;
}

} // namespace

QStringList droppedPairs(const QStringList &entered, const QStringList &kept)
{
    QStringList pairs;
    for (int i = 0; i + 1 < entered.size(); i += 2)
        if (!entered.at(i).trimmed().isEmpty() && kept.value(i).isEmpty())
            pairs << QStringLiteral("(%1; %2)").arg(entered.at(i), entered.at(i + 1));
    return pairs;
}

CharacteristicNote noteOn(const FeatureRecord &copy, const CellTexts &cells,
                          const QStringList &dropped, bool isAccepted)
{
    if (!isAccepted)
        return {NoteTexts::tr("Значения таблицы не приняты: введены не все или с ошибкой"), false};
    QStringList warnings;
    if (copy.type == FeatureRecord::temperatureOfVoltage)
        warnings += warningsOnPairs(cells, dropped);
    else if (isAnyCut(copy.ratioStr))
        warnings
            << NoteTexts::tr("Длиннее %1 знаков: прибор сохранит не все").arg(storedCharacters);
    const std::optional<double> deviation = fitDeviation(copy);
    if (deviation && *deviation > largestGoodDeviation)
        warnings << fitWarning(*deviation);
    if (!warnings.isEmpty())
        return {warnings.join('\n'), true};
    return {deviation ? deviationText(*deviation) : QString(), false};
}

FileQuestion characteristicToLoad()
{
    FileQuestion question = characteristicFile(QFileDialog::AcceptOpen);
    question.title = QuestionTexts::tr("Загрузка градуировки из файла");
    return question;
}

FileQuestion characteristicToSave(const QString &description)
{
    FileQuestion question = characteristicFile(QFileDialog::AcceptSave);
    question.title = QuestionTexts::tr("Сохранение градуировки в файл");
    // a slash would lead to another folder
    question.name = QString(description).replace('/', '_') + QStringLiteral(".dat");
    return question;
}

QString chooseCharacteristic(QWidget *parent, noxSql *database, FileQuestion question)
{
    const QString property = QStringLiteral("feature_dir");
    const QPointer<noxSql> memory(database);
    question.directory = memory ? memory->getAppProperty(property).toString() : QString();
    if (question.directory.isEmpty())
        question.directory = QDir::homePath();
    const QString fileName = UserDialogs::current().chooseFile(parent, question);
    if (memory && !fileName.isEmpty())
        memory->setAppProperty(property, QFileInfo(fileName).absolutePath());
    return fileName;
}

Message removalQuestion(const QString &title)
{
    Message message = warning(title, QuestionTexts::tr("Вы уверены?"));
    message.buttons = QMessageBox::Yes | QMessageBox::No;
    message.defaultButton = QMessageBox::No;
    return message;
}

Message rejectedEntry()
{
    return warning(QuestionTexts::tr("Ошибка ввода градуировки"),
                   QuestionTexts::tr("Не верная градуировка!\nПроверьте введённые значения."));
}

Message unreadableCharacteristic()
{
    return warning(QuestionTexts::tr("Ошибка чтения градуировки"),
                   QuestionTexts::tr("Не верная градуировка в файле!\nВозможно файл повреждён, не "
                                     "доступен для чтения или имеет не верный тип."));
}

Message unwritableCharacteristic()
{
    Message message;
    message.icon = QMessageBox::Critical;
    message.text = QuestionTexts::tr("Ошибка записи в файл!\nВозможно файл занят другим "
                                     "приложением или не доступен для записи.");
    return message;
}
