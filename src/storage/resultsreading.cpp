#include "storage/resultsreading.h"

#include "plot/qwtnox.h"
#include "registry/noxlist.h"

#include <QFileInfo>

#include <utility>

namespace
{

constexpr int sliceMs = 15; ///< of work between two looks at other events

} // namespace

ResultsReading::ResultsReading(noxList *registry, QwtNOX *plot, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_plot(plot)
{
    connect(&m_timer, &QTimer::timeout, this, &ResultsReading::goOn);
    connect(registry, &noxList::onRmNox, this,
            [this](int index) { m_isLost = m_isLost || index == m_index; });
    connect(registry, &noxList::doClearQwt, this,
            [this](int qwtIndex) { m_isLost = m_isLost || qwtIndex == m_qwtIndex; });
}

ResultsReading::~ResultsReading() = default;

bool ResultsReading::open(const QString &fileName)
{
    stop();
    m_file.close();
    m_file.setFileName(fileName);
    return QFileInfo(fileName).isFile() && // opening a pipe may wait for ever
           m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool ResultsReading::start(int index)
{
    if (m_reader)
        return false;
    m_index = index;
    m_qwtIndex = m_registry->getQWTIndex(index);
    m_isLost = false;
    if (m_qwtIndex < 0 || !m_file.isOpen())
        return false;
    ResultsSink *const sink = this;
    m_reader = std::make_unique<ResultsReader>(&m_file, sink, m_plot->now());
    m_timer.start(0);
    goOn();
    return true;
}

void ResultsReading::stop()
{
    if (!m_reader)
        return;
    m_timer.stop();
    m_file.close();
    const auto reader = std::move(m_reader);
    emit finished(reader->findings());
}

void ResultsReading::goOn()
{
    if (m_isLost || !m_reader->readOn(sliceMs))
        return stop();
    emit progress(int(100 * m_file.pos() / qMax<qint64>(1, m_file.size())));
}

void ResultsReading::begin(const QDateTime &start)
{
    m_start = start;
    m_plot->prepareMeas(m_qwtIndex, start);
}

bool ResultsReading::take(const QVector<PlotPoint> &points, const QVector<QString> &units)
{
    if (ownsSeries())
        m_plot->addPoints(m_qwtIndex, points, units);
    return ownsSeries(); // whoever hears of the points may do anything to the instrument
}

bool ResultsReading::ownsSeries() const
{
    return !m_isLost && m_plot->getStartDateTime(m_qwtIndex) == m_start;
}
