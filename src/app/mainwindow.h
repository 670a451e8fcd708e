#pragma once

#include "registry/noxlist.h"

#include <QMainWindow>

#include <memory>

class ChannelTable;
class ClearMenu;
class ConnectMenu;
class InstrumentTable;
class NOXSerialPort;
class NumericPanels;
class PlotButtons;
class QwtNOX;
class SettingsMenu;
class findNox;
class noxSql;

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
    findNox *discovery() const { return m_discovery.get(); }
    /** Registry index of the current instrument, -1 when there is none. */
    int currentIndex() const { return m_current; }

public slots:
    /** Brings both tables and the panels up to date. */
    void updUI();

protected:
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

private:
    // construction, in this order
    void buildForm();
    void buildDatabase();
    void buildInstruments();
    void buildPlot();
    void buildDisplays();
    void connectRegistry();
    void connectPlot();
    void buildMenus();
    void buildSettings();

    // what the registry reports
    void attachInstrument(int index);
    void detachInstrument(int index, int qwtIndex);
    void adoptModel(int index);
    void addMeasurement(int index, double value, quint8 ch, const QString &unit);
    void addRecords(int index, const QMap<quint8, QVector<optionsNOX8::_recItem>> &records,
                    const QDateTime &start);
    void showFault(int index, quint8 code, const QString &reason);
    void searchAgain(int index);

    // what the plot reports
    void showPoint(int qwtIndex, uchar ch);
    void showRejected(int qwtIndex, uchar ch);
    void showAlarm(int qwtIndex, uchar ch);
    void showMainInstrument(int qwtIndex);
    void showPlotSettings(int qwtIndex);

    // what the user asks for
    void makeCurrent(int index);
    void storeMainInstrument();
    void connectPort(const QString &portName);
    void clearPlot(int qwtIndex);
    void showAbout();
    void chooseColor(uchar ch);
    void pressChannel(uchar ch, int column);

    int indexOnPlot(int qwtIndex) const;
    optionsNOX8 *imageOnPlot(int qwtIndex) const;
    int currentPlotIndex() const { return m_registry->getQWTIndex(m_current); }
    bool isCurrent(int qwtIndex) const { return qwtIndex >= 0 && qwtIndex == currentPlotIndex(); }
    void showNumbers();
    void showTitle();

    // Destroyed in the reverse order: what shows before what is shown, the multiplexer last.
    std::unique_ptr<Ui::MainWindow> m_ui;
    std::unique_ptr<NOXSerialPort> m_serialPort;
    std::unique_ptr<noxSql> m_database;
    std::unique_ptr<noxList> m_registry;
    std::unique_ptr<QwtNOX> m_plot;
    std::unique_ptr<findNox> m_discovery;
    std::unique_ptr<InstrumentTable> m_instruments;
    std::unique_ptr<ChannelTable> m_channels;
    std::unique_ptr<ConnectMenu> m_connectMenu;
    std::unique_ptr<NumericPanels> m_panels;
    std::unique_ptr<ClearMenu> m_clearMenu;
    std::unique_ptr<PlotButtons> m_plotButtons;
    std::unique_ptr<SettingsMenu> m_settingsMenu;
    int m_current = -1;
};
