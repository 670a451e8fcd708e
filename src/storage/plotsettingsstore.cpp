#include "storage/plotsettingsstore.h"

#include "plot/qwtnox.h"
#include "registry/instrumentstore.h"
#include "storage/noxsql.h"

#include <QPointer>
#include <QScopedValueRollback>

#include <optional>
#include <utility>

namespace
{

constexpr int gatheringMs = 500;
constexpr int cyclicMeasuring = 2; ///< also what an image says that has not been read yet

const QString mainChannelKey = QStringLiteral("qwt-ch_main");
const QString valuesShownKey = QStringLiteral("qwt-meas_show");
const QString averagesShownKey = QStringLiteral("qwt-aver_show");

QString channelKey(uchar ch, const char *name)
{
    return QStringLiteral("qwt_ch_%1-%2").arg(ch).arg(QLatin1String(name));
}

/** Instruments without a row in the database share the id 0. */
int idOf(const noxList::_nox &nox)
{
    return qMax(0, nox.dbIndex);
}

/** A small number as it is stored; nothing when there is none, or it is no such number. */
std::optional<uchar> smallNumber(const QMap<QString, QVariant> &settings, const QString &key)
{
    bool isNumber = false;
    const uint number = settings.value(key).toUInt(&isNumber);
    constexpr uint mainChannel = 255; // not a number of its own
    if (!isNumber || number >= mainChannel)
        return std::nullopt;
    return uchar(number);
}

} // namespace

PlotSettingsStore::PlotSettingsStore(QwtNOX *plot, noxList *registry, noxSql *database,
                                     QObject *parent)
    : QObject(parent)
    , m_plot(plot)
    , m_registry(registry)
    , m_database(database)
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(gatheringMs);
    connect(&m_timer, &QTimer::timeout, this, &PlotSettingsStore::writeNow);
    connect(registry, &noxList::onRmNox, this, &PlotSettingsStore::flush);
    connectPlot();
}

PlotSettingsStore::~PlotSettingsStore()
{
    flush();
}

void PlotSettingsStore::connectPlot()
{
    connect(m_plot, &QwtNOX::onChMainChange, this, [this](int qwtIndex, uchar mainCh) {
        store(qwtIndex, mainChannelKey, int(mainCh));
        mirrorMainChannel(qwtIndex, mainCh);
    });
    connect(m_plot, &QwtNOX::onMeasShowChange, this,
            [this](int qwtIndex, bool show) { store(qwtIndex, valuesShownKey, show); });
    connect(m_plot, &QwtNOX::onAverShowChange, this,
            [this](int qwtIndex, bool show) { store(qwtIndex, averagesShownKey, show); });
    connect(m_plot, &QwtNOX::onChScaleXChange, this, [this](int qwtIndex, uchar ch, uchar scale) {
        storeOfChannel(qwtIndex, ch, "dX", int(scale));
    });
    connect(m_plot, &QwtNOX::onChScaleYChange, this, [this](int qwtIndex, uchar ch, uchar scale) {
        storeOfChannel(qwtIndex, ch, "dY", int(scale));
    });
    connect(m_plot, &QwtNOX::onChColorChange, this,
            [this](int qwtIndex, uchar ch, const QColor &color) {
                storeOfChannel(qwtIndex, ch, "color", color.name());
            });
    connect(m_plot, &QwtNOX::onChModeXChange, this, [this](int qwtIndex, uchar ch, TmcModeX mode) {
        storeOfChannel(qwtIndex, ch, "modeX", int(mode));
    });
    connect(m_plot, &QwtNOX::onAddCh, this, &PlotSettingsStore::applyToNewChannel);
}

// Storing

void PlotSettingsStore::store(int qwtIndex, const QString &key, const QVariant &value)
{
    noxList::_nox *nox = m_isApplying ? nullptr : m_registry->getNoxByQwtIndex(qwtIndex);
    if (!nox)
        return;
    if (nox->awaitsRow()) {
        nox->refused.properties.insert(key, value);
        return;
    }
    m_unwritten.insert({idOf(*nox), key}, value);
    if (!m_timer.isActive())
        writeNow();
}

/** What comes in the time after this is gathered. */
void PlotSettingsStore::writeNow()
{
    if (m_unwritten.isEmpty())
        return;
    flush();
    m_timer.start();
}

void PlotSettingsStore::storeOfChannel(int qwtIndex, uchar ch, const char *name,
                                       const QVariant &value)
{
    store(qwtIndex, channelKey(ch, name), value);
}

/** Writes what has been gathered in one transaction, which costs about as much as one change. What
 *  it refuses the database keeps itself. */
