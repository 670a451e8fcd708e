#include "dialogs/characteristicmenu.h"

#include "device/optionsnox8.h"
#include "device/vocabulary.h"

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

} // namespace

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
