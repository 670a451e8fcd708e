#include "settingsdriver.h"

#include "app/mainwindow.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "dialogs/devconfui.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSqlQuery>
#include <QTableWidget>
#include <QTabWidget>
#include <QTimer>

namespace
{

template<typename Widget>
Widget *find(QWidget *parent, const char *name)
{
    return parent->findChild<Widget *>(QLatin1String(name));
}

void sendKey(QWidget *target, QEvent::Type type, int key)
{
    QKeyEvent event(type, key, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

optionsNOX8 &firstImage(const MainWindow *window)
{
    return *window->registry()->getNoxByIndex(window->registry()->indices().first())->opt;
}

/** A platinum thermometer after IEC 60751, over a range that the polynomial follows well. */
void enterPlatinum(featureNOX8 &feature)
{
    feature.setFeature(FeatureRecord::callendarVanDusen, QStringLiteral("Эталон ПТС-10М № 214"),
                       {"100", "3.9083e-3", "-5.775e-7", "-4.183e-12", "-50", "150"});
}

/** A thermocouple of type S, with one EMF that was misread. */
void enterThermocouple(featureNOX8 &feature)
{
    feature.setFeature(FeatureRecord::temperatureOfVoltage, QStringLiteral("ППО № 17, печь 2"),
                       {"300", "2.3199", "400", "3.2596", "500", "4.2322", "600", "5.2376", "700",
                        "5.2758", "800", "5.2469", "900", "8.4508"});
}

constexpr int wholeHeight = 846; ///< at which nothing is scrolled: the screen may be lower

} // namespace

SettingsDriver::SettingsDriver(MainWindow *window)
    : m_window(window)
    , m_dialog(window->deviceSettings())
{
}

bool SettingsDriver::play(const QString &scene, const Take &take)
{
    const int first = m_window->registry()->indices().first();
    if (scene == QLatin1String("instrument-card")) {
        m_window->instrumentCard()->show(first, m_window->pos());
        return take(m_window->instrumentCard());
    }
    if (scene == QLatin1String("channel-card")) {
        m_window->channelCard()->show(first, m_window->pos(), 0);
        return take(m_window->channelCard());
    }
    m_window->deviceSettings()->show(first);
    m_dialog->setFixedHeight(wholeHeight);
    auto *const tabs = find<QTabWidget>(m_dialog, "tabWidget");
    if (scene == QLatin1String("channels"))
        change();
    else if (scene == QLatin1String("snapshots"))
        searchSnapshots();
    else if (scene == QLatin1String("references"))
        tabs->setCurrentIndex(2);
    else if (scene == QLatin1String("shifts"))
        tabs->setCurrentIndex(3);
    else if (scene == QLatin1String("service"))
        unlock();
    else if (scene != QLatin1String("general"))
        return edit(scene, take);
    return take(m_dialog);
}

/** Two configurations are stored beside the factory's, a month apart, and found again; what has
 *  been set after that is in none of them. */
void SettingsDriver::searchSnapshots()
{
    auto *const description = find<QPlainTextEdit>(m_dialog, "infoText");
    auto *const time = find<QComboBox>(m_dialog, "devMeasTimeCB");
    const QStringList descriptions = {QStringLiteral("Градуировка термопар"),
                                      QStringLiteral("Поверка термометров")};
    for (const QString &text : descriptions) {
        QSqlQuery(QStringLiteral("UPDATE device_snapshot SET device_snapshot_datetime = strftime("
                                 "'%Y-%m-%dT%H:%M:%S', device_snapshot_datetime, '-1 month')"));
        time->setCurrentIndex(time->currentIndex() + 1);
        description->setPlainText(text);
        find<QAbstractButton>(m_dialog, "addDBBtn")->click();
    }
    time->setCurrentIndex(time->currentIndex() + 1);
    find<QLineEdit>(m_dialog, "dbSearchEdit")->setText(firstImage(m_window).getDevName(false));
    find<QComboBox>(m_dialog, "dbFindCB")->showPopup();
}

/** What Apply would change is marked. */
void SettingsDriver::change()
{
    optionsNOX8 &image = firstImage(m_window);
    find<QComboBox>(m_dialog, "devMeasRoundCB")->setCurrentIndex(1);
    find<QComboBox>(m_dialog, "devCompensTPCB")->setCurrentIndex(2);
    image.setChFeature(1, featureThermocouple, 2);
    image.setChFeatureCompesTP(1, compensResistanceThermometer, 0);
    image.setChOnOff(4, 0);
    image.setChMeasType(2, measVoltage, QString());
}

void SettingsDriver::unlock()
{
    auto *const close = find<QAbstractButton>(m_dialog, "pushButton_6");
    sendKey(m_dialog, QEvent::KeyPress, Qt::Key_PageUp);
    close->click();
    sendKey(m_dialog, QEvent::KeyRelease, Qt::Key_PageUp);
    find<QTabWidget>(m_dialog, "tabWidget")->setCurrentIndex(3);
    find<QGroupBox>(m_dialog, "refShiftGBox")->setChecked(true);
}

/** The editor runs an event loop of its own: the picture is taken in it. */
bool SettingsDriver::edit(const QString &scene, const Take &take)
{
    constexpr int openingMs = 300;
    featureNOX8 &feature = *firstImage(m_window).getFeature(0);
    if (scene == QLatin1String("thermocouple"))
        enterThermocouple(feature);
    else
        enterPlatinum(feature);
    bool isTaken = false;
    QTimer::singleShot(openingMs, m_dialog, [&isTaken, &take] {
        QWidget *const editor = QApplication::activeModalWidget();
        isTaken = take(editor);
        editor->close();
    });
    auto *const list = find<QTableWidget>(m_dialog, "featTable");
    list->setCurrentCell(0, 0);
    sendKey(list, QEvent::KeyPress, Qt::Key_Return);
    return isTaken;
}
