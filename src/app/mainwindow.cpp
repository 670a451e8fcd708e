#include "app/mainwindow.h"

#include "app/alarmsound.h"
#include "app/channeltable.h"
#include "app/instrumenttable.h"
#include "app/numericpanels.h"
#include "app/plotinstruments.h"
#include "app/plottools.h"
#include "app/resultstools.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "plot/qwtnox.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/plotsettingsstore.h"
#include "ui_mainwindow.h"
#include "widgets/userdialogs.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QGuiApplication>
#include <QPointer>

#include <utility>

// What the main window does when the registry, the plot or the user reports something.

void MainWindow::updUI()
{
    m_instruments->refresh(m_current);
    m_channels->refresh(m_current);
    m_results->refresh(m_current);
    showTitle();
    showNumbers();
}

void MainWindow::showTitle()
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(m_current);
    m_ui->lcdGroupBox->setTitle(nox ? nox->opt->getDevTitle() : QStringLiteral("-"));
}

/** The panels show the main channel of the current instrument. */
void MainWindow::showNumbers()
{
    m_panels->showCurveKinds(m_plot->getMeasShow(), m_plot->getAverShow());
    const noxList::_nox *nox = m_registry->getNoxByIndex(m_current);
    m_panels->showConnection(!nox || nox->isConnected());
    const int qwtIndex = currentPlotIndex();
    if (qwtIndex < 0) {
        m_panels->showNumbers(missingValue(), missingValue(), QString());
        return;
    }
    m_panels->showNumbers(m_plot->getChMeasStr(qwtIndex), m_plot->getChAverStr(qwtIndex),
                          m_plot->getChDim(qwtIndex));
}

// Instruments come and go

void MainWindow::attachInstrument(int index)
{
    noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    if (!m_registry->getNoxByIndex(m_current))
        m_current = index;
    nox->qwtIndex = attachToPlot(m_plot.get(), nox->opt->getDevChCount());
    applySqlProperty(index);
    updUI();
    m_plotButtons->refresh();
}

void MainWindow::detachInstrument(int index, int qwtIndex)
{
    m_plot->removeDev(qwtIndex);
    const QList<int> remaining = m_registry->indices();
    if (remaining.isEmpty()) {
        m_current = -1;
        m_plot->setDevMain(-1);
        updUI();
    } else if (index != m_current) {
        updUI();
    } else {
        makeCurrent(remaining.last());
    }
    m_plotButtons->refresh();
}

/** The main instrument of the next start, and the model for the plots of new ones. */
void MainWindow::storeMainInstrument()
{
    const int dbIndex = m_registry->getDBIndex(m_current);
    if (dbIndex > 0)
        m_database->setAppProperty(QStringLiteral("main_device_id"), dbIndex);
}

void MainWindow::adoptModel(int index)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    const quint8 channels = nox->opt->getDevChCount();
    if (channels > 0 && nox->qwtIndex >= 0)
        m_plot->setChCount(channels, nox->qwtIndex);
    updUI();
}

void MainWindow::adoptIdentity(int index)
{
    adoptModel(index);
    applySqlProperty(index);
    updUI();
}

void MainWindow::applySqlProperty(int index)
{
    m_plotSettings->apply(index);
}

void MainWindow::makeCurrent(int index)
{
    m_current = index;
    m_plot->setDevMain(currentPlotIndex());
    storeMainInstrument();
    updUI();
}

void MainWindow::connectPort(const QString &portName)
{
    const int devIndex = m_serialPort->addDev(portName);
    if (!m_registry->newNox(devIndex, true))
        m_serialPort->rmDev(devIndex); // the registry is full: nobody would ever end the link
}

void MainWindow::showFault(int index, quint8 code, const QString &reason)
{
    const noxList::_nox *nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    m_instruments->showProgress(index, 0, 0);
    Message message;
    message.icon = QMessageBox::Warning;
    message.title = tr("Неисправность прибора");
    message.text = tr("ОШИБКА №%1\nНеисправность прибора %2\n%3")
                       .arg(QString::number(code), nox->opt->getDevTitle(), reason);
    UserDialogs::current().tell(this, message);
}

void MainWindow::searchAgain(int index)
{
    if (const noxList::_nox *nox = m_registry->getNoxByIndex(index))
        m_discovery->find(true, nox->opt->devType, nox->opt->devNumber);
}

// Values

