#pragma once

#include "storage/noxsql.h"
#include "support/menukeys.h"
#include "support/seenform.h"
#include "support/useranswers.h"

#include <memory>

/** A test that works the controls of a form by their names, with keys and clicks as its user. */
class FormTest : public QObject
{
protected:
    virtual QWidget *form() const = 0;

    /** A folder, a database in it, and who answers for the user. */
    void provideSurroundings(const QString &databaseName = "nox8.db")
    {
        directory = std::make_unique<QTemporaryDir>();
        answers.reset(); // going, it gives the user his dialogs back
        answers = std::make_unique<UserAnswers>();
        provideDatabase(directory->filePath("nox8.db"));
        database = std::make_unique<noxSql>(directory->filePath(databaseName));
    }

    template<typename Widget = QWidget>
    Widget *find(const QString &name) const
    {
        return form()->findChild<Widget *>(name);
    }
    QString see(const QString &names) const { return seen(form(), names).join(" | "); }
    void click(const QString &name) const { QTest::mouseClick(find(name), Qt::LeftButton); }
    void press(const QString &name, const QList<Qt::Key> &keys) const
    {
        find(name)->setFocus();
        for (const Qt::Key key : keys)
            QTest::keyClick(find(name), key);
    }
    void choose(const QString &list, int place) const
    {
        press(list, QList<Qt::Key>{Qt::Key_Home} + QVector<Qt::Key>(place, Qt::Key_Down).toList());
    }
    /** Types over the text of a line. */
    void write(const QString &name, const QString &text) const
    {
        press(name, {});
        find<QLineEdit>(name)->selectAll();
        QTest::keyClick(find(name), Qt::Key_Delete);
        typeText(find(name), text);
    }
    void enter(const QString &name, const QString &text) const
    {
        write(name, text);
        press(name, {Qt::Key_Return});
    }

    static void turnWheel(QWidget *control)
    {
        QWheelEvent turn({5, 5}, control->mapToGlobal(QPoint(5, 5)), {}, {0, -120}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(control, &turn);
    }

    QTableWidgetItem *cell(const QString &table, int row, int column) const
    {
        return find<QTableWidget>(table)->item(row, column);
    }
    /** Types over the text of a cell: the editor, still open. */
    static QLineEdit *startTyping(QTableWidgetItem *item, const QString &text,
                                  Qt::Key opening = Qt::Key_F2)
    {
        QTableWidget *const table = item->tableWidget();
        table->setFocus();
        table->setCurrentItem(item);
        QTest::keyClick(table, opening);
        auto *const editor = qobject_cast<QLineEdit *>(table->indexWidget(table->currentIndex()));
        typeText(editor, text);
        return editor;
    }
    static void type(QTableWidgetItem *item, const QString &text, Qt::Key opening = Qt::Key_F2)
    {
        QTest::keyClick(startTyping(item, text, opening), Qt::Key_Return);
        QCoreApplication::processEvents();
    }

    /** Of what a database keeps: whether it differs, can be saved, removed, described; its name and
     *  its description. */
    QString box() const
    {
        QString signs = find("dbStatusLabel")->isHidden() ? "." : "!";
        for (const char *control : {"saveDBBtn", "rmDBBtn", "infoText"})
            signs += find(control)->isEnabled() ? control[0] : '.';
        return signs + see("dbFindCB") + see("infoText");
    }
    /** The messages that were shown since the last call, and the questions. */
    QString told() const
    {
        QStringList texts;
        for (QVector<Message> *messages : {&answers->told, &answers->asked})
            for (const Message &message : std::exchange(*messages, {}))
                texts << seen(message);
        return texts.join('\n');
    }

    std::unique_ptr<QTemporaryDir> directory;
    std::unique_ptr<UserAnswers> answers;
    std::unique_ptr<noxSql> database;
};
