#include "calibration/characteristicquestions.h"

#include "storage/noxsql.h"

#include <QCoreApplication>
#include <QDir>
#include <QPointer>

namespace
{

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
