#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/plotsettingsstore.h"
#include "support/databaseholder.h"

#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

namespace
{

constexpr quint32 typeB = 0x11; // eight channels

/** One run of the program: its plot and registry, and the store between them and the database. */
struct Program {
    explicit Program(noxSql *sql)
        : registry(&port, sql)
        , store(&plot, &registry, sql)
    {
        // what the window does with an instrument whose identity changes
        QObject::connect(&registry, &noxList::onIdentChange, &plot, [this](int index) {
            plot.setChCount(nox(index).opt->getDevChCount(), nox(index).qwtIndex);
            store.apply(index);
        });
        QObject::connect(&store, &PlotSettingsStore::currentInstrumentFound, &plot,
                         [this](int index) { plot.setDevMain(nox(index).qwtIndex); });
    }

    noxList::_nox &nox(int index) { return *registry.getNoxByIndex(index); }

    /** Attaches an instrument as the window does; number 0: it has not identified itself. */
    int attach(int number)
    {
        noxList::_nox *added = registry.newNox(-1, true);
        if (number != 0)
            identify(added->index, number);
        const int qwtIndex = plot.devices().size();
        plot.addDev(qwtIndex, added->opt->getDevChCount());
        if (qwtIndex == 0)
            plot.setDevMain(0);
        added->qwtIndex = qwtIndex;
        store.apply(added->index);
        return added->index;
    }

    void identify(int index, int number)
    {
        QSignalBlocker half(nox(index).opt.get());
        nox(index).opt->setDevType(typeB);
        half.unblock();
        nox(index).opt->setDevNumber(quint16(number));
    }

    /** How an instrument looks: as a whole, and colour, scales and time labels of its channels. */
    QVariantList look(int qwtIndex) const
    {
        QVariantList look{plot.getChMain(qwtIndex), plot.getMeasShow(qwtIndex),
                          plot.getAverShow(qwtIndex)};
        for (uchar ch = 0; ch < plot.getChCount(qwtIndex); ++ch)
            look << plot.getChColor(qwtIndex, ch) << plot.getChScaleX(qwtIndex, ch)
                 << plot.getChScaleY(qwtIndex, ch) << plot.getChModeX(qwtIndex, ch);
        return look;
    }

    /** Changes the look as a user would do it, in every channel. */
    void decorate(int qwtIndex, int seed)
    {
        for (uchar ch = 0; ch < plot.getChCount(qwtIndex); ++ch) {
            plot.setChColor(QColor(seed, ch, 99), qwtIndex, ch);
            plot.setChScaleX(uchar(ch + seed), qwtIndex, ch);
            plot.setChScaleY(uchar(ch + seed + 1), qwtIndex, ch);
            plot.setChModeX(TmcModeX((ch + seed) % 3), qwtIndex, ch);
        }
        plot.setChMain(uchar(seed + 1), qwtIndex);
        plot.setAverShow(seed % 2 == 0, qwtIndex);
    }

    NOXSerialPort port;
    noxList registry;
    QwtNOX plot;
    PlotSettingsStore store;
};

/** Rows that were changed in the database since it was opened. */
int changes()
{
    QSqlQuery query("SELECT total_changes()");
    return query.next() ? query.value(0).toInt() : -1;
}

} // namespace

/** The plot looks as it did when the program last ran. */
class TestPlotSettings : public QObject
{
    Q_OBJECT
private slots:
    void init()
    {
        m_program.reset();
        m_sql.reset();
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
        m_sql = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
        restart();
    }

    void storedProperties()
    {
        m_program->attach(17);
        QwtNOX &plot = m_program->plot;
        plot.setChColor(Qt::red, 0, 3);
        plot.setChScaleX(5, 0, 3);
        plot.setChScaleY(6, 0, 3);
        plot.setChModeX(ModeXAbsolute, 0, 7);
        plot.setChMain(2, 0);
        plot.setAverShow(false, 0);
        plot.setMeasShow(false, 0);
        plot.setMeasShow(true, 0);
        m_program.reset();
        const QMap<QString, QVariant> expected{
            {"qwt_ch_3-color", "#ff0000"}, {"qwt_ch_3-dX", "5"}, {"qwt_ch_3-dY", "6"},
            {"qwt_ch_7-modeX", "2"},       {"qwt-ch_main", "2"}, {"qwt-aver_show", "0"},
            {"qwt-meas_show", "1"}};
        QCOMPARE(m_sql->getDevProperty(1), expected);
    }

    void looksReturn()
    {
        QVector<QVariantList> looks;
        for (const int number : {1, 2, 3}) {
            const int index = m_program->attach(number);
            m_program->decorate(index, number);
            looks << m_program->look(index);
        }
        m_sql->setAppProperty("main_device_id", 2);
        restart();
        const auto stored = m_sql->getDevProperty(2);
        const int before = changes();
        for (const int number : {3, 2, 1, 0}) {
            const int index = m_program->attach(number);
            if (number > 0)
                QCOMPARE(m_program->look(index), looks[number - 1]);
        }
        QCOMPARE(m_program->plot.getDevMain(), 1); // number 2, whatever came after it
        m_program.reset();
        QCOMPARE(m_sql->getDevProperty(2), stored);
        QCOMPARE(m_sql->getDevProperty(0), stored);      // the unknown one has inherited them
        QCOMPARE(changes() - before, stored.size() + 1); // and number 2 has become the main one

        restart();
        m_program->attach(2);
        const int late = m_program->attach(0);
        m_program->plot.addPoint(1, 1, "K", 1, 0);
        m_program->identify(late, 4); // then it inherits them, too
        QCOMPARE(m_program->look(1), looks[1]);
        m_program->plot.setChColor(Qt::white, 1, 5); // a setting of its own ends no inheritance
        const QVariantList look = m_program->look(1);
        restart();
        m_program->attach(4);
        QCOMPARE(m_program->look(0), look);
    }

