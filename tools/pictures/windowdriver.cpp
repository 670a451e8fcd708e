#include "windowdriver.h"

#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "mouse.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"

#include <QCheckBox>
#include <QTableWidget>

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

int WindowDriver::waitingInstruments() const
{
    const findNox *const dialog = m_window->discovery();
    const auto *const table = dialog->findChild<QTableWidget *>(QStringLiteral("newDevTable"));
    const bool isAsking = dialog->isVisible() && table->isEnabled();
    return isAsking ? table->rowCount() - 1 : 0;
}

void WindowDriver::clickFirstInstrument()
{
    const auto *table = m_window->findChild<QTableWidget *>(QStringLiteral("devTable"));
    const QModelIndex name = table->model()->index(1, InstrumentColumn::Name);
    if (name.isValid())
        clickMouse(table->viewport(), table->visualRect(name).center());
}

void WindowDriver::showAllInstruments()
{
    const auto *table = m_window->findChild<QTableWidget *>(QStringLiteral("devTable"));
    const auto boxes = table->findChildren<QCheckBox *>();
    for (QCheckBox *box : boxes)
        if (!box->isChecked())
            box->click();
}
