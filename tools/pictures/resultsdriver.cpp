#include "resultsdriver.h"

#include "app/mainwindow.h"
#include "storage/resultslayout.h"
#include "widgets/userdialogs.h"

#include <QAbstractButton>
#include <QDialog>
#include <QEventLoop>
#include <QFile>
#include <QProgressBar>

#include <cmath>

namespace
{

void answerWith(const QString &fileName)
{
    UserDialogs::current().chooseFile = [fileName](QWidget *, const FileQuestion &) {
        return fileName;
    };
}

void clickIn(QWidget *parent, const char *buttonName)
{
    if (auto *button = parent->findChild<QAbstractButton *>(QLatin1String(buttonName)))
        button->click();
}

/** Sixteen sensors in a bath that follows the day, every twenty seconds for a month. */
bool writeLongResults(const QString &fileName)
{
    constexpr int rows = 130000;
    constexpr int channels = 16;
    constexpr double period = 20;
    constexpr double day = 86400;
    ResultsText text{ResultsFormat()};
    text.addHeader(QDateTime({2026, 10, 24}, {7, 5, 9}),
                   QVector<QString>(channels, QStringLiteral("°С")).toList());
    for (int row = 0; row < rows; ++row) {
        const double days = row * period / day;
        text.beginRow(row + 1, row * period);
        for (int channel = 0; channel < channels; ++channel)
            text.addValue(25 + 0.25 * channel + 2 * std::sin(days) + std::sin(days * 6.28));
        text.endRow();
    }
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(text.bytes()) == text.bytes().size();
}

} // namespace

ResultsDriver::ResultsDriver(MainWindow *window)
    : m_window(window)
{
}

QWidget *ResultsDriver::record()
{
    return workDialog("recBtn", "recmeas", QStringLiteral("запись.csv"));
}

QWidget *ResultsDriver::exportTable()
{
    return workDialog("toolButton_2", "savemeas", QStringLiteral("таблица.csv"));
}

QWidget *ResultsDriver::readBack()
{
    const QString fileName = QStringLiteral("месяц.csv");
    if (!writeLongResults(fileName))
        return nullptr;
    answerWith(fileName);
    constexpr int halfWay = 50;
    QEventLoop loop;
    const auto *progress = m_window->findChild<QProgressBar *>(QStringLiteral("readingProgress"));
    QObject::connect(progress, &QProgressBar::valueChanged, &loop, [&loop](int percent) {
        if (percent >= halfWay)
            loop.quit();
    });
    press("toolButton_3");
    loop.exec();
    return m_window;
}

void ResultsDriver::press(const char *buttonName)
{
    clickIn(m_window, buttonName);
}

QWidget *ResultsDriver::workDialog(const char *toolName, const char *dialogName,
                                   const QString &fileName)
{
    answerWith(fileName);
    press(toolName);
    auto *dialog = m_window->findChild<QDialog *>(QLatin1String(dialogName));
    for (const char *button : {"selectFileBtn", "saveBtn"})
        clickIn(dialog, button);
    return dialog;
}
