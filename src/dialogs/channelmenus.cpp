#include "dialogs/channelmenus.h"

#include "device/optionsnox8.h"
#include "device/vocabulary.h"
#include "widgets/mlineedit.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

namespace
{

constexpr char sourceProperty[] = "source";

/** Models from this code on have the standard characteristics. */
constexpr quint32 firstWithStandards = 34;

/** The text as an entry of a menu, which would take an ampersand for the mark of a key. */
QString entryText(QString text)
{
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

void addEntries(QMenu *menu, const QStringList &names, CharacteristicSource source)
{
    for (int i = 0; i < names.size(); ++i) {
        QAction *const entry = menu->addAction(entryText(names.at(i)));
        entry->setCheckable(true);
        entry->setData(i);
        entry->setProperty(sourceProperty, int(source));
    }
}

void markEntry(const QMenu *menu, CharacteristicSource source, int index)
{
    if (!menu)
        return;
    for (QAction *entry : menu->actions())
        if (!entry->menu())
            entry->setChecked(entry->property(sourceProperty).toInt() == source &&
                              entry->data().toInt() == index);
}

constexpr int longestUnit = 10; ///< characters that the image keeps

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

// The menu of characteristics

CharacteristicMenu::CharacteristicMenu(Offer offer, QWidget *parent)
    : QMenu(parent)
{
    if (offer != NoStandards)
        m_resistanceThermometers = new QMenu(tr("НСХ ТС"), this);
    if (offer == AllStandards)
        m_thermocouples = new QMenu(tr("НСХ ТП"), this);
    // a choice in a menu inside is reported by this one as well
    connect(this, &QMenu::triggered, this, [this](const QAction *entry) {
        emit chosen(CharacteristicSource(entry->property(sourceProperty).toInt()),
                    quint8(entry->data().toInt()));
    });
}

void CharacteristicMenu::fill(const optionsNOX8 &image)
{
    clear();
    addEntries(this, image.getFeatureInfStrList(), featureIndividual);

    const auto addStandards = [&](QMenu *menu, const QStringList &names,
                                  CharacteristicSource source) {
        if (!menu)
            return;
        menu->clear();
        addEntries(menu, names, source);
        menu->setEnabled(image.devType >= firstWithStandards);
        addMenu(menu);
    };
    addStandards(m_resistanceThermometers, standardResistanceThermometers(),
                 featureResistanceThermometer);
    addStandards(m_thermocouples, standardThermocouples(), featureThermocouple);
}

void CharacteristicMenu::mark(CharacteristicSource source, int index)
{
    markEntry(this, source, index);
    markEntry(m_resistanceThermometers, source, index);
    markEntry(m_thermocouples, source, index);
}

// The entry of a unit

QString ownUnitHint()
{
    return ChannelMenus::tr("своя единица");
}

void prepareUnitLine(QLineEdit *line)
{
    line->setMaxLength(longestUnit);
    line->setPlaceholderText(ownUnitHint());
    line->setAccessibleName(ChannelMenus::tr("Своя единица"));
}

UnitEntry::UnitEntry(QObject *parent)
    : QWidgetAction(parent)
{
    setText(QStringLiteral(":"));
    setCheckable(true);

    auto *const holder = new QWidget;
    m_check = new QLabel(holder);
    m_check->setFixedWidth(m_check->fontMetrics().horizontalAdvance(QStringLiteral("✓ ")));
    m_line = new mLineEdit(holder);
    prepareUnitLine(m_line);
    m_line->installEventFilter(this);
    holder->setFocusProxy(m_line);
    holder->setFocusPolicy(Qt::StrongFocus);
    auto *const layout = new QHBoxLayout(holder);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->setSpacing(4);
    layout->addWidget(m_check);
    layout->addWidget(m_line);
    setDefaultWidget(holder);

    connect(this, &QAction::toggled, m_check, [this](bool isChecked) {
        m_check->setText(isChecked ? QStringLiteral("✓") : QString());
    });
    connect(m_line, &mLineEdit::clicked, this, &UnitEntry::pressed);
    connect(m_line, &QLineEdit::editingFinished, this, &UnitEntry::reportEntry);
}

void UnitEntry::setUnit(const QString &unit)
{
    m_line->setText(unit);
    m_shown = m_line->text(); // of a longer one the line shows the beginning
}

/** Both Return and the loss of the focus end an entry: the second one brings nothing new. */
void UnitEntry::reportEntry()
{
    if (m_line->text() == m_shown)
        return;
    m_shown = m_line->text();
    emit entered(m_shown);
}

bool UnitEntry::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        m_line->setText(m_shown);
    return QWidgetAction::eventFilter(watched, event);
}

// The menus of the columns

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
