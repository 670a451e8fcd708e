#include "app/appconf.h"

#include "app/guide.h"
#include "storage/noxsql.h"
#include "ui_appconf.h"

#include <QCoreApplication>
#include <QFile>
#include <QIcon>
#include <qwt_global.h>

namespace
{

constexpr QSize emblemSize(64, 64);

QString ownLicence()
{
    QFile file(QStringLiteral(":/resource/LICENSE"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/** The licences of the program and of what it is linked to, as plain text. */
QString licences()
{
    return appconf::tr("nox8\n\n"
                       "%1\n"
                       "Библиотеки\n\n"
                       "Qt 5: GNU Lesser General Public License, версия 3.\n\n"
                       "Qwt: Qwt License, версия 1.0 (GNU Lesser General Public License, "
                       "версия 2.1, с исключениями). Программа частично основана на работе "
                       "проекта Qwt (http://qwt.sf.net).\n\n"
                       "SQLite: общественное достояние (public domain).")
        .arg(ownLicence());
}

/** A property of the window over which the dialog opens, as text. */
QString propertyOf(const QWidget *window, const char *name)
{
    return window ? window->property(name).toString() : QString();
}

} // namespace

appconf::appconf(noxSql *database, QWidget *parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::appconf>())
    , m_database(database)
{
    m_ui->setupUi(this);
    m_ui->qtLabel->setText(QString::fromLatin1(qVersion()));
    // the library has no function that tells its version
    m_ui->qwtLabel->setText(QStringLiteral(QWT_VERSION_STR));
    connect(m_ui->guideBtn, &QPushButton::clicked, this,
            [this] { openGuide(this, QStringLiteral("index")); });
    connect(m_ui->closeBtn, &QPushButton::clicked, this, &QDialog::accept);
}

appconf::~appconf() = default;

void appconf::open()
{
    const QWidget *const window = parentWidget();
    m_ui->emblemLabel->setPixmap(windowIcon().pixmap(emblemSize));
    m_ui->versionLabel->setText(QCoreApplication::applicationVersion());
    m_ui->buildLabel->setText(propertyOf(window, "BUILD_NUMBER"));
    m_ui->buildDateLabel->setText(propertyOf(window, "BUILD_DATE"));
    m_ui->databaseEdit->setText(m_database->path());
    m_ui->licenceText->setPlainText(licences());
    m_ui->closeBtn->setFocus();
    QDialog::open();
}
