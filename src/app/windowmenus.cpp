#include "app/windowmenus.h"

#include "registry/portaccess.h"
#include "serial/portcatalog.h"
#include "storage/noxsql.h"

#include <QCheckBox>
#include <QLabel>
#include <QWidgetAction>

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
        action->setEnabled(isConnectable(port));
        connect(action, &QAction::triggered, this,
                [this, name = port.name] { emit portChosen(name); });
    }
    addNote(deniedPortsText(ports));
}

/** Adds a text below the entries, unless it is empty. */
void ConnectMenu::addNote(const QString &text)
{
    if (text.isEmpty())
        return;
    constexpr int width = 280;
    constexpr int margin = 8;
    addSeparator();
    auto *const label = new QLabel(text);
    label->setObjectName(QStringLiteral("accessHint"));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMargin(margin);
    label->setFixedSize(width, label->heightForWidth(width));
    auto *const note = new QWidgetAction(this);
    note->setText(text); // not seen, but said
    note->setDefaultWidget(label);
    addAction(note);
}

SettingsMenu::SettingsMenu(noxSql *database, QWidget *parent)
    : QMenu(parent)
    , m_database(database)
    , m_connectAtStart(addSwitch(tr("Автоподключение"), QStringLiteral("autoconnect")))
{
    addSwitch(tr("Запрос при выходе"), QStringLiteral("exit_query"));
    addSeparator();
    QAction *const about =
        addAction(QIcon(QStringLiteral(":/resource/images/about-32.png")), tr("О программе"));
    connect(about, &QAction::triggered, this, &SettingsMenu::aboutChosen);
}

bool SettingsMenu::connectsAtStart() const
{
    return m_connectAtStart->isChecked();
}

/** A check box that shows a property and stores it. */
QCheckBox *SettingsMenu::addSwitch(const QString &title, const QString &key)
{
    auto *const box = new QCheckBox(title);
    box->setChecked(m_database->getAppProperty(key).toBool());
    connect(box, &QCheckBox::toggled, this, [this, key](bool checked) {
        hide();
        m_database->setAppProperty(key, checked);
    });
    auto *const action = new QWidgetAction(this);
    action->setText(title); // not seen, but said
    action->setDefaultWidget(box);
    addAction(action);
    return box;
}
