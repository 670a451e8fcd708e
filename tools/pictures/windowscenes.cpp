#include "windowscenes.h"

#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "commandline.h"
#include "dialogs/confmenu.h"
#include "mouse.h"
#include "picture.h"
#include "plotdriver.h"
#include "waiting.h"
#include "windowdriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTextStream>

namespace
{

constexpr int settlingMs = 3000; ///< until the plot follows what was chosen
constexpr int openingMs = 300;   ///< until a menu is open

void clickEntry(QMenu *menu, const QAction *entry)
{
    clickMouse(menu, menu->actionGeometry(const_cast<QAction *>(entry)).center());
    waitMs(openingMs);
}

bool complain(const char *missing)
{
    QTextStream(stderr) << missing << " did not appear\n";
    return false;
}

} // namespace

WindowScenes::WindowScenes(MainWindow *window, WindowDriver *driver, const PictureOrder &order)
    : m_window(window)
    , m_driver(driver)
    , m_order(order)
{
}

bool WindowScenes::play(const QString &scene)
{
    const QHash<QString, bool (WindowScenes::*)()> plays = {
        {QStringLiteral("empty"), &WindowScenes::playEmpty},
        {QStringLiteral("instruments"), &WindowScenes::playInstruments},
        {QStringLiteral("manual"), &WindowScenes::playManual},
        {QStringLiteral("discovery"), &WindowScenes::playDiscovery},
        {QStringLiteral("difference"), &WindowScenes::playDifference},
        {QStringLiteral("lost"), &WindowScenes::playLost},
        {QStringLiteral("logger"), &WindowScenes::playLogger},
        {QStringLiteral("about"), &WindowScenes::playAbout}};
    return (this->*plays.value(scene))();
}

bool WindowScenes::playEmpty()
{
    const auto *const hint = m_window->findChild<QLabel *>(QStringLiteral("instrumentHint"));
    return hint->isVisible() ? take(m_window) : complain("The hint about instruments");
}

bool WindowScenes::playInstruments()
{
    m_driver->showAllInstruments();
    waitMs(settlingMs);
    return take(m_window);
}

bool WindowScenes::playManual()
{
    bool isTaken = false;
    const bool isOpen = m_driver->withMenu(
        "addDevBtn", [this, &isTaken](const QMenu *) { isTaken = take(m_window); });
    return isOpen ? isTaken : complain("The menu of ports");
}

bool WindowScenes::playDiscovery()
{
    return m_driver->awaitQuestion(m_order.patience) && take(m_window);
}

/** A channel against the first one of another instrument, with the menu that chooses it. */
bool WindowScenes::playDifference()
{
    constexpr int row = 3;
    QMenu *const channels = openReferences(row);
    if (!channels)
        return complain("The menu of references");
    clickEntry(channels, channels->actions().first());
    m_driver->clickChannel(row, ChannelColumn::Value);
    waitMs(settlingMs);
    return openReferences(row) ? take(m_window) : complain("The menu of references");
}

/** Opens the menu of references of a channel, and in it the instrument with the second number. */
QMenu *WindowScenes::openReferences(int row) const
{
    m_driver->clickChannel(row, ChannelColumn::Reference);
    waitMs(openingMs);
    auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return nullptr;
    const QString number = m_driver->numberAt(m_driver->rowsByNumber().value(1));
    const auto entries = menu->actions();
    for (const QAction *entry : entries) {
        if (!entry->menu() || !entry->text().endsWith(number))
            continue;
        clickEntry(menu, entry);
        return entry->menu()->isVisible() ? entry->menu() : nullptr;
    }
    return nullptr;
}

/** The others go on for a while. */
bool WindowScenes::playLost()
{
    constexpr int goingOnMs = 8000;
    m_driver->showAllInstruments();
    const auto isTold = [this] {
        const auto *const message = m_window->findChild<QMessageBox *>();
        return message && message->isVisible();
    };
    if (!waitUntil(isTold, QStringLiteral("The message about a lost instrument"), m_order.patience))
        return false;
    waitMs(goingOnMs);
    return take(m_window);
}

/** What the instrument has recorded itself is read while it does not measure into the plot, with
 *  the card from which both were chosen. */
bool WindowScenes::playLogger()
{
    bool isRead = false;
    QObject::connect(m_window->registry(), &noxList::onReadRec, m_driver,
                     [&isRead] { isRead = true; });
    for (const char *button : {"startBtn", "readLogBtn"}) {
        openCard();
        m_window->instrumentCard()->findChild<QAbstractButton *>(QLatin1String(button))->click();
    }
    if (!waitUntil([&isRead] { return isRead; }, QStringLiteral("The logger"), m_order.patience))
        return false;
    PlotDriver plot(m_window);
    plot.showAllChannels();
    for (const char *button : {"modeBtn", "modeXBtn"}) // all of it, by the clock
        plot.press(button);
    waitMs(settlingMs);
    openCard();
    return m_window->instrumentCard()->isVisible() ? take(m_window) : complain("The card");
}

void WindowScenes::openCard() const
{
    m_driver->clickInstrument(1, InstrumentColumn::Menu);
    waitMs(openingMs);
}

bool WindowScenes::playAbout()
{
    m_driver->withMenu("settingsBtn",
                       [](QMenu *menu) { clickEntry(menu, menu->actions().last()); });
    auto *const about = m_window->findChild<QDialog *>(QStringLiteral("appconf"));
    if (!about->isVisible())
        return complain("The about dialog");
    // where a user has it, instead of the folder that is made for the picture
    auto *const database = about->findChild<QLineEdit *>(QStringLiteral("databaseEdit"));
    database->setText(database->text().replace(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
        QStringLiteral("/home/user/.local/share")));
    about->resize(about->width() + 60, about->height()); // which is read whole then
    return take(about);
}

bool WindowScenes::take(QWidget *seen) const
{
    return savePicture(seen, m_order.output);
}
