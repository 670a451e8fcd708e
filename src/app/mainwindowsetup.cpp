#include "app/alarmsound.h"
#include "app/appconf.h"
#include "app/channeltable.h"
#include "app/guide.h"
#include "app/instrumenttable.h"
#include "app/mainwindow.h"
#include "app/numericpanels.h"
#include "app/plothint.h"
#include "app/plotinstruments.h"
#include "app/plottools.h"
#include "app/resultstools.h"
#include "app/starthints.h"
#include "app/windowmenus.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "dialogs/devconfui.h"
#include "plot/qwtlabelclick.h"
#include "plot/qwtnox.h"
#include "registry/findnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/plotsettingsstore.h"
#include "ui_mainwindow.h"
#include "widgets/accessiblerole.h"

#include <QApplication>
#include <QFile>
#include <QFocusFrame>
#include <QLocale>
#include <QStandardPaths>
#include <QTimer>

// How the main window is put together, and how it is taken apart.

namespace
{

constexpr uchar plotDivisions = 10;
constexpr int discoveryDelayMs = 500;

/** A style sheet that is built in; empty when it is missing. */
QString readStyleSheet(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    return QString::fromUtf8(text.constData()); // up to the first zero byte
}

/** Frames a widget that shows its focus in no way of its own. */
void showFocusOf(QWidget *widget)
{
    auto *frame = new QFocusFrame(widget);
    QObject::connect(qApp, &QApplication::focusChanged, frame,
                     [frame, widget](const QWidget *, const QWidget *now) {
                         frame->setWidget(now == widget ? widget : nullptr);
                     });
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QMainWindow(parent)
    , m_ui(std::make_unique<Ui::MainWindow>())
{
    buildForm();
    buildDatabase();
    buildAbout();
    buildAlarm();
    buildInstruments();
    buildPlot();
    buildDialogs();
    buildResults();
    buildInstrumentCard();
    buildDisplays();
    buildChannelCard();
    connectExchange();
    connectRegistry();
    connectSettings(); // first what shows an instrument's settings, then what makes use of them
    connectInstruments();
    connectPlot();
    connectKeys();
    buildMenus();
    buildSettings();
    buildPlotTools();
    buildHints();
    orderFocus();
    updUI();
}

MainWindow::~MainWindow()
{
    // The workers are waited for in a local event loop: neither what they still report nor the user
    // may reach a window that is half taken apart.
    hide();
    m_serialPort->disconnect(this);
    m_registry->disconnect(this);
    m_plot->disconnect(this);
    m_plot->frameClock().disconnect(this);
    m_serialPort->rmAll(); // not one after the other with its record
}

void MainWindow::buildForm()
{
    installAccessibleRoles();
    m_ui->setupUi(this);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::AnyCountry));
    setStyleSheet(readStyleSheet(QStringLiteral(":/resource/nox8.css")));
}

void MainWindow::buildDatabase()
{
    const QString path = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
                         QStringLiteral("/nox8.db");
    provideDatabase(path);
    m_database = std::make_unique<noxSql>(path);
}

void MainWindow::buildAbout()
{
    m_about = std::make_unique<appconf>(m_database.get(), this);
    m_about->setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    new GuideKey(this);
}

void MainWindow::buildAlarm()
{
    m_alarmSound = std::make_unique<AlarmSound>();
}

void MainWindow::buildInstruments()
{
    m_serialPort = std::make_unique<NOXSerialPort>();
    m_registry = std::make_unique<noxList>(m_serialPort.get(), m_database.get());
}