void PlotSettingsStore::flush()
{
    if (!m_unwritten.isEmpty())
        m_database->setDevProperties(std::exchange(m_unwritten, {}));
}

/** What is stored for an instrument, which takes over what it inherits: else its first own setting
 *  would end that, and leave it with this one alone. */
PlotSettingsStore::Settings PlotSettingsStore::settingsOf(const noxList::_nox &nox)
{
    flush();
    const Settings settings = m_database->getDevProperty(idOf(nox));
    if (!m_database->hasDevProperty(idOf(nox))) {
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
            m_unwritten.insert({idOf(nox), setting.key()}, setting.value());
        flush();
    }
    return settings;
}

/** An instrument that does not measure all channels in turn follows the main one. */
void PlotSettingsStore::mirrorMainChannel(int qwtIndex, uchar mainCh)
{
    noxList::_nox *nox = m_registry->getNoxByQwtIndex(qwtIndex);
    if (!nox || nox->mainCh == mainCh)
        return;
    nox->mainCh = mainCh;
    if (nox->opt->devMeasMode != cyclicMeasuring)
        nox->opt->triggerChChange(mainCh);
}

// Applying

void PlotSettingsStore::apply(int index)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    const int id = idOf(*nox);
    Settings settings = settingsOf(*nox);
    for (const QString &key : nox->refused.properties.keys())
        settings.remove(key); // it looks so already
    if (id > 0)
        applyUnits(nox->opt.get(), settings);

    const int qwtIndex = m_registry->getQWTIndex(index); // a receiver of a unit may have removed it
    if (qwtIndex < 0)
        return;
    {
        const QScopedValueRollback<bool> applying(m_isApplying, true);
        applyMainChannel(settings, qwtIndex);
        applyCurveKinds(settings, qwtIndex);
        for (int ch = 0; ch < m_plot->getChCount(qwtIndex); ++ch)
            applyChannel(settings, qwtIndex, uchar(ch));
    }
    const int mainId = m_database->getAppProperty(QStringLiteral("main_device_id")).toInt();
    if (id > 0 && id == mainId && m_plot->getDevMain() != qwtIndex)
        emit currentInstrumentFound(index);
}

void PlotSettingsStore::applyToNewChannel(int qwtIndex, uchar ch)
{
    const noxList::_nox *nox = m_registry->getNoxByQwtIndex(qwtIndex);
    if (!nox)
        return;
    Settings settings = settingsOf(*nox);
    const Settings &awaiting = nox->refused.properties;
    for (auto setting = awaiting.cbegin(); setting != awaiting.cend(); ++setting)
        settings.insert(setting.key(), setting.value());
    const QScopedValueRollback<bool> applying(m_isApplying, true);
    if (qwtIndex == m_plot->getDevMain())
        applyMainChannel(settings, qwtIndex);
    applyCurveKinds(settings, qwtIndex);
    applyChannel(settings, qwtIndex, ch);
}

void PlotSettingsStore::applyUnits(optionsNOX8 *image, const Settings &settings)
{
    const QPointer<optionsNOX8> guarded(image); // whoever hears of a unit may remove the instrument
    for (int ch = 0; guarded && ch < image->getDevChCount(); ++ch) {
        const QString unit = settings.value(unitKey(uchar(ch))).toString();
        if (!unit.isEmpty())
            image->setChMeasType(quint8(ch), measTemperatureCustom, unit);
    }
}

void PlotSettingsStore::applyMainChannel(const Settings &settings, int qwtIndex)
{
    if (const auto mainCh = smallNumber(settings, mainChannelKey))
        m_plot->setChMain(*mainCh, qwtIndex);
}

void PlotSettingsStore::applyCurveKinds(const Settings &settings, int qwtIndex)
{
    if (settings.contains(valuesShownKey))
        m_plot->setMeasShow(settings.value(valuesShownKey).toBool(), qwtIndex);
    if (settings.contains(averagesShownKey))
        m_plot->setAverShow(settings.value(averagesShownKey).toBool(), qwtIndex);
}

void PlotSettingsStore::applyChannel(const Settings &settings, int qwtIndex, uchar ch)
{
    if (const auto scale = smallNumber(settings, channelKey(ch, "dX")))
        m_plot->setChScaleX(*scale, qwtIndex, ch);
    if (const auto scale = smallNumber(settings, channelKey(ch, "dY")))
        m_plot->setChScaleY(*scale, qwtIndex, ch);
    const QString color = settings.value(channelKey(ch, "color")).toString();
    if (QColor::isValidColor(color))
        m_plot->setChColor(QColor(color), qwtIndex, ch);
    if (const auto mode = smallNumber(settings, channelKey(ch, "modeX")))
        m_plot->setChModeX(TmcModeX(*mode), qwtIndex, ch);
}
