#pragma once

#include <QMenu>

class QCheckBox;
class noxSql;

// The menus of the buttons that connect by hand and that set the program.

/** The menu of manual connection: every port that is free when the menu opens, or none at all. */
class ConnectMenu : public QMenu
{
    Q_OBJECT
public:
    explicit ConnectMenu(QWidget *parent = nullptr);

signals:
    /** The user chose a port by its name. */
    void portChosen(const QString &portName);
    /** The user wants an instrument without a port. */
    void noPortChosen();

private:
    void refill();
    void addNote(const QString &text);
};

/** The menu of the program's settings, which it keeps in the database. */
class SettingsMenu : public QMenu
{
    Q_OBJECT
public:
    SettingsMenu(noxSql *database, QWidget *parent);

    /** Whether the program looks for instruments when it starts. */
    bool connectsAtStart() const;

signals:
    /** The user wants to know about the program. */
    void aboutChosen();

private:
    QCheckBox *addSwitch(const QString &title, const QString &key);

    noxSql *m_database; ///< not owned
    QCheckBox *m_connectAtStart;
};
