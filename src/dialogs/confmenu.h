#pragma once

#include "registry/noxlist.h"

#include <QIcon>
#include <QMenu>

#include <memory>

class MenuCard;
class OperatingFields;

namespace Ui
{
class confMenu;
}

/**
 * The card of an instrument: its operating settings, and what can be done with it.
 *
 * It is made once and shown for one instrument at a time; when that one is removed, it closes.
 */
class confMenu : public QMenu
{
    Q_OBJECT
public:
    /** The registry is not owned, and outlives the card. */
    confMenu(QWidget *parent, noxList *registry);
    ~confMenu() override;

    /** Pops up for an instrument (registry index) at a place on the screen; nothing for an unknown
     *  one. */
    void show(int index, const QPoint &place);

public slots:
    /** An instrument has changed; others than the one that is shown are ignored. */
    void onDevChange(int index);

signals:
    /** All settings of an instrument are wanted. */
    void neadShowSetup(int noxIndex);

private slots:
    // connected by name from the form
    void on_closeBtn_clicked();
    void on_removeBtn_clicked();
    void on_connectBtn_clicked();
    void on_readLogBtn_clicked();
    void on_readBtn_clicked();
    void on_startBtn_clicked(bool isChecked);
    void on_setupBtn_clicked();
    void on_applyBtn_clicked();

private:
    void buildOperating();
    void setCurrent(int index);
    void showConnection(bool isConnected, bool isKnown);
    void followConfiguration(noxList::_nox *nox);
    optionsNOX8 *image() const;

    // kept: what an icon draws goes into the cache of all pictures, under the icon's own key
    const QIcon m_connectPicture{QStringLiteral(":/resource/images/connect.png")};
    const QIcon m_disconnectPicture{QStringLiteral(":/resource/images/disconnect.png")};

    MenuCard *m_card; ///< what the menu consists of; its child
    std::unique_ptr<Ui::confMenu> m_ui;
    noxList *m_registry;
    int m_index = -1; ///< of the instrument that is shown; -1 while hidden
    OperatingFields *m_operating = nullptr;
};
