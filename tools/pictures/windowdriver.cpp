#include "windowdriver.h"

#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "mouse.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "waiting.h"

#include <QCheckBox>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

#include <algorithm>

namespace
{

void clickCell(const QTableWidget *table, int row, int column)
{
    clickMouse(table->viewport(), table->visualRect(table->model()->index(row, column)).center());
}

} // namespace

WindowDriver::WindowDriver(MainWindow *window)
    : m_window(window)
{
    connect(window->registry(), &noxList::onReadMeas, this,
            [this](int index) { m_delivered.insert(index); });
}

int WindowDriver::measuringInstruments() const
{
    // an instrument is silent while it is read
    return m_window->serialPort()->isReadAllQuery() ? m_delivered.size() : 0;
}

bool WindowDriver::awaitMeasuring(int instruments, int patience)
{
    return waitUntil([this, instruments] { return measuringInstruments() >= instruments; },
                     QStringLiteral("%1 measuring instruments").arg(instruments), patience);
}

bool WindowDriver::awaitQuestion(int patience)
{
    const findNox *const dialog = m_window->discovery();
    const auto *const found = dialog->findChild<QTableWidget *>(QStringLiteral("newDevTable"));
    const auto asks = [dialog, found] {
        return dialog->isVisible() && found->isEnabled() && found->rowCount() > 1;
    };
    return waitUntil(asks, QStringLiteral("A question about an instrument"), patience);
}

bool WindowDriver::dismissSearch(int patience)
{
    findNox *const dialog = m_window->discovery();
    if (!waitUntil([dialog] { return dialog->isVisible(); }, QStringLiteral("The search"),
                   patience))
        return false;
    dialog->findChild<QPushButton *>(QStringLiteral("cancelBtn"))->click();
    m_window->activateWindow(); // what it hints at depends on the ports, which are free again
    return true;
}

QTableWidget *WindowDriver::table(const char *name) const
{
    return m_window->findChild<QTableWidget *>(QLatin1String(name));
}

QList<int> WindowDriver::rowsByNumber() const
{
    const QTableWidget *const instruments = table("devTable");
    QList<int> rows;
    for (int row = 1; row < instruments->rowCount(); ++row)
        rows << row;
    std::sort(rows.begin(), rows.end(), [this](int left, int right) {
        return numberAt(left).toInt() < numberAt(right).toInt();
    });
    return rows;
}

QString WindowDriver::numberAt(int row) const
{
    return table("devTable")->model()->index(row, InstrumentColumn::Number).data().toString();
}

void WindowDriver::clickInstrument(int row, int column)
{
    clickCell(table("devTable"), row, column);
}

void WindowDriver::clickChannel(int row, int column)
{
    clickCell(table("chTable"), row, column);
}

void WindowDriver::showAllInstruments()
{
    const auto boxes = table("devTable")->findChildren<QCheckBox *>();
    for (QCheckBox *box : boxes)
        if (!box->isChecked())
            box->click();
}

/** The menu of a button runs an event loop of its own. */
bool WindowDriver::withMenu(const char *buttonName, const std::function<void(QMenu *)> &use)
{
    constexpr int openingMs = 300;
    auto *const button = m_window->findChild<QPushButton *>(QLatin1String(buttonName));
    bool isOpen = false;
    QTimer whenOpen;
    whenOpen.setSingleShot(true);
    connect(&whenOpen, &QTimer::timeout, this, [&isOpen, &use, button] {
        isOpen = button->menu()->isVisible();
        use(button->menu());
        button->menu()->close();
    });
    whenOpen.start(openingMs);
    button->click();
    return isOpen;
}
