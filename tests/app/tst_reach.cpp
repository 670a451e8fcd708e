#include "dialogs/devconfui.h"
#include "windowfixture.h"

#include <QAccessible>
#include <QDesktopServices>

/** Every window as those reach it who work without a mouse, or do not see it. */
class TestReach : public WindowTest
{
    Q_OBJECT

    /** What is wrong with an element of a window for who hears it read. */
    static QString faultOf(QAccessibleInterface *element)
    {
        const QWidget *const widget = qobject_cast<QWidget *>(element->object());
        const QAccessible::State state = element->state();
        if (!widget || !state.focusable || widget->focusProxy() || !widget->isEnabled())
            return {};
        const auto role = element->role();
        const bool isNamed = role == QAccessible::ComboBox // whose label names it
                                 ? !widget->accessibleName().isEmpty()
                                 : !element->text(QAccessible::Name).trimmed().isEmpty();
        const bool isPart = role == QAccessible::PageTabList || role == QAccessible::StaticText;
        QStringList faults;
        if (!isNamed)
            faults << "name";
        if (role == QAccessible::NoRole || role == QAccessible::Client ||
            role == QAccessible::Border)
            faults << "role";
        if (!isPart && element->text(QAccessible::Description).isEmpty())
            faults << "description";
        return faults.isEmpty() ? QString() : widget->objectName() + ": " + faults.join(", ");
    }
    /** The same of a table, which is read by its headers. */
    static QStringList faultsOf(QAccessibleTableInterface *table, const QTableWidget *widget)
    {
        QStringList faults;
        for (int column = 0; column < table->columnCount(); ++column) {
            const QString title = table->columnDescription(column);
            const bool isNumbered = title == QString::number(column + 1); // where no text is set
            if (title.isEmpty() || (isNumbered && widget->horizontalHeader()->isHidden()))
                faults << QString("%1: column %2").arg(widget->objectName()).arg(column);
        }
        return faults;
    }
    static void collect(QAccessibleInterface *element, QStringList *faults)
    {
        if (element->state().invisible)
            return;
        if (const QString fault = faultOf(element); !fault.isEmpty())
            *faults << fault;
        if (element->tableInterface() && element->role() == QAccessible::Table) {
            *faults << faultsOf(element->tableInterface(),
                                qobject_cast<QTableWidget *>(element->object()));
            return;
        }
        for (int i = 0; i < element->childCount(); ++i)
            if (QAccessibleInterface *child = element->child(i))
                collect(child, faults);
    }
    static QString faultsIn(QWidget *window)
    {
        QStringList faults;
        collect(QAccessible::queryAccessibleInterface(window), &faults);
        return faults.join("; ");
    }

    /** Opens one window after the other, each over those it is reached from. */
    void inEachWindow(const std::function<void(QWidget *)> &look)
    {
        const int index = add(0x0960AA0F, 4);
        add(0x11, 5);
        measure(index, 21.5, 0);
        look(window.get());
        for (const char *button : {"findDevBtn", "toolButton_2", "recBtn"}) {
            press(button);
            QDialog *dialog = nullptr;
            for (QDialog *shown : window->findChildren<QDialog *>())
                dialog = shown->isVisible() ? shown : dialog;
            QVERIFY2(dialog, button);
            look(dialog);
            dialog->reject();
        }
        pick(menuOf("settingsBtn"), "О программе");
        look(find<QDialog>("appconf"));
        find<QDialog>("appconf")->reject();

        window->instrumentCard()->show(index, {20, 20});
        look(window->instrumentCard()->findChild<QFrame *>("confMenu"));
        window->instrumentCard()->hide();
        auto *const channelCard = window->findChild<confChMenu *>();
        channelCard->show(index, {20, 20}, 0);
        look(channelCard->findChild<QFrame *>("confChMenu"));
        channelCard->hide();

        devConfUI *const settings = window->deviceSettings();
        settings->show(index);
        auto *const tabs = settings->findChild<QTabWidget *>("tabWidget");
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            for (const char *lock : {"refGBox", "refShiftGBox"})
                settings->findChild<QGroupBox *>(lock)->setChecked(true);
            look(settings);
        }
        for (const char *name : {"featconfui", "tpReperUI"}) {
            auto *const dialog = settings->findChild<QDialog *>(name);
            dialog->show();
            look(dialog);
            dialog->hide();
        }
        settings->reject();
    }

private slots:
    void initTestCase() { QAccessible::setActive(true); }

    void everythingIsSaid()
    {
        QStringList faults;
        inEachWindow([&faults](QWidget *shown) {
            if (const QString found = faultsIn(shown); !found.isEmpty())
                faults << shown->objectName() + " has without: " + found;
        });
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join("\n")));
    }
};

QTEST_MAIN(TestReach)
#include "tst_reach.moc"
