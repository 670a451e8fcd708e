#include "storage/resultsfileform.h"

#include "ui_resultsfileform.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>

namespace
{

struct FileTexts {
    Q_DECLARE_TR_FUNCTIONS(FileQuestion)
};

QString tableFilter()
{
    return FileTexts::tr("CSV (*.csv *.CSV);; * (*.*)");
}

void select(QComboBox *box, const QString &data)
{
    const int index = box->findData(data);
    if (index >= 0)
        box->setCurrentIndex(index);
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

ResultsFileForm::ResultsFileForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ResultsFileForm>())
    , m_directory(QDir::homePath())
{
    m_ui->setupUi(this);
    QComboBox *const fields = m_ui->deFieldCB;
    fields->addItem(tr("Точка с запятой"), QStringLiteral(";"));
    fields->addItem(tr("Табуляция"), QStringLiteral("\t"));
    fields->addItem(tr("Запятая"), QStringLiteral(","));
    fields->addItem(tr("Пробел"), QStringLiteral(" "));
    fields->addItem(tr("Двоеточие"), QStringLiteral(":"));
    QComboBox *const points = m_ui->dePointCB;
    points->addItem(tr("Системный"), QStringLiteral(""));
    points->addItem(tr("Точка"), QStringLiteral("."));
    points->addItem(tr("Запятая"), QStringLiteral(","));
}

ResultsFileForm::~ResultsFileForm() = default;

void ResultsFileForm::focusFileButton()
{
    m_ui->selectFileBtn->setFocus();
}

ResultsFileChoice ResultsFileForm::choice() const
{
    ResultsFileChoice choice;
    choice.fileName = m_ui->lineEdit->text();
    choice.fieldSeparator = m_ui->deFieldCB->currentData().toString();
    choice.decimalSeparator = m_ui->dePointCB->currentData().toString();
    choice.decimals = m_ui->roundCB->currentIndex();
    choice.intervalMinutes = m_ui->timePointSB->value();
    return choice;
}

void ResultsFileForm::setChoice(const ResultsFileChoice &choice)
{
    m_ui->lineEdit->setText(choice.fileName);
    select(m_ui->deFieldCB, choice.fieldSeparator);
    select(m_ui->dePointCB, choice.decimalSeparator);
    m_ui->roundCB->setCurrentIndex(qBound(0, choice.decimals, m_ui->roundCB->count() - 1));
    m_ui->timePointSB->setValue(choice.intervalMinutes);
}

void ResultsFileForm::setDecimalSeparator(const QString &separator)
{
    select(m_ui->dePointCB, separator);
}

bool ResultsFileForm::chooseFile(const QString &name, bool asksToReplace)
{
    FileQuestion question = resultsFileQuestion(m_directory, name);
    question.asksToReplace = asksToReplace;
    const QPointer<ResultsFileForm> self(this); // the question waits in an event loop of its own
    const QString chosen = UserDialogs::current().chooseFile(this, question);
    if (!self || chosen.isEmpty())
        return false;
    m_ui->lineEdit->setText(chosen);
    m_directory = QFileInfo(chosen).absolutePath();
    return true;
}