void MainWindow::addMeasurement(int index, double value, quint8 ch, const QString &unit)
{
    const int qwtIndex = m_registry->getQWTIndex(index);
    if (qwtIndex < 0)
        return;
    m_results->noteMeasurement(index, ch); // first: a row holds the round that is over
    m_plot->addPoint(value, unit, qwtIndex, ch);
}

void MainWindow::addRecords(int index, const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                            const QDateTime &start)
{
    const int qwtIndex = m_registry->getQWTIndex(index);
    if (qwtIndex < 0)
        return;
    m_plot->prepareMeas(qwtIndex, start);
    for (auto channel = records.cbegin(); channel != records.cend(); ++channel) {
        for (const optionsNOX8::_recItem &record : channel.value()) {
            m_plot->addPoint(double(record.value), double(record.time), record.dim, qwtIndex,
                             channel.key());
        }
    }
    updUI(); // a channel without records is empty now
}

void MainWindow::notePoint(int qwtIndex, uchar ch, ValueMark mark)
{
    m_instruments->notePoint(qwtIndex, ch, mark);
    m_channels->notePoint(qwtIndex, ch, mark);
    m_isAlarmDue = m_isAlarmDue || mark == ValueMark::Alarm;
    m_plot->frameClock().request(FrameExtent::Texts);
}

/** Shows what the points since the last frame have changed; behind a minimised window that waits,
 *  but the alarm sounds. */
void MainWindow::showFrame()
{
    if (std::exchange(m_isAlarmDue, false))
        m_alarmSound->play();
    if (isMinimized())
        return;
    m_instruments->paintTouched();
    if (m_channels->lacksRows())
        updUI();
    m_channels->paintTouched();
    showNumbers();
    m_plotButtons->refresh(); // points may have changed the scales that the plot chooses
}

// The plot

void MainWindow::showMainInstrument(int qwtIndex)
{
    if (isCurrent(qwtIndex))
        m_channels->resetBackgrounds();
}

void MainWindow::showPlotSettings(int qwtIndex)
{
    if (!isCurrent(qwtIndex))
        return;
    showNumbers();
    m_plotButtons->refresh();
    m_channels->refreshMain();
    m_instruments->refreshValue(m_current);
}

void MainWindow::clearPlot(int qwtIndex)
{
    Message question;
    question.icon = QMessageBox::Warning;
    question.title = windowTitle();
    question.text = tr("Очистить график?");
    question.buttons = QMessageBox::Yes | QMessageBox::No;
    question.defaultButton = QMessageBox::No;
    const QPointer<optionsNOX8> image = imageOnPlot(*m_registry, qwtIndex);
    if (UserDialogs::current().ask(this, question) != QMessageBox::Yes)
        return;
    // while the question was open, the instrument may have left its place to another one
    if (qwtIndex >= 0 && (!image || imageOnPlot(*m_registry, qwtIndex) != image))
        return;
    const QDateTime now = m_plot->now();
    const QList<int> chosen = qwtIndex < 0 ? m_plot->devices().keys() : QList<int>{qwtIndex};
    for (const int cleared : chosen)
        m_plot->prepareMeas(cleared, now);
    updUI();
}

// The user

void MainWindow::on_devTable_cellPressed(int row, int column)
{
    pressInstrument(row, column);
}

void MainWindow::pressInstrument(int row, int column)
{
    const int index = m_instruments->indexAt(row);
    if (index < 0)
        return;
    if (column == InstrumentColumn::Menu)
        m_instrumentCard->show(index, m_instruments->menuPlace(row));
    else
        makeCurrent(index);
}

void MainWindow::on_devTable_cellEntered(int row, int column)
{
    m_instruments->hover(row, column);
}

void MainWindow::on_chTable_cellPressed(int row, int column)
{
    pressChannel(row, column, QGuiApplication::mouseButtons());
}

void MainWindow::pressChannel(int row, int column, Qt::MouseButtons buttons)
{
    const int channel = m_channels->channelAt(row);
    const int qwtIndex = currentPlotIndex();
    if (channel < 0 || qwtIndex < 0)
        return;
    const auto ch = uchar(channel);
    switch (column) {
    case ChannelColumn::Number:
        pressNumber(qwtIndex, ch, buttons);
        break;
    case ChannelColumn::Value:
    case ChannelColumn::Unit:
    case ChannelColumn::DeltaX:
    case ChannelColumn::DeltaY:
        m_plot->setChMain(ch, qwtIndex);
        break;
    case ChannelColumn::Reference:
        m_differenceMenu->openFor(qwtIndex, ch, m_channels->placeBelow(ch, column));
        break;
    case ChannelColumn::Menu:
        m_channelCard->show(m_current, m_channels->placeBelow(ch, column), ch);
        break;
    default:
        break;
    }
    updUI();
}

