#include "dialogs/operatingfields.h"

#include "device/vocabulary.h"
#include "dialogs/compensationtext.h"
#include "dialogs/configurationchanges.h"
#include "widgets/rowdelegate.h"

#include <QComboBox>
#include <QIcon>
#include <QStandardItemModel>

namespace
{

constexpr int byOneChannel = 1; ///< places in the list of compensations
constexpr int ofAllChannels = 2;

/** A list fires while it is filled or set, as if the user had chosen. */
void select(QComboBox *list, int place)
{
    const QSignalBlocker blocker(list);
    list->setCurrentIndex(place);
}

void fill(QComboBox *list, const SettingChoices &choices)
{
    const QSignalBlocker blocker(list);
    for (const SettingChoice &choice : choices)
        list->addItem(choice.text, choice.code);
}

/** Pictures, with names for who cannot see them. */
void fillModes(QComboBox *list)
{
    const QSignalBlocker blocker(list);
    const QStringList names = {OperatingFields::tr("Один канал"),
                               OperatingFields::tr("Один канал с показом остальных"),
                               OperatingFields::tr("Опрос каналов по кругу")};
    for (const SettingChoice &mode : measurementModeChoices()) {
        const int place = list->count();
        list->addItem(QIcon(mode.text), QString(), mode.code);
        list->setItemData(place, names.value(place), Qt::ToolTipRole);
        list->setItemData(place, names.value(place), Qt::AccessibleTextRole);
    }
}

} // namespace

OperatingFields::OperatingFields(const Lists &lists, QObject *parent)
    : QObject(parent)
    , m_lists(lists)
    , m_members{{lists.rounding, &OperatingSettings::devMeasRound},
                {lists.measurementTime, &OperatingSettings::devMeasTime},
                {lists.mode, &OperatingSettings::devMeasMode},
                {lists.compensation, &OperatingSettings::devCompensTP},
                {lists.reversal, &OperatingSettings::devChRevers}}
{
    fillLists();
    for (QComboBox *list : {lists.rounding, lists.measurementTime, lists.mode, lists.compensation,
                            lists.reversal, lists.shortCircuit})
        m_marks.insert(list, new ChangeMark(list));
}

void OperatingFields::setImage(optionsNOX8 *image)
{
    m_image = image;
}

void OperatingFields::fillLists()
{
    fill(m_lists.rounding, roundingChoices());
    fill(m_lists.measurementTime, measurementTimeChoices());
    fillModes(m_lists.mode);
    fill(m_lists.compensation, {{0, tr("Нет")}, {1, tr("Да")}, {2, tr("Все")}});
    fill(m_lists.reversal, reversalChoices());
    fill(m_lists.shortCircuit, shortCircuitChoices());
}

void OperatingFields::refresh(const ConfigurationChanges &changes)
{
    if (!m_image)
        return;
    showChoices();
    showCompensation();
    m_marks.value(m_lists.rounding)->setChanged(changes.rounding);
    m_marks.value(m_lists.measurementTime)->setChanged(changes.measurementTime);
    m_marks.value(m_lists.mode)->setChanged(changes.mode);
    m_marks.value(m_lists.compensation)->setChanged(changes.compensation);
    m_marks.value(m_lists.reversal)->setChanged(changes.reversal);
    m_marks.value(m_lists.shortCircuit)->setChanged(changes.shortCircuit);
}

/** A code that is in no list, as an instrument may hold it, shows nothing. */
void OperatingFields::showChoices()
{
    constexpr int nibble = 16;
    select(m_lists.rounding, m_image->devMeasRound / nibble);
    select(m_lists.measurementTime, m_image->devMeasTime);
    select(m_lists.mode, m_image->devMeasMode);
    select(m_lists.compensation, m_image->devCompensTP);
    select(m_lists.reversal, m_image->devChRevers / nibble);
    select(m_lists.shortCircuit, m_image->devZakorotka);
}

void OperatingFields::showCompensation()
{
    const bool hasShortCircuit = modelOrNone(m_image->devType).hasShortCircuit;
    m_lists.shortCircuit->setEnabled(hasShortCircuit);
    m_lists.compensation->setItemText(
        byOneChannel, compensatingChannelText(m_image->devType, m_image->devZakorotka));
    const auto *const items = qobject_cast<QStandardItemModel *>(m_lists.compensation->model());
    items->item(ofAllChannels)->setEnabled(hasShortCircuit);
}

void OperatingFields::store(const QComboBox *list)
{
    const QVariant chosen = list->currentData();
    if (!m_image || !chosen.isValid())
        return;
    const auto code = quint8(chosen.toUInt());
    if (list == m_lists.shortCircuit)
        return m_image->setDevZakorotka(code);
    quint8 &setting = *m_image.*m_members.value(list);
    if (setting == code)
        return;
    setting = code;
    emit m_image->onDevChange();
}
