#pragma once

#include <QObject>

class ChannelMenus;
class QPoint;
class QTableWidget;
class optionsNOX8;
struct ConfigurationChanges;

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
    ChannelSettingsTable(QTableWidget *table, ChannelMenus *menus);

    /** Height at which all channels of the largest model are in sight, px. */
    int fullHeight() const;

    void refresh(const optionsNOX8 &image, const ConfigurationChanges &changes);
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
};
