#include "dialogs/confchmenu.h"

#include "calibration/featconfui.h"
#include "dialogs/channelmenus.h"
#include "registry/noxlist.h"
#include "ui_confchmenu.h"
#include "widgets/menucard.h"

#include <QLineEdit>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QTimer>

namespace
{

constexpr int ownUnitPlace = 3; ///< in the list of units
constexpr int nameWidth = 24;   ///< characters of average width
constexpr int nameMargin = 12;  ///< pixels that the frame of a name takes
constexpr QSize switchSize(55, 25);

constexpr MeasurementType units[] = {measResistance, measTemperature, measVoltage,
                                     measTemperatureCustom};

/** The unit of the user's own is offered before there is one. */
class UnitDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        if (!option->text.isEmpty())
            return;
        option->text = ownUnitHint();
        option->features |= QStyleOptionViewItem::HasDisplay;
        option->palette.setColor(QPalette::Text, Qt::gray);
    }
};

QPoint placeBelow(const QWidget *control)
{
    return control->mapToGlobal({0, control->height()});
}

/** A list fires while it is filled or set, as if the user had chosen. One that is down stays so
 *  unless its entries are others. */
void showChoice(QComboBox *list, const QStringList &entries, int place)
{
    const QSignalBlocker blocker(list);
    QStringList shown;
    for (int i = 0; i < list->count(); ++i)
        shown << list->itemText(i);
    if (shown != entries) {
        list->hidePopup();
        list->clear();
        list->addItems(entries);
    }
    list->setCurrentIndex(place < list->count() ? place : -1);
}

/** A name may be longer than its label is wide; what looks like markup in it is none. */
void showName(QLabelClick *label, const QString &name, const QString &caption)
{
    const int width = label->minimumWidth() - nameMargin;
    label->setText(label->fontMetrics().elidedText(name, Qt::ElideRight, width));
    label->setToolTip(Qt::mightBeRichText(name) ? name.toHtmlEscaped() : name);
    label->setAccessibleName(caption + QStringLiteral(": ") + name);
}

/** A channel with a characteristic shows temperatures. Whoever hears of the first change may remove
 *  the instrument. */
void useCharacteristic(const QPointer<optionsNOX8> &image, uchar ch, CharacteristicSource source,
                       quint8 place)
{
    if (image)
        image->setChFeature(ch, source, place);
    if (image)
        image->setChMeasType(ch, measTemperature, QString());
}

} // namespace

// Construction

confChMenu::confChMenu(QWidget *parent, noxList *registry)
    : QMenu(parent)
    , m_card(new MenuCard(this))
    , m_ui(std::make_unique<Ui::confChMenu>())
    , m_registry(registry)
    , m_editor(new featconfui(parent, registry->database()))
{
    m_ui->setupUi(m_card);
    for (const MeasurementType unit : units)
        m_ui->unitCB->addItem(optionsNOX8::getChMeasTypeName(unit), unit);
    m_ui->unitCB->setItemDelegate(new UnitDelegate(m_ui->unitCB));
    for (QLabelClick *name : {m_ui->featureLabel, m_ui->compensationLabel})
        name->setMinimumWidth(nameWidth * name->fontMetrics().averageCharWidth());
    m_card->place();
    QMetaObject::connectSlotsByName(this);
    buildMenus();
    listenToRegistry();
}

confChMenu::~confChMenu()
{
    delete m_editor;
}

