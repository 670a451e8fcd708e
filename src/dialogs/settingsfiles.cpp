#include "dialogs/settingsfiles.h"

#include "registry/noxlist.h"
#include "serial/noxserialport.h"
#include "storage/noxsql.h"
#include "widgets/userdialogs.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(SettingsFiles)
};

QString directoryProperty()
{
    return QStringLiteral("ust_dir");
}

/** An instrument's own name may hold what a file name may not. */
QString asFileName(QString name)
{
    return name.replace(QRegularExpression(QStringLiteral("[/\\\\:*?\"<>|]")), QStringLiteral("_"));
}

QString suffix()
{
    return QStringLiteral("ust");
}

} // namespace

SettingsFiles::SettingsFiles(QWidget *dialog, noxList *registry)
    : m_dialog(dialog)
    , m_registry(registry)
{
}

/** The file that the user has chosen for an instrument, which keeps it; empty for none, and when
 * the instrument is gone by then. */
QString SettingsFiles::ask(FileQuestion question, const QPointer<optionsNOX8> &image,
                           const QString &proposedName)
{
    const noxList::_nox *const asked = m_registry->getNoxByImage(image);
    const QString kept = m_registry->database()->getAppProperty(directoryProperty()).toString();
    question.directory = kept.isEmpty() ? QDir::homePath() : kept;
    question.filter = Texts::tr("UST (*.ust *.UST);; All (*.*)");
    question.defaultSuffix = suffix();
    question.name = asFileName(proposedName) + QLatin1Char('.') + suffix();
    if (!asked->fileName.isEmpty()) {
        const QFileInfo last(asked->fileName);
        question.name = last.fileName();
        if (last.dir().exists())
            question.directory = last.absolutePath();
    }

    const QPointer<QWidget> dialog(m_dialog); // the question waits in an event loop of its own
    const QString chosen = UserDialogs::current().chooseFile(m_dialog, question);
    if (!dialog || chosen.isEmpty())
        return {};
    m_registry->database()->setAppProperty(directoryProperty(), QFileInfo(chosen).absolutePath());
    noxList::_nox *const nox = m_registry->getNoxByImage(image);
    if (!nox)
        return {};
    nox->fileName = chosen;
    return chosen;
}

void SettingsFiles::load(int index)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    const QPointer<optionsNOX8> image = nox->opt.get();
    FileQuestion question;
    question.mode = QFileDialog::AcceptOpen;
    question.title = Texts::tr("Загрузка настроек из файла");
    const QString fileName = ask(question, image, image->getDevName(true));
    if (fileName.isEmpty() || image->loadFromFile(fileName) || !image)
        return;
    UserDialogs::current().tell(
        m_dialog, {QMessageBox::Warning, Texts::tr("Ошибка чтения файла настроек"),
                   Texts::tr("Не удалось прочитать настройки из файла!\nВозможно файл повреждён, "
                             "не доступен для чтения или имеет не верный тип."),
                   QMessageBox::Ok});
}

void SettingsFiles::save(int index)
{
    const noxList::_nox *const nox = m_registry->getNoxByIndex(index);
    if (!nox)
        return;
    const QPointer<optionsNOX8> image = nox->opt.get();
    QString name = image->getDevName(true);
    if (image->getDevRev() != 0)
        name += QStringLiteral("_N") + image->getDevNumberStr();
    FileQuestion question;
    question.title = Texts::tr("Сохранение настроек в файл");
    const QString fileName = ask(question, image, name);
    if (fileName.isEmpty())
        return;
    const int devIndex = m_registry->getNoxByImage(image)->devIndex; // as it is by now
    if (image->saveToFile(fileName, m_registry->serialPort()->getPortName(devIndex)))
        return;
    UserDialogs::current().tell(
        m_dialog, {QMessageBox::Warning, Texts::tr("Ошибка записи настроек в файл"),
                   Texts::tr("Не удалось записать настройки в файл!\nВозможно файл занят другим "
                             "приложением или не доступен для записи."),
                   QMessageBox::Ok});
}
