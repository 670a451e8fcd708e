#include "storage/recmeas.h"

#include "registry/noxlist.h"
#include "storage/noxsql.h"
#include "ui_recmeas.h"

#include <QFileInfo>

namespace
{

const QString directoryKey = QStringLiteral("recmeas_dir");

} // namespace

recmeas::recmeas(QWidget *parent, noxList *registry)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::recmeas>())
    , m_registry(registry)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    const QString directory = registry->database()->getAppProperty(directoryKey).toString();
    if (!directory.isEmpty())
        m_ui->fileForm->setDirectory(directory);
    connect(registry, &noxList::onRmNox, this, [this](int index) {
        if (index != m_index)
            return;
        m_index = -1; // the index may be given to another instrument
        close();
    });
}

recmeas::~recmeas() = default;

void recmeas::showFor(int index, const QString &proposedName)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    m_index = index;
    m_proposedName = proposedName;
    m_ui->fileForm->setChoice({nox->recFileName, nox->recFieldSep, nox->recPointSep,
                               nox->recPrecision, nox->recInterval});
    showRecording(nox->recording);
    open();
    m_ui->fileForm->focusFileButton();
}

void recmeas::showRecording(bool isRecording)
{
    m_ui->saveBtn->setChecked(isRecording);
    m_ui->statusLabel->setText(isRecording ? tr("Идёт запись...") : tr("Запись остановлена"));
}

void recmeas::on_selectFileBtn_clicked()
{
    const QString chosen = QFileInfo(m_ui->fileForm->choice().fileName).fileName();
    // rows are appended: an existing file is not replaced
    if (!m_ui->fileForm->chooseFile(chosen.isEmpty() ? m_proposedName : chosen, false))
        return;
    m_registry->database()->setAppProperty(directoryKey, m_ui->fileForm->directory());
    m_ui->saveBtn->setFocus();
}

void recmeas::on_saveBtn_clicked(bool checked)
{
    noxList::_nox *nox = m_registry->getNoxByIndex(m_index);
    if (!nox)
        return showRecording(false);
    const ResultsFileChoice choice = m_ui->fileForm->choice();
    nox->recFileName = choice.fileName;
    nox->recPrecision = qint8(choice.decimals);
    nox->recFieldSep = choice.fieldSeparator;
    nox->recPointSep = choice.decimalSeparator;
    nox->recInterval = quint8(choice.intervalMinutes);
    const bool isRecording = checked && !choice.fileName.isEmpty();
    if (!isRecording)
        nox->recRow = 0;
    showRecording(isRecording);
    m_registry->setRecording(m_index, isRecording);
}

void recmeas::on_closeBtn_clicked()
{
    close();
}
