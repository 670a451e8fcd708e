#pragma once

#include "device/optionsnox8.h"
#include "dialogs/settingscontent.h"

#include <QMenu>
#include <QPointer>
#include <QWidgetAction>

#include <array>
#include <functional>

class QLabel;
class QLineEdit;
class mLineEdit;

// The menus in which the settings of a channel are chosen.

/**
 * A menu of characteristics: the instrument's own, then the standard ones in menus of their own.
 *
 * It is filled when it is wanted, and never while one of its choices is being delivered.
 */
class CharacteristicMenu : public QMenu
{
    Q_OBJECT
public:
    /** Which standard characteristics it offers. */
    enum Offer { AllStandards, ResistanceThermometers, NoStandards };

    explicit CharacteristicMenu(Offer offer, QWidget *parent = nullptr);

    /** Offers what the instrument has. Models up to code 33 have no standard characteristics. */
    void fill(const optionsNOX8 &image);
    /** Marks one characteristic; featureNone marks none. */
    void mark(CharacteristicSource source, int index);

signals:
    /** The user has chosen a characteristic by its place in its list. */
    void chosen(CharacteristicSource source, quint8 index);

private:
    // null where they are not offered
    QMenu *m_resistanceThermometers = nullptr;
    QMenu *m_thermocouples = nullptr;
};

/** What stands for a unit of the user's own while there is none. */
QString ownUnitHint();
/** Lets such a unit be written in a line. */
void prepareUnitLine(QLineEdit *line);

/**
 * The entry of a menu in which the user writes a unit of his own.
 *
 * Escape gives up what was typed. What is only passed on the way through the menu is not reported.
 */
class UnitEntry : public QWidgetAction
{
    Q_OBJECT
public:
    explicit UnitEntry(QObject *parent);

    /** Shows a unit as the one in effect. */
    void setUnit(const QString &unit);

signals:
    /** The line was pressed. */
    void pressed();
    /** The user has written another unit than was shown. */
    void entered(const QString &unit);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void reportEntry();

    QLabel *m_check;
    mLineEdit *m_line;
    QString m_shown;
};

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