/** Filled before they open: what they offer must not change while a choice is being delivered. */
void confChMenu::buildMenus()
{
    m_features = new CharacteristicMenu(CharacteristicMenu::AllStandards, this);
    m_compensations = new CharacteristicMenu(CharacteristicMenu::ResistanceThermometers, this);
    m_editable = new CharacteristicMenu(CharacteristicMenu::NoStandards, this);
    m_editable->setTitle(m_ui->editBtn->toolTip());
    for (const CharacteristicMenu *menu : {m_features, m_compensations, m_editable})
        connect(menu, &QMenu::aboutToShow, this, &confChMenu::fillMenus);

    connect(m_features, &CharacteristicMenu::chosen, this,
            [this](CharacteristicSource source, quint8 place) {
                useCharacteristic(QPointer<optionsNOX8>(m_image), m_channel, source, place);
            });
    connect(m_compensations, &CharacteristicMenu::chosen, this,
            [this](CharacteristicSource source, quint8 place) {
                if (m_image)
                    m_image->setChFeatureCompesTP(m_channel, compensationSource(source), place);
            });
    connect(m_editable, &CharacteristicMenu::chosen, this,
            [this](CharacteristicSource, quint8 place) {
                // later: the editor runs an event loop, in which no choice may be being delivered
                QTimer::singleShot(0, this, [this, place] { editCharacteristic(place); });
            });
    connect(m_editable, &QMenu::aboutToHide, m_ui->editBtn,
            [this] { m_ui->editBtn->setChecked(false); });
}

void confChMenu::listenToRegistry()
{
    const auto refresh = [this](int index) {
        if (index != m_index)
            return;
        closeMenus(); // their entries may mean something else now
        onChChange(index, m_channel);
    };
    connect(m_registry, &noxList::onDevChange, this, refresh);
    connect(m_registry, &noxList::onIdentChange, this, refresh); // the model may be unknown now
    connect(m_registry, &noxList::onRmNox, this, [this](int index) {
        if (index == m_index)
            dismiss();
    });
}

// Opening and closing

void confChMenu::show(int index, QPoint pos, uchar ch)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (!nox || ch >= nox->opt->getDevChCount())
        return;
    dismiss(); // it may be open for another one
    m_index = index;
    m_channel = ch;
    m_place = pos;
    m_image = nox->opt.get();
    m_card->showTitle(m_ui->titleLabel, tr("Канал № %1").arg(ch + 1));
    onChChange(index, ch);
    fillMenus();
    popup(pos);
}

void confChMenu::dismiss()
{
    closeMenus();
    hide();
}

void confChMenu::closeMenus()
{
    const auto menus = findChildren<QMenu *>();
    for (QMenu *menu : menus)
        menu->hide();
}

bool confChMenu::isImageOf(int index) const
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    return m_image && nox && nox->opt.get() == m_image;
}

void confChMenu::on_closeBtn_clicked()
{
    hide();
}

// What is shown

void confChMenu::onChChange(int index, uchar)
{
    if (index != m_index || !m_image)
        return;
    const bool isUsed = m_channel < m_image->getDevChCount();
    const ChannelSettings channel = m_image->getCh(m_channel);
    showSwitch(channel.onOff == 1);
    showUnit(channel.measType);
    showChoice(m_ui->currentCB, optionsNOX8::getDevCurrentList(m_image->devType),
               isUsed ? channel.current : -1);
    showChoice(m_ui->resistorCB, optionsNOX8::getDevResistList(m_image->devType),
               isUsed ? channel.resist : -1);
    showCharacteristics(channel);
}

void confChMenu::showSwitch(bool isOn)
{
    const QIcon &picture = isOn ? m_onPicture : m_offPicture;
    m_ui->switchLabel->setPixmap(picture.pixmap(switchSize));
    m_ui->switchLabel->setAccessibleName(isOn ? tr("Канал включён") : tr("Канал выключен"));
}

/** A unit that is being typed stays as it is typed: the image keeps it without outer spaces. */
void confChMenu::showUnit(MeasurementType unit)
{
    QComboBox *const list = m_ui->unitCB;
    const QSignalBlocker blocker(list);
    const QString ownUnit = m_image->getChDimCust(m_channel);
    const QString typed = list->lineEdit() ? list->lineEdit()->text() : QString();
    list->setItemText(ownUnitPlace, typed.trimmed() == ownUnit ? typed : ownUnit);
    list->setCurrentIndex(qMax(0, list->findData(unit)));
    setUnitWritable(unit == measTemperatureCustom);
}

