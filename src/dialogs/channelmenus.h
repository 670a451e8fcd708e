#pragma once

#include "device/optionsnox8.h"
#include "dialogs/channelcells.h"

#include <QMenu>
#include <QPointer>

#include <array>
#include <functional>

class CharacteristicMenu;
class UnitEntry;

/**
 * The six menus in which the settings of a channel are chosen, one for each column.
 *
 * The property "ch" of a menu is the channel for which it was popped up; below 0 a choice is for
 * all channels. A menu is filled when it is about to show.
 */
class ChannelMenus : public QObject
{
    Q_OBJECT
public:
    explicit ChannelMenus(QWidget *parent);

    /** The instrument that is set; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Pops the menu of a column up for a channel at a place on the screen. */
    void popUp(ChannelSetting column, int channel, const QPoint &place);

private:
    using Change = std::function<void(optionsNOX8 &image, quint8 ch)>;

    void buildListMenu(ChannelSetting column);
    void buildUnitMenu();
    void buildCharacteristicMenus();
    void fillList(ChannelSetting column);
    void markUnit();
    void markCharacteristics();
    void chooseUnit(const QAction *entry);
    void writeUnit(const QString &unit);
    int channel(ChannelSetting column) const;
    void apply(ChannelSetting column, const Change &change);

    QWidget *m_parent;
    QPointer<optionsNOX8> m_image;
    std::array<QMenu *, channelSettings> m_menus{}; ///< children of the parent
    CharacteristicMenu *m_characteristics = nullptr;
    CharacteristicMenu *m_compensations = nullptr;
    UnitEntry *m_unitEntry = nullptr;
};
