#pragma once

#include "device/optionsnox8.h"

#include <QIcon>
#include <QMenu>
#include <QPointer>

#include <memory>

class CharacteristicMenu;
class MenuCard;
class QComboBox;
class QLabelClick;
class featconfui;
class noxList;

namespace Ui
{
class confChMenu;
}

/**
 * The card of a channel: its settings, and the way to the editor of the instrument's
 * characteristics.
 *
 * It is made once and shown for one channel at a time; when the instrument is removed, it closes.
 */
class confChMenu : public QMenu
{
    Q_OBJECT
public:
    /** The registry is not owned, and outlives the card. */
    confChMenu(QWidget *parent, noxList *registry);
    ~confChMenu() override;

    /** Pops up for a channel (from 0) of an instrument (registry index) at a place on the screen;
     *  nothing for one that there is not. */
    void show(int index, QPoint pos, uchar ch);

public slots:
    /** A channel of an instrument has changed; instruments other than the one that was shown last
     *  are ignored. */
    void onChChange(int index, uchar chIndex);

private slots:
    // connected by name from the form
    void on_closeBtn_clicked();
    void on_switchLabel_clicked();
    void on_unitCB_currentIndexChanged(int place);
    void on_unitCB_editTextChanged(const QString &text);
    void on_currentCB_currentIndexChanged(int place);
    void on_resistorCB_currentIndexChanged(int place);
    void on_featureLabel_clicked();
    void on_compensationLabel_clicked();
    void on_editBtn_clicked();
    void on_applyBtn_clicked();

private:
    void buildMenus();
    void listenToRegistry();
    void dismiss();
    void closeMenus();

    void showSwitch(bool isOn);
    void showUnit(MeasurementType unit);
    void setUnitWritable(bool isWritable);
    void showCharacteristics(const ChannelSettings &channel);
    void fillMenus();

    void editCharacteristic(quint8 place);
    bool isImageOf(int index) const;

    // kept: what an icon draws goes into the cache of all pictures, under the icon's own key
    const QIcon m_onPicture{QStringLiteral(":/resource/images/on.png")};
    const QIcon m_offPicture{QStringLiteral(":/resource/images/off.png")};

    MenuCard *m_card; ///< what the menu consists of; its child
    std::unique_ptr<Ui::confChMenu> m_ui;
    noxList *m_registry;
    QPointer<optionsNOX8> m_image; ///< of the instrument that was shown last
    int m_index = -1;              ///< of that instrument
    uchar m_channel = 0;
    QPoint m_place;
    CharacteristicMenu *m_features = nullptr; ///< this and the two below: children
    CharacteristicMenu *m_compensations = nullptr;
    CharacteristicMenu *m_editable = nullptr;
    QPointer<featconfui> m_editor; ///< owned, but a child of the card's parent, over which it opens
};