void MainWindow::buildPlot()
{
    m_plot = std::make_unique<QwtNOX>(this);
    m_ui->qwtWidgetLayout->insertWidget(0, m_plot.get(), 1);
    m_plot->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    showFocusOf(m_plot->canvas());
    setAccessibleRole(m_plot->canvas(), QAccessible::Chart);
    m_plot->canvas()->setAccessibleName(tr("График"));
    m_ui->qwtFrameLayout->insertWidget(1, new PlotHint(m_plot.get(), m_ui->qwtFrame));
    m_plot->setDivX(plotDivisions);
    m_plot->setDivY(plotDivisions);
    m_plot->applyScale();
    m_plotSettings =
        std::make_unique<PlotSettingsStore>(m_plot.get(), m_registry.get(), m_database.get());
    connect(m_plotSettings.get(), &PlotSettingsStore::currentInstrumentFound, this,
            &MainWindow::makeCurrent);
}

void MainWindow::buildDialogs()
{
    m_deviceSettings = std::make_unique<devConfUI>(this, m_registry.get(), m_plot.get());
    m_deviceSettings->setStyleSheet(styleSheet());
    connect(m_deviceSettings.get(), &QDialog::finished, this, &MainWindow::updUI);

    m_discovery = std::make_unique<findNox>(this, m_registry.get());
    m_discovery->setStyleSheet(styleSheet());
}

void MainWindow::buildResults()
{
    ResultsTools::Display display;
    display.recordButton = m_ui->recBtn;
    display.readingBar = m_ui->readingBar;
    display.readingLabel = m_ui->readingLabel;
    display.readingProgress = m_ui->readingProgress;
    display.stopButton = m_ui->stopReadingBtn;
    m_results = std::make_unique<ResultsTools>(display, m_registry.get(), m_plot.get(), this);
    connect(m_results.get(), &ResultsTools::resultsRead, this, &MainWindow::updUI);
}

void MainWindow::buildInstrumentCard()
{
    m_instrumentCard = std::make_unique<confMenu>(this, m_registry.get());
    connect(m_instrumentCard.get(), &confMenu::neadShowSetup, m_deviceSettings.get(),
            &devConfUI::show);
}

void MainWindow::buildDisplays()
{
    m_panels = std::make_unique<NumericPanels>(m_ui->frameMainLCDMeas, m_ui->frameMainLCDAver);
    connect(m_panels.get(), &NumericPanels::valueClicked, m_plot.get(),
            [this] { m_plot->toggleMeasShow(); });
    connect(m_panels.get(), &NumericPanels::averageClicked, m_plot.get(),
            [this] { m_plot->toggleAverShow(); });

    m_channels = std::make_unique<ChannelTable>(m_ui->chTable, m_registry.get(), m_plot.get());
    m_instruments =
        std::make_unique<InstrumentTable>(m_ui->devTable, m_registry.get(), m_plot.get());
    m_tableHeights = std::make_unique<TableHeights>(m_ui->chTable, m_ui->devTable);
    connect(m_instruments.get(), &InstrumentTable::showToggled, this,
            [this](int index, bool shown) {
                const int qwtIndex = m_registry->getQWTIndex(index);
                if (qwtIndex >= 0)
                    m_plot->setDevShow(shown, qwtIndex);
            });
}

void MainWindow::buildChannelCard()
{
    m_channelCard = std::make_unique<confChMenu>(this, m_registry.get());
}

void MainWindow::connectExchange()
{
    connect(m_serialPort.get(), QOverload<int, int, int, quint8>::of(&NOXSerialPort::setProgress),
            this, [this](int devIndex, int progress, int maxProgress) {
                m_instruments->showProgress(m_registry->getIndexByDev(devIndex), progress,
                                            maxProgress);
            });
    // fired when an exchange is queued, and when none is left
    connect(m_serialPort.get(), QOverload<int, bool>::of(&NOXSerialPort::blockStatusEvent), this,
            [this](int devIndex) {
                m_instruments->noteExchange(m_registry->getIndexByDev(devIndex));
                m_plot->frameClock().request(FrameExtent::Texts);
            });
}

void MainWindow::connectRegistry()
{
    connect(m_registry.get(), &noxList::onAddNox, this, &MainWindow::attachInstrument);
    connect(m_registry.get(), &noxList::onChange, this, &MainWindow::updUI);
}

