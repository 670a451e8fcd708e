#pragma once

#include <QDialog>

#include <memory>

class noxSql;

namespace Ui
{
class appconf;
}

/**
 * The about dialog: version and build of the program, the libraries it runs with, where it keeps
 * its data, and under which licences all of them come.
 */
class appconf : public QDialog
{
    Q_OBJECT
public:
    /** The database is not owned. The parent carries the build as its properties `BUILD_NUMBER`
     *  and `BUILD_DATE`. */
    explicit appconf(noxSql *database, QWidget *parent = nullptr);
    ~appconf() override;

public slots:
    /** Brings what it tells up to date and shows it over its parent. */
    void open() override;

private:
    std::unique_ptr<Ui::appconf> m_ui;
    noxSql *m_database;
};
