#include "dialogs/devconfui.h"
#include "plot/scalechoice.h"
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
        const bool isNamed = role == QAccessible::ComboBox // which says its choice, its label more
                                 ? !element->relations(QAccessible::Label).isEmpty()
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
    static QString faultsIn(QWidget *shown)
    {
        QStringList faults;
        QAccessibleInterface *const window = QAccessible::queryAccessibleInterface(shown->window());
        if (!shown->isWindow() && window->indexOfChild(QAccessible::queryAccessibleInterface(
                                      shown)) < 0) // a card would be a menu without a word
            faults << "its controls";
        collect(window, &faults);
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

        for (const int device : {7, -1}) { // connected, and not
            record(index).devIndex = device;
            window->instrumentCard()->show(index, {20, 20});
            look(window->instrumentCard()->findChild<QFrame *>("confMenu"));
            window->instrumentCard()->hide();
        }
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

    /** What is seen of a widget and closely around it. */
    static QImage surroundings(const QWidget *widget)
    {
        if (!widget)
            return {};
        const QRect place(widget->mapTo(widget->window(), QPoint()), widget->size());
        return widget->window()->grab(place.adjusted(-2, -2, 2, 2)).toImage();
    }
    /** True when a label or a control is smaller than what it says. */
    static bool isCut(const QWidget *widget)
    {
        const auto *const label = qobject_cast<const QLabel *>(widget);
        if (label && label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored)
            return false; // it fits its text itself
        if (label && label->wordWrap())
            return label->heightForWidth(label->width()) > label->height();
        const QStringList asked = {"QLabel", "QAbstractButton", "QComboBox", "QAbstractSpinBox"};
        const bool isAsked = std::any_of(asked.begin(), asked.end(), [widget](const QString &name) {
            return widget->inherits(name.toLatin1());
        });
        const QSize needed = widget->minimumSizeHint();
        return isAsked && (needed.width() > widget->width() || needed.height() > widget->height() ||
                           widget->geometry().right() > widget->parentWidget()->width());
    }
    /** Adds what menus, tables and lists of a window show, and the texts of its controls. */
    static void addCaptions(QWidget *shown, QSet<QString> *captions)
    {
        const auto add = [captions](const QVariant &text) {
            captions->insert(
                QTextDocumentFragment::fromHtml(text.toString()).toPlainText().simplified());
            captions->insert(text.toString().simplified());
        };
        const auto menus = shown->window()->findChildren<QMenu *>();
        const QVector<QPointer<QMenu>> kept(menus.begin(), menus.end());
        for (const QPointer<QMenu> &menu : kept)
            if (menu) // no other has made its menus anew
                emit menu->aboutToShow();
        for (const QAction *action : shown->window()->findChildren<QAction *>())
            add(action->text());
        for (const QObject *object : shown->window()->findChildren<QObject *>())
            for (const char *name : {"text", "title", "toolTip", "windowTitle", "accessibleName"})
                add(object->property(name));
        add(shown->windowTitle());
        for (const QTabBar *bar : shown->findChildren<QTabBar *>())
            for (int tab = 0; tab < bar->count(); ++tab)
                add(bar->tabText(tab));
        for (const QAbstractItemView *view : shown->findChildren<QAbstractItemView *>())
            for (int row = 0; row < view->model()->rowCount(); ++row)
                for (int column = 0; column < view->model()->columnCount(); ++column) {
                    add(view->model()->index(row, column).data());
                    add(view->model()->headerData(column, Qt::Horizontal));
                    add(view->model()->headerData(row, Qt::Vertical));
                }
        for (const QComboBox *list : shown->findChildren<QComboBox *>())
            for (int place = 0; place < list->count(); ++place)
                for (const int role : {Qt::DisplayRole, Qt::AccessibleTextRole})
                    add(list->itemData(place, role));
    }

    QStringList opened; ///< pages of the guide

public slots:
    void openGuide(const QUrl &url) { opened << QFileInfo(url.path()).baseName(); }

private slots:
    void initTestCase() { QAccessible::setActive(true); }

    void guideNamesWhatIsShown()
    {
        QSet<QString> captions;
        inEachWindow([&captions](QWidget *shown) { addCaptions(shown, &captions); });
        for (int mode = ModeAuto; mode <= ModeLimits; ++mode) {
            plot().changeMode(mode);
            plot().changeModeX(mode % 3);
            addCaptions(find("qwtFrame"), &captions);
        }
        static const QRegularExpression bold("\\*\\*([^*]+)\\*\\*");
        QStringList unknown;
        const QDir guide(QFileInfo(QFINDTESTDATA("../../docs/guide/index.md")).path());
        for (const QString &page : guide.entryList({"*.md"})) {
            QFile file(guide.filePath(page));
            QVERIFY(file.open(QIODevice::ReadOnly));
            auto names = bold.globalMatch(QString::fromUtf8(file.readAll()));
            while (names.hasNext()) {
                const QString name = names.next().captured(1).remove('\\').simplified();
                if (!captions.contains(name))
                    unknown << page + ": " + name;
            }
        }
        QVERIFY2(unknown.isEmpty(), qPrintable(unknown.join("\n")));
    }

    void tabReachesAllAndGoesRound()
    {
        QStringList missed;
        inEachWindow([&missed](QWidget *shown) {
            QApplication::setActiveWindow(shown->window());
            QStringList stops;
            for (QWidget *widget : shown->findChildren<QWidget *>())
                if (widget->isVisible() && widget->isEnabled() && !widget->focusProxy() &&
                    widget->window() == shown->window() && (widget->focusPolicy() & Qt::TabFocus))
                    stops << widget->objectName();
            const int most = stops.size() + 2; // radio buttons and the like would need less
            for (int presses = 0; presses < most; ++presses) {
                QWidget *const at = shown->window()->focusWidget();
                const QImage focused = surroundings(at);
                QTest::keyClick(at ? at : shown, Qt::Key_Tab);
                if (at && surroundings(at) == focused)
                    missed << shown->objectName() + ": no focus is seen on " + at->objectName();
                stops.removeAll(shown->window()->focusWidget()->objectName());
            }
            if (!stops.isEmpty())
                missed << shown->objectName() + ": " + stops.join(' ');
        });
        QVERIFY2(missed.isEmpty(), qPrintable(missed.join("; ")));
    }

    void noTextIsCut()
    {
        window->resize(940, 490);
        addSome(1);
        for (int choice = 0; choice < scalesX().size() + scalesY().size(); ++choice) {
            plot().changeMode(choice % (ModeLimits + 1));
            plot().changeModeX(choice % (ModeXAbsolute + 1));
            plot().changeScaleX(choice % scalesX().size());
            plot().changeScaleY(choice % scalesY().size());
        }
        const auto cutIn = [](QWidget *shown) {
            QStringList cut;
            for (const QWidget *widget : shown->findChildren<QWidget *>())
                if (widget->isVisible() && isCut(widget))
                    cut << shown->objectName() + ' ' + widget->objectName();
            return cut;
        };
        QTRY_COMPARE(cutIn(window.get()), QStringList()); // the layouts follow
        QStringList cut;
        inEachWindow([&](QWidget *shown) { cut << cutIn(shown); });
        QCOMPARE(window->size(), QSize(940, 490));
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join("; ")));
    }

    void f1OpensTheGuideThere()
    {
        QDesktopServices::setUrlHandler("file", this, "openGuide");
        inEachWindow([](QWidget *shown) {
            QTest::keyClick(shown, Qt::Key_F1);
            QTest::keyClick(shown, Qt::Key_F1, Qt::ShiftModifier);
        });
        QMessageBox question(window->deviceSettings());
        QTest::keyClick(&question, Qt::Key_F1); // of the window over which it is
        find<QDialog>("appconf")->show();
        pressIn(find("appconf"), {"guideBtn"});
        QDesktopServices::unsetUrlHandler("file");
        QCOMPARE(opened.join(' '),
                 "index connect export record index configure configure configure configure "
                 "configure configure configure characteristics characteristics configure index");
        QVERIFY(answers->told.isEmpty());
        pressIn(find("appconf"), {"guideBtn"}); // no browser is at hand
        QVERIFY(answers->told.value(0).text.endsWith("share/nox8/guide/index.html"));
    }

    void everythingIsSaid()
    {
        QStringList faults;
        inEachWindow([&faults](QWidget *shown) {
            if (const QString found = faultsIn(shown); !found.isEmpty())
                faults << shown->objectName() + " has without: " + found;
        });
        for (const QAction *entry : menuOf("settingsBtn")->actions())
            if (!entry->isSeparator() && entry->text().isEmpty())
                faults << "an entry of the settings";
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join("\n")));
    }

    void labelThatIsAButtonIsPressed()
    {
        const int index = add(0x0960AA0F, 4);
        measure(index, 21.5, 0);
        auto *const panel = QAccessible::queryAccessibleInterface(find("frameMainLCDMeas"));
        QVERIFY(plot().getMeasShow());
        panel->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(!plot().getMeasShow());
    }
};

QTEST_MAIN(TestReach)
#include "tst_reach.moc"
