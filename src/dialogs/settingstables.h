#pragma once

#include "device/optionsnox8.h"

#include <QObject>
#include <QPointer>

class ChannelMenus;
class QPoint;
class QTableWidget;
class featconfui;
class noxSql;
struct ConfigurationChanges;

// The tables of the settings dialog, and what opens from their rows.

/**
 * The table of the channels' settings, one row each, and the menus that open from its cells.
 *
 * A press on a cell, or Space, Enter or the menu key on it, opens the menu for its channel. A click
 * on the header of a column, or the same keys together with Ctrl, opens it for all channels.
 */
class ChannelSettingsTable : public QObject
{
    Q_OBJECT
public:
    /** The menus become children of the table's window. */
    explicit ChannelSettingsTable(QTableWidget *table);

    /** The instrument whose channels are shown; null for none. Not owned, it may go at any time. */
    void setImage(optionsNOX8 *image);

    /** Height at which all channels of the largest model are in sight, px. */
    int fullHeight() const;

    /** Shows the channels and marks what differs from those of the instrument. */
    void refresh(const ConfigurationChanges &changes);
    /** Opens the menu of a column; below 0 the row is that of all channels. */
    void popUp(int row, int column);
    /** The mouse entered a cell: some open a list. */
    void hover(int column);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPoint menuPlace(int row, int column) const;

    QTableWidget *m_table;
    ChannelMenus *m_menus;
    QPointer<optionsNOX8> m_image;
};

/** The table of the instrument's own characteristics; a double click or Enter opens one
 *  in the editor. */
class CharacteristicList : public QObject
{
    Q_OBJECT
public:
    /** The editor becomes a child of the table's window. The database may be null. */
    CharacteristicList(QTableWidget *table, noxSql *database);

    /** The instrument whose characteristics are shown; null for none. Not owned, it may go at any
     *  time. */
    void setImage(optionsNOX8 *image);

    /** Shows the characteristics and marks what differs from those of the instrument. */
    void refresh(const ConfigurationChanges &changes);
    /** Opens the characteristic of a row in the editor, and returns when that is closed. */
    void edit(int row);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTableWidget *m_table;
    featconfui *m_editor;
    QPointer<optionsNOX8> m_image;
};
