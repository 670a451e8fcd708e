#pragma once

#include "device/featurenox8.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "dialogs/devconfui.h"
#include "plot/qwtnox.h"
#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "support/formtest.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

constexpr quint32 noxA = 1;
constexpr quint32 noxB = 17;
constexpr quint32 noxC = 33;
constexpr quint32 noxCm = 34;
constexpr quint32 noxCm1 = 65;
constexpr quint32 noxCmRev4 = 156281359;
constexpr quint32 noxCm1Rev4 = 157329935;
constexpr quint32 noxDRev4 = 158378511;

/**
 * Tests of the settings dialog and the cards over a registry with a database and one port, "P1".
 * They are connected as in the main window; what an image and the registry announce is written
 * down.
 */
class DialogsTest : public FormTest
{
    Q_OBJECT
protected slots:
    void init() { prepare("nox8.db"); }
    void cleanup()
    {
        channelCard.reset();
        card.reset();
        settings.reset();
        plot.reset();
        registry.reset();
        port.reset();
        database.reset();
        PortCatalog::setCurrent(nullptr);
        ::close(line);
    }

protected:
    void prepare(const QString &databaseName)
    {
        registerExchangeItems();
        provideSurroundings(databaseName);
        line = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(grantpt(line) == 0 && unlockpt(line) == 0);
        QVERIFY(QFile::link(ptsname(line), directory->filePath("P1")));
        PortCatalog::setCurrent(std::make_unique<VirtualPortCatalog>(directory->path()));
        port = std::make_unique<NOXSerialPort>();
        registry = std::make_unique<noxList>(port.get(), database.get());
        plot = std::make_unique<QwtNOX>();
        settings = std::make_unique<devConfUI>(nullptr, registry.get(), plot.get());
        card = std::make_unique<confMenu>(nullptr, registry.get());
        channelCard = std::make_unique<confChMenu>(nullptr, registry.get());
        connectAsTheWindow();
        writeDown();
    }
    void connectAsTheWindow()
    {
        const noxList *const list = registry.get();
        connect(list, &noxList::onDevChange, settings.get(), &devConfUI::onDevChange);
        connect(list, &noxList::onRefChange, settings.get(), &devConfUI::onRefChange);
        connect(list, &noxList::onRefShiftChange, settings.get(), &devConfUI::onRefShiftChange);
        connect(list, &noxList::onChChange, settings.get(), &devConfUI::onChChange);
        connect(list, &noxList::onDevChange, card.get(), &confMenu::onDevChange);
        connect(list, &noxList::onChChange, channelCard.get(), &confChMenu::onChChange);
    }
    void writeDown()
    {
        const noxList *const list = registry.get();
        connect(list, &noxList::onDevChange, this, note("device"));
        connect(list, &noxList::onIdentChange, this, note("identity"));
        connect(list, &noxList::onChChange, this,
                [this](int, quint8 ch) { journal << QString("channel %1").arg(ch); });
        connect(list, &noxList::onRefChange, this, note("references"));
        connect(list, &noxList::onRefShiftChange, this, note("shifts"));
        connect(list, &noxList::onChange, this, note("registry"));
        connect(list, &noxList::onRmNox, this, note("removed"));
        connect(list, &noxList::doFindNox, this, note("search"));
        connect(database.get(), &noxSql::onMeasDBChange, this, note("database"));
        connect(card.get(), &confMenu::neadShowSetup, this, note("settings"));
        connect(port.get(), &NOXSerialPort::readyDevQuery, this,
                [this](int, const noxSerialPortQueryItem &item) {
                    journal << QString("read %1 %2").arg(item.address).arg(item.size) +
                                   (item.showPr ? " shown" : "") + (item.rec ? " records" : "");
                });
    }