void MainWindow::connectSettings()
{
    const noxList *registry = m_registry.get();
    const devConfUI *settings = m_deviceSettings.get();
    connect(registry, &noxList::onChChange, m_channelCard.get(), &confChMenu::onChChange);
    connect(registry, &noxList::onDevChange, m_instrumentCard.get(), &confMenu::onDevChange);
    connect(registry, &noxList::onDevChange, settings, &devConfUI::onDevChange);
    connect(registry, &noxList::onRefChange, settings, &devConfUI::onRefChange);
    connect(registry, &noxList::onRefShiftChange, settings, &devConfUI::onRefShiftChange);
    connect(registry, &noxList::onChChange, settings, &devConfUI::onChChange);
}

void MainWindow::connectInstruments()
{
    const noxList *registry = m_registry.get();
    connect(registry, &noxList::onIdentChange, this, &MainWindow::adoptIdentity);
    connect(registry, &noxList::onDevChange, this, &MainWindow::adoptModel);
    connect(registry, &noxList::onChChange, this, [this](int index) {
        if (index == m_current)
            updUI();
    });
    connect(registry, &noxList::onReadMeas, this, &MainWindow::addMeasurement);
    connect(registry, &noxList::onReadRec, this, &MainWindow::addRecords);
    connect(registry, &noxList::onRmNox, this, &MainWindow::detachInstrument);
    connect(registry, &noxList::doFindNox, this, &MainWindow::searchAgain);
    connect(registry, &noxList::onDevError, this, &MainWindow::showFault);
    connect(registry, &noxList::doClearQwt, m_plot.get(), [this](int qwtIndex) {
        if (qwtIndex >= 0) // below 0 the plot would clear its main instrument
            m_plot->clear(qwtIndex);
    });
}

void MainWindow::connectPlot()
{
    const QwtNOX *plot = m_plot.get();
    const auto noteAs = [this](ValueMark mark) {
        return [this, mark](int qwtIndex, uchar ch) { notePoint(qwtIndex, ch, mark); };
    };
    connect(plot, &QwtNOX::onAddPoint, this, noteAs(ValueMark::Accepted));
    connect(plot, &QwtNOX::onPointTrackOff, this, noteAs(ValueMark::Alarm));
    connect(plot, &QwtNOX::onErrorAddPoint, this, noteAs(ValueMark::Rejected));
    connect(plot, &QwtNOX::onChColorChange, this, &MainWindow::updUI);
    connect(plot, &QwtNOX::onDevChange, this, &MainWindow::showMainInstrument);
    connect(plot, &QwtNOX::onChange, this, &MainWindow::showPlotSettings);
    connect(&m_plot->frameClock(), &FrameClock::frame, this, &MainWindow::showFrame);
}

/** The keys of the tables do what the mouse does in their columns. */
void MainWindow::connectKeys()
{
    const HeadedTable *instruments = m_ui->devTable;
    connect(instruments, &HeadedTable::showToggled, m_instruments.get(),
            &InstrumentTable::toggleShow);
    connect(instruments, &HeadedTable::allToggled, m_instruments.get(),
            &InstrumentTable::toggleShowAll);
    connect(instruments, &HeadedTable::chosen, this,
            [this](int row) { pressInstrument(row, InstrumentColumn::Name); });
    connect(instruments, &HeadedTable::menuWanted, this,
            [this](int row) { pressInstrument(row, InstrumentColumn::Menu); });

    const HeadedTable *channels = m_ui->chTable;
    connect(channels, &HeadedTable::showToggled, this,
            [this](int row) { pressChannel(row, ChannelColumn::Number, Qt::LeftButton); });
    connect(channels, &HeadedTable::chosen, this,
            [this](int row) { pressChannel(row, ChannelColumn::Value, Qt::LeftButton); });
    connect(channels, &HeadedTable::menuWanted, this, [this](int row, int column) {
        const bool hasItsOwn =
            column == ChannelColumn::Number || column == ChannelColumn::Reference;
        pressChannel(row, hasItsOwn ? column : ChannelColumn::Menu, Qt::RightButton);
    });
}

