#include "dialogs/channelmenus.h"

#include "dialogs/characteristicmenu.h"
#include "dialogs/unitentry.h"

namespace
{

constexpr char channelProperty[] = "ch";

/** A column in which one entry of a list is chosen by its place. */
struct ListColumn {
    QStringList (*entries)(const optionsNOX8 &image);
    int (*chosen)(const ChannelSettings &channel);
    void (*choose)(optionsNOX8 &image, quint8 ch, int entry);
};

ListColumn listColumn(ChannelSetting column)
{
    switch (column) {
    case CurrentSetting:
        return {[](const optionsNOX8 &image) { return image.getDevCurrentList(image.devType); },
                [](const ChannelSettings &channel) { return int(channel.current); },
                [](optionsNOX8 &image, quint8 ch, int entry) {
                    image.setChCurrent(ch, quint8(entry));
                }};
    case ResistorSetting:
        return {
            [](const optionsNOX8 &image) { return image.getDevResistList(image.devType); },
            [](const ChannelSettings &channel) { return int(channel.resist); },
            [](optionsNOX8 &image, quint8 ch, int entry) { image.setChResist(ch, quint8(entry)); }};
    default:
        return {
            [](const optionsNOX8 &) {
                return QStringList{ChannelMenus::tr("Выкл."), ChannelMenus::tr("Вкл.")};
            },
            [](const ChannelSettings &channel) { return int(channel.onOff); },
            [](optionsNOX8 &image, quint8 ch, int entry) { image.setChOnOff(ch, qint8(entry)); }};
    }
}

void addChoice(QMenu *menu, const QString &text, int data)
{
    QAction *const entry = menu->addAction(text);
    entry->setCheckable(true);
    entry->setData(data);
}

/** `data` is below 0 where none is to be marked. */
void markChoice(const QMenu *menu, int data)
{
    for (QAction *entry : menu->actions())
        entry->setChecked(entry->data().toInt() == data);
}

} // namespace

ChannelMenus::ChannelMenus(QWidget *parent)
    : QObject(parent)
    , m_parent(parent)
{
    for (const ChannelSetting column : {OnOffSetting, CurrentSetting, ResistorSetting})
        buildListMenu(column);
    buildUnitMenu();
    buildCharacteristicMenus();
    for (QMenu *menu : m_menus)
        menu->setProperty(channelProperty, -1);
}

void ChannelMenus::setImage(optionsNOX8 *image)
{
    m_image = image;
    for (QMenu *menu : m_menus)
        menu->close();
}

void ChannelMenus::popUp(ChannelSetting column, int channel, const QPoint &place)
{
    if (!m_image)
        return;
    m_menus[column]->setProperty(channelProperty, channel);
    m_menus[column]->popup(place);
}

void ChannelMenus::buildListMenu(ChannelSetting column)
{
    auto *const menu = new QMenu(m_parent);
    m_menus[column] = menu;
    connect(menu, &QMenu::aboutToShow, this, [this, column] { fillList(column); });
    connect(menu, &QMenu::triggered, this, [this, column](const QAction *entry) {
        const int place = entry->data().toInt();
        const auto choose = listColumn(column).choose;
        apply(column, [=](optionsNOX8 &image, quint8 ch) { choose(image, ch, place); });
    });
}

void ChannelMenus::fillList(ChannelSetting column)
{
    QMenu *const menu = m_menus[column];
    menu->clear();
    if (!m_image)
        return;
    const ListColumn list = listColumn(column);
    const QStringList entries = list.entries(*m_image);
    for (int place = 0; place < entries.size(); ++place)
        addChoice(menu, entries.at(place), place);
    const int ch = channel(column);
    markChoice(menu, ch < 0 ? -1 : list.chosen(m_image->getCh(quint8(ch))));
}

