#pragma once

#include <QMenu>

class QCheckBox;
class noxSql;

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
