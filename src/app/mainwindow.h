#pragma once

#include "registry/noxlist.h"

#include <QMainWindow>

#include <memory>

class AlarmSound;
class ChannelTable;
class ClearMenu;
class ConnectMenu;
class DifferenceMenu;
class InstrumentTable;
class NOXSerialPort;
class NumericPanels;
class PlotButtons;
class PlotMenu;
class PlotSettingsStore;
class QwtNOX;
class ResultsTools;
class SettingsMenu;
class StartHints;
class TableHeights;
class appconf;
class confChMenu;
class confMenu;
class devConfUI;
class findNox;
class noxSql;
enum class ValueMark;

namespace Ui
{
class MainWindow;
}

/**
 * The main window: it builds the objects of the program, connects them, and shows what is measured.
 *
 * Its handlers find the instrument that an event is about and hand the rest to one collaborator.
 * Events about instruments that the registry or the plot no longer knows are ignored.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    NOXSerialPort *serialPort() const { return m_serialPort.get(); }
    noxList *registry() const { return m_registry.get(); }
    QwtNOX *plot() const { return m_plot.get(); }
    devConfUI *deviceSettings() const { return m_deviceSettings.get(); }
    confMenu *instrumentCard() const { return m_instrumentCard.get(); }
    confChMenu *channelCard() const { return m_channelCard.get(); }
    findNox *discovery() const { return m_discovery.get(); }
    AlarmSound *alarmSound() const { return m_alarmSound.get(); }
    /** Registry index of the current instrument, -1 when there is none. */
    int currentIndex() const { return m_current; }

public slots:
    /** Brings both tables and the panels up to date. */
    void updUI();
    /** Applies what the database keeps of how an instrument's plot looked (registry index). */
    void applySqlProperty(int index);

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private slots:
    // connected by name from the form
    void on_exitBtm_clicked();
    void on_wideViewBtn_clicked();
    void on_findDevBtn_clicked();
    void on_chTable_cellPressed(int row, int column);
    void on_chTable_cellEntered(int row, int column);
    void on_devTable_cellPressed(int row, int column);
    void on_devTable_cellEntered(int row, int column);
    void on_qwtZoomBtn_clicked();
    void on_qwtScrollBtn_clicked();
    void on_qwtMeasBtn_clicked();
    void on_recBtn_clicked();
    void on_toolButton_clicked();
    void on_toolButton_2_clicked();
    void on_toolButton_3_clicked();

private:
    // construction, in this order
    void buildForm();
    void buildDatabase();
    void buildAbout();
    void buildAlarm();
    void buildInstruments();
    void buildPlot();
    void buildDialogs();
    void buildResults();
    void buildInstrumentCard();
    void buildDisplays();
    void buildChannelCard();
    void connectExchange();
    void connectRegistry();
    void connectSettings();
    void connectInstruments();
    void connectPlot();
    void connectKeys();
    void buildMenus();
    void buildSettings();
    void buildPlotTools();
    void buildHints();
    void orderFocus();

    // what the registry reports
    void attachInstrument(int index);
    void detachInstrument(int index, int qwtIndex);
    void adoptModel(int index);
    void adoptIdentity(int index);
    void addMeasurement(int index, double value, quint8 ch, const QString &unit);
    void addRecords(int index, const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                    const QDateTime &start);
    void showFault(int index, quint8 code, const QString &reason);
    void searchAgain(int index);

    // what the plot reports; points are only noted, and shown with the next frame
    void notePoint(int qwtIndex, uchar ch, ValueMark mark);
    void showFrame();
    void showMainInstrument(int qwtIndex);
    void showPlotSettings(int qwtIndex);

    // what the user asks for
    void makeCurrent(int index);
    void storeMainInstrument();
    void connectPort(const QString &portName);
    void clearPlot(int qwtIndex);
    bool wantsToLeave();
    bool awaitsWrites();
    void pressInstrument(int row, int column);
    void pressChannel(int row, int column, Qt::MouseButtons buttons);
    void pressNumber(int qwtIndex, uchar ch, Qt::MouseButtons buttons);
    void chooseColor(uchar ch);
    void chooseMainColor();

    int currentPlotIndex() const { return m_registry->getQWTIndex(m_current); }
    bool isCurrent(int qwtIndex) const { return qwtIndex >= 0 && qwtIndex == currentPlotIndex(); }
    void showNumbers();
    void showTitle();

    // Destroyed in the reverse order: what shows before what is shown, the multiplexer last.
    std::unique_ptr<Ui::MainWindow> m_ui;
    std::unique_ptr<NOXSerialPort> m_serialPort;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<confChMenu> m_channelCard;
    std::unique_ptr<confMenu> m_instrumentCard;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<PlotSettingsStore> m_plotSettings;
    std::unique_ptr<appconf> m_about;
    std::unique_ptr<findNox> m_discovery;
    std::unique_ptr<devConfUI> m_deviceSettings;
    std::unique_ptr<InstrumentTable> m_instruments;
    std::unique_ptr<ChannelTable> m_channels;
    std::unique_ptr<TableHeights> m_tableHeights;
    std::unique_ptr<DifferenceMenu> m_differenceMenu;
    std::unique_ptr<ConnectMenu> m_connectMenu;
    std::unique_ptr<NumericPanels> m_panels;
    std::unique_ptr<ClearMenu> m_clearMenu;
    std::unique_ptr<SettingsMenu> m_settingsMenu;
    std::unique_ptr<StartHints> m_hints;
    std::unique_ptr<PlotMenu> m_plotMenu;
    std::unique_ptr<PlotButtons> m_plotButtons;
    std::unique_ptr<AlarmSound> m_alarmSound;
    std::unique_ptr<ResultsTools> m_results;
    int m_current = -1;
    bool m_isLeaving = false;  ///< the window has been closed; what was applied is still written
    bool m_isAlarmDue = false; ///< a limit was violated since the last frame
};