void confChMenu::setUnitWritable(bool isWritable)
{
    QComboBox *const list = m_ui->unitCB;
    if (isWritable == list->isEditable())
        return;
    const QSignalBlocker blocker(list);
    list->setEditable(isWritable);
    if (!isWritable)
        return;
    list->setCompleter(nullptr); // it would make another entry of what is typed
    prepareUnitLine(list->lineEdit());
}

void confChMenu::showCharacteristics(const ChannelSettings &channel)
{
    const bool isCompensated = usesThermocouple(*m_image, m_channel);
    showName(m_ui->featureLabel, m_image->getChFeatureName(m_channel), tr("Стат. характеристика"));
    showName(m_ui->compensationLabel,
             isCompensated ? m_image->getChFeatureCompesTPName(m_channel) : QStringLiteral("-"),
             tr("Компенсация ТП"));
    m_ui->compensationLabel->setEnabled(isCompensated);
    m_ui->editBtn->setEnabled(m_image->getFeature(channel.feature));
}

void confChMenu::fillMenus()
{
    if (!m_image)
        return;
    const ChannelSettings channel = m_image->getCh(m_channel);
    for (CharacteristicMenu *menu : {m_features, m_compensations, m_editable})
        menu->fill(*m_image);
    m_features->mark(channel.featureType, channel.feature);
    m_compensations->mark(characteristicSource(channel.featureTypeCompensTP),
                          channel.featureCompensTP);
    m_editable->mark(channel.featureType, channel.feature);
}

// What is set

/** The switch works at once, like one on the instrument. */
void confChMenu::on_switchLabel_clicked()
{
    const QPointer<optionsNOX8> image = m_image;
    const uchar ch = m_channel;
    dismiss();
    if (!image)
        return;
    image->setChOnOff(ch, image->getCh(ch).onOff == 1 ? 0 : 1);
    if (image)
        image->triggerChChange(ch);
}

void confChMenu::on_unitCB_currentIndexChanged(int place)
{
    if (!m_image || place < 0)
        return;
    setUnitWritable(place == ownUnitPlace);
    m_image->setChMeasType(m_channel, units[place], m_ui->unitCB->itemText(place));
}

void confChMenu::on_unitCB_editTextChanged(const QString &text)
{
    if (m_image && m_ui->unitCB->currentIndex() == ownUnitPlace)
        m_image->setChDimCust(m_channel, text);
}

void confChMenu::on_currentCB_currentIndexChanged(int place)
{
    if (m_image && place >= 0)
        m_image->setChCurrent(m_channel, quint8(place));
}

void confChMenu::on_resistorCB_currentIndexChanged(int place)
{
    if (m_image && place >= 0)
        m_image->setChResist(m_channel, quint8(place));
}

void confChMenu::on_featureLabel_clicked()
{
    m_features->popup(placeBelow(m_ui->featureLabel));
}

void confChMenu::on_compensationLabel_clicked()
{
    m_compensations->popup(placeBelow(m_ui->compensationLabel));
}

void confChMenu::on_editBtn_clicked()
{
    m_editable->popup(placeBelow(m_ui->editBtn));
    m_ui->editBtn->setChecked(true);
}

void confChMenu::on_applyBtn_clicked()
{
    const QPointer<optionsNOX8> image = m_image;
    dismiss();
    if (image)
        image->triggerChChange(m_channel);
}

// The editor

/** Lets a characteristic be edited; the channel takes what was applied. While the editor was open,
 *  the instrument may have gone, and the card too. */
void confChMenu::editCharacteristic(quint8 place)
{
    const QPointer<confChMenu> self(this);
    const QPointer<optionsNOX8> image = m_image;
    const int index = m_index;
    const uchar ch = m_channel;
    dismiss();
    const bool hasCharacteristic = image && image->getFeature(image->getCh(ch).feature);
    const bool isApplied = hasCharacteristic && m_editor->show(image->getFeature(place));
    if (isApplied)
        useCharacteristic(image, ch, featureIndividual, place);
    if (isApplied && image)
        image->triggerDevChange();
    if (self && isImageOf(index))
        show(index, m_place, ch);
}