    void looksOfARefusedInstrumentAreStoredLater()
    {
        m_program->decorate(m_program->attach(1), 1);
        m_sql->setAppProperty("main_device_id", 1);
        // as in a file that is read-only; it is opened anew after a second
        QVERIFY(QSqlQuery("PRAGMA query_only=1").isActive());
        const int index = m_program->attach(2);
        QCOMPARE(m_program->nox(index).dbIndex, -1);
        m_program->plot.setDevMain(1);
        m_program->plot.setChShow(true, 1, 4);
        m_program->plot.setChColor(Qt::white, 1, 5);
        m_program->nox(index).opt->setChMeasType(3, measTemperatureCustom, "м");
        const QVariantList look = m_program->look(1);
        m_program->store.apply(index); // as when its plug returns
        QCOMPARE(m_program->look(1), look);
        QTRY_COMPARE(m_program->nox(index).dbIndex, 2);
        QCOMPARE(m_program->look(1), look);
        QVERIFY(m_program->plot.getChShow(1, 4));
        restart();
        m_program->attach(2);
        QCOMPARE(m_program->look(0), look);
        QCOMPARE(m_program->nox(0).opt->getChDimCust(3), QString("м"));
    }

    void unitOutlivesADatabaseThatIsHeld()
    {
        QCOMPARE(m_sql->addDev(typeB, 1, "NOX B"), 1);
        m_sql->setDevProperty(1, "ch_3-dim", "м");
        {
            const DatabaseHolder holder(m_directory->filePath("nox8.db"));
            QVERIFY(holder.holds());
            m_program->attach(1);
            QCOMPARE(m_program->nox(0).dbIndex, -1);
            m_program->nox(0).opt->triggerChChange(3);
        }
        QTRY_COMPARE(m_program->nox(0).dbIndex, 1);
        QCOMPARE(m_program->nox(0).opt->getChDimCust(3), QString("м"));
    }

    void mainChannelIsMirrored()
    {
        const auto written = [this](int number, int mode) {
            restart();
            const noxList::_nox &nox = m_program->nox(m_program->attach(number));
            m_program->plot.setChCount(8, 0);
            nox.opt->devMeasMode = quint8(mode);
            QVector<int> channels;
            connect(nox.opt.get(), &optionsNOX8::onChApply, [&](quint8 ch) { channels << ch; });
            for (const int ch : {5, 5, 6, 0})
                m_program->plot.setChMain(uchar(ch), 0);
            return channels << -int(nox.mainCh);
        };
        QCOMPARE(written(1, 0), (QVector<int>{5, 6, 0, 0}));
        QCOMPARE(written(1, 2), QVector<int>{0}); // in turn, or not read
        QCOMPARE(written(0, 0), QVector<int>{0}); // an unknown model
    }

    void unitsAndBadValues()
    {
        m_sql->addDev(typeB, 1, "NOX B");
        for (const char *value : {"-1", "255", "300", "99", "x", ""}) {
            for (const char *key : {"qwt-ch_main", "qwt_ch_0-dX", "qwt_ch_1-dY", "qwt_ch_2-modeX"})
                m_sql->setDevProperty(1, key, value);
            m_sql->setDevProperty(1, "qwt_ch_0-color", "nonsense");
            for (const auto &[key, unit] :
                 {std::pair("ch_0-dim", "м"), {"ch_7-dim", "мм"}, {"ch_8-dim", "beyond"}})
                m_sql->setDevProperty(1, key, unit);
            restart();
            const optionsNOX8 &image = *m_program->nox(m_program->attach(1)).opt;
            QCOMPARE(image.getChDimCust(0) + '|' + image.getChDimCust(7), QString("м|мм"));
            Program fresh(m_sql.get());
            fresh.plot.addDev(0, 8);
            QCOMPARE(m_program->look(0), fresh.look(0));
        }
    }

    void changesAreGatheredAndNotLost()
    {
        m_program->attach(1);
        const int before = changes();
        for (int turn = 0; turn < 200; ++turn)
            m_program->plot.setChScaleY(uchar(1 + turn % 20), 0, 0);
        QCOMPARE(changes() - before, 1); // the first one at once
        QTRY_COMPARE(changes() - before, 2);
        {
            auto other = QSqlDatabase::addDatabase("QSQLITE", "other");
            other.setDatabaseName(m_directory->filePath("nox8.db"));
            QVERIFY(other.open() && QSqlQuery("BEGIN EXCLUSIVE", other).isActive());
            m_program->plot.setChMain(4, 0);
            m_program->store.apply(0); // would write it first
            QVERIFY(QSqlQuery("ROLLBACK", other).isActive());
        }
        QSqlDatabase::removeDatabase("other");
        const auto stored = [] {
            QSqlQuery row("SELECT device_property_val FROM device_property WHERE device_id=1"
                          " AND device_property_key='qwt-ch_main'");
            return row.next() ? row.value(0).toInt() : -1;
        };
        QTRY_COMPARE(stored(), 4);
    }

private:
    void restart() { m_program = std::make_unique<Program>(m_sql.get()); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_sql;
    std::unique_ptr<Program> m_program;
};

QTEST_MAIN(TestPlotSettings)
#include "tst_plotsettings.moc"
