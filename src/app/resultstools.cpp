#include "app/resultstools.h"

#include "plot/qwtnox.h"
#include "storage/noxsql.h"
#include "storage/recmeas.h"
#include "storage/resultsexport.h"
#include "storage/resultsfileform.h"
#include "storage/resultslayout.h"
#include "storage/savemeas.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>

namespace
{

const QString directoryKey = QStringLiteral("savemeas_dir");

} // namespace

ResultsTools::ResultsTools(const Display &display, noxList *registry, QwtNOX *plot, QWidget *window)
    : m_display(display)
    , m_registry(registry)
    , m_plot(plot)
    , m_window(window)
    , m_recorder(registry, plot)
    , m_reading(registry, plot)
    , m_export(std::make_unique<savemeas>(window, plot))
    , m_recording(std::make_unique<recmeas>(window, registry))
    , m_directory(registry->database()->getAppProperty(directoryKey).toString())
    , m_recordTip(display.recordButton->toolTip())
{
    if (m_directory.isEmpty())
        m_directory = QDir::homePath();
    connect(&m_recorder, &Recorder::faultChanged, this, &ResultsTools::showFaults);
    connectReading();
}

ResultsTools::~ResultsTools() = default;

// Recording

void ResultsTools::record(int index)
{
    m_recording->showFor(index, proposedName(index));
    refresh(m_index); // the click has changed the button, whatever comes of it
}

void ResultsTools::refresh(int index)
{
    m_index = index;
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    m_display.recordButton->setChecked(nox && nox->recording);
}

/** Marks the record button while rows are lost; its tool tip says whose, why, and since when. */
void ResultsTools::showFaults()
{
    QStringList tip(m_recordTip);
    const auto indices = m_registry->indices();
    for (const int index : indices)
        if (const auto fault = m_recorder.fault(index))
            tip << m_registry->getNoxByIndex(index)->opt->getDevTitle() + QStringLiteral(": ") +
                       recordingFaultText(*fault);
    QToolButton *const button = m_display.recordButton;
    button->setToolTip(tip.join('\n'));
    button->setAccessibleDescription(button->toolTip());
    button->setProperty("fault", tip.size() > 1);
    button->style()->unpolish(button); // the style sheet looks at the property
    button->style()->polish(button);
}

// Files of the whole

void ResultsTools::exportMain()
{
    if (const noxList::_nox *nox = m_registry->getNoxByQwtIndex(m_plot->getDevMain()))
        m_export->showFor(proposedName(nox->index));
}

void ResultsTools::savePicture(int index)
{
    const QString fileName = chooseFile(plotImageQuestion(m_directory, proposedName(index)));
    if (!fileName.isEmpty() && !savePlotImage(m_plot, fileName))
        UserDialogs::current().tell(m_window, writeFailure());
}

/** The name for results of an instrument; empty without one. */
QString ResultsTools::proposedName(int index) const
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    return nox ? resultsFileName(nox->opt->getDevTypeStr(true), nox->opt->getDevNumberStr(),
                                 m_plot->now().date())
               : QString();
}

/** Asks for a file, and remembers its directory. */
QString ResultsTools::chooseFile(const FileQuestion &question)
{
    const QString fileName = UserDialogs::current().chooseFile(m_window, question);
    if (fileName.isEmpty())
        return {};
    m_directory = QFileInfo(fileName).absolutePath();
    m_registry->database()->setAppProperty(directoryKey, m_directory);
    return fileName;
}

// Reading

void ResultsTools::connectReading()
{
    m_display.readingBar->hide();
    connect(&m_reading, &ResultsReading::progress, m_display.readingProgress,
            &QProgressBar::setValue);
    connect(&m_reading, &ResultsReading::finished, this, [this] {
        m_display.readingBar->hide();
        emit resultsRead();
    });
    connect(m_display.stopButton, &QPushButton::clicked, &m_reading, &ResultsReading::stop);
}

bool ResultsTools::openSaved()
{
    const QString fileName = chooseFile(savedResultsQuestion(m_directory));
    if (fileName.isEmpty() || !m_reading.open(fileName))
        return false;
    showFileName(QFileInfo(fileName).fileName());
    return true;
}

/** A long name is shortened, for it must not widen the window; the tool tip has all of it. */
void ResultsTools::showFileName(const QString &name)
{
    constexpr int mostLetters = 24; // of middle width
    QLabel *const label = m_display.readingLabel;
    const QFontMetrics metrics = label->fontMetrics();
    const int width = mostLetters * metrics.averageCharWidth();
    label->setText(tr("Чтение: %1").arg(metrics.elidedText(name, Qt::ElideMiddle, width)));
    label->setToolTip(name);
}

void ResultsTools::readInto(int index)
{
    m_display.readingProgress->setValue(0);
    m_reading.start(index);
    m_display.readingBar->setVisible(m_reading.isRunning()); // a short file has been read by now
}
