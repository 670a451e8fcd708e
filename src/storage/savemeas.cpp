#include "storage/savemeas.h"

#include "plot/qwtnox.h"
#include "ui_savemeas.h"

#include <utility>

namespace
{

/** Its place stays when the widget is hidden, so that nothing jumps. */
void keepPlace(QWidget *widget)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

} // namespace

savemeas::savemeas(QWidget *parent, QwtNOX *plot)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::savemeas>())
    , m_plot(plot)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    keepPlace(m_ui->progressBar);
    keepPlace(m_ui->cancelBtn);
    showIdle();
    connect(&m_job, &ExportJob::progress, this, &savemeas::showProgress);
    connect(&m_job, &ExportJob::finished, this, &savemeas::finishExport);
    connect(this, &QDialog::finished, this, &savemeas::giveUp);
}

savemeas::~savemeas() = default;

void savemeas::showFor(const QString &proposedName)
{
    m_proposedName = proposedName;
    m_ui->statusLabel->clear();
    open();
    m_ui->fileForm->focusFileButton();
}

void savemeas::on_selectFileBtn_clicked()
{
    if (m_ui->fileForm->chooseFile(m_proposedName, true))
        m_ui->saveBtn->setFocus();
}

void savemeas::on_deFieldCB_currentIndexChanged(int index)
{
    constexpr int comma = 2;
    m_ui->fileForm->setDecimalSeparator(index == comma ? QStringLiteral(".") : QString());
}

void savemeas::on_saveBtn_clicked()
{
    m_ui->statusLabel->setText(tr("Сохраняю..."));
    const ResultsFileChoice choice = m_ui->fileForm->choice();
    if (choice.fileName.isEmpty())
        return tellFailure(tr("Выберите файл для сохранения"));
    const auto &instruments = std::as_const(*m_plot).devices();
    const auto instrument = instruments.constFind(m_plot->getDevMain());
    if (instrument == instruments.cend() || instrument->ch.isEmpty())
        return tellFailure(tr("Нет данных для сохранения"));
    m_job.start(choice.fileName, *instrument,
                ResultsFormat::fromTexts(choice.fieldSeparator, choice.decimalSeparator,
                                         choice.decimals, choice.intervalMinutes));
}

void savemeas::showProgress(int percent)
{
    m_ui->progressBar->setValue(percent);
    if (m_ui->progressBar->isVisible())
        return;
    m_ui->progressBar->show();
    m_ui->cancelBtn->show();
    m_ui->cancelBtn->setFocus();
    m_ui->fileForm->setEnabled(false);
    m_ui->saveBtn->setEnabled(false);
}

void savemeas::showIdle()
{
    const bool hadFocus = m_ui->cancelBtn->hasFocus();
    m_ui->fileForm->setEnabled(true);
    m_ui->saveBtn->setEnabled(true);
    m_ui->progressBar->hide();
    m_ui->cancelBtn->hide();
    if (hadFocus)
        m_ui->saveBtn->setFocus();
}

void savemeas::finishExport(bool isWritten)
{
    showIdle();
    if (isWritten)
        m_ui->statusLabel->setText(tr("Сохранено!"));
    else
        UserDialogs::current().tell(this, writeFailure());
}

void savemeas::on_cancelBtn_clicked()
{
    giveUp();
}

/** Also when the dialog has closed. */
void savemeas::giveUp()
{
    m_job.giveUp();
    showIdle();
    m_ui->statusLabel->clear();
}

void savemeas::on_closeBtn_clicked()
{
    close();
}

void savemeas::tellFailure(const QString &text)
{
    Message message;
    message.icon = QMessageBox::Critical;
    message.text = text;
    UserDialogs::current().tell(this, message);
}