    /** An instrument with the number 123 as it is after it has been read. */
    noxList::_nox *add(quint32 type, int devIndex = -1)
    {
        nox = registry->newNox(devIndex, true);
        image = nox->opt.get();
        image->setDevType(type);
        image->setDevNumber(123);
        image->setData(taken(image->getData()), 2);
        image->identApplyPending = false;
        nox->held.noteRead(2, data());
        connect(image, &optionsNOX8::onIdentApply, this, note("write identity"));
        connect(image, &optionsNOX8::onDevApply, this, note("write device"));
        connect(image, &optionsNOX8::onRefApply, this, note("write references"));
        connect(image, &optionsNOX8::onRefShiftApply, this, note("write shifts"));
        connect(image, &optionsNOX8::onChApply, this,
                [this](int ch) { journal << QString("write channel %1").arg(ch); });
        journal.clear();
        return nox;
    }
    /** One that was changed since, as oddly as can be. */
    void addOdd(quint32 type)
    {
        add(type);
        image->devCompensTP = 2;
        image->channels[0].feature = 3;
        image->channels[1] = {0, measTemperature, "", 1, 1, 0, 0, featureThermocouple, compensNone};
        image->channels[6] = {3,  measTemperatureCustom, "bar",      15, 15, 12,
                              15, featureThermocouple,   compensNone};
        image->features[3]->setFeature(FeatureRecord::its90, "Эталон",
                                       {"24.8", "1", "2", "3", "4", "5", "6", "7", "3.375"});
        journal.clear();
    }
    void open(quint32 type, int devIndex = -1) { settings->show(add(type, devIndex)->index); }

    /** What was announced since the last call. */
    QString heard() { return std::exchange(journal, {}).join(", "); }
    QByteArray data() const { return taken(image->getData()); }
    QByteArray references() const { return taken(image->getRefAllData()); }
    /** Stores the configuration of an instrument; the first one becomes its factory one. */
    int store(const noxList::_nox *one, const QString &info) const
    {
        const QByteArray configuration = taken(one->opt->getData());
        const QByteArray rest = taken(one->opt->getRefAllData());
        return database->setSnapShot(one->dbIndex, &configuration, &rest, info, 0);
    }

    /** What is open: a card, else the settings. */
    QWidget *form() const override
    {
        QWidget *const open =
            card->isVisible() ? static_cast<QWidget *>(card.get()) : settings.get();
        return channelCard->isVisible() ? channelCard.get() : open;
    }
    /** Chooses an entry of a list: the settings of channel 2 then, and what was announced. */
    QString chosen(const QString &list, int place)
    {
        choose(list, place);
        QStringList kinds = heard().split(", ");
        kinds.removeDuplicates();
        const QByteArray block = image->channelBlock(2).toHex();
        return block.mid(8, 8) + ' ' + block.mid(16) + ' ' + kinds.join(' ');
    }
    void operatingListsAreStored()
    {
        QCOMPARE(chosen("devMeasRoundCB", 1), QString("02100100 01000000 device"));
        QCOMPARE(chosen("devMeasTimeCB", 8), QString("82100100 01000000 device"));
        QCOMPARE(chosen("devMeasModeCB", 1), QString("81100100 01000000 device"));
        QCOMPARE(chosen("devCompensTPCB", 2), QString("81120100 01000000 device"));
        QCOMPARE(chosen("devChReversCB", 1), QString("81121100 01000000 device"));
        QCOMPARE(chosen("devZakorotkaCB", 0), QString("81121000 01000000 device"));
    }
    /** What is ticked in the menu that is up, and in those inside it. */
    static QString ticked()
    {
        QStringList texts;
        const QWidget *const menu = QApplication::activePopupWidget();
        const auto entries = menu ? menu->findChildren<QAction *>() : QList<QAction *>();
        for (const QAction *entry : entries)
            if (entry->isChecked())
                texts << entry->text();
        return menu ? texts.join(' ') : "no menu";
    }
    std::function<void()> note(const char *what)
    {
        return [this, what] { journal << what; };
    }

    int line = -1; ///< the other end of the port
    std::unique_ptr<NOXSerialPort> port;
    std::unique_ptr<noxList> registry;
    std::unique_ptr<QwtNOX> plot;
    std::unique_ptr<devConfUI> settings;
    std::unique_ptr<confMenu> card;
    std::unique_ptr<confChMenu> channelCard;
    noxList::_nox *nox = nullptr; ///< the instrument that was added last
    optionsNOX8 *image = nullptr;
    QStringList journal;
};
