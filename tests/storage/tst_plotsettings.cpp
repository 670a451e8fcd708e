#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "storage/plotsettingsstore.h"

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
    int attach(quint16 number)
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

    void identify(int index, quint16 number)
    {
        const QSignalBlocker half(nox(index).opt.get());
        nox(index).opt->setDevType(typeB);
        nox(index).opt->blockSignals(false);
        nox(index).opt->setDevNumber(number);
    }

    NOXSerialPort port;
    noxList registry;
    QwtNOX plot;
    PlotSettingsStore store;
};

/** Colours, X and Y rows and time labels of all channels, and what is shown of the instrument. */
QStringList lookOf(const QwtNOX &plot, int qwtIndex)
{
    QStringList look{QString("main %1, values %2, averages %3")
                         .arg(plot.getChMain(qwtIndex))
                         .arg(plot.getMeasShow(qwtIndex))
                         .arg(plot.getAverShow(qwtIndex))};
    for (uchar ch = 0; ch < plot.getChCount(qwtIndex); ++ch)
        look << QString("%1 %2 %3 %4")
                    .arg(plot.getChColor(qwtIndex, ch).name())
                    .arg(plot.getChScaleX(qwtIndex, ch))
                    .arg(plot.getChScaleY(qwtIndex, ch))
                    .arg(plot.getChModeX(qwtIndex, ch));
    return look;
}

/** As a user would do it, in every channel. */
void decorate(QwtNOX *plot, int qwtIndex, int seed)
{
    for (uchar ch = 0; ch < plot->getChCount(qwtIndex); ++ch) {
        plot->setChColor(QColor(seed, ch, 99), qwtIndex, ch);
        plot->setChScaleX(uchar(ch + seed), qwtIndex, ch);
        plot->setChScaleY(uchar(ch + seed + 1), qwtIndex, ch);
        plot->setChModeX(TmcModeX((ch + seed) % 3), qwtIndex, ch);
    }
    plot->setChMain(uchar(seed + 1), qwtIndex);
    plot->setAverShow(seed % 2 == 0, qwtIndex);
}

} // namespace

/** The plot looks as it did when the program last ran. */
class TestPlotSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void storedProperties();
    void restart();
    void lateIdentificationInheritsAll();
    void channelsOnDemand();
    void mainChannelIsMirrored_data();
    void mainChannelIsMirrored();
    void unitsAndBadValues();
    void manyTurnsOfTheWheel();
    void lockedDatabase();

private:
    int changes() const;

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<noxSql> m_sql;
    std::unique_ptr<Program> m_program;
};

void TestPlotSettings::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    QVERIFY(provideDatabase(m_directory->filePath("nox8.db")));
    m_sql = std::make_unique<noxSql>(m_directory->filePath("nox8.db"));
    m_program = std::make_unique<Program>(m_sql.get());
}

void TestPlotSettings::cleanup()
{
    m_program.reset();
    m_sql.reset();
}

/** Rows that were changed in the database since it was opened. */
int TestPlotSettings::changes() const
{
    QSqlQuery query("SELECT total_changes()");
    return query.next() ? query.value(0).toInt() : -1;
}

void TestPlotSettings::storedProperties()
{
    const int index = m_program->attach(17);
    const int id = m_program->nox(index).dbIndex;
    m_program->plot.setChColor(Qt::red, 0, 3);
    m_program->plot.setChScaleX(5, 0, 3);
    m_program->plot.setChScaleY(6, 0, 3);
    m_program->plot.setChModeX(ModeXAbsolute, 0, 7);
    m_program->plot.setChMain(2, 0);
    m_program->plot.setAverShow(false, 0);
    m_program->plot.setMeasShow(false, 0);
    m_program->plot.setMeasShow(true, 0);
    m_program.reset();
    const QMap<QString, QVariant> expected{{"qwt_ch_3-color", "#ff0000"}, {"qwt_ch_3-dX", "5"},
                                           {"qwt_ch_3-dY", "6"},          {"qwt_ch_7-modeX", "2"},
                                           {"qwt-ch_main", "2"},          {"qwt-aver_show", "0"},
                                           {"qwt-meas_show", "1"}};
    QCOMPARE(m_sql->getDevProperty(id), expected);
}

void TestPlotSettings::restart()
{
    QVector<QStringList> looks;
    int currentId = 0;
    for (const int number : {1, 2, 3}) {
        const int index = m_program->attach(quint16(number));
        decorate(&m_program->plot, index, number);
        looks << lookOf(m_program->plot, index);
        if (number == 2)
            currentId = m_program->nox(index).dbIndex;
    }
    m_sql->setAppProperty("main_device_id", currentId);
    m_program = std::make_unique<Program>(m_sql.get());
    const auto stored = m_sql->getDevProperty(currentId);
    const int before = changes();
    for (const int number : {3, 2, 1, 0}) {
        const int index = m_program->attach(quint16(number));
        if (number > 0)
            QCOMPARE(lookOf(m_program->plot, index), looks[number - 1]);
    }
    QCOMPARE(m_program->plot.getDevMain(), 1); // number 2, whatever came after it
    m_program.reset();
    QCOMPARE(m_sql->getDevProperty(currentId), stored);
    QCOMPARE(m_sql->getDevProperty(0), stored);      // the unknown one has inherited them
    QCOMPARE(changes() - before, stored.size() + 1); // and number 2 has become the main one
}

