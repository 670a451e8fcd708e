#include "storage/filequestions.h"

#include <QCoreApplication>

namespace
{

struct FileTexts {
    Q_DECLARE_TR_FUNCTIONS(FileQuestion)
};

QString tableFilter()
{
    return FileTexts::tr("CSV (*.csv *.CSV);; * (*.*)");
}

} // namespace

FileQuestion resultsFileQuestion(const QString &directory, const QString &name)
{
    FileQuestion question;
    question.title = FileTexts::tr("Файл для сохранения результатов");
    question.filter = tableFilter();
    question.defaultSuffix = QStringLiteral("csv");
    question.directory = directory;
    question.name = name;
    return question;
}

FileQuestion savedResultsQuestion(const QString &directory)
{
    FileQuestion question;
    question.mode = QFileDialog::AcceptOpen;
    question.title = FileTexts::tr("Чтение результатов измерений из файла");
    question.filter = tableFilter();
    question.directory = directory;
    return question;
}

FileQuestion plotImageQuestion(const QString &directory, const QString &name)
{
    FileQuestion question;
    question.title = FileTexts::tr("Сохранить график в файл");
    question.filter = FileTexts::tr("PNG (*.png *.PNG);; * (*.*)");
    question.defaultSuffix = QStringLiteral("png");
    question.directory = directory;
    question.name = name;
    return question;
}

Message writeFailure()
{
    Message message;
    message.icon = QMessageBox::Critical;
    message.text =
        FileTexts::tr("Ошибка записи в файл!\nВозможно файл занят другим приложением или "
                      "не доступен для записи.");
    return message;
}
