#include "windowdriver.h"

#include "app/mainwindow.h"
#include "app/rowcontent.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QTableWidget>

namespace
{

/** The menu of a button, opened as a click on the button opens it but without waiting in it. */
QMenu *openMenu(const QWidget *window, const QString &buttonName)
{
    const auto *button = window->findChild<QPushButton *>(buttonName);
    QMenu *menu = button->menu();
    menu->popup(button->mapToGlobal(QPoint(0, button->height())));
    return menu;
}

void sendClick(QWidget *target, const QPoint &position)
{
    const QPoint global = target->mapToGlobal(position);
    QMouseEvent press(QEvent::MouseButtonPress, position, global, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, position, global, Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::sendEvent(target, &release);
}

} // namespace

WindowDriver::WindowDriver(MainWindow *window)
    : m_window(window)
{
    const noxList *registry = window->registry();
    connect(registry, &noxList::onReadMeas, this, [this, registry](int index) {
        if (const noxList::_nox *nox = registry->getNoxByIndex(index))
            m_delivered.insert(nox->portName);
    });
}

void WindowDriver::connectPorts(const QStringList &names)
{
    m_asked = names.isEmpty() ? offeredPorts() : names;
    for (const QString &name : qAsConst(m_asked))
        if (!choosePort(name))
            qWarning("%s is not in the menu", qPrintable(name));
}

QStringList WindowDriver::offeredPorts()
{
    constexpr int entriesBeforePorts = 2; // "no port" and the separator
    QStringList names;
    QMenu *menu = openMenu(m_window, QStringLiteral("addDevBtn"));
    const auto actions = menu->actions().mid(entriesBeforePorts);
    for (const QAction *action : actions)
        names << action->data().toString();
    menu->close();
    return names;
}

bool WindowDriver::choosePort(const QString &name)
{
    QMenu *menu = openMenu(m_window, QStringLiteral("addDevBtn"));
    const auto actions = menu->actions();
    menu->close();
    for (QAction *action : actions) {
        if (action->data().toString() == name) {
            action->trigger();
            return true;
        }
    }
    return false;
}

void WindowDriver::clickFirstInstrument()
{
    const auto *table = m_window->findChild<QTableWidget *>(QStringLiteral("devTable"));
    const QModelIndex name = table->model()->index(1, InstrumentColumn::Name);
    if (name.isValid())
        sendClick(table->viewport(), table->visualRect(name).center());
}

void WindowDriver::showAllInstruments()
{
    const auto *table = m_window->findChild<QTableWidget *>(QStringLiteral("devTable"));
    const auto boxes = table->findChildren<QCheckBox *>();
    for (QCheckBox *box : boxes)
        if (!box->isChecked())
            box->click();
}

QStringList WindowDriver::silentPorts() const
{
    QStringList silent;
    for (const QString &name : m_asked)
        if (!m_delivered.contains(name))
            silent << name;
    return silent;
}
