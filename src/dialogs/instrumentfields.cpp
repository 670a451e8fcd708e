#include "dialogs/instrumentfields.h"

#include "device/vocabulary.h"
#include "dialogs/compensationtext.h"
#include "dialogs/configurationchanges.h"
#include "dialogs/fieldstates.h"
#include "widgets/changemark.h"

#include <QComboBox>
#include <QIcon>
#include <QLineEdit>
#include <QStandardItemModel>

namespace
{

constexpr int longestName = 16; ///< characters that an instrument keeps
constexpr int byOneChannel = 1; ///< places in the list of compensations
constexpr int ofAllChannels = 2;

/** A list fires while it is filled or set, as if the user had chosen. */
void select(QComboBox *box, int place)
{
    const QSignalBlocker blocker(box);
    box->setCurrentIndex(place);
}

void fill(QComboBox *box, const SettingChoices &choices)
{
    const QSignalBlocker blocker(box);
    for (const SettingChoice &choice : choices)
        box->addItem(choice.text, choice.code);
}

/** A line that the user is writing in keeps its text. */
bool isBeingWritten(const QLineEdit *line)
{
    return line->hasFocus() && line->isModified() && !line->isReadOnly();
}

void show(QLineEdit *line, const QString &text)
{
    if (!isBeingWritten(line))
        line->setText(text);
}

} // namespace

InstrumentFields::InstrumentFields(const Widgets &widgets, QObject *parent)
    : QObject(parent)
    , m_widgets(widgets)
{
    m_widgets.name->setMaxLength(longestName);
    fillLists();
    for (QWidget *field :
         QVector<QWidget *>{widgets.name, widgets.rounding, widgets.measurementTime, widgets.mode,
                            widgets.compensation, widgets.reversal, widgets.shortCircuit})
        m_marks.insert(field, new ChangeMark(field));
}

void InstrumentFields::fillLists()
{
    const QSignalBlocker blocker(m_widgets.type);
    const QMap<quint32, QString> types = optionsNOX8::getTypeList(true);
    for (auto type = types.begin(); type != types.end(); ++type)
        m_widgets.type->addItem(type.value(), type.key());

    fill(m_widgets.rounding, roundingChoices());
    fill(m_widgets.measurementTime, measurementTimeChoices());
    fill(m_widgets.reversal, reversalChoices());
    fill(m_widgets.shortCircuit, shortCircuitChoices());
    fill(m_widgets.compensation, {{0, tr("Нет")}, {1, tr("Да")}, {2, tr("Все")}});

    const QSignalBlocker modeBlocker(m_widgets.mode);
    const QStringList modeNames = {tr("Один канал"), tr("Один канал с показом остальных"),
                                   tr("Опрос каналов по кругу")};
    for (const SettingChoice &mode : measurementModeChoices()) {
        const int place = m_widgets.mode->count();
        m_widgets.mode->addItem(QIcon(mode.text), QString(), mode.code);
        m_widgets.mode->setItemData(place, modeNames.value(place), Qt::ToolTipRole);
        m_widgets.mode->setItemData(place, modeNames.value(place), Qt::AccessibleTextRole);
    }
}

void InstrumentFields::setImage(optionsNOX8 *image)
{
    m_image = image;
}

void InstrumentFields::refresh(const QString &portName, const FieldStates &states,
                               const ConfigurationChanges &changes)
{
    if (!m_image)
        return;
    show(m_widgets.port, portName);
    show(m_widgets.name, m_image->getDevName(true));
    m_widgets.name->setEnabled(states.isExtended);
    if (!isBeingWritten(m_widgets.number)) {
        m_widgets.number->setText(m_image->getDevNumberStr());
        m_widgets.number->setReadOnly(true);
    }
    m_widgets.type->setEnabled(states.isTypeOpen);
    showChoices();
    showCompensation(states);
    showChanges(changes);
}

/** A code that is in no list, as an instrument may hold it, shows nothing. */
void InstrumentFields::showChoices()
{
    constexpr int nibble = 16;
    select(m_widgets.type, m_widgets.type->findData(m_image->devType));
    select(m_widgets.rounding, m_image->devMeasRound / nibble);
    select(m_widgets.shortCircuit, m_image->devZakorotka);
    select(m_widgets.measurementTime, m_image->devMeasTime);
    select(m_widgets.mode, m_image->devMeasMode);
    select(m_widgets.compensation, m_image->devCompensTP);
    select(m_widgets.reversal, m_image->devChRevers / nibble);
}

void InstrumentFields::showCompensation(const FieldStates &states)
{
    m_widgets.shortCircuit->setEnabled(states.hasShortCircuit);
    m_widgets.compensation->setItemText(
        byOneChannel, compensatingChannelText(m_image->devType, m_image->devZakorotka));
    const auto *const items = qobject_cast<QStandardItemModel *>(m_widgets.compensation->model());
    items->item(ofAllChannels)->setEnabled(states.hasShortCircuit);
}

void InstrumentFields::showChanges(const ConfigurationChanges &changes)
{
    m_marks.value(m_widgets.name)->setChanged(changes.identity);
    m_marks.value(m_widgets.rounding)->setChanged(changes.rounding);
    m_marks.value(m_widgets.measurementTime)->setChanged(changes.measurementTime);
    m_marks.value(m_widgets.mode)->setChanged(changes.mode);
    m_marks.value(m_widgets.compensation)->setChanged(changes.compensation);
    m_marks.value(m_widgets.reversal)->setChanged(changes.reversal);
    m_marks.value(m_widgets.shortCircuit)->setChanged(changes.shortCircuit);
}

void InstrumentFields::unlock()
{
    m_widgets.type->setEnabled(true);
    m_widgets.number->setReadOnly(false);
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
    const QPointer<optionsNOX8> image = m_image;
    if (!image)
        return;
    const QString name = m_widgets.name->text().trimmed();
    m_widgets.name->setModified(false);
    const QString nameOfModel =
        image->getDevTypeStr(true) + QStringLiteral(" № ") + image->getDevNumberStr();
    if (name == nameOfModel || name == image->getDevName(true)) {
        m_widgets.name->setText(image->getDevName(true));
        return;
    }
    image->devName = name;
    image->identApplyPending = true;
    if (image->getDevRev() != 0)
        emit image->onIdentChange();
    if (image)
        emit image->onDevChange();
}

void InstrumentFields::storeType()
{
    if (m_image && m_widgets.type->currentIndex() >= 0)
        m_image->setDevType(m_widgets.type->currentData().toUInt());
}

void InstrumentFields::storeShortCircuit()
{
    if (m_image && m_widgets.shortCircuit->currentIndex() >= 0)
        m_image->setDevZakorotka(quint8(m_widgets.shortCircuit->currentData().toUInt()));
}

void InstrumentFields::storeChoice(quint8 OperatingSettings::*member, const QComboBox *box)
{
    if (!m_image || box->currentIndex() < 0)
        return;
    const auto code = quint8(box->currentData().toUInt());
    if (m_image->*member == code)
        return;
    m_image->*member = code;
    emit m_image->onDevChange();
}
