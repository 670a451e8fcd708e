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
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTextStream>

namespace
{

constexpr int settlingMs = 3000; ///< until the plot follows what was chosen
constexpr int openingMs = 300;   ///< until a menu is open
constexpr int differenceRow = 3; ///< of the channel whose difference is shown

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
    if (scene == QLatin1String("instruments"))
        return playInstruments();
    if (scene == QLatin1String("manual"))
        return playManual();
    if (scene == QLatin1String("discovery"))
        return playDiscovery();
    if (scene == QLatin1String("difference"))
        return playDifference();
    if (scene == QLatin1String("lost"))
        return playLost();
    if (scene == QLatin1String("logger"))
        return playLogger();
    if (scene == QLatin1String("about"))
        return playAbout();
    return take(m_window); // empty
}

bool WindowScenes::playInstruments()
{
    m_driver->showAllInstruments();
    waitMs(settlingMs);
    return take(m_window);
}

bool WindowScenes::playManual()
{
    return m_driver->withMenu("addDevBtn", [this](const QMenu *) { return take(m_window); });
}

bool WindowScenes::playDiscovery()
{
    return m_driver->awaitQuestion(m_order.patience) && take(m_window);
}

/** A channel against the first one of another instrument, with the menu that chooses it. */
bool WindowScenes::playDifference()
{
    for (const bool isChosen : {false, true}) {
        QMenu *const channels = openReferences(differenceRow);
        if (!channels)
            return complain("The menu of references");
        if (isChosen)
            break;
        clickEntry(channels, channels->actions().first());
        m_driver->clickChannel(differenceRow, ChannelColumn::Value);
        waitMs(settlingMs);
    }
    return take(m_window);
}

/** Opens the menu of references of a channel, and in it the instrument with the highest number. */
QMenu *WindowScenes::openReferences(int row) const
{
    m_driver->clickChannel(row, ChannelColumn::Reference);
    waitMs(openingMs);
    auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return nullptr;
    const QString reference =
        m_driver->numberAt(m_driver->rowsByNumber().last()); // as the titles of the entries end
    const auto entries = menu->actions();
    for (const QAction *entry : entries) {
        if (!entry->menu() || !entry->text().endsWith(reference))
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
    PlotDriver(m_window).showAllChannels();
    waitMs(settlingMs);
    openCard();
    return take(m_window);
}

void WindowScenes::openCard() const
{
    m_driver->clickInstrument(1, InstrumentColumn::Menu);
    waitMs(openingMs);
}

bool WindowScenes::playAbout()
{
    m_driver->withMenu("settingsBtn", [](QMenu *menu) {
        clickEntry(menu, menu->actions().last());
        return true;
    });
    auto *const about = m_window->findChild<QDialog *>(QStringLiteral("appconf"));
    if (!about->isVisible())
        return complain("The about dialog");
    // where a user has it, instead of the folder that is made for the picture
    auto *const database = about->findChild<QLineEdit *>(QStringLiteral("databaseEdit"));
    database->setText(database->text().replace(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation),
        QStringLiteral("/home/user/.local/share")));
    about->resize(about->width() + 40, about->height()); // which is read whole then
    return take(about);
}

bool WindowScenes::take(QWidget *seen) const
{
    return savePicture(seen, m_order.output);
}
