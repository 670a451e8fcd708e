#pragma once

#include "app/alarmsound.h"
#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "dialogs/confchmenu.h"
#include "dialogs/confmenu.h"
#include "plot/qwtnox.h"
#include "serial/noxserialport.h"
#include "serial/portcatalog.h"
#include "support/menukeys.h"
#include "support/seenform.h"
#include "support/useranswers.h"

#include <QtTest>
#include <QtWidgets>

/** A list of ports that a test has made up. */
struct ListedPorts : PortCatalog {
    QVector<SerialPortEntry> ports() const override { return entries; }

    QVector<SerialPortEntry> entries;
};

/** What is seen of a cell: its text, and in brackets what its colours mean, as in "21.50[fresh]".
 */
inline QString seenCell(const QString &text, const QColor &textColor, const QColor &ground)
{
    const QHash<QString, QString> meanings = {{"#ff000000", ""},       {"#ffc0c0c0", "gray "},
                                              {"#ffff0000", "red "},   {"#ffadd8e6", "current "},
                                              {"#8090ee90", "fresh "}, {"#ffffff00", "yellow "}};
    QString meaning;
    for (const QColor &color : {textColor, ground})
        meaning += meanings.value(color.name(QColor::HexArgb), color.name(QColor::HexArgb));
    return meaning.isEmpty() ? text : text + '[' + meaning.trimmed() + ']';
}

/**
 * Tests of a main window without any port, seen through its form. Each begins with the first start
 * of a user who has no data yet, at a time that stands still. What the program asks is answered.
 */
class WindowTest : public QObject
{
    Q_OBJECT
protected:
    /** No test meets the database of another, nor a real dialog. */
    void prepare()
    {
        data = std::make_unique<QTemporaryDir>();
        qputenv("XDG_DATA_HOME", QFile::encodeName(data->path()));
        usePorts({});
        answers = std::make_unique<UserAnswers>();
    }
    /** Values as one text. */
    static QString words(const QVariantList &all) { return QVariant(all).toStringList().join(' '); }
    static void usePorts(const QVector<SerialPortEntry> &entries)
    {
        auto listed = std::make_unique<ListedPorts>();
        listed->entries = entries;
        PortCatalog::setCurrent(std::move(listed));
    }
    void start()
    {
        window.reset();
        window = std::make_unique<MainWindow>();
        window->alarmSound()->setPlayer({[this] { ++soundsPlayed; }, [] { return true; }});
        window->resize(1280, 800);
        window->show();
    }

    noxList &registry() const { return *window->registry(); }
    QwtNOX &plot() const { return *window->plot(); }
    noxList::_nox &record(int index) const { return *registry().getNoxByIndex(index); }

    /** Adds an instrument without a port; returns its registry index. */
    int add(quint32 typeCode = 0, quint16 number = 0) const
    {
        const noxList::_nox *nox = registry().newNox(-1, true);
        nox->opt->setDevType(typeCode);
        nox->opt->setDevNumber(number);
        return nox->index;
    }
    /** Adds instruments of eight channels with the numbers 1, 2 ... `count`. */
    void addSome(int count) const
    {
        for (int number = 1; number <= count; ++number)
            add(0x11, quint16(number));
    }
    /** A measurement comes in; the frame that shows it is still to come. */
    void deliver(int index, double value, quint8 ch) const
    {
        emit registry().onReadMeas(index, value, ch, QStringLiteral("°С"));
    }
    /** Lets the frame come that is due. */
    void showFrame() const { plot().frameClock().flush(); }
    void measure(int index, double value, quint8 ch) const
    {
        deliver(index, value, ch);
        showFrame();
    }

    template<typename Widget = QWidget>
    Widget *find(const QString &name) const
    {
        return window->findChild<Widget *>(name);
    }
    void press(const QString &name) const { QTest::mouseClick(find(name), Qt::LeftButton); }
    /** Clicks controls of a dialog or a card, one after the other. */
    static void pressIn(const QWidget *form, std::initializer_list<const char *> names)
    {
        for (const char *name : names)
            QTest::mouseClick(form->findChild<QWidget *>(name), Qt::LeftButton);
    }
    QMenu *menuOf(const QString &button) const
    {
        const auto *push = find<QPushButton>(button);
        return push ? push->menu() : find<QToolButton>(button)->menu();
    }
    /** Opens a menu and picks an entry of it or of one inside it ("menu/entry"). */
    static void pick(QMenu *menu, const QString &path)
    {
        menu->popup(menu->pos());
        pickEntry(path);
    }
    /** The entries of a menu that opens: separators as "|", ticked ones with a star, and in
     *  brackets those of a menu inside it. */
    static QString entriesOf(QMenu *menu)
    {
        emit menu->aboutToShow();
        QStringList entries;
        for (const QAction *action : menu->actions()) {
            const QString inside = action->menu() ? " [" + entriesOf(action->menu()) + ']' : "";
            const QString tick = action->isChecked() ? "*" : "";
            entries << (action->isSeparator() ? "|" : action->text() + tick + inside);
        }
        return entries.join(", ");
    }
    QString see(const QString &names) const { return seen(window.get(), names).join('|'); }
    QString title() const { return find<QGroupBox>("lcdGroupBox")->title(); }
    /** Value, average and unit of the panels. */
    QString panels() const { return see("mainMeasLabel mainAverLabel mainDimLabel"); }

    QTableWidget *channels() const { return find<QTableWidget>("chTable"); }
    QTableWidget *instruments() const { return find<QTableWidget>("devTable"); }
    /** A row of a table as it is seen, cell by cell. */
    static QStringList cells(const QTableWidget *table, int row)
    {
        QStringList seen;
        for (int column = 0; column < table->columnCount(); ++column) {
            const QTableWidgetItem *item = table->item(row, column);
            seen << seenCell(item->text(), item->foreground().color(), item->background().color());
        }
        return seen;
    }
    QString instrument(int row) const { return cells(instruments(), row).join('|'); }
    QString channel(int ch) const { return cells(channels(), ch + 1).join('|'); }
    /** The texts of a column below its header. */
    static QString column(const QTableWidget *table, int column)
    {
        QStringList texts;
        for (int row = 1; row < table->rowCount(); ++row)
            texts << table->item(row, column)->text();
        return texts.join(' ');
    }
    static void click(const QTableWidget *table, int row, int column,
                      Qt::MouseButton button = Qt::LeftButton)
    {
        const QRect cell = table->visualRect(table->model()->index(row, column));
        QTest::mouseClick(table->viewport(), button, Qt::NoModifier, cell.center());
    }
    void choose(int row) const { click(instruments(), row, InstrumentColumn::Name); }

    QDateTime now; ///< what the plot's clock shows
    std::unique_ptr<UserAnswers> answers;
    int soundsPlayed = 0; ///< how often the alarm was heard
    std::unique_ptr<QTemporaryDir> data;
    std::unique_ptr<MainWindow> window;

private slots:
    void init()
    {
        prepare();
        start();
        now = QDateTime({2026, 11, 24}, {7, 5, 9});
        plot().setClock([this] { return now; });
    }
    void cleanup()
    {
        window.reset();
        answers.reset();
        PortCatalog::setCurrent(nullptr);
    }
};