void MainWindow::pressNumber(int qwtIndex, uchar ch, Qt::MouseButtons buttons)
{
    const bool isShown = m_plot->getChShow(qwtIndex, ch);
    if (buttons & Qt::LeftButton)
        m_plot->setChShow(!isShown, qwtIndex, ch);
    else if ((buttons & Qt::RightButton) && isShown)
        chooseColor(ch);
}

void MainWindow::chooseColor(uchar ch)
{
    const int qwtIndex = currentPlotIndex();
    const QPointer<optionsNOX8> image = imageOnPlot(*m_registry, qwtIndex);
    if (!image)
        return;
    const QColor color = UserDialogs::current().chooseColor(this, m_plot->getChColor(qwtIndex, ch));
    // while the dialog was open, the instrument may have left the plot
    if (color.isValid() && image && imageOnPlot(*m_registry, qwtIndex) == image)
        m_plot->setChColor(color, qwtIndex, ch);
}

void MainWindow::chooseMainColor()
{
    const int ch = m_plot->getChMain();
    if (ch >= 0)
        chooseColor(uchar(ch));
}

void MainWindow::on_chTable_cellEntered(int row, int column)
{
    m_channels->hover(row, column);
}

void MainWindow::on_qwtZoomBtn_clicked()
{
    m_plotButtons->applyTool(ModeZoom);
}

void MainWindow::on_qwtScrollBtn_clicked()
{
    m_plotButtons->applyTool(ModeScroll);
}

void MainWindow::on_qwtMeasBtn_clicked()
{
    m_plotButtons->applyTool(ModeMeasure);
}

void MainWindow::on_recBtn_clicked()
{
    m_results->record(m_current);
}

void MainWindow::on_toolButton_clicked()
{
    m_results->savePicture(m_current);
}

void MainWindow::on_toolButton_2_clicked()
{
    m_results->exportMain();
}

void MainWindow::on_toolButton_3_clicked()
{
    if (!m_results->openSaved())
        return;
    if (m_registry->indices().isEmpty())
        m_registry->newNox(-1, true); // which becomes the current one
    m_registry->setProccesed(m_current, false, true);
    m_results->readInto(m_current);
    updUI(); // a channel that the file does not have is empty now
}

void MainWindow::on_wideViewBtn_clicked()
{
    const bool wide = m_ui->widget->isVisible();
    m_ui->widget->setVisible(!wide);
    m_ui->wideViewBtn->setArrowType(wide ? Qt::RightArrow : Qt::LeftArrow);
}

void MainWindow::on_exitBtm_clicked()
{
    close();
}

void MainWindow::on_findDevBtn_clicked()
{
    m_discovery->find(true, 0, 0);
}

void MainWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::WindowStateChange && m_plot && !isMinimized())
        m_plot->frameClock().request(); // what came while nobody saw it
    QMainWindow::changeEvent(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    event->setAccepted(m_isLeaving || (wantsToLeave() && !awaitsWrites()));
}

bool MainWindow::wantsToLeave()
{
    if (!m_database->getAppProperty(QStringLiteral("exit_query")).toBool())
        return true;
    Message question;
    question.icon = QMessageBox::Question;
    question.title = tr("Выход из программы");
    question.text = tr("Вы уверены что хотите выйти из программы?");
    question.buttons = QMessageBox::Yes | QMessageBox::No;
    question.defaultButton = QMessageBox::No;
    return UserDialogs::current().ask(this, question) == QMessageBox::Yes;
}

/** What was applied is written to the end first, since an instrument could keep half of a block;
 *  the window says so, and closes then. Closed once more, it does not wait. */
bool MainWindow::awaitsWrites()
{
    m_isLeaving = true;
    m_registry->writeNow();
    if (m_serialPort->isSendAllData())
        return false;
    setWindowTitle(windowTitle() + tr(" — запись настроек в приборы, затем выход"));
    m_ui->centralwidget->setEnabled(false);
    connect(m_serialPort.get(), &NOXSerialPort::allDevDataSend, this, &MainWindow::close,
            Qt::QueuedConnection);
    return true;
}
