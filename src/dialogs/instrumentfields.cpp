#include "dialogs/instrumentfields.h"

#include "device/vocabulary.h"
#include "dialogs/settingscontent.h"
#include "widgets/changemark.h"

#include <QComboBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QSignalBlocker>
#include <QStandardItemModel>
#include <QStyle>

namespace
{

constexpr int longestName = 16; ///< characters that an instrument keeps

/** A line that the user is writing in keeps its text. */
bool isBeingWritten(const QLineEdit *line)
{
    return line->hasFocus() && line->isModified() && !line->isReadOnly();
}

void showText(QLineEdit *line, const QString &text)
{
    if (!isBeingWritten(line))
        line->setText(text);
}

/** The style sheet shows it, but looks only when it is asked to. */
void setReadOnly(QLineEdit *line, bool isReadOnly)
{
    if (line->isReadOnly() == isReadOnly)
        return;
    line->setReadOnly(isReadOnly);
    line->style()->unpolish(line);
    line->style()->polish(line);
}

/** A list fires while it is filled or set, as if the user had chosen. */
void choose(QComboBox *list, int place)
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

// Identity

InstrumentFields::InstrumentFields(const Widgets &widgets, QObject *parent)
    : QObject(parent)
    , m_widgets(widgets)
    , m_nameMark(new ChangeMark(widgets.name))
{
    hideProgress();
    const QMap<quint32, QString> types = optionsNOX8::getTypeList(true);
    for (QComboBox *list : {m_widgets.type, m_widgets.searchedType}) {
        const QSignalBlocker blocker(list);
        for (auto type = types.begin(); type != types.end(); ++type)
            list->addItem(type.value(), type.key());
    }
}

void InstrumentFields::setImage(optionsNOX8 *image)
{
    m_image = image;
}

void InstrumentFields::refresh(const QString &portName, const FieldStates &states, bool isChanged)
{
    if (!m_image)
        return;
    showText(m_widgets.port, portName);
    showText(m_widgets.name, m_image->getDevName(true));
    m_widgets.name->setEnabled(states.isExtended);
    m_nameMark->setChanged(isChanged);
    if (!isBeingWritten(m_widgets.number)) {
        m_widgets.number->setText(m_image->getDevNumberStr());
        setReadOnly(m_widgets.number, true);
    }
    for (QComboBox *list : {m_widgets.type, m_widgets.searchedType})
        choose(list, list->findData(m_image->devType));
    m_widgets.type->setEnabled(states.isTypeOpen);
    m_widgets.searchedType->setEnabled(!states.isKnown);
}

void InstrumentFields::showConnection(bool isConnected, const QString &portName)
{
    m_widgets.connection->setText(isConnected ? QString() : tr("Прибор не подключён"));
    m_widgets.port->setText(portName);
    if (!isConnected)
        hideProgress(); // nobody tells of a transfer that was cut off
}

void InstrumentFields::showProgress(int progress, int maxProgress)
{
    const bool isBusy = progress < 0;
    m_widgets.progress->setVisible(isBusy || progress != 0 || maxProgress != 0);
    m_widgets.progress->setRange(0, maxProgress);
    if (isBusy)
        m_widgets.progress->reset(); // its value is then -1, which setValue() refuses
    else
        m_widgets.progress->setValue(progress);
}

void InstrumentFields::hideProgress()
{
    m_widgets.progress->hide();
}

void InstrumentFields::unlock()
{
    m_widgets.type->setEnabled(true);
    setReadOnly(m_widgets.number, false);
}

/** The line ends its entry also when it is only left: the number it shows is no entry. */
void InstrumentFields::storeNumber()
{
    if (!m_image)
        return;
    bool ok = false;
    const auto number = quint16(m_widgets.number->text().toInt(&ok) & 0xFFFF);
    m_widgets.number->setModified(false);
    if (ok && number != m_image->devNumber)
        m_image->setDevNumber(number);
    else
        m_widgets.number->setText(m_image->getDevNumberStr());
}

void InstrumentFields::storeName()
{
    if (!m_image)
        return;
    const QString entered = m_widgets.name->text().trimmed();
    m_widgets.name->setModified(false);
    const QString name = entered.left(longestName);
    if (entered == m_image->getDevTitle() || name == m_image->devName)
        m_widgets.name->setText(m_image->getDevName(true));
    else
        m_image->setDevName(name);
}

void InstrumentFields::storeType()
{
    if (m_image && m_widgets.type->currentIndex() >= 0)
        m_image->setDevType(m_widgets.type->currentData().toUInt());
}

// Operating settings

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
    choose(m_lists.rounding, m_image->devMeasRound / nibble);
    choose(m_lists.measurementTime, m_image->devMeasTime);
    choose(m_lists.mode, m_image->devMeasMode);
    choose(m_lists.compensation, m_image->devCompensTP);
    choose(m_lists.reversal, m_image->devChRevers / nibble);
    choose(m_lists.shortCircuit, m_image->devZakorotka);
}

void OperatingFields::showCompensation()
{
    const bool hasShortCircuit = modelOrNone(m_image->devType).hasShortCircuit;
    m_lists.shortCircuit->setEnabled(hasShortCircuit);
    m_lists.compensation->setItemText(
        compensationByOneChannel, compensatingChannelText(m_image->devType, m_image->devZakorotka));
    const auto *const items = qobject_cast<QStandardItemModel *>(m_lists.compensation->model());
    items->item(compensationOfAllChannels)->setEnabled(hasShortCircuit);
}

void OperatingFields::store(const QComboBox *list)
{
    const QVariant chosen = list->currentData();
    if (!m_image || !chosen.isValid())
        return;
    const auto code = quint8(chosen.toUInt());
    if (list == m_lists.shortCircuit)
        return m_image->setDevZakorotka(code);
    m_image->setOperatingSetting(m_members.value(list), code);
}