void MainWindow::buildMenus()
{
    PlotButtons::Buttons buttons;
    buttons.scaleX = m_ui->dXBtn;
    buttons.scaleY = m_ui->dYBtn;
    buttons.modeX = m_ui->modeXBtn;
    buttons.mode = m_ui->modeBtn;
    buttons.zoom = m_ui->qwtZoomBtn;
    buttons.scroll = m_ui->qwtScrollBtn;
    buttons.measure = m_ui->qwtMeasBtn;
    buttons.limits = m_ui->trackBtn;
    m_plotButtons = std::make_unique<PlotButtons>(buttons, m_plot.get());

    m_plotMenu = std::make_unique<PlotMenu>(m_plot.get(), this);
    m_ui->setQwtBtn->setMenu(m_plotMenu.get());
    connect(m_plotMenu.get(), &PlotMenu::colorWanted, this, &MainWindow::chooseMainColor);

    m_connectMenu = std::make_unique<ConnectMenu>(this);
    m_ui->addDevBtn->setMenu(m_connectMenu.get());
    connect(m_connectMenu.get(), &ConnectMenu::noPortChosen, this,
            [this] { m_registry->newNox(-1, true); });
    connect(m_connectMenu.get(), &ConnectMenu::portChosen, this, &MainWindow::connectPort);

    m_differenceMenu = std::make_unique<DifferenceMenu>(m_plot.get(), m_registry.get(), this);
    connect(m_differenceMenu.get(), &DifferenceMenu::chosen, this, &MainWindow::updUI);
}

void MainWindow::buildSettings()
{
    m_settingsMenu = std::make_unique<SettingsMenu>(m_database.get(), this);
    m_ui->settingsBtn->setMenu(m_settingsMenu.get());
    connect(m_settingsMenu.get(), &SettingsMenu::aboutChosen, m_about.get(), &appconf::open);
    if (m_settingsMenu->connectsAtStart())
        QTimer::singleShot(discoveryDelayMs, m_discovery.get(),
                           [this] { m_discovery->find(true, 0, 0); });
}

void MainWindow::buildPlotTools()
{
    m_clearMenu = std::make_unique<ClearMenu>(m_registry.get(), this);
    m_ui->clearBtn->setMenu(m_clearMenu.get());
    connect(m_clearMenu.get(), &ClearMenu::chosen, this, &MainWindow::clearPlot);
}

void MainWindow::buildHints()
{
    m_hints = std::make_unique<StartHints>(m_ui->devTable, m_ui->databaseHint, m_registry.get(),
                                           m_database.get());
}

/** Tab goes the way of the eye: down the left column, down the plot's tools, along its buttons. */
void MainWindow::orderFocus()
{
    QList<QWidget *> order = {m_ui->frameMainLCDMeas, m_ui->frameMainLCDAver, m_ui->chTable,
                              m_ui->devTable,         m_ui->addDevBtn,        m_ui->findDevBtn,
                              m_ui->exitBtm,          m_ui->settingsBtn,      m_plot->canvas()};
    for (QwtLabelClick *value : m_plot->findChildren<QwtLabelClick *>())
        order << value; // what was measured, while it is shown
    order += {m_ui->qwtMeasBtn,   m_ui->qwtZoomBtn,     m_ui->qwtScrollBtn, m_ui->trackBtn,
              m_ui->recBtn,       m_ui->clearBtn,       m_ui->toolButton,   m_ui->toolButton_2,
              m_ui->toolButton_3, m_ui->stopReadingBtn, m_ui->wideViewBtn,  m_ui->setQwtBtn,
              m_ui->dXBtn,        m_ui->dYBtn,          m_ui->modeXBtn,     m_ui->modeBtn};
    for (int next = 1; next < order.size(); ++next)
        setTabOrder(order.at(next - 1), order.at(next));
    m_ui->devTable->setFocus();
}