void TestPlotSettings::lateIdentificationInheritsAll()
{
    const int main = m_program->attach(1);
    decorate(&m_program->plot, 0, 3);
    m_sql->setAppProperty("main_device_id", m_program->nox(main).dbIndex);
    const int late = m_program->attach(0);
    m_program->plot.addPoint(1, 1, "K", 1, 0);
    m_program->identify(late, 2);
    QCOMPARE(lookOf(m_program->plot, 1), lookOf(m_program->plot, 0));
    m_program->plot.setChColor(Qt::white, 1, 5); // a setting of its own ends no inheritance
    const QStringList look = lookOf(m_program->plot, 1);
    m_program = std::make_unique<Program>(m_sql.get());
    m_program->attach(2);
    QCOMPARE(lookOf(m_program->plot, 0), look);
}

void TestPlotSettings::channelsOnDemand()
{
    m_program->attach(0);
    m_program->plot.addPoint(1, 1, "K", 0, 3);
    decorate(&m_program->plot, 0, 1);
    const QStringList look = lookOf(m_program->plot, 0);
    m_program = std::make_unique<Program>(m_sql.get());
    m_program->attach(0);
    m_program->plot.addPoint(1, 1, "K", 0, 3);
    QCOMPARE(lookOf(m_program->plot, 0), look);
}

void TestPlotSettings::mainChannelIsMirrored_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("number");
    QTest::addColumn<QList<int>>("written");

    QTest::newRow("single channel") << 0 << 1 << QList<int>{5, 6, 0};
    QTest::newRow("in turn, or not read") << 2 << 1 << QList<int>{};
    QTest::newRow("unknown model") << 0 << 0 << QList<int>{};
}

void TestPlotSettings::mainChannelIsMirrored()
{
    QFETCH(int, mode);
    QFETCH(int, number);
    QFETCH(QList<int>, written);

    const int index = m_program->attach(quint16(number));
    m_program->plot.setChCount(8, 0);
    QList<int> channels;
    connect(m_program->nox(index).opt.get(), &optionsNOX8::onChApply,
            [&](quint8 ch) { channels << ch; });
    m_program->nox(index).opt->devMeasMode = quint8(mode);
    for (const int ch : {5, 5, 6, 0})
        m_program->plot.setChMain(uchar(ch), 0);
    m_program->plot.setDevMain(0);
    QCOMPARE(channels, written);
    QCOMPARE(int(m_program->nox(index).mainCh), 0);
}

void TestPlotSettings::unitsAndBadValues()
{
    const int id = m_sql->addDev(typeB, 1, "NOX B");
    for (const char *key : {"qwt-ch_main", "qwt_ch_0-dX", "qwt_ch_1-dY", "qwt_ch_2-modeX"})
        for (const char *value : {"-1", "255", "300", "99", "x", ""})
            m_sql->setDevProperty(id, key, value);
    m_sql->setDevProperty(id, "qwt_ch_0-color", "nonsense");
    m_sql->setDevProperty(id, "ch_7-dim", "мм");
    m_sql->setDevProperty(id, "ch_8-dim", "beyond");
    const int index = m_program->attach(1);
    QCOMPARE(m_program->nox(index).opt->getChDimCust(7), QString("мм"));
    QwtNOX fresh;
    fresh.addDev(0, 8);
    QCOMPARE(lookOf(m_program->plot, 0), lookOf(fresh, 0));
}

void TestPlotSettings::manyTurnsOfTheWheel()
{
    m_program->attach(1);
    const int before = changes();
    for (int turn = 0; turn < 200; ++turn)
        m_program->plot.setChScaleY(uchar(1 + turn % 20), 0, 0);
    QCOMPARE(changes() - before, 1); // the first one at once
    QTRY_COMPARE(changes() - before, 2);
}

void TestPlotSettings::lockedDatabase()
{
    const int index = m_program->attach(1);
    const int id = m_program->nox(index).dbIndex;
    {
        auto other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(m_directory->filePath("nox8.db"));
        QVERIFY(other.open() && QSqlQuery("BEGIN EXCLUSIVE", other).isActive());
        m_program->plot.setChMain(4, 0);
        m_program->store.apply(index); // would write it first
        QVERIFY(QSqlQuery("ROLLBACK", other).isActive());
    }
    QSqlDatabase::removeDatabase("other");
    QTRY_COMPARE(m_sql->getDevProperty(id).value("qwt-ch_main").toInt(), 4);
}

QTEST_MAIN(TestPlotSettings)
#include "tst_plotsettings.moc"
