#include "storage/resultsfileform.h"

#include "storage/filequestions.h"
#include "ui_resultsfileform.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

namespace
{

void select(QComboBox *box, const QString &data)
{
    const int index = box->findData(data);
    if (index >= 0)
        box->setCurrentIndex(index);
}

} // namespace

ResultsFileForm::ResultsFileForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::ResultsFileForm>())
    , m_directory(QDir::homePath())
{
    m_ui->setupUi(this);
    setFocusProxy(m_ui->selectFileBtn);
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
