#pragma once

#include "app/alarmsound.h"
#include "app/mainwindow.h"
#include "app/rowcontent.h"
#include "plot/qwtnox.h"
#include "serial/portcatalog.h"
#include "widgets/userdialogs.h"

#include <QtTest>
#include <QtWidgets>

/** A list of ports that a test has made up. */
class ListedPorts : public PortCatalog
{
public:
    explicit ListedPorts(QVector<SerialPortEntry> entries)
        : m_entries(std::move(entries))
    {
    }
    QVector<SerialPortEntry> ports() const override { return m_entries; }

private:
    QVector<SerialPortEntry> m_entries;
};

/** Answers the questions of the program and keeps what it said, for as long as it lives. */
class AnsweredDialogs
{
public:
    AnsweredDialogs()
    {
        UserDialogs::current().ask = [this](QWidget *, const Message &message) {
            asked << message;
            return answer;
        };
        UserDialogs::current().tell = [this](QWidget *, const Message &message) {
            told << message;
        };
        UserDialogs::current().chooseColor = [this](QWidget *, const QColor &current) {
            offeredColors << current;
            return color;
        };
        UserDialogs::current().chooseFile = [this](QWidget *, const FileQuestion &question) {
            fileQuestions << question;
            return file;
        };
    }
    ~AnsweredDialogs() { UserDialogs::current() = UserDialogs::onScreen(); }
    Q_DISABLE_COPY(AnsweredDialogs)

    QVector<Message> asked;
    QVector<Message> told;
    QVector<QColor> offeredColors; ///< the colour that each question started from
    QMessageBox::StandardButton answer = QMessageBox::No;
    QColor color;
    QVector<FileQuestion> fileQuestions;
    QString file; ///< what is chosen when a file is asked for
};

/** A folder of its own for the user's data: no test meets the database of another. */
class OwnDataFolder
{
public:
    OwnDataFolder() { qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path())); }
    ~OwnDataFolder() { qunsetenv("XDG_DATA_HOME"); }
    Q_DISABLE_COPY(OwnDataFolder)

private:
    QTemporaryDir m_folder;
};

/** A main window without any port, seen through its form. */
class WindowFixture
{
public:
    WindowFixture()
    {
        PortCatalog::setCurrent(std::make_unique<ListedPorts>(QVector<SerialPortEntry>()));
        window = std::make_unique<MainWindow>();
        window->alarmSound()->setPlayer({[this] { ++soundsPlayed; }, [] { return true; }});
        window->resize(1280, 800);
        window->show();
    }
    ~WindowFixture()
    {
        window.reset();
        PortCatalog::setCurrent(nullptr);
    }
    Q_DISABLE_COPY(WindowFixture)

    noxList &registry() const { return *window->registry(); }
    QwtNOX &plot() const { return *window->plot(); }

    /** Adds an instrument without a port; returns its registry index. */
    int add(quint32 typeCode = 0, quint16 number = 0) const
    {
        const noxList::_nox *nox = registry().newNox(-1, true);
        nox->opt->setDevType(typeCode);
        nox->opt->setDevNumber(number);
        return nox->index;
    }
    /** A measurement comes in; the frame that shows it is still to come. */
    void deliver(int index, double value, quint8 ch) const
    {
        emit registry().onReadMeas(index, value, ch, QStringLiteral("°С"));
    }
    /** Lets the frame come that is due. */
    void showFrame() const { plot().frameClock().flush(); }
    /** A measurement comes in and is shown. */
    void measure(int index, double value, quint8 ch) const
    {
        deliver(index, value, ch);
        showFrame();
    }

    template<typename Widget>
    Widget *find(const char *name) const
    {
        return window->findChild<Widget *>(QString::fromLatin1(name));
    }
    QTableWidget *channels() const { return find<QTableWidget>("chTable"); }
    QTableWidget *instruments() const { return find<QTableWidget>("devTable"); }
    QString title() const { return find<QGroupBox>("lcdGroupBox")->title(); }
    QString label(const char *name) const { return find<QLabel>(name)->text(); }
    QCheckBox *showBox(int row) const
    {
        return instruments()->cellWidget(row, InstrumentColumn::Show)->findChild<QCheckBox *>();
    }

    static QString text(const QTableWidget *table, int row, int column)
    {
        return table->item(row, column)->text();
    }
    static QColor textColor(const QTableWidget *table, int row, int column)
    {
        return table->item(row, column)->foreground().color();
    }
    /** Invalid when the cell has none of its own. */
    static QColor background(const QTableWidget *table, int row, int column)
    {
        const QBrush brush = table->item(row, column)->background();
        return brush.style() == Qt::NoBrush ? QColor() : brush.color();
    }
    static void click(const QTableWidget *table, int row, int column,
                      Qt::MouseButton button = Qt::LeftButton)
    {
        const QRect cell = table->visualItemRect(table->item(row, column));
        QTest::mouseClick(table->viewport(), button, Qt::NoModifier, cell.center());
    }

    OwnDataFolder data;
    AnsweredDialogs dialogs;
    int soundsPlayed = 0; ///< how often the alarm was heard
    std::unique_ptr<MainWindow> window;
};
