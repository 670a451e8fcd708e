#include "app/guide.h"

#include "widgets/userdialogs.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QKeyEvent>
#include <QUrl>
#include <QWidget>

namespace
{

/** The same in the tree of a build and where the program is installed. */
QString pathOf(const QString &page)
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() +
                           QStringLiteral("/../share/nox8/guide/") + page +
                           QStringLiteral(".html"));
}

/** The page that tells of a widget, or of the window over which it has opened. */
QString pageOf(const QWidget *widget)
{
    struct Subject {
        const char *windowClass;
        const char *page;
    };
    constexpr Subject subjects[] = {{"findNox", "connect"},
                                    {"savemeas", "export"},
                                    {"recmeas", "record"},
                                    {"confMenu", "configure"},
                                    {"confChMenu", "configure"},
                                    {"devConfUI", "configure"},
                                    {"featconfui", "characteristics"},
                                    {"tpReperUI", "characteristics"}};
    for (; widget; widget = widget->parentWidget())
        for (const Subject &subject : subjects)
            if (widget->inherits(subject.windowClass))
                return QString::fromLatin1(subject.page);
    return QStringLiteral("index");
}

} // namespace

void openGuide(QWidget *window, const QString &page)
{
    const QString path = pathOf(page);
    QString trouble;
    if (!QFile::exists(path))
        trouble = GuideKey::tr("Руководство не установлено: нет файла\n%1").arg(path);
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        trouble =
            GuideKey::tr("Нет программы, которая открыла бы руководство. Оно лежит в файле\n%1")
                .arg(path);
    if (!trouble.isEmpty())
        UserDialogs::current().tell(
            window, {QMessageBox::Information, GuideKey::tr("Руководство"), trouble});
}

GuideKey::GuideKey(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool GuideKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (!key->matches(QKeySequence::HelpContents))
        return false;
    auto *const widget = static_cast<QWidget *>(watched);
    if (!key->isAutoRepeat())
        openGuide(widget->window(), pageOf(widget));
    return true;
}
