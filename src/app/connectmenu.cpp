#include "app/connectmenu.h"

#include "serial/portcatalog.h"

ConnectMenu::ConnectMenu(QWidget *parent)
    : QMenu(parent)
{
    connect(this, &QMenu::aboutToShow, this, &ConnectMenu::refill);
}

void ConnectMenu::refill()
{
    clear();
    connect(addAction(tr("без подключния")), &QAction::triggered, this, &ConnectMenu::noPortChosen);
    addSeparator();
    const auto ports = PortCatalog::current().ports();
    for (const SerialPortEntry &port : ports) {
        if (port.busy)
            continue;
        // an ampersand of the name is no mnemonic
        QAction *action =
            addAction(QString(port.name).replace(QLatin1Char('&'), QLatin1String("&&")));
        action->setData(port.name);
        connect(action, &QAction::triggered, this,
                [this, name = port.name] { emit portChosen(name); });
    }
}
