#pragma once

#include <QApplication>
#include <QMenu>
#include <QtTest>

#include <algorithm>

/** Picks an entry of the menu that is up, or of one inside it ("menu/entry"), by its key. */
inline void pickEntry(const QString &path)
{
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    const QStringList parts = path.split('/');
    for (const QString &part : parts) {
        QVERIFY2(menu, qPrintable(part));
        const auto entries = menu->actions();
        const auto entry = std::find_if(entries.begin(), entries.end(), [&](const QAction *one) {
            return one->text() == part && one->isEnabled();
        });
        QVERIFY2(entry != entries.end(), qPrintable(part));
        menu->setActiveAction(*entry);
        if (!(*entry)->menu())
            QTest::keyClick(menu, Qt::Key_Return);
        menu = (*entry)->menu();
    }
}

/** Types a text of any alphabet. */
inline void typeText(QWidget *field, const QString &text)
{
    for (const QChar character : text)
        QTest::sendKeyEvent(QTest::Click, field, Qt::Key_unknown, character, Qt::NoModifier);
}
