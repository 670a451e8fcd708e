#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>

/** Another program that holds the database while it lives: nobody else reads or writes it. */
class DatabaseHolder
{
public:
    explicit DatabaseHolder(const QString &path)
    {
        auto other = QSqlDatabase::addDatabase("QSQLITE", connectionName);
        other.setDatabaseName(path);
        m_holds = other.open() && QSqlQuery("BEGIN EXCLUSIVE", other).isActive();
    }
    ~DatabaseHolder() { QSqlDatabase::removeDatabase(connectionName); }
    bool holds() const { return m_holds; }

private:
    static constexpr auto connectionName = "holder";

    bool m_holds = false;
};