void ChannelMenus::buildUnitMenu()
{
    auto *const menu = new QMenu(m_parent);
    m_menus[UnitSetting] = menu;
    for (const MeasurementType type : {measResistance, measTemperature, measVoltage})
        addChoice(menu, optionsNOX8::getChMeasTypeName(type), type);
    m_unitEntry = new UnitEntry(menu);
    m_unitEntry->setData(measTemperatureCustom);
    menu->addAction(m_unitEntry);
    connect(menu, &QMenu::aboutToShow, this, &ChannelMenus::markUnit);
    connect(menu, &QMenu::triggered, this, &ChannelMenus::chooseUnit);
    connect(m_unitEntry, &UnitEntry::pressed, this, [this, menu] {
        markChoice(menu, measTemperatureCustom);
        chooseUnit(m_unitEntry);
    });
    connect(m_unitEntry, &UnitEntry::entered, this, &ChannelMenus::writeUnit);
}

void ChannelMenus::markUnit()
{
    const int ch = channel(UnitSetting);
    const bool isOne = m_image && ch >= 0;
    m_unitEntry->setUnit(isOne ? m_image->getChDimCust(quint8(ch)) : QString());
    markChoice(m_menus[UnitSetting], isOne ? int(m_image->getCh(quint8(ch)).measType) : -1);
}

void ChannelMenus::chooseUnit(const QAction *entry)
{
    const auto type = MeasurementType(entry->data().toInt());
    apply(UnitSetting,
          [type](optionsNOX8 &image, quint8 ch) { image.setChMeasType(ch, type, QString()); });
}

/** By the keyboard a unit can be written without the line having been pressed. */
void ChannelMenus::writeUnit(const QString &unit)
{
    markChoice(m_menus[UnitSetting], measTemperatureCustom);
    chooseUnit(m_unitEntry);
    apply(UnitSetting, [unit](optionsNOX8 &image, quint8 ch) { image.setChDimCust(ch, unit); });
}

void ChannelMenus::buildCharacteristicMenus()
{
    m_characteristics = new CharacteristicMenu(CharacteristicMenu::AllStandards, m_parent);
    m_compensations = new CharacteristicMenu(CharacteristicMenu::ResistanceThermometers, m_parent);
    m_menus[CharacteristicSetting] = m_characteristics;
    m_menus[CompensationSetting] = m_compensations;
    for (const QMenu *menu : {m_characteristics, m_compensations})
        connect(menu, &QMenu::aboutToShow, this, &ChannelMenus::markCharacteristics);
    connect(m_characteristics, &CharacteristicMenu::chosen, this,
            [this](CharacteristicSource source, quint8 index) {
                apply(CharacteristicSetting, [=](optionsNOX8 &image, quint8 ch) {
                    image.setChFeature(ch, source, index);
                });
            });
    connect(m_compensations, &CharacteristicMenu::chosen, this,
            [this](CharacteristicSource source, quint8 index) {
                const auto compensation = compensationSource(source);
                apply(CompensationSetting, [=](optionsNOX8 &image, quint8 ch) {
                    image.setChFeatureCompesTP(ch, compensation, index);
                });
            });
}

/** Fills both menus of characteristics and marks what their channels have. */
void ChannelMenus::markCharacteristics()
{
    if (!m_image)
        return;
    m_characteristics->fill(*m_image);
    m_compensations->fill(*m_image);
    const int ch = channel(CharacteristicSetting);
    if (ch >= 0) {
        const ChannelSettings settings = m_image->getCh(quint8(ch));
        m_characteristics->mark(settings.featureType, settings.feature);
    }
    const int compensated = channel(CompensationSetting);
    if (compensated >= 0) {
        const ChannelSettings settings = m_image->getCh(quint8(compensated));
        m_compensations->mark(characteristicSource(settings.featureTypeCompensTP),
                              settings.featureCompensTP);
    }
}

int ChannelMenus::channel(ChannelSetting column) const
{
    return m_menus[column]->property(channelProperty).toInt();
}

/** Each change is announced, and whoever hears of it may remove the instrument. */
void ChannelMenus::apply(ChannelSetting column, const Change &change)
{
    const QPointer<optionsNOX8> image = m_image;
    const int only = channel(column);
    for (quint8 ch = 0; image && ch < image->getDevChCount(); ++ch)
        if (only < 0 || only == ch)
            change(*image, ch);
}
